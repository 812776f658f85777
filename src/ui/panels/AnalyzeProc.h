#pragma once

#include <QObject>
#include <QVector>
#include <atomic>
#include <memory>
#include <vector>

#include "absorption/PointCounts.h"
#include "fitting/FitValues.h"
#include "fitting/LinearFit.h"
#include "fitting/SpectrumErrors.h"

class LCFReference;

/// Fits the spectrum of a point with the reference panels' spectra. A fit may run in any thread,
/// one at a time: it reads what each panel has frozen for it and touches no widget. What it has
/// found is there when it is reported.
class AnalyzeProc : public QObject {
    Q_OBJECT

  public:
    explicit AnalyzeProc(QObject* parent = nullptr);
    ~AnalyzeProc() override;

    /// Shares and edge jumps of the references used in the last fit reported, in the order of the
    /// panels. Empty until the first.
    const std::vector<double>& ratios() const { return m_found.ratios; }
    const std::vector<double>& dMuts() const { return m_found.dMuts; }
    /// Indices of the panels that they belong to.
    const std::vector<int>& usedPanels() const { return m_found.usedPanels; }

    /// All numbers of the last fit, errors among them; their places are those of FitValues(m, true)
    /// for the m references used. Empty without any. Errors without counts are those of the
    /// residuals, see fitWithErrors().
    const std::vector<double>& values() const { return m_found.values; }
    /// The counts behind the spectrum of the last fit were known, so that chi2Reduced() is one.
    bool hadCounts() const { return m_found.hadCounts; }

    /// How the next spectrum is fitted, but for the method; only while no fit is out. Its rule for
    /// the sample is what the fitted curve is normalised by.
    void setRule(const FitRule& rule);
    /// The counts behind the next spectrum, null for none; only while no fit is out.
    void setCounts(const std::shared_ptr<const PointCounts>& counts);

    /// Fits the sample with the panels' references; fitted gets the fitted curve. There is no
    /// fit of a sample without points, or with fewer than two panels.
    void fit(const XafsSpectrum& sample, const QVector<LCFReference*>& panels, XafsSpectrum* fitted,
             LinearFit::Method method);
    /// Hands what the fit has found to the panels, in their thread; then finished(), if there was
    /// one.
    void report(const QVector<LCFReference*>& panels);

  signals:
    /// A fit has ended that got as far as solving.
    void finished();

  public slots:
    /// On: fits leave the reference panels alone, and the fitted curve is drawn from the shares
    /// that the panels held before. May be called from any thread.
    void setContAccess(bool on);
    /// Fits and reports before it returns; no finished() where there is no fit.
    void analyzeSpectrum0(const XafsSpectrum& sample, const QVector<LCFReference*>& lcfrs0,
                          XafsSpectrum* fitted, bool isMLCF);
    void analyzeSpectrumByLCF(const XafsSpectrum& sample, const QVector<LCFReference*>& lcfrs0,
                              XafsSpectrum* fitted);
    void analyzeSpectrumByMLCF(const XafsSpectrum& sample, const QVector<LCFReference*>& lcfrs0,
                               XafsSpectrum* fitted);

  private:
    void analyze(const XafsSpectrum& sample, const QVector<LCFReference*>& panels,
                 XafsSpectrum* fitted, LinearFit::Method method);
    bool isPreparedFor(const QVector<LCFReference*>& panels, const FitRule& rule) const;
    void prepareFor(const QVector<LCFReference*>& panels, const FitRule& rule);
    void evaluateErrors(const XafsSpectrum& sample);

    std::atomic<bool> m_contAccess{false};
    struct Found {
        bool isFit = false;
        bool leavesPanels = false;
        std::vector<double> ratios;
        std::vector<double> dMuts;
        std::vector<int> usedPanels;
        std::vector<double> values;
        bool hadCounts = false;
    };
    Found m_made;                  // by the fit
    Found m_found;                 // of the last one reported
    std::vector<double> m_shares;  // that the fitted curve is drawn from
    std::shared_ptr<const PointCounts> m_counts;

    FitRule m_rule;
    std::unique_ptr<LinearFit> m_fit;
    std::unique_ptr<SpectrumErrors> m_errors;  // of m_fit; null without references
    FitRule m_preparedRule;
    std::vector<quint64> m_revisions;  // of the panels' input that m_fit was made from
};

Q_DECLARE_METATYPE(QVector<LCFReference*>)
