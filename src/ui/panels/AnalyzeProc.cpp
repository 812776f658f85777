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
    m_usedPanels.clear();
    QVector<XafsSpectrum> references;
    for (int r = 0; r < panels.size(); ++r) {
        const LCFReference::FitInput& input = panels.at(r)->fitInput();
        m_revisions.push_back(input.revision);
        if (input.used) {
            references.append(input.spectrum);
            m_usedPanels.push_back(r);
        }
    }
    m_preparedRule = rule;
    m_fit = std::make_unique<LinearFit>(references, rule);
    m_errors =
        references.isEmpty() ? nullptr : std::make_unique<SpectrumErrors>(rule, references.size());
}

void AnalyzeProc::evaluateErrors(const XafsSpectrum& sample) {
    m_values.clear();
    m_hadCounts = m_counts != nullptr;
    if (m_errors == nullptr) {
        return;
    }
    const FitValues places(m_fit->referenceCount(), true);
    m_values.resize(static_cast<std::size_t>(places.count()));
    std::copy(m_dMuts.begin(), m_dMuts.end(), m_values.begin());
    std::copy(m_ratios.begin(), m_ratios.end(), m_values.begin() + places.ratio(0));
    m_errors->take(0, *m_fit, sample);
    m_errors->evaluate(1, m_hadCounts ? &m_counts->counts() : nullptr, m_values.data());
}

void AnalyzeProc::analyze(const XafsSpectrum& sample, const QVector<LCFReference*>& panels,
                          XafsSpectrum* fitted, LinearFit::Method method) {
    m_ratios.clear();
    m_dMuts.clear();
    m_values.clear();
    if (sample.isEmpty() || panels.size() < 2) {
        return;
    }
    FitRule rule = m_rule;
    rule.method = method;
    if (!isPreparedFor(panels, rule)) {
        prepareFor(panels, rule);
    }
    m_fit->fit(sample);
    m_ratios = m_fit->ratios();
    m_dMuts = m_fit->dMuts();
    evaluateErrors(sample);

    // Drawn from the shares that the panels hold: the new ones, or with contAccess the old.
    m_shares.clear();
    for (std::size_t u = 0; u < m_usedPanels.size(); ++u) {
        LCFReference* panel = panels.at(m_usedPanels[u]);
        if (m_contAccess) {
            m_shares.push_back(panel->fitInput().storedRatio);
        } else {
            panel->setRatio(m_ratios[u]);
            panel->setDMut(m_dMuts[u]);
            m_shares.push_back(m_ratios[u]);
        }
    }
    *fitted = m_fit->fittedCurve(m_shares);
    emit finished();
}
