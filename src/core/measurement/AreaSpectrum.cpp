#include "measurement/AreaSpectrum.h"

#include <algorithm>

#include "absorption/BandPlan.h"
#include "base/LargeMemory.h"
#include "calibration/EnergyShift.h"
#include "measurement/Room.h"

namespace {

XafsSpectrum spectrumOf(const RowSums& sums, const std::vector<double>& energies,
                        const Normalisation& rule, int* bins) {
    const MeanSpectrum mean = meanOf(sums, energies);
    *bins = mean.bins;
    if (mean.bins == 0) {
        return XafsSpectrum();
    }
    Spectrum measured;
    for (std::size_t i = 0; i < energies.size(); ++i) {
        measured.append(energies[i], mean.spectrum.value(static_cast<int>(i)));
    }
    return XafsSpectrum(measured, rule, mean.shift, XafsSpectrum::Quiet);
}

/// Its own E0 is that of the mean spectrum.
Normalisation ruleOf(const Measurement& measurement) {
    return sampleRule(measurement.inputs());
}

}  // namespace

Outcome judgeAreaSpectrum(const Measurement& measurement) {
    if (measurement.stack(StackId::I1).frames().isEmpty()) {
        return Outcome::failure(Measurement::tr("no images are loaded"));
    }
    if (measurement.grid().raster().count() == 0) {
        return Outcome::failure(Measurement::tr("no bin of the area lies inside the image"));
    }
    return {};
}

AreaSpectrum areaSpectrumOf(Measurement& measurement) {
    const AbsorptionSource& source = measurement.source();
    AreaSpectrum area;
    area.problem = measurement.darkProblem();
    if (!area.problem.isEmpty()) {
        return area;
    }
    const BinRaster raster = measurement.grid().raster();
    const Outcome room = judgeRoomFor(measurement, BandPlan::least(source, raster, 1));
    if (room.failed()) {
        area.problem = room.failures.first();
        return area;
    }
    const int threads = std::max(1, measurement.threads());
    const auto sums = std::make_shared<RowSums>();
    RasterPass pass(source, raster, 1,
                    meanEvaluators(threads, raster, source.energyCount(),
                                   shiftsOf(measurement.map().image), sums));
    SaturatedPixels& saturated = measurement.saturated();
    saturated.begin();
    for (RasterPass::Row row = pass.take(); row.values != nullptr; row = pass.take()) {
        saturated.take(row, raster, measurement.imageSize(), measurement.stack(StackId::I1).size());
    }
    area.problem = measurement.ofLoad(pass.problem());
    if (pass.failed() && area.problem.isEmpty()) {
        area.problem = lackOfMemory();
    }
    if (!pass.failed()) {
        area.aboutCounts =
            saturated.warnings(measurement.stack(StackId::I1), measurement.stack(StackId::I0));
        area.spectrum = spectrumOf(*sums, source.energies(), ruleOf(measurement), &area.bins);
    }
    return area;
}

AreaSpectrumJob::AreaSpectrumJob(Measurement& measurement, QObject* parent)
    : QObject(parent), m_measurement(measurement), m_job([](const auto&, const auto&) {}) {
    for (const StackId id : {StackId::I1, StackId::I0}) {
        connect(&measurement.stack(id), &Stack::changing, this, &AreaSpectrumJob::stop);
    }
    connect(&m_job, &RowJob::finished, this, [this](RasterPass::Failure failure) {
        if (failure != RasterPass::Failure::None) {
            m_sums->rows.clear();
        }
        finished();
    });
}

AreaSpectrumJob::~AreaSpectrumJob() {
    m_job.stop();
}

Outcome AreaSpectrumJob::start() {
    const Outcome judged = judgeAreaSpectrum(m_measurement);
    if (judged.failed()) {
        return judged;
    }
    m_job.stop();
    const Measurement& m = m_measurement;
    const DarkFrame* dark = m_measurement.dark().mean();
    m_dark = dark != nullptr ? std::optional<DarkFrame>(*dark) : std::nullopt;
    m_source = std::make_unique<AbsorptionSource>(
        m.stack(StackId::I1).frames(), m.stack(StackId::I0).frames(), m.imageSize().width(),
        m.imageSize().height(), m_dark ? &*m_dark : nullptr);
    m_rule = ruleOf(m);
    m_sums = std::make_shared<RowSums>();
    const BinRaster raster = m.grid().raster();
    m_job.start(*m_source, raster, 1,
                meanEvaluators(std::max(1, m.threads()), raster, m_source->energyCount(),
                               shiftsOf(m.map().image), m_sums));
    return judged;
}

void AreaSpectrumJob::stop() {
    if (isRunning()) {
        m_job.stop();
        m_source.reset();
        emit stopped();
    }
}

void AreaSpectrumJob::finished() {
    AreaSpectrum area;
    area.spectrum = spectrumOf(*m_sums, m_source->energies(), m_rule, &area.bins);
    m_source.reset();
    emit formed(area);
}
