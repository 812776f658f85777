// What the fit makes and what it is held to, and the difference of two energies.

#include <QButtonGroup>
#include <QComboBox>
#include <QFileInfo>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <algorithm>

#include "display/Availability.h"
#include "display/WheelGuard.h"
#include "panels/Analyzer.h"
#include "panels/MapChoice.h"
#include "panels/MapFaces.h"
#include "panels/MaskControl.h"
#include "panels/NumberField.h"
#include "panels/WhyNot.h"
#include "ui_Analyzer.h"

namespace {

using Constraints = FitRule::Constraints;

bool sumsToOne(Constraints constraints) {
    return constraints == Constraints::Sum1 || constraints == Constraints::Both;
}

}  // namespace

void Analyzer::connectOptions() {
    // In the order of FitRule::Constraints.
    m_ui->Constraints->addItems(
        {tr("none"), tr("not negative"), tr("sum of 1"), tr("not negative, sum of 1")});
    connect(m_ui->Constraints, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        m_measurement.set(&Settings::constraints, static_cast<Constraints>(index));
    });
    connect(m_ui->ErrorMaps, &QCheckBox::toggled, this,
            [this](bool on) { m_measurement.set(&Settings::errorMaps, on); });
    connect(m_ui->AskDifference, &QPushButton::clicked, this, &Analyzer::askDifference);
    connect(m_ui->ShowDifference, &QPushButton::clicked, this, [this] {
        sayOwn(m_measurement.choose(ResultId::Difference, -1), QString());
        showDifferenceChoice();
    });
    connectEnergy(m_ui->DifferenceFrom, &Settings::differenceFrom);
    connectEnergy(m_ui->DifferenceTo, &Settings::differenceTo);
}

void Analyzer::connectMaps() {
    m_maps = new MapChoice(m_measurement, m_ui->Map, this);
    connect(m_maps, &MapChoice::said, this, &Analyzer::sayOwn);
    m_faces = new MapFaces(m_measurement,
                           {m_ui->ShowValue, m_ui->ShowError, m_ui->ShowR, m_ui->ShowChi2}, this);
    connect(m_faces, &MapFaces::said, this, &Analyzer::sayOwn);
    m_mask = new MaskControl(
        m_measurement, {m_ui->Mask, m_ui->MaskFactor, m_ui->MaskSlider, m_ui->MaskCount}, this);
    connect(m_mask, &MaskControl::said, this, &Analyzer::sayOwn);
    auto* wheel = new WheelGuard(this);
    for (QWidget* control :
         {static_cast<QWidget*>(m_ui->Map), static_cast<QWidget*>(m_ui->MaskSlider),
          static_cast<QWidget*>(m_ui->Constraints)}) {
        wheel->guard(control);
    }
}

namespace {

/// The first reference in use whose edge is known; null for none.
const Reference* firstWithEdge(const Measurement& measurement) {
    const auto& references = measurement.references();
    const auto found =
        std::find_if(references.begin(), references.end(), [](const auto& reference) {
            return reference->takesPart() && reference->spectrum().midE() > 0.0;
        });
    return found != references.end() ? found->get() : nullptr;
}

}  // namespace

void Analyzer::updateEdgeButton() {
    setUsable(m_ui->RAFromEdge, firstWithEdge(m_measurement) != nullptr
                                    ? QString()
                                    : tr("Choose the file of a reference and check its Use box "
                                         "first."));
}

void Analyzer::takeEdgeEnergy() {
    constexpr double AboveEdge = 50.0;
    if (const Reference* reference = firstWithEdge(m_measurement)) {
        setRaEnergy(reference->spectrum().midE() + AboveEdge);
        sayOwn(Outcome::note(
                   tr("Residual absorption at %1 eV: 50 eV above the edge of %2")
                       .arg(fieldText(raEnergy()), QFileInfo(reference->file().name).fileName())),
               QString());
    }
}

/// An energy of frames counts with all its digits: rounded, the last one would lie outside them.
void Analyzer::connectEnergy(QLineEdit* field, double Settings::*energy) {
    connect(field, &QLineEdit::textChanged, this, [this, field, energy] {
        noteTaken(field);
        m_measurement.set(energy, numberIn(field));
    });
    connect(field, &QLineEdit::editingFinished, this,
            [this, field, energy] { finishNumber(field, m_measurement.settings().*energy); });
}

void Analyzer::showOptions() {
    const Settings& settings = m_measurement.settings();
    const QSignalBlocker blocked(m_ui->ErrorMaps);
    m_ui->ErrorMaps->setChecked(settings.errorMaps);
    m_ui->Constraints->setCurrentIndex(static_cast<int>(settings.constraints));
    auto* items = qobject_cast<QStandardItemModel*>(m_ui->Constraints->model());
    const bool isMlcf = settings.method == LinearFit::Mlcf;
    for (int i = 0; i < items->rowCount(); ++i) {
        const bool whyNot = isMlcf && sumsToOne(static_cast<Constraints>(i));
        items->item(i)->setEnabled(!whyNot);
        items->item(i)->setToolTip(whyNot ? noSumInMlcf() : QString());
    }
    showNumber(m_ui->DifferenceFrom, settings.differenceFrom);
    showNumber(m_ui->DifferenceTo, settings.differenceTo);
}

QString Analyzer::noSumInMlcf() {
    return tr("MLCF has no sum of 1: its coefficients are edge jumps.");
}

QString Analyzer::whyNotConstrained() const {
    const Settings& settings = m_measurement.settings();
    return settings.method == LinearFit::Mlcf && sumsToOne(settings.constraints) ? noSumInMlcf()
                                                                                 : QString();
}

void Analyzer::showDifferenceChoice() {
    const bool isMade = m_measurement.find(ResultId::Difference)->image.hasData();
    setUsable(m_ui->ShowDifference,
              isMade ? QString() : tr("Analyze the image with two energies first."));
    m_ui->ShowDifference->setChecked(m_measurement.settings().namedKind == ResultId::Difference);
}
