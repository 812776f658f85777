#include "panels/Analyzer.h"

#include <QButtonGroup>
#include <QFileInfo>
#include <QRadioButton>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "base/Globals.h"
#include "display/Availability.h"
#include "display/XafsView.h"
#include "maps/Analyzed2DRes.h"
#include "panels/AnalyzeProc.h"
#include "panels/LCFReference.h"
#include "panels/PromptLoop.h"
#include "ui_Analyzer.h"

namespace {

constexpr int UsedFromTheStart = 2;

void setField(QLineEdit* field, double value) {
    field->setText(QString::number(value, 'g', 6));
}

}  // namespace

Analyzer::Analyzer(QWidget* parent)
    : QFrame(parent),
      m_ui(std::make_unique<Ui::Analyzer>()),
      m_choice(new QButtonGroup(this)),
      m_view(std::make_unique<XafsView>()),
      m_worker(std::make_unique<AnalyzeProc>()),
      m_prompt(std::make_unique<PromptDelivery>()),
      m_raDmut(std::make_unique<Analyzed2DRes>()),
      m_raRest(std::make_unique<Analyzed2DRes>()),
      m_raRatio(std::make_unique<Analyzed2DRes>()) {
    m_ui->setupUi(this);
    m_ui->refScroll->viewport()->setAutoFillBackground(false);
    m_ui->RefBase->setAutoFillBackground(false);
    m_lastReferenceControl = m_ui->AddRef;
    m_view->setWindowTitle(tr("Analyzing Spectrum"));
    m_view->setObjectName(QStringLiteral("AnalyzingSpectrum"));
    m_choice->addButton(m_ui->ShowDMuT, 0);
    m_choice->addButton(m_ui->ShowRest, 1);
    m_choice->addButton(m_ui->ShowRatio, 2);
    m_view->setRaEnergy(raEnergy());
    connectControls();
    startWorker();
    applyScales();
}

Analyzer::~Analyzer() {
    disconnect(m_worker.get(), nullptr, this, nullptr);
    m_thread.quit();
    m_thread.wait();
}

void Analyzer::connectControls() {
    connect(m_ui->ShowView, &QPushButton::clicked, m_view.get(), &QWidget::show);
    connect(m_ui->AddRef, &QPushButton::clicked, this, &Analyzer::addNewRef);
    connect(m_ui->AskAnalyze, &QPushButton::clicked, this, &Analyzer::askAnalyze);
    connect(m_ui->AskRAAnalyze, &QPushButton::clicked, this, &Analyzer::askRAAnalyze);
    connect(m_choice, &QButtonGroup::idClicked, this, &Analyzer::selectedNewRef);
    connect(m_ui->SelDMut, &QRadioButton::toggled, this, &Analyzer::selectedImgChanged);
    connect(m_ui->FixedScale, &QCheckBox::toggled, this, &Analyzer::scalePolicyChanged);
    for (QLineEdit* field :
         {m_ui->DMutScaleMin, m_ui->DMutScaleMax, m_ui->RatioScaleMin, m_ui->RatioScaleMax}) {
        connect(field, &QLineEdit::editingFinished, this, &Analyzer::scaleChanged);
    }
    connect(m_ui->MLCF, &QCheckBox::toggled, this, &Analyzer::reAnalyzeSpectrum);
    connect(m_ui->RAAtEV, &QLineEdit::textChanged, this,
            [this] { emit raEnergyChanged(raEnergy()); });
    connect(this, &Analyzer::raEnergyChanged, m_view.get(), &XafsView::setRaEnergy);
}

void Analyzer::startWorker() {
    qRegisterMetaType<QVector<LCFReference*>>("QVector<LCFReference*>");
    m_thread.setEventDispatcher(new PromptDispatcher);  // the thread takes it
    m_worker->moveToThread(&m_thread);
    connect(this, &Analyzer::analyzeSpectrum0, m_worker.get(), &AnalyzeProc::analyzeSpectrum0);
    connect(m_worker.get(), &AnalyzeProc::finished, this, &Analyzer::analyzeSpectrumFinished);
    m_thread.start(QThread::InheritPriority);
}

