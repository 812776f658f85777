#pragma once

#include <QFrame>
#include <QThread>
#include <QVector>
#include <memory>
#include <optional>

#include "fitting/LinearFit.h"
#include "spectra/XafsSpectrum.h"

namespace Ui {
class Analyzer;
}
class AnalyzeProc;
class Analyzed2DRes;
class LCFReference;
class PromptDelivery;
class QButtonGroup;
class XafsView;

/// The analysis window: the reference panels, the choice of method, the result image on display
/// with its scale, and the residual-absorption controls. Owns the fitter and its thread and the
/// three result images of the residual-absorption analysis.
///
/// One spectrum is with the fitter at a time; of those that come meanwhile only the newest is kept.
class Analyzer : public QFrame {
    Q_OBJECT

  public:
    explicit Analyzer(QWidget* parent = nullptr);
    ~Analyzer() override;

    const QVector<LCFReference*>& references() const { return m_references; }
    const AnalyzeProc* worker() const { return m_worker.get(); }
    XafsView* view() const { return m_view.get(); }

    /// A two-dimensional analysis runs.
    bool isBusy() const { return m_busy; }
    /// Number of fits that have been handed over and not reported yet.
    int fitsOut() const { return m_fitsOut; }

    /// Freezes what the panels hold, as for a fit, and gives the references in use with the
    /// indices of their panels.
    QVector<XafsSpectrum> freezeReferences(std::vector<int>* panels);
    LinearFit::Method method() const;

    /// Fits the spectrum of a point of an image. Its curve is on display nowhere: the analysis has
    /// it drawn for its last point alone.
    void analyzePoint(const XafsSpectrum& spectrum, bool drawsCurve);

    bool dispOnTime() const;
    double raEnergy() const;
    double raFactor() const;

    /// Kinds of result image a reference has: DMut (0) and Ratio (1).
    int imageKinds() const;
    /// The kind shown: 1 when "Ratio" is checked, else 0.
    int imageType() const;
    /// 0 or 1; other values change nothing.
    void setImageType(int type);

    /// The image that the choice buttons name; null without a choice, or for a residual-absorption
    /// image that has not been made yet.
    Analyzed2DRes* selectedResult() const;
    /// What the chosen image shows and of what, for the user; empty without a choice.
    QString selectedTitle() const;
    Analyzed2DRes* raDmut() const { return m_raDmut.get(); }
    Analyzed2DRes* raRest() const { return m_raRest.get(); }
    Analyzed2DRes* raRatio() const { return m_raRatio.get(); }

    /// Puts the scale fields and the choice of a fixed scale into the images.
    void applyScales();
    /// The scale field of the image type shown.
    void setScaleMax(double value);
    void setScaleMin(double value);
    /// What must be there before an image can be analysed, for the user; empty: nothing.
    void setMissing(const QString& whyNot);

  signals:
    void askAnalyze();
    void askRAAnalyze();
    void analyzeSpectrum0(const XafsSpectrum& sample, const QVector<LCFReference*>& lcfrs0,
                          XafsSpectrum* fitted, bool isMLCF);
    void changedSelection();
    /// In eV; 0 when the field holds no number.
    void raEnergyChanged(double energy);
    void finished();
    /// A two-dimensional analysis has begun or ended.
    void busyChanged(bool busy);

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
    void startWorker();
    void analyze(const XafsSpectrum& spectrum, bool isSample, bool drawsCurve = true);
    void freezePanels();
    void handOver(const XafsSpectrum& spectrum, bool isSample, bool drawsCurve = true);
    void showReferences();
    void growWithReferences();
    void putNextInTabOrder(QWidget* button, const LCFReference* reference);
    void updateControls();
    void takeReportsAtOnce();

    std::unique_ptr<Ui::Analyzer> m_ui;
    QVector<LCFReference*> m_references;
    QWidget* m_lastReferenceControl;  // in the order of Tab
    QButtonGroup* m_choice;
    std::unique_ptr<XafsView> m_view;
    std::unique_ptr<AnalyzeProc> m_worker;
    QThread m_thread;

    bool m_busy = false;
    std::optional<QString> m_missing;  // images; unset: nobody has said what an analysis needs
    int m_fitsOut = 0;
    unsigned m_fitsAsked = 0;  // in all, of those that will be reported
    std::unique_ptr<PromptDelivery> m_prompt;
    XafsSpectrum m_sample;
    XafsSpectrum m_fitted;       // written by the fitter; copied when it reports
    bool m_sampleIsOut = false;  // the fit that is out is of the sample on display
    struct Waiting {
        XafsSpectrum spectrum;
        bool isSample;
    };
    std::optional<Waiting> m_waiting;

    std::unique_ptr<Analyzed2DRes> m_raDmut;
    std::unique_ptr<Analyzed2DRes> m_raRest;
    std::unique_ptr<Analyzed2DRes> m_raRatio;
};
