// E0 of the spectra of the image: what they are normalised with, and the search for that of the
// mean spectrum with which a run begins.

#include <algorithm>

#include "absorption/AbsorptionSource.h"
#include "calibration/EnergyShift.h"
#include "measurement/EdgeJudgement.h"
#include "measurement/Measurement.h"

Normalisation Measurement::sampleRule() const {
    const Inputs now = inputs();
    Normalisation rule = ::sampleRule(now);
    if (now.e0.kind == EdgeChoice::Kind::Mean && m_foundMean &&
        sameMeanSpectrum(m_foundMean->inputs, now)) {
        rule.e0 = m_foundMean->mean->e0();
    }
    return rule;
}

bool Measurement::lacksMeanE0() const {
    return m_settings.e0.kind == EdgeChoice::Kind::Mean && !sampleRule().e0;
}

void Measurement::followSampleRule(const Settings& before, Changes* what) {
    const Settings& now = m_settings;
    if (!(before.e0 == now.e0) || !(before.ranges == now.ranges)) {
        m_sample.reset();
        *what |= Position;
    }
    if (!(before.ranges == now.ranges)) {
        for (const auto& reference : m_references) {
            reference->setRanges(now.ranges);
        }
        m_standard.ranges = now.ranges;
        m_standard.normalise(now.standardBackground);
        *what |= Changes(References) | Standard;
    }
    if (before.referenceScale != now.referenceScale) {
        for (const auto& reference : m_references) {
            reference->setNeedsLines(now.referenceScale == FitRule::ReferenceScale::Jump);
        }
        *what |= References;
    }
}

Outcome Measurement::judgeEdge(Work work) {
    const std::vector<double>& energies = source().energies();
    Outcome outcome = judgeRanges(work, energies, m_references, m_settings);
    if (m_settings.e0.kind == EdgeChoice::Kind::Energy && hasCommonE0(inputs(), work)) {
        outcome += judgeCommonE0(m_settings.e0.energy, m_settings.ranges, energies, grid().raster(),
                                 shiftsOf(m_map->image));
    }
    return outcome;
}

void Measurement::beginMean() {
    const AbsorptionSource& frames = source();
    Run& run = *m_analysis->run();
    if (m_rehearsal) {
        m_rehearsal->passOver();
        MeanSpectrum mean;
        mean.spectrum = Rehearsal::spectrumOf(frames.energies());
        run.mean = std::make_shared<const MeanSpectrum>(mean);
        m_foundMean = m_analysis->run();
        beginPass();
        return;
    }
    BinRaster raster = m_analysis->grid().raster();
    m_search = MeanSearch{std::make_shared<RowSums>(), shiftsOf(m_map->image)};
    const auto evaluators = meanEvaluators(std::max(1, m_threads), raster, frames.energyCount(),
                                           m_search->shiftAt, m_search->sums);
    const KeptRows kept = keptSums(&raster, frames.energyCount());
    m_job.start(frames, raster, 1, evaluators, kept);
}

/// Goes on with the pass that the mean spectrum was sought for; failed: there is no E0 to go by.
Outcome Measurement::takeMean() {
    const std::vector<double>& energies = source().energies();
    Run& run = *m_analysis->run();
    const MeanSpectrum mean = meanOf(*m_search->sums, energies);
    if (mean.bins == 0) {
        return Outcome::failure(
            tr("no bin of the area has counts at all energies: there is no mean spectrum"));
    }
    if (!mean.hasEdge()) {
        return Outcome::failure(tr("the mean spectrum of the area has no rising edge"));
    }
    const Outcome judged = judgeCommonE0(mean.e0(), run.inputs.ranges, energies,
                                         m_analysis->grid().raster(), m_search->shiftAt);
    if (judged.failed()) {
        return judged;
    }
    run.warnings += judged.warnings;
    run.mean = std::make_shared<const MeanSpectrum>(mean);
    m_foundMean = m_analysis->run();
    m_search.reset();
    m_sample.reset();
    beginPass();
    emit changed(Changes(Results) | Display | Position);
    return {};
}

/// Of a run, in per cent: the search for the mean spectrum is the first half of one that begins
/// with it.
double Measurement::percentDone(double ofPass) const {
    if (m_search) {
        return 0.5 * ofPass;
    }
    return m_analysis->run()->mean ? 50.0 + 0.5 * ofPass : ofPass;
}