bool Analyzer::dispOnTime() const {
    return m_ui->DispOnTime->isChecked();
}
double Analyzer::raEnergy() const {
    return m_ui->RAAtEV->text().toDouble();
}
double Analyzer::raFactor() const {
    return m_ui->RAFactor->text().toDouble();
}
int Analyzer::imageKinds() const {
    return LCFReference::KindCount;
}

int Analyzer::imageType() const {
    return !m_ui->SelDMut->isChecked() && m_ui->SelRatio->isChecked() ? LCFReference::Ratio
                                                                      : LCFReference::DMut;
}

void Analyzer::setImageType(int type) {
    if (type == LCFReference::DMut) {
        m_ui->SelDMut->setChecked(true);
    } else if (type == LCFReference::Ratio) {
        m_ui->SelRatio->setChecked(true);
    }
}

Analyzed2DRes* Analyzer::selectedResult() const {
    const int id = m_choice->checkedId();
    const int n = m_references.size();
    if (id < 0) {
        return nullptr;
    }
    if (id < n) {
        return m_references.at(id)->result(imageType());
    }
    Analyzed2DRes* const made[] = {m_raDmut.get(), m_raRest.get(), m_raRatio.get()};
    Analyzed2DRes* result = id - n < 3 ? made[id - n] : nullptr;
    return result != nullptr && result->isValid() ? result : nullptr;
}

void Analyzer::addNewRef() {
    if (m_busy) {  // the images of the run belong to the panels that it began with
        return;
    }
    const int index = m_references.size();
    // The numbers of the residual-absorption buttons follow those of the references: they move up
    // before the new button takes the first of them.
    m_choice->setId(m_ui->ShowRatio, index + 3);
    m_choice->setId(m_ui->ShowRest, index + 2);
    m_choice->setId(m_ui->ShowDMuT, index + 1);

    auto* reference = new LCFReference(m_ui->RefBase);
    auto* button = new QRadioButton(tr("Select Ref%1").arg(index + 1), m_ui->RefBase);
    button->setToolTip(tr("Show this reference's result image in the main window"));
    button->setObjectName(QStringLiteral("SelectRef%1").arg(index + 1));
    m_references.append(reference);
    m_choice->addButton(button, index);
    m_ui->refGrid->addWidget(button, index, 0);
    m_ui->refGrid->addWidget(reference, index, 1);
    reference->setUse(m_references.size() <= UsedFromTheStart);
    reference->show();
    button->show();
    putNextInTabOrder(button, reference);

    for (auto signal :
         {&LCFReference::newFileSelected, &LCFReference::newDeltaE, &LCFReference::changed}) {
        connect(reference, signal, this, [this] {
            showReferences();
            updateControls();
            reAnalyzeSpectrum();
        });
    }
    applyScales();
    updateControls();
    growWithReferences();
}

/// Makes the window as high as its references need, as far as the screen goes; then they scroll.
void Analyzer::growWithReferences() {
    const QSize needed = m_ui->RefBase->layout()->minimumSize();
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    m_ui->refScroll->setMinimumWidth(needed.width() + bar);
    layout()->activate();
    const int others = minimumSizeHint().height() - m_ui->refScroll->minimumSizeHint().height();
    const QRect frame = screen()->availableGeometry();
    const int room = frame.height() - 2 * fontMetrics().height();  // less the title bar
    resize(size().expandedTo(
        QSize(minimumSizeHint().width(), std::min(others + needed.height(), room))));
    if (isVisible()) {
        const QPoint corner =
            frame.bottomRight() - QPoint(frameGeometry().width() - 1, frameGeometry().height() - 1);
        move(std::max(frame.left(), std::min(x(), corner.x())),
             std::max(frame.top(), std::min(y(), corner.y())));
    }
}

QString Analyzer::selectedTitle() const {
    const int id = m_choice->checkedId();
    if (id < 0) {
        return QString();
    }
    if (id >= m_references.size()) {
        const QStringList titles{tr("Edge jump"), tr("Residual absorption"),
                                 tr("Residual absorption over edge jump")};
        return titles.value(id - m_references.size());
    }
    const QRadioButton* kind = imageType() == LCFReference::Ratio ? m_ui->SelRatio : m_ui->SelDMut;
    return kind->text() + QStringLiteral("   ") +
           QFileInfo(m_references.at(id)->fileName()).fileName();
}

