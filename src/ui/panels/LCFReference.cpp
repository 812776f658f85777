#include "panels/LCFReference.h"

#include <QPushButton>
#include <QThread>
#include <atomic>

#include "display/Availability.h"
#include "maps/Analyzed2DRes.h"
#include "spectra/SpectrumFile.h"
#include "ui_LCFReference.h"

namespace {

quint64 nextRevision() {
    static std::atomic<quint64> last{0};
    return ++last;
}

QString sixDigits(double value) {
    return QString::number(value, 'g', 6);
}

}  // namespace

LCFReference::LCFReference(QWidget* parent)
    : QFrame(parent), m_ui(std::make_unique<Ui::LCFReference>()), m_revision(nextRevision()) {
    m_ui->setupUi(this);
    // Room for what each shows, whatever the font; more would widen the window. Numbers with an
    // exponent scroll when space is short.
    const auto setWidth = [this](QLineEdit* field, const char* widest) {
        field->setFixedWidth(fontMetrics().horizontalAdvance(QLatin1String(widest)));
    };
    setWidth(m_ui->DMut, "-0.000000M");
    setWidth(m_ui->MidE, "00000.00M");
    setWidth(m_ui->DeltaE, "-00.00M");
    setWidth(m_ui->R, "-000.00M");
    setWidth(m_ui->T, "-0.000000M");
    // On their fixed light ground, whatever the desktop's colours are.
    for (QLineEdit* field : {m_ui->DMut, m_ui->R}) {
        QPalette dark = field->palette();
        dark.setColor(QPalette::Text, Qt::black);
        field->setPalette(dark);
    }
    for (auto& result : m_results) {
        result = std::make_unique<Analyzed2DRes>();
    }
    connect(m_ui->XFS, &XafsFileSelect::newFile, this, &LCFReference::newFile);
    connect(m_ui->XFS, &XafsFileSelect::changedUse, this, &LCFReference::changedUse);
    connect(m_ui->DeltaE, &QLineEdit::editingFinished, this, &LCFReference::editedDeltaE);
    connect(m_ui->IsVictreen, &QCheckBox::toggled, this, &LCFReference::toggledIsVictreen);
    connect(m_ui->Show, &QCheckBox::toggled, this, &LCFReference::changed);
}

LCFReference::~LCFReference() = default;

QString LCFReference::fileName() const {
    return m_ui->XFS->fileName();
}
void LCFReference::setUse(bool use) {
    m_ui->XFS->setUse(use);
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
    return m_results[kind >= 0 && kind < KindCount ? kind : 0].get();
}

void LCFReference::inputChanged() {
    m_revision = nextRevision();
}

void LCFReference::freezeFitInput() {
    m_frozen.storedRatio = m_ratio;
    if (m_frozen.revision != m_revision) {
        m_frozen.used = m_use && hasSpectrum();
        m_frozen.spectrum = m_spectrum;
        m_frozen.revision = m_revision;
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
    const QString text = sixDigits(dMut);
    QMetaObject::invokeMethod(this, [this, text] { m_ui->T->setText(text); });
}

void LCFReference::normalise() {
    // Series that already carried the offset would be moved by it a second time in the fit.
    m_spectrum.setShiftOn(false);
    m_spectrum.normalise(m_background);
    m_spectrum.setShift(m_deltaE);
    m_spectrum.setShiftOn(true);
    inputChanged();
}

void LCFReference::showNormalisation() {
    m_ui->DMut->setText(hasSpectrum() ? sixDigits(m_spectrum.dMut()) : QString());
    m_ui->MidE->setText(hasSpectrum() ? sixDigits(m_spectrum.midE()) : QString());
}

void LCFReference::newFile(const QString& fname) {
    m_spectrum = XafsSpectrum();
    if (!readSpectrumFile(fname, &m_spectrum)) {
        m_ui->XFS->setFileNameText(QString());
    }
    m_deltaE = m_ui->DeltaE->text().toDouble();
    normalise();
    showNormalisation();
    emit newFileSelected();
}

void LCFReference::changedUse(bool use) {
    m_use = use;
    inputChanged();
    emit changed();
}

void LCFReference::editedDeltaE() {
    m_deltaE = m_ui->DeltaE->text().toDouble();
    m_spectrum.setShift(m_deltaE);
    m_spectrum.setShiftOn(true);
    inputChanged();
    emit newDeltaE();
}

void LCFReference::toggledIsVictreen(bool on) {
    m_background = on ? XafsSpectrum::Victreen : XafsSpectrum::Simple;
    normalise();
    showNormalisation();
    emit changed();
}

void LCFReference::setStd(const QString& fname, const QString& isVic) {
    setStd(fname, true, m_ui->DeltaE->text().toDouble(), isVic);
}

void LCFReference::setStd(const QString& fname, bool use, double deltaE, const QString& isVic) {
    const int background = background::fromBatchWord(isVic);
    m_ui->IsVictreen->setChecked(background != XafsSpectrum::Simple);
    m_background = background;
    m_ui->DeltaE->setText(sixDigits(deltaE));
    m_ui->XFS->load(fname);
    m_ui->XFS->setUse(use);
    // The field shows six digits; the offset has all of them.
    m_deltaE = deltaE;
    m_spectrum.setShift(m_deltaE);
    m_spectrum.setShiftOn(true);
    inputChanged();
    emit newDeltaE();
}
