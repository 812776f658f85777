#include "panels/LCFReference.h"

#include <QPushButton>
#include <QSignalBlocker>
#include <QThread>

#include "display/Availability.h"
#include "panels/NumberField.h"
#include "spectra/Background.h"
#include "ui_LCFReference.h"

namespace {

void check(QAbstractButton* box, bool on) {
    const QSignalBlocker blocked(box);
    box->setChecked(on);
}

}  // namespace

LCFReference::LCFReference(Measurement& measurement, int index, QWidget* parent)
    : QFrame(parent),
      m_measurement(measurement),
      m_index(index),
      m_ui(std::make_unique<Ui::LCFReference>()) {
    m_ui->setupUi(this);
    arrangeFields();
    connectControls();
    showReference();
}

LCFReference::~LCFReference() = default;

void LCFReference::arrangeFields() {
    // Room for what each shows, whatever the font; more would widen the window. Numbers with an
    // exponent scroll when space is short.
    const auto setWidth = [this](QLineEdit* field, const char* widest) {
        field->setFixedWidth(fontMetrics().horizontalAdvance(QLatin1String(widest)));
    };
    setWidth(m_ui->DMut, "-0.000000M");
    setWidth(m_ui->MidE, "00000.00M");
    setWidth(m_ui->DeltaE, "-00.00M");
    setWidth(m_ui->R, "-000.00M");
    setWidth(m_ui->T, "-0.0000000M");
    // On their fixed light ground, whatever the desktop's colours are.
    for (QLineEdit* field : {m_ui->DMut, m_ui->R}) {
        QPalette dark = field->palette();
        dark.setColor(QPalette::Text, Qt::black);
        field->setPalette(dark);
    }
}

void LCFReference::connectControls() {
    connect(m_ui->XFS, &XafsFileSelect::newFile, this, &LCFReference::newFile);
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
    if (QThread::currentThread() == thread()) {
        freezeFitInput();
    }
    return m_frozen;
}

void LCFReference::setRatio(double ratio) {
    m_ratio = ratio;
    const QString text = QString::asprintf("%5.2f", ratio * 100.0);
    QMetaObject::invokeMethod(this, [this, text] { m_ui->R->setText(text); });
}

void LCFReference::setDMut(double dMut) {
    const QString text = fieldText(dMut);
    QMetaObject::invokeMethod(this, [this, text] { m_ui->T->setText(text); });
}

void LCFReference::clearFit() {
    m_ui->R->clear();
    m_ui->T->clear();
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
    m_ui->DMut->setText(now.hasSpectrum() ? fieldText(now.spectrum().dMut()) : QString());
    m_ui->MidE->setText(now.hasSpectrum() ? fieldText(now.spectrum().midE()) : QString());
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
    m_ui->DeltaE->setText(fieldText(deltaE));
    emit said(outcome, fname);
    emit newFileSelected();
    emit newDeltaE();
}
