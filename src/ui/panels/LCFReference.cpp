#include "panels/LCFReference.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <cmath>

#include "base/Numbers.h"
#include "display/Availability.h"
#include "panels/NumberField.h"
#include "spectra/Background.h"
#include "ui_LCFReference.h"

namespace {

void check(QAbstractButton* box, bool on) {
    const QSignalBlocker blocked(box);
    box->setChecked(on);
}

/// Of per cent with two decimals, in a field of few letters.
QString shortError(double error) {
    constexpr double Least = 0.01;
    constexpr double Most = 999.0;
    if (!std::isfinite(error) || !(error > 0.0)) {
        return QStringLiteral("-");
    }
    return error < Least  ? QStringLiteral("<0.01")
           : error > Most ? QStringLiteral(">999")
                          : roundedPair(0.0, error).error;
}

}  // namespace

LCFReference::LCFReference(Measurement& measurement, int index, QWidget* parent)
    : QFrame(parent),
      m_measurement(measurement),
      m_index(index),
      m_ui(std::make_unique<Ui::LCFReference>()) {
    m_ui->setupUi(this);
    m_toolTipOfR = m_ui->R->toolTip();
    m_toolTipOfT = m_ui->T->toolTip();
    arrangeFields();
    connectControls();
    showReference();
}

LCFReference::~LCFReference() = default;

void LCFReference::arrangeFields() {
    // Room for what each shows, whatever the font; more would widen the panel. Where there is less,
    // fewer digits are shown and the tool tip has all of them.
    const auto width = [this](const char* text) {
        return fontMetrics().horizontalAdvance(QLatin1String(text));
    };
    const auto setWidth = [&width](QWidget* field, const char* least, const char* most) {
        field->setMinimumWidth(width(least));
        field->setMaximumWidth(width(most));
    };
    setWidth(m_ui->DMut, "0.0000M", "-0.000000M");
    setWidth(m_ui->MidE, "0000.0M", "00000.00M");
    setWidth(m_ui->DeltaE, "-00M", "-00.00M");
    setWidth(m_ui->R, "-000.00M", "-000.00M");
    setWidth(m_ui->RError, "+ <0.01", "+ <0.01");
    setWidth(m_ui->T, "-0.0000M", "-0.000000000M");
    for (QLabel* label : {m_ui->evLabel, m_ui->percentLabel}) {
        label->setText(label->text().trimmed());  // their spaces are room that numbers need
    }
    m_ui->T->installEventFilter(this);
    m_ui->XFS->leaveAsking();
    auto* file = m_ui->XFS->findChild<QLineEdit*>(QStringLiteral("Selected"));
    file->setMinimumWidth(width("ferrous.d"));
    file->setAccessibleName(tr("File of the reference"));
    setAccessibleName(tr("Reference %1").arg(m_index + 1));
    // On their fixed light ground, whatever the desktop's colours are.
    for (QLineEdit* field : {m_ui->DMut, m_ui->R}) {
        QPalette dark = field->palette();
        dark.setColor(QPalette::Text, Qt::black);
        field->setPalette(dark);
    }
}

void LCFReference::connectControls() {
    connect(m_ui->XFS, &XafsFileSelect::newFile, this, &LCFReference::newFile);
    connect(m_ui->XFS, &XafsFileSelect::asked, this, &LCFReference::filesAsked);
    connect(m_ui->XFS, &XafsFileSelect::cleared, this, [this] {
        m_measurement.change(m_index, [](Reference& r) { r.forget(); });
        emit newFileSelected();
    });
    connect(m_ui->XFS, &XafsFileSelect::changedUse, this, &LCFReference::changedUse);
    connect(m_ui->DeltaE, &QLineEdit::editingFinished, this, &LCFReference::editedDeltaE);
    connect(m_ui->IsVictreen, &QCheckBox::toggled, this, &LCFReference::toggledIsVictreen);
    connect(m_ui->Show, &QCheckBox::toggled, this, &LCFReference::shownToggled);
    connect(&m_measurement, &Measurement::changed, this, [this](Measurement::Changes what) {
        if (what & Measurement::References) {
            showReference();
        }
    });
}

const Reference& LCFReference::reference() const {
    return *m_measurement.references()[static_cast<std::size_t>(m_index)];
}

void LCFReference::setChoice(QWidget* button) {
    m_ui->fileRow->insertWidget(0, button);
    m_choice = button;
}

QWidgetList LCFReference::inTabOrder() const {
    QWidgetList controls{m_choice};
    for (const char* name : {"Select", "Clear", "Use"}) {
        controls << m_ui->XFS->findChild<QWidget*>(QLatin1String(name));
    }
    return controls << m_ui->IsVictreen << m_ui->Show << m_ui->DeltaE;
}

bool LCFReference::isShown() const {
    return m_ui->Show->isChecked();
}

void LCFReference::setFileChoiceUsable(const QString& whyNot) {
    const auto buttons =
        m_ui->XFS->findChildren<QPushButton*>(QString(), Qt::FindDirectChildrenOnly);
    for (QPushButton* button : buttons) {
        setUsable(button, whyNot);
    }
}