void Analyzer::putNextInTabOrder(QWidget* button, const LCFReference* reference) {
    const QWidgetList controls = QWidgetList{button} + reference->findChildren<QWidget*>();
    for (QWidget* control : controls) {
        if ((control->focusPolicy() & Qt::TabFocus) != 0 && control->window() == window()) {
            setTabOrder(m_lastReferenceControl, control);
            m_lastReferenceControl = control;
        }
    }
}

void Analyzer::showReferences() {
    QVector<XafsView::Reference> shown;
    for (int i = 0; i < m_references.size(); ++i) {
        const LCFReference* reference = m_references.at(i);
        if (reference->hasSpectrum()) {
            shown.append({reference->spectrum(), QFileInfo(reference->fileName()).fileName(),
                          reference->isShown(), getColor(i + 2)});
        }
    }
    m_view->setReferences(shown);
}

void Analyzer::freezePanels() {
    for (LCFReference* reference : qAsConst(m_references)) {
        reference->freezeFitInput();
    }
}

QVector<XafsSpectrum> Analyzer::freezeReferences(std::vector<int>* panels) {
    freezePanels();
    return usedReferences(m_references, panels);
}

LinearFit::Method Analyzer::method() const {
    return m_ui->MLCF->isChecked() ? LinearFit::Mlcf : LinearFit::Lcf;
}

void Analyzer::handOver(const XafsSpectrum& spectrum, bool isSample, bool drawsCurve) {
    // The fitter reads what is frozen here; a fit that it will not report is not waited for.
    freezePanels();
    if (!spectrum.isEmpty() && m_references.size() >= 2) {
        ++m_fitsOut;
        ++m_fitsAsked;
        m_sampleIsOut = isSample;
    }
    emit analyzeSpectrum0(spectrum, m_references, drawsCurve ? &m_fitted : nullptr,
                          m_ui->MLCF->isChecked());
}

void Analyzer::analyzeSpectrum(const XafsSpectrum& spectrum) {
    analyze(spectrum, false);
}

void Analyzer::analyzePoint(const XafsSpectrum& spectrum, bool drawsCurve) {
    analyze(spectrum, false, drawsCurve);
}

void Analyzer::analyze(const XafsSpectrum& spectrum, bool isSample, bool drawsCurve) {
    if (m_fitsOut > 0) {
        m_waiting = Waiting{spectrum, isSample};
    } else {
        handOver(spectrum, isSample, drawsCurve);
    }
}

void Analyzer::analyzeSpectrumFinished() {
    m_fitsOut = std::max(0, m_fitsOut - 1);
    // A fit of an image's point, left over from a stopped run, belongs to no curve on display.
    if (!m_busy && m_sampleIsOut) {
        m_view->setFit(m_fitted);
        m_view->show();
    }
    emit finished();
    if (m_fitsOut == 0 && m_waiting) {
        const Waiting next = *m_waiting;
        m_waiting.reset();
        handOver(next.spectrum, next.isSample);
    }
    takeReportsAtOnce();
}

void Analyzer::takeReportsAtOnce() {
    m_prompt->run(
        this, [this] { return m_busy && m_fitsOut > 0; },
        [this] { return m_worker->reports() == m_fitsAsked; });
}

void Analyzer::analyzeAndShowSpectrum(const XafsSpectrum& spectrum) {
    m_sample = spectrum;
    m_view->setSample(spectrum, tr("Sample"), QStringLiteral("Sample"));
    if (m_busy || spectrum.isEmpty()) {
        m_view->clearFit();
    }
    reAnalyzeSpectrum();
}

void Analyzer::reAnalyzeSpectrum() {
    // A fit of the cursor's spectrum must not be taken for one of the image's points.
    if (!m_busy && !m_sample.isEmpty()) {
        analyze(m_sample, true);
    }
}

void Analyzer::selectedNewRef(int) {
    emit changedSelection();
}

void Analyzer::selectedImgChanged(bool) {
    emit changedSelection();
}

void Analyzer::selectImage(int id) {
    if (QAbstractButton* button = m_choice->button(id)) {
        button->setChecked(true);
    }
    emit changedSelection();
}

