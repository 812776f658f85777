#include "panels/AnalyzeProc.h"

#include <algorithm>

#include "panels/LCFReference.h"

AnalyzeProc::AnalyzeProc(QObject* parent) : QObject(parent) {}
AnalyzeProc::~AnalyzeProc() = default;

void AnalyzeProc::setContAccess(bool on) {
    m_contAccess = on;
}

void AnalyzeProc::setRule(const FitRule& rule) {
    m_rule = rule;
}

void AnalyzeProc::setCounts(const std::shared_ptr<const PointCounts>& counts) {
    m_counts = counts;
}

void AnalyzeProc::analyzeSpectrum0(const XafsSpectrum& sample, const QVector<LCFReference*>& lcfrs0,
                                   XafsSpectrum* fitted, bool isMLCF) {
    analyze(sample, lcfrs0, fitted, isMLCF ? LinearFit::Mlcf : LinearFit::Lcf);
}

void AnalyzeProc::analyzeSpectrumByLCF(const XafsSpectrum& sample,
                                       const QVector<LCFReference*>& lcfrs0, XafsSpectrum* fitted) {
    analyze(sample, lcfrs0, fitted, LinearFit::Lcf);
}

void AnalyzeProc::analyzeSpectrumByMLCF(const XafsSpectrum& sample,
                                        const QVector<LCFReference*>& lcfrs0,
                                        XafsSpectrum* fitted) {
    analyze(sample, lcfrs0, fitted, LinearFit::Mlcf);
}

bool AnalyzeProc::isPreparedFor(const QVector<LCFReference*>& panels, const FitRule& rule) const {
    if (!m_fit || !(m_preparedRule == rule) ||
        m_revisions.size() != static_cast<std::size_t>(panels.size())) {
        return false;
    }
    for (int r = 0; r < panels.size(); ++r) {
        if (panels.at(r)->fitInput().revision != m_revisions[static_cast<std::size_t>(r)]) {
            return false;
        }
    }
    return true;
}

void AnalyzeProc::prepareFor(const QVector<LCFReference*>& panels, const FitRule& rule) {
    m_revisions.clear();
    m_made.usedPanels.clear();
    QVector<XafsSpectrum> references;
    for (int r = 0; r < panels.size(); ++r) {
        const LCFReference::FitInput& input = panels.at(r)->fitInput();
        m_revisions.push_back(input.revision);
        if (input.used) {
            references.append(input.spectrum);
            m_made.usedPanels.push_back(r);
        }
    }
    m_preparedRule = rule;
    m_fit = std::make_unique<LinearFit>(references, rule);
    m_errors =
        references.isEmpty() ? nullptr : std::make_unique<SpectrumErrors>(rule, references.size());
}

void AnalyzeProc::evaluateErrors(const XafsSpectrum& sample) {
    m_made.values.clear();
    m_made.hadCounts = m_counts != nullptr;
    if (m_errors == nullptr) {
        return;
    }
    const FitValues places(m_fit->referenceCount(), true);
    m_made.values.resize(static_cast<std::size_t>(places.count()));
    std::copy(m_made.dMuts.begin(), m_made.dMuts.end(), m_made.values.begin());
    std::copy(m_made.ratios.begin(), m_made.ratios.end(), m_made.values.begin() + places.ratio(0));
    m_errors->take(0, *m_fit, sample);
    m_errors->evaluate(1, m_made.hadCounts ? &m_counts->counts() : nullptr, m_made.values.data());
}

void AnalyzeProc::analyze(const XafsSpectrum& sample, const QVector<LCFReference*>& panels,
                          XafsSpectrum* fitted, LinearFit::Method method) {
    fit(sample, panels, fitted, method);
    report(panels);
}

void AnalyzeProc::fit(const XafsSpectrum& sample, const QVector<LCFReference*>& panels,
                      XafsSpectrum* fitted, LinearFit::Method method) {
    m_made.isFit = false;
    m_made.leavesPanels = true;
    m_made.ratios.clear();
    m_made.dMuts.clear();
    m_made.values.clear();
    if (sample.isEmpty() || panels.size() < 2) {
        return;
    }
    FitRule rule = m_rule;
    rule.method = method;
    if (!isPreparedFor(panels, rule)) {
        prepareFor(panels, rule);
    }
    m_fit->fit(sample);
    m_made.ratios = m_fit->ratios();
    m_made.dMuts = m_fit->dMuts();
    evaluateErrors(sample);

    // Drawn from the shares that the panels will hold: the new ones, or with contAccess the old.
    m_made.leavesPanels = m_contAccess;
    m_shares.clear();
    for (std::size_t u = 0; u < m_made.usedPanels.size(); ++u) {
        LCFReference* panel = panels.at(m_made.usedPanels[u]);
        m_shares.push_back(m_made.leavesPanels ? panel->fitInput().storedRatio : m_made.ratios[u]);
    }
    *fitted = m_fit->fittedCurve(m_shares);
    m_made.isFit = true;
}

void AnalyzeProc::report(const QVector<LCFReference*>& panels) {
    m_found = m_made;
    for (std::size_t u = 0; u < m_found.usedPanels.size() && !m_found.leavesPanels; ++u) {
        LCFReference* panel = panels.at(m_found.usedPanels[u]);
        panel->setRatio(m_found.ratios[u]);
        panel->setDMut(m_found.dMuts[u]);
    }
    if (m_found.isFit) {
        emit finished();
    }
}