Analyzed2DRes* LCFReference::result(int kind) const {
    return &m_measurement.references()[static_cast<std::size_t>(m_index)]->result(kind).image;
}

void LCFReference::freezeFitInput() {
    m_frozen.storedRatio = m_ratio;
    const Reference& present = reference();
    if (m_frozen.revision != present.revision()) {
        m_frozen.used = present.takesPart();
        m_frozen.spectrum = present.spectrum();
        m_frozen.revision = present.revision();
    }
}

const LCFReference::FitInput& LCFReference::fitInput() {
    if (std::this_thread::get_id() == m_home) {
        freezeFitInput();
    }
    return m_frozen;
}

void LCFReference::setRatio(double ratio) {
    m_ratio = ratio;
    const QString text = QString::asprintf("%5.2f", ratio * 100.0);
    showFromStart(m_ui->R, text);
}

void LCFReference::setDMut(double dMut) {
    const QString text = fieldText(dMut);
    m_dMut = dMut;
    showInRoom(m_ui->T, dMut);
    setOwnToolTip(m_ui->T, m_toolTipOfT + QLatin1String("\n") + text);
}

bool LCFReference::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && !m_ui->T->text().isEmpty()) {
        showInRoom(m_ui->T, m_dMut);
    }
    return QFrame::eventFilter(watched, event);
}

void LCFReference::setErrors(double ratio, double dMut) {
    const RoundedPair fraction = roundedPair(100.0 * m_ratio, 100.0 * ratio);
    m_ui->RError->setText(QStringLiteral("\u00b1 ") + shortError(100.0 * ratio));
    setOwnToolTip(m_ui->R, m_toolTipOfR + QStringLiteral("\n%1 %").arg(fraction.text()));
    setOwnToolTip(m_ui->T, m_toolTipOfT + QLatin1Char('\n') + roundedPair(m_dMut, dMut).text());
}

void LCFReference::clearFit() {
    m_ui->R->clear();
    m_ui->T->clear();
    m_ui->RError->setText(QStringLiteral("\u00b1 -"));
    setOwnToolTip(m_ui->R, m_toolTipOfR);
    setOwnToolTip(m_ui->T, m_toolTipOfT);
}

void LCFReference::showReference() {
    const Reference& now = reference();
    if (m_shown == now.revision()) {
        return;
    }
    m_shown = now.revision();
    m_ui->XFS->setFileNameText(now.file().name);
    const QSignalBlocker use(m_ui->XFS);
    m_ui->XFS->setUse(now.isUsed());
    check(m_ui->IsVictreen, now.background() != XafsSpectrum::Simple);
    showFromStart(m_ui->DMut, now.hasSpectrum() ? fieldText(now.spectrum().dMut()) : QString());
    showFromStart(m_ui->MidE, now.hasSpectrum() ? fieldText(now.spectrum().midE()) : QString());
    if (!now.takesPart()) {
        clearFit();
    }
    showNumber(m_ui->DeltaE, inField(now.deltaE()));
    QStringList remarks = now.warnings();
    if (!now.whyNot().isEmpty()) {
        remarks.prepend(now.whyNot());
    }
    m_ui->Remark->setText(remarks.join(QStringLiteral("   ")));
    m_ui->Remark->setHidden(remarks.isEmpty());
}

void LCFReference::newFile(const QString& fname) {
    Outcome outcome;
    m_measurement.change(m_index, [&](Reference& r) { outcome = r.read(fname); });
    emit said(outcome, fname);
    emit newFileSelected();
}

void LCFReference::changedUse(bool use) {
    if (use != isUsed()) {
        m_measurement.change(m_index, [use](Reference& r) { r.setUse(use); });
    }
}

void LCFReference::editedDeltaE() {
    const double typed = numberIn(m_ui->DeltaE);
    // An offset has all its digits; a field that shows six of them has not changed it.
    if (typed != inField(deltaE())) {
        noteTaken(m_ui->DeltaE);
        m_measurement.change(m_index, [typed](Reference& r) { r.setDeltaE(typed); });
    }
    finishNumber(m_ui->DeltaE, inField(deltaE()));
    emit newDeltaE();
}

void LCFReference::toggledIsVictreen(bool) {
    const int background =
        m_ui->IsVictreen->isChecked() ? XafsSpectrum::Victreen : XafsSpectrum::Simple;
    m_measurement.change(m_index, [background](Reference& r) { r.setBackground(background); });
}

void LCFReference::setStd(const QString& fname, const QString& isVic) {
    setStd(fname, true, deltaE(), isVic);
}

void LCFReference::setStd(const QString& fname, bool use, double deltaE, const QString& isVic) {
    Outcome outcome;
    m_measurement.change(m_index, [&](Reference& r) {
        r.setBackground(background::fromBatchWord(isVic));
        outcome = r.read(fname);
        r.setUse(use);
        r.setDeltaE(deltaE);
    });
    showFromStart(m_ui->DeltaE, fieldText(deltaE));
    emit said(outcome, fname);
    emit newFileSelected();
    emit newDeltaE();
}