void Analyzer::applyScales() {
    const bool fixed = m_ui->FixedScale->isChecked();
    const auto apply = [fixed](Analyzed2DRes* result, const QLineEdit* min, const QLineEdit* max) {
        result->setScale(min->text().toDouble(), max->text().toDouble());
        result->setFixedScale(fixed);
    };
    for (LCFReference* reference : qAsConst(m_references)) {
        apply(reference->result(LCFReference::DMut), m_ui->DMutScaleMin, m_ui->DMutScaleMax);
        apply(reference->result(LCFReference::Ratio), m_ui->RatioScaleMin, m_ui->RatioScaleMax);
    }
    apply(m_raDmut.get(), m_ui->DMutScaleMin, m_ui->DMutScaleMax);
    apply(m_raRatio.get(), m_ui->RatioScaleMin, m_ui->RatioScaleMax);
}

void Analyzer::scaleChanged() {
    applyScales();
    emit changedSelection();
}

void Analyzer::scalePolicyChanged(bool) {
    scaleChanged();
}

void Analyzer::show() {
    QFrame::show();
    m_view->show();
}

void Analyzer::setContAccess(bool on) {
    m_busy = on;
    m_worker->setContAccess(on);
    updateControls();
    // What waits belongs to the time before.
    m_waiting.reset();
    emit busyChanged(on);
}

void Analyzer::setMissing(const QString& whyNot) {
    m_missing = whyNot;
    updateControls();
}

void Analyzer::updateControls() {
    const QString whileBusy = m_busy ? tr("Not while an analysis of the image runs.") : QString();
    setUsable(m_ui->AddRef, whileBusy);
    for (LCFReference* reference : qAsConst(m_references)) {
        reference->setFileChoiceUsable(whileBusy);
    }
    setUsable(m_ui->AskRAAnalyze, m_busy ? whileBusy : m_missing.value_or(QString()));

    // A second click on this one stops, so it stays alive while it is at work.
    const bool anyInUse =
        std::any_of(m_references.begin(), m_references.end(),
                    [](const LCFReference* r) { return r->isUsed() && r->hasSpectrum(); });
    QString whyNot = m_missing.value_or(QString());
    if (m_missing && whyNot.isEmpty() && m_references.size() < 2) {
        whyNot = tr("Add two references first.");
    } else if (m_missing && whyNot.isEmpty() && !anyInUse) {
        whyNot = tr("Choose the file of a reference and check its Use box first.");
    }
    setUsable(m_ui->AskAnalyze, m_busy ? QString() : whyNot);
}

void Analyzer::setLCFMode(int mode) {
    m_ui->MLCF->setChecked(mode == 1);
}

void Analyzer::setProgress(double perCent) {
    m_ui->Progress->setText(QString::asprintf("%5.2f", perCent));
}

void Analyzer::setLCFStd(int index, const QString& file, double deltaE, const QString& isVic) {
    setLCFStd(index, true, file, deltaE, isVic);
}

void Analyzer::setLCFStd(int index, bool use, const QString& file, double deltaE,
                         const QString& isVic) {
    if (index >= 0 && index < m_references.size()) {
        m_references.at(index)->setStd(file, use, deltaE, isVic);
    }
}

void Analyzer::setRaEnergy(double energy) {
    setField(m_ui->RAAtEV, energy);
}
void Analyzer::setRaFactor(double factor) {
    setField(m_ui->RAFactor, factor);
}

void Analyzer::setFixedScale(bool on) {
    const QSignalBlocker blocked(m_ui->FixedScale);
    m_ui->FixedScale->setChecked(on);
    scaleChanged();
}

void Analyzer::setScaleMax(double value) {
    imageType() == LCFReference::Ratio ? setRatioScaleMax(value) : setDMutScaleMax(value);
}

void Analyzer::setScaleMin(double value) {
    imageType() == LCFReference::Ratio ? setRatioScaleMin(value) : setDMutScaleMin(value);
}

void Analyzer::setDMutScaleMax(double value) {
    setField(m_ui->DMutScaleMax, value);
    scaleChanged();
}

void Analyzer::setDMutScaleMin(double value) {
    setField(m_ui->DMutScaleMin, value);
    scaleChanged();
}

void Analyzer::setRatioScaleMax(double value) {
    setField(m_ui->RatioScaleMax, value);
    scaleChanged();
}

void Analyzer::setRatioScaleMin(double value) {
    setField(m_ui->RatioScaleMin, value);
    scaleChanged();
}
