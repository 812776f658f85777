#include "panels/Analyzer.h"

#include <QButtonGroup>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <algorithm>

#include "base/Globals.h"
#include "display/Availability.h"
#include "display/CheckedButtons.h"
#include "display/XafsView.h"
#include "measurement/Display.h"
#include "panels/AnalyzeProc.h"
#include "panels/LCFReference.h"
#include "panels/MapChoice.h"
#include "panels/MapFaces.h"
#include "panels/MaskControl.h"
#include "panels/NumberField.h"
#include "panels/ReferenceFiles.h"
#include "panels/RunAnswer.h"
#include "panels/WhyNot.h"
#include "ui_Analyzer.h"

namespace {

void check(QAbstractButton* button, bool on = true) {
    const QSignalBlocker blocked(button);
    button->setChecked(on);
}

/// The button that chooses a kind of result bears its name, in any case.
QAbstractButton* buttonOf(const QWidget& box, const char* verb, ResultId id) {
    const QString name = QLatin1String(verb) + QString::fromLatin1(resultKind(id).source);
    const QRegularExpression pattern(QStringLiteral("^%1$").arg(name),
                                     QRegularExpression::CaseInsensitiveOption);
    return box.findChildren<QAbstractButton*>(pattern).first();
}

/// As a batch sets it, whatever the field shows.
void setField(QLineEdit* field, double value) {
    showFromStart(field, fieldText(value));
}

}  // namespace

Analyzer::Analyzer(Measurement& measurement, QWidget* parent)
    : Panel(parent),
      m_measurement(measurement),
      m_ui(std::make_unique<Ui::Analyzer>()),
      m_choice(new QButtonGroup(this)),
      m_view(std::make_unique<XafsView>()),
      m_worker(std::make_unique<AnalyzeProc>()) {
    m_ui->setupUi(this);
    colourCheckedButtons(this);
    m_ui->analyzerScroll->viewport()->setAutoFillBackground(false);
    m_ui->analyzerContent->setAutoFillBackground(false);
    for (QWidget* button : {m_ui->AskAnalyze, m_ui->AskRAAnalyze, m_ui->AskDifference}) {
        button->setMinimumWidth(button->sizeHint().width());
    }
    m_ui->Progress->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("100.00")));
    for (QLineEdit* field : m_ui->analyzerContent->findChildren<QLineEdit*>()) {
        field->setFixedWidth(fontMetrics().horizontalAdvance(QStringLiteral("00000.00M")));
    }
    m_lastReferenceControl = m_ui->AskAnalyze;
    m_view->setWindowTitle(tr("Analyzing Spectrum"));
    m_view->setObjectName(QStringLiteral("AnalyzingSpectrum"));
    for (int i = 0; i < ResidualCount; ++i) {
        m_choice->addButton(residualButton(i), i);
    }
    connectControls();
    connectOptions();
    connectMaps();
    connectMeasurement();
    connect(this, &Analyzer::analyzeSpectrum0, this, &Analyzer::fitInBackground);
    connect(m_worker.get(), &AnalyzeProc::finished, this, &Analyzer::analyzeSpectrumFinished);
    followReferences();
    showSettings();
    showFitNumbers();
    setContAccess(m_measurement.working() != Work::None);
}

QAbstractButton* Analyzer::residualButton(int i) const {
    return buttonOf(*m_ui->raBox, "Show", residualId(i));
}

QAbstractButton* Analyzer::kindButton(int kind) const {
    const bool isKind = kind > 0 && kind < Reference::KindCount;
    return buttonOf(*m_ui->imageBox, "Sel", static_cast<ResultId>(isKind ? kind : Reference::DMut));
}

Analyzer::~Analyzer() {
    disconnect(m_worker.get(), nullptr, this, nullptr);
    // A fit reads what belongs to this, and comes to its end.
    m_thread.end(std::chrono::hours(1));
}

