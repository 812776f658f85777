// E0 and the ranges of the backgrounds in the calibration panel.

#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>
#include <iterator>

#include "display/MessageLine.h"
#include "measurement/SettingWords.h"
#include "panels/CalibCtrl.h"
#include "panels/NumberField.h"
#include "ui_CalibCtrl.h"

namespace {

bool holdsNumber(const QLineEdit* field) {
    bool isNumber = false;
    return std::isfinite(field->text().toDouble(&isNumber)) && isNumber;
}

}  // namespace

void CalibCtrl::connectEdge() {
    connect(m_ui->E0Choice, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &CalibCtrl::chooseEdge);
    connect(m_ui->E0Energy, &QLineEdit::editingFinished, this, &CalibCtrl::takeEdgeEnergy);
    for (QLineEdit* field : {m_ui->PreStart, m_ui->PreEnd, m_ui->PostStart, m_ui->PostEnd}) {
        connect(field, &QLineEdit::editingFinished, this, &CalibCtrl::takeRanges);
    }
}

void CalibCtrl::showEdge() {
    const Settings& settings = m_measurement.settings();
    const QSignalBlocker blocked(m_ui->E0Choice);
    m_ui->E0Choice->setCurrentIndex(static_cast<int>(settings.e0.kind));
    if (settings.e0.kind == EdgeChoice::Kind::Energy) {
        showNumber(m_ui->E0Energy, settings.e0.energy);
    }
    showNumber(m_ui->PreStart, settings.ranges.preStart);
    showNumber(m_ui->PreEnd, settings.ranges.preEnd);
    showNumber(m_ui->PostStart, settings.ranges.postStart);
    showNumber(m_ui->PostEnd, settings.ranges.postEnd);
}

void CalibCtrl::chooseEdge(int kind) {
    const auto chosen = static_cast<EdgeChoice::Kind>(kind);
    if (chosen != EdgeChoice::Kind::Energy) {
        m_ui->Message->say(Outcome());
        m_measurement.set(&Settings::e0, EdgeChoice{chosen});
        return;
    }
    // Where the field says none, that of the standard is the best guess.
    if (!edgeOfWord(m_ui->E0Energy->text()) && edgeEnergy() > 0.0) {
        m_ui->E0Energy->setText(fieldText(edgeEnergy()));
    }
    m_ui->E0Energy->setModified(true);
    takeEdgeEnergy();
}

/// An energy that is typed is meant.
void CalibCtrl::takeEdgeEnergy() {
    if (!m_ui->E0Energy->isModified()) {
        return;
    }
    noteTaken(m_ui->E0Energy);
    const auto choice = edgeOfWord(m_ui->E0Energy->text());
    if (choice && choice->kind == EdgeChoice::Kind::Energy) {
        m_ui->Message->say(Outcome());
        m_measurement.set(&Settings::e0, *choice);
        finishNumber(m_ui->E0Energy, choice->energy);
    } else {
        m_ui->Message->say(Outcome::failure(tr("E0 needs an energy above 0 eV in its field")));
    }
    showEdge();
}

void CalibCtrl::takeRanges() {
    const BackgroundRanges ranges{
        inField(numberIn(m_ui->PreStart)), inField(numberIn(m_ui->PreEnd)),
        inField(numberIn(m_ui->PostStart)), inField(numberIn(m_ui->PostEnd))};
    const QLineEdit* const fields[] = {m_ui->PreStart, m_ui->PreEnd, m_ui->PostStart,
                                       m_ui->PostEnd};
    const bool areNumbers = std::all_of(std::begin(fields), std::end(fields), holdsNumber);
    if (!areNumbers || !ranges.ascend()) {
        // More fields may be on their way to be changed: what is typed stays.
        const BackgroundRanges& r = m_measurement.settings().ranges;
        const QString fault =
            areNumbers ? tr("The ranges do not ascend: %1 to %2 and %3 to %4 eV stay in force")
                       : tr("The ranges are no numbers: %1 to %2 and %3 to %4 eV stay in force");
        m_ui->Message->say(
            Outcome::failure(fault.arg(r.preStart).arg(r.preEnd).arg(r.postStart).arg(r.postEnd)));
        return;
    }
    m_ui->Message->say(Outcome());
    m_measurement.set(&Settings::ranges, ranges);
    finishNumber(m_ui->PreStart, ranges.preStart);
    finishNumber(m_ui->PreEnd, ranges.preEnd);
    finishNumber(m_ui->PostStart, ranges.postStart);
    finishNumber(m_ui->PostEnd, ranges.postEnd);
}
