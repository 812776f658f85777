#pragma once

#include <QFrame>
#include <QVector>
#include <memory>
#include <optional>

#include "base/Inbox.h"
#include "base/Worker.h"
#include "display/Panel.h"
#include "measurement/Measurement.h"

namespace Ui {
class Analyzer;
}
class AnalyzeProc;
class LCFReference;
class MapChoice;
class MapFaces;
class MaskControl;
class PointCounts;
class QAbstractButton;
class QButtonGroup;
class QLineEdit;
class ReferenceFiles;
class XafsView;

/// The analysis window: a measurement's references, the choice of method, of the result on display,
/// of its scale and mask, and the controls of residual absorption and of the difference of two
/// energies. Owns the fitter of the spectrum under
/// the cursor, its thread and the plot that shows it.
///
/// One spectrum is with the fitter at a time; of those that come meanwhile only the newest is kept.
class Analyzer : public Panel<QFrame> {
    Q_OBJECT

  public:
    explicit Analyzer(Measurement& measurement, QWidget* parent = nullptr);
    ~Analyzer() override;

    const QVector<LCFReference*>& references() const { return m_references; }
    const AnalyzeProc* worker() const { return m_worker.get(); }
    XafsView* view() const { return m_view.get(); }
    /// Shows how an action that was started here ended.
    void say(const Outcome& outcome);

    /// An analysis of the image runs.
    bool isBusy() const { return m_busy; }
    /// Shows and fits the spectrum at the measurement's position, with the counts behind it.
    void analyzeAndShowPoint();
    /// Number of fits that have been handed over and not reported yet.
    int fitsOut() const { return m_fitsOut; }

    bool dispOnTime() const { return m_measurement.settings().showsEachRow; }
    double raEnergy() const { return m_measurement.settings().raEnergy; }
    double raFactor() const { return m_measurement.settings().raFactor; }

    /// Kinds of result image a reference has: DMut (0) and Ratio (1).
    int imageKinds() const { return Reference::KindCount; }
    /// The kind shown.
    int imageType() const { return m_measurement.settings().resultType; }
    /// 0 or 1; other values change nothing.
    void setImageType(int type);

    /// The image that the choice buttons name; null without a choice, or for a residual-absorption
    /// image that has not been made yet.
    Analyzed2DRes* selectedResult() const;
    Analyzed2DRes* raDmut() const { return &m_measurement.residual(0).image; }
    Analyzed2DRes* raRest() const { return &m_measurement.residual(1).image; }
    Analyzed2DRes* raRatio() const { return &m_measurement.residual(2).image; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// The scale field of the image type shown.
    void setScaleMax(double value);
    void setScaleMin(double value);

  signals:
    /// A fit of the image is to begin, or the one that runs is to stop.
    void askAnalyze();
    /// The same of residual absorption.
    void askRAAnalyze();
    /// And of the difference of two energies.
    void askDifference();
    void analyzeSpectrum0(const XafsSpectrum& sample, const QVector<LCFReference*>& lcfrs0,
                          XafsSpectrum* fitted, bool isMLCF);
    void changedSelection();
    void finished();
    /// How an action of this window ended that it has done itself.
    void said(const Outcome& outcome, const QString& file);

  public slots:
    void addNewRef();
    void analyzeSpectrumFinished();
    void selectedNewRef(int id);
    void scalePolicyChanged(bool on);
    void scaleChanged();
    void selectedImgChanged(bool on);
    void show();
    void setContAccess(bool on);
    void setLCFMode(int mode);
    void analyzeAndShowSpectrum(const XafsSpectrum& spectrum);
    void analyzeSpectrum(const XafsSpectrum& spectrum);
    void reAnalyzeSpectrum();
    void setProgress(double perCent);
    /// An index outside the list does nothing.
    void setLCFStd(int index, const QString& file, double deltaE, const QString& isVic);
    void setLCFStd(int index, bool use, const QString& file, double deltaE, const QString& isVic);
    void selectImage(int id);
    void setRaEnergy(double energy);
    void setRaFactor(double factor);
    void setFixedScale(bool on);
    void setDMutScaleMax(double value);
    void setDMutScaleMin(double value);
    void setRatioScaleMax(double value);
    void setRatioScaleMin(double value);

  private:
    void connectControls();
    void connectOptions();
    void connectNumber(QLineEdit* field, double Settings::*number);
    void connectEnergy(QLineEdit* field, double Settings::*energy);
    void connectMeasurement();
    void fitInBackground(const XafsSpectrum& sample, const QVector<LCFReference*>& panels,
                         XafsSpectrum* fitted, bool isMlcf);
    void showChanges(Measurement::Changes what);
    void showSettings();
    void showOptions();
    void showChoice();
    void clickedResult(int id);
    void showDifferenceChoice();
    void followReferences();
    void addRow();
    void showAndAnalyze(const XafsSpectrum& spectrum);
    void analyze(const XafsSpectrum& spectrum, bool isSample);
    void handOver(const XafsSpectrum& spectrum, bool isSample);
    FitRule fitRuleOfSample() const;
    void showReferences();
    void showFitNumbers();
    void takeEdgeEnergy();
    void connectMaps();
    void growWithReferences();
    void putNextInTabOrder(const LCFReference* reference);
    void updateControls();
    void updateEdgeButton();
    void updateChoice();
    void showState();
    void sayOwn(const Outcome& outcome, const QString& file);
    QString whyNotFit() const;
    QString whyNotConstrained() const;
    static QString noSumInMlcf();
    QAbstractButton* residualButton(int i) const;
    QAbstractButton* kindButton(int kind) const;

    Measurement& m_measurement;
    std::unique_ptr<Ui::Analyzer> m_ui;
    QVector<LCFReference*> m_references;
    QWidget* m_lastReferenceControl;  // in the order of Tab
    QButtonGroup* m_choice;
    MapChoice* m_maps = nullptr;
    MapFaces* m_faces = nullptr;
    MaskControl* m_mask = nullptr;
    ReferenceFiles* m_files = nullptr;
    std::unique_ptr<XafsView> m_view;
    std::unique_ptr<AnalyzeProc> m_worker;
    Inbox m_inbox;

    bool m_busy = false;
    int m_fitsOut = 0;
    int m_method = LinearFit::Lcf;  // of the last fit of the sample
    FitRule::Constraints m_constraints = FitRule::Constraints::None;
    XafsSpectrum m_sample;
    std::shared_ptr<const PointCounts> m_sampleCounts;  // null: not known
    XafsSpectrum m_fitted;        // written by the fitter; copied when it reports
    bool m_sampleIsOut = false;   // the fit that is out is of the sample on display
    bool m_sampleIsGone = false;  // there is no spectrum at the position
    struct Waiting {
        XafsSpectrum spectrum;
        bool isSample;
    };
    std::optional<Waiting> m_waiting;
    Worker m_thread;  // of the fitter
};
