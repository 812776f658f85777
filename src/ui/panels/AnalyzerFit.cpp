// The plot of the spectrum under the cursor and its fits: one with the fitter, one that waits.

#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "absorption/PointCounts.h"
#include "base/Globals.h"
#include "base/Numbers.h"
#include "display/XafsView.h"
#include "panels/AnalyzeProc.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "ui_Analyzer.h"

/// Or by the event loop, where there is no thread to be had.
void Analyzer::fitInBackground(const XafsSpectrum& sample, const QVector<LCFReference*>& panels,
                               XafsSpectrum* fitted, bool isMlcf) {
    if (sample.isEmpty() || panels.size() < 2) {
        m_worker->analyzeSpectrum0(sample, panels, fitted, isMlcf);  // there is none
        return;
    }
    const LinearFit::Method method = isMlcf ? LinearFit::Mlcf : LinearFit::Lcf;
    const auto fit = [this, sample, panels, fitted, method] {
        m_worker->fit(sample, panels, fitted, method);
        m_inbox.post([this, panels] { m_worker->report(panels); });
    };
    if (!m_thread.run(fit)) {
        m_inbox.post(fit);
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

void Analyzer::handOver(const XafsSpectrum& spectrum, bool isSample) {
    // The fitter reads what is frozen here; a fit that it will not report is not waited for.
    for (LCFReference* reference : qAsConst(m_references)) {
        reference->freezeFitInput();
    }
    if (!spectrum.isEmpty() && m_references.size() >= 2) {
        ++m_fitsOut;
        m_sampleIsOut = isSample;
    }
    m_worker->setRule(fitRuleOfSample());
    m_worker->setCounts(isSample ? m_sampleCounts : nullptr);
    emit analyzeSpectrum0(spectrum, m_references, &m_fitted,
                          m_measurement.settings().method == LinearFit::Mlcf);
}

/// As a run would fit it, but for what only the image has.
FitRule Analyzer::fitRuleOfSample() const {
    FitRule rule = fitRule(m_measurement.inputs());
    rule.sample = m_measurement.sampleRule();
    rule.withErrors = false;
    return rule;
}

void Analyzer::analyzeSpectrum(const XafsSpectrum& spectrum) {
    m_sampleIsGone = false;
    analyze(spectrum, false);
}

void Analyzer::analyze(const XafsSpectrum& spectrum, bool isSample) {
    if (m_fitsOut > 0) {
        m_waiting = Waiting{spectrum, isSample};
    } else {
        handOver(spectrum, isSample);
    }
}

void Analyzer::analyzeSpectrumFinished() {
    m_fitsOut = std::max(0, m_fitsOut - 1);
    for (LCFReference* reference : qAsConst(m_references)) {
        if (m_sampleIsGone || !reference->reference().takesPart()) {
            reference->clearFit();
        }
    }
    // A fit from before a run, or not of the sample, belongs to no curve on display.
    if (!m_busy && m_sampleIsOut) {
        showFitNumbers();
        m_view->setFit(m_fitted);
        m_view->open();
    }
    emit finished();
    if (m_fitsOut == 0 && m_waiting) {
        const Waiting next = *m_waiting;
        m_waiting.reset();
        handOver(next.spectrum, next.isSample);
    }
}

/// The numbers of the spectrum on display: errors by the reference, the rest in one line. "-" is
/// what is not known.
void Analyzer::showFitNumbers() {
    const QString none = QStringLiteral("-");
    const std::vector<int>& used = m_worker->usedPanels();
    const FitValues places(static_cast<int>(used.size()), true);
    const bool isKnown = !m_sampleIsGone && !m_worker->values().empty();
    const auto value = [this](int place) {
        return m_worker->values()[static_cast<std::size_t>(place)];
    };
    for (std::size_t u = 0; isKnown && u < used.size(); ++u) {
        const int r = static_cast<int>(u);
        m_references.at(used[u])->setErrors(value(places.ratioError(r)),
                                            value(places.dMutError(r)));
    }
    const auto text = [&](int place, bool is) {
        return is && std::isfinite(value(place)) ? QString::number(value(place), 'g', 3) : none;
    };
    const bool hasSum = isKnown && std::isfinite(value(places.sum()));
    m_ui->FitNumbers->setText(
        tr("Sum of the fractions %1 %    R %2    \u03c7\u00b2 red. %3")
            .arg(hasSum ? QString::number(100.0 * value(places.sum()), 'f', 2) : none,
                 text(places.r(), isKnown),
                 text(places.chi2Reduced(), isKnown && m_worker->hadCounts())));
}

void Analyzer::analyzeAndShowPoint() {
    const XafsSpectrum& sample = m_measurement.sample();
    const QPointF at = m_measurement.position();
    const Settings& settings = m_measurement.settings();
    m_sampleCounts = sample.isEmpty()
                         ? nullptr
                         : std::make_shared<PointCounts>(m_measurement.source(), toPixel(at.x()),
                                                         toPixel(at.y()), settings.halfWidth,
                                                         settings.halfHeight);
    showAndAnalyze(sample);
}

void Analyzer::analyzeAndShowSpectrum(const XafsSpectrum& spectrum) {
    m_sampleCounts.reset();
    showAndAnalyze(spectrum);
}

void Analyzer::showAndAnalyze(const XafsSpectrum& spectrum) {
    m_sample = spectrum;
    m_sampleIsGone = spectrum.isEmpty();
    if (m_sampleIsGone) {
        m_view->clearSample();
        m_waiting.reset();
        m_sampleIsOut = false;  // a fit that is still out belongs to no curve
        for (LCFReference* reference : qAsConst(m_references)) {
            reference->clearFit();
        }
        showFitNumbers();
    } else {
        m_view->setSample(spectrum, tr("Sample"), QStringLiteral("Sample"));
    }
    if (m_busy) {
        m_view->clearFit();
    }
    reAnalyzeSpectrum();
}

void Analyzer::reAnalyzeSpectrum() {
    // A run has all processors; the sample is fitted when it has ended.
    if (!m_busy && !m_sample.isEmpty()) {
        analyze(m_sample, true);
    }
}

void Analyzer::setContAccess(bool on) {
    m_busy = on;
    m_worker->setContAccess(on);
    // What waits or is out belongs to the time before.
    m_waiting.reset();
    m_sampleIsOut = false;
    updateControls();
    reAnalyzeSpectrum();
}