void Analyzer::connectControls() {
    connect(m_ui->ShowView, &QPushButton::clicked, m_view.get(), &QWidget::show);
    connect(m_ui->AddRef, &QPushButton::clicked, this, &Analyzer::addNewRef);
    m_files = new ReferenceFiles(m_measurement, this);
    connect(m_files, &ReferenceFiles::said, this, &Analyzer::sayOwn);
    connect(m_ui->AddRefFiles, &QPushButton::clicked, this, [this] { m_files->ask(-1); });
    connect(m_ui->RAFromEdge, &QPushButton::clicked, this, &Analyzer::takeEdgeEnergy);
    connect(m_ui->AskAnalyze, &QPushButton::clicked, this, &Analyzer::askAnalyze);
    connect(m_ui->AskRAAnalyze, &QPushButton::clicked, this, &Analyzer::askRAAnalyze);
    connect(m_choice, &QButtonGroup::idClicked, this, &Analyzer::clickedResult);
    for (int kind = 0; kind < Reference::KindCount; ++kind) {
        connect(kindButton(kind), &QAbstractButton::toggled, this, [this](bool on) {
            if (on) {
                selectedImgChanged(on);
            }
        });
    }
    connect(m_ui->FixedScale, &QCheckBox::toggled, this, &Analyzer::scalePolicyChanged);
    for (QLineEdit* field :
         {m_ui->DMutScaleMin, m_ui->DMutScaleMax, m_ui->RatioScaleMin, m_ui->RatioScaleMax}) {
        connect(field, &QLineEdit::editingFinished, this, &Analyzer::scaleChanged);
    }
    connect(m_ui->MLCF, &QCheckBox::toggled, this, [this](bool on) { setLCFMode(on ? 1 : 0); });
    connect(m_ui->Unscaled, &QCheckBox::toggled, this, [this](bool on) {
        m_measurement.set(&Settings::referenceScale,
                          on ? FitRule::ReferenceScale::None : FitRule::ReferenceScale::Jump);
    });
    connect(m_ui->DispOnTime, &QCheckBox::toggled, this,
            [this](bool on) { m_measurement.set(&Settings::showsEachRow, on); });
    connectNumber(m_ui->RAAtEV, &Settings::raEnergy);
    connectNumber(m_ui->RAFactor, &Settings::raFactor);
}

void Analyzer::connectNumber(QLineEdit* field, double Settings::*number) {
    connect(field, &QLineEdit::textChanged, this, [this, field, number] {
        noteTaken(field);
        m_measurement.set(number, inField(numberIn(field)));
    });
    connect(field, &QLineEdit::editingFinished, this,
            [this, field, number] { finishNumber(field, m_measurement.settings().*number); });
}

void Analyzer::connectMeasurement() {
    connect(&m_measurement, &Measurement::changed, this, &Analyzer::showChanges);
    const auto* answers = new RunAnswer(m_measurement, this);
    connect(answers, &RunAnswer::ended, this, &Analyzer::say);
    connect(&m_measurement, &Measurement::progressed, this,
            [this](Work work, double done, double of) {
                if (work == Work::Fit) {
                    setProgress(100.0 * done / of);
                }
            });
}

void Analyzer::setImageType(int type) {
    if (type >= 0 && type < Reference::KindCount) {
        m_measurement.set(&Settings::namedKind, std::nullopt);
        m_measurement.set(&Settings::resultType, type);
        emit changedSelection();
    }
}

Analyzed2DRes* Analyzer::selectedResult() const {
    Result* selected = m_measurement.selectedResult();
    return selected != nullptr ? &selected->image : nullptr;
}

void Analyzer::showChanges(Measurement::Changes what) {
    if (what & Measurement::References) {
        followReferences();
        showReferences();
    }
    if (what & Measurement::Setting) {
        showSettings();
    }
    const bool busy = m_measurement.working() != Work::None;
    if (busy != m_busy) {
        setContAccess(busy);
    }
    if (what & (Measurement::Changes(Measurement::AtWork) | Measurement::Frames |
                Measurement::References | Measurement::Setting)) {
        updateControls();
    }
    if (what & ~Measurement::Changes(Measurement::Position)) {
        updateChoice();
        m_maps->update();
        m_faces->update();
        m_mask->update();
        showDifferenceChoice();
        showState();
    }
    if (what & Measurement::References) {
        reAnalyzeSpectrum();
    }
}

void Analyzer::showSettings() {
    const Settings& settings = m_measurement.settings();
    check(m_ui->MLCF, settings.method == LinearFit::Mlcf);
    check(m_ui->Unscaled, settings.referenceScale == FitRule::ReferenceScale::None);
    check(m_ui->DispOnTime, settings.showsEachRow);
    check(m_ui->FixedScale, settings.fixedScale);
    showNumber(m_ui->DMutScaleMin, settings.dMutMin);
    showNumber(m_ui->DMutScaleMax, settings.dMutMax);
    showNumber(m_ui->RatioScaleMin, settings.ratioMin);
    showNumber(m_ui->RatioScaleMax, settings.ratioMax);
    showNumber(m_ui->RAAtEV, settings.raEnergy);
    showNumber(m_ui->RAFactor, settings.raFactor);
    showOptions();
    showChoice();
    m_view->setRaEnergy(settings.raEnergy);
    m_view->setCrystalSpacing(m_measurement.spacing());
    if (settings.method != m_method || settings.constraints != m_constraints) {
        m_method = settings.method;
        m_constraints = settings.constraints;
        reAnalyzeSpectrum();
    }
}

void Analyzer::addNewRef() {
    sayOwn(m_measurement.addReference(), QString());
}

void Analyzer::say(const Outcome& outcome) {
    m_ui->Message->say(outcome);
}

void Analyzer::sayOwn(const Outcome& outcome, const QString& file) {
    say(outcome);
    emit said(outcome, file);
}

/// A kind that each reference has stays when another reference is clicked.
void Analyzer::clickedResult(int id) {
    const std::optional<ResultId> kind = m_measurement.settings().namedKind;
    if (kind && resultKind(*kind).family == ResultFamily::Reference &&
        id < m_measurement.referenceCount() && !m_measurement.choose(*kind, id).failed()) {
        emit changedSelection();
    } else {
        selectedNewRef(id);
    }
}

void Analyzer::selectedNewRef(int id) {
    m_measurement.select(id);
    emit changedSelection();
}

void Analyzer::selectedImgChanged(bool) {
    int type = Reference::DMut;
    for (int kind = 0; kind < Reference::KindCount; ++kind) {
        type = kindButton(kind)->isChecked() ? kind : type;
    }
    setImageType(type);
}

void Analyzer::selectImage(int id) {
    selectedNewRef(id);
}

void Analyzer::scaleChanged() {
    const auto take = [this](QLineEdit* field, double Settings::*limit) {
        noteTaken(field);
        m_measurement.set(limit, inField(numberIn(field)));
        finishNumber(field, m_measurement.settings().*limit);
    };
    take(m_ui->DMutScaleMin, &Settings::dMutMin);
    take(m_ui->DMutScaleMax, &Settings::dMutMax);
    take(m_ui->RatioScaleMin, &Settings::ratioMin);
    take(m_ui->RatioScaleMax, &Settings::ratioMax);
    emit changedSelection();
}

void Analyzer::scalePolicyChanged(bool) {
    m_measurement.set(&Settings::fixedScale, m_ui->FixedScale->isChecked());
    scaleChanged();
}

void Analyzer::show() {
    m_view->open();
    Panel::show();
}

QString Analyzer::whyNotFit() const {
    const QString whyNot = whyNotAnalyze(m_measurement, Work::Fit);
    if (!whyNot.isEmpty() || m_measurement.working() == Work::Fit) {
        return whyNot;
    }
    if (m_references.size() < 2) {
        return tr("Add two references first.");
    }
    const auto& references = m_measurement.references();
    const bool anyInUse = std::any_of(references.begin(), references.end(),
                                      [](const auto& r) { return r->takesPart(); });
    return anyInUse ? whyNotConstrained()
                    : tr("Choose the file of a reference and check its Use box first.");
}

void Analyzer::updateControls() {
    const QString running = whileAnalyzing(m_measurement);
    setUsable(m_ui->AddRef, running);
    setUsable(m_ui->AddRefFiles, running);
    updateEdgeButton();
    for (LCFReference* reference : qAsConst(m_references)) {
        reference->setFileChoiceUsable(running);
    }
    // A second click on these stops, so they stay alive while they are at work.
    const auto textOf = [this](Work work) {
        return m_measurement.working() == work ? tr("Stop") : tr("Analyze");
    };
    m_ui->AskAnalyze->setText(textOf(Work::Fit));
    setUsable(m_ui->AskAnalyze, whyNotFit());
    m_ui->AskRAAnalyze->setText(textOf(Work::Residual));
    setUsable(m_ui->AskRAAnalyze, whyNotAnalyze(m_measurement, Work::Residual));
    m_ui->AskDifference->setText(textOf(Work::Difference));
    setUsable(m_ui->AskDifference, whyNotAnalyze(m_measurement, Work::Difference));
}

/// What keeps the chosen map, which the list names, from being one of now.
void Analyzer::showState() {
    const bool isShift = m_measurement.settings().shown == Shown::Map;
    const Result* chosen = isShift ? &m_measurement.map() : m_measurement.selectedResult();
    m_ui->ResultState->setText(chosen != nullptr && chosen->image.hasData()
                                   ? stateText(m_measurement, *chosen)
                                   : QString());
}

void Analyzer::setLCFMode(int mode) {
    m_measurement.set(&Settings::method, mode == 1 ? LinearFit::Mlcf : LinearFit::Lcf);
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
    check(m_ui->FixedScale, on);
    scalePolicyChanged(on);
}

void Analyzer::setScaleMax(double value) {
    imageType() == Reference::Ratio ? setRatioScaleMax(value) : setDMutScaleMax(value);
}

void Analyzer::setScaleMin(double value) {
    imageType() == Reference::Ratio ? setRatioScaleMin(value) : setDMutScaleMin(value);
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
