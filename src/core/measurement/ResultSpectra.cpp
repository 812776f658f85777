// The spectra that belong to results in a file.

#include <QLocale>
#include <algorithm>

#include "absorption/AbsorptionSource.h"
#include "absorption/MeanSpectrum.h"
#include "base/LargeMemory.h"
#include "calibration/EnergyShift.h"
#include "measurement/Origin.h"
#include "measurement/ResultParts.h"

namespace {

std::vector<double> valuesOf(const Spectrum& spectrum) {
    std::vector<double> values;
    for (int i = 0; i < spectrum.size(); ++i) {
        values.push_back(spectrum.value(i));
    }
    return values;
}

/// Its points stand at the energies of a sample that they are compared with.
NexusSpectrum referenceSpectrum(int index, const ReferenceInput& input, const Inputs& inputs,
                                const XafsSpectrum& spectrum) {
    NexusSpectrum reference;
    const QString file = nameInHead(input.file, inputs);
    reference.name = QStringLiteral("reference_%1").arg(index);
    reference.title = QStringLiteral("Reference ") + file;
    reference.attributes = {{"file", file}, {"sha256", QString::fromLatin1(input.file.sha256)}};
    for (int i = 0; i < spectrum.size(); ++i) {
        reference.energies.push_back(spectrum.energy(i));
    }
    const FitRule rule = fitRule(inputs);
    const Spectrum& compared = rule.referenceScale == FitRule::ReferenceScale::None ? spectrum
                               : rule.method == FitRule::Mlcf ? spectrum.normalized()
                                                              : spectrum.doubleNormalizedPreBase();
    for (const auto& [name, title, series] :
         {std::tuple("compared", "What the fit compares", &compared),
          std::tuple("mu_t", "mu-t of the file", static_cast<const Spectrum*>(&spectrum))}) {
        if (series->size() == spectrum.size()) {
            reference.curves.push_back({name, title, valuesOf(*series)});
        }
    }
    return reference;
}

/// The energies of a run's frames in order, whatever is loaded now.
NexusSpectrum frameEnergies(const Inputs& inputs) {
    NexusSpectrum spectrum;
    spectrum.name = QStringLiteral("spectrum");
    spectrum.title = QStringLiteral("Energies of the frames");
    for (const Stack::File& file : inputs.i1.files) {
        spectrum.energies.push_back(file.energy);
    }
    std::stable_sort(spectrum.energies.begin(), spectrum.energies.end());
    return spectrum;
}

quint64 revisionOf(const std::shared_ptr<const MapInput>& map) {
    return map ? map->revision : 0;
}

/// Of the bins of a run whose frames and energy shifts are still those of now; null shifts: none.
/// Counts that cannot be read leave it out, with a warning.
MeanSpectrum meanOfArea(Measurement& measurement, const BinRaster& raster, const ShiftAt& shiftAt,
                        QStringList* warnings) {
    const AbsorptionSource& source = measurement.source();
    const auto sums = std::make_shared<RowSums>();
    RasterPass pass(
        source, raster, 1,
        meanEvaluators(measurement.threads(), raster, source.energyCount(), shiftAt, sums));
    while (pass.take().values != nullptr) {
    }
    if (pass.failed() && pass.problem().isEmpty()) {
        throw NotEnoughMemory();  // the file would lack it without a word
    }
    if (pass.failed()) {
        *warnings
            << Measurement::tr("the mean spectrum of the area is left out: %1").arg(pass.problem());
    }
    return pass.failed() ? MeanSpectrum() : meanOf(*sums, source.energies());
}

/// Adds the mean of the area that a run went over, where what it worked on is at hand.
void addMean(Measurement& measurement, const Result& result, NexusSpectrum* spectrum,
             QStringList* warnings) {
    const Inputs& then = result.run->inputs;
    const Inputs now = measurement.inputs();
    const bool isShifted = result.run->work != Work::Calibrate && then.map != nullptr;
    if (then.i1.revision != now.i1.revision || then.i0.revision != now.i0.revision ||
        then.darkRevision != now.darkRevision || then.size != now.size ||
        (isShifted && revisionOf(then.map) != revisionOf(now.map))) {
        return;
    }
    const MeanSpectrum mean = meanOfArea(
        measurement, result.image.grid().raster(),
        isShifted ? shiftsOf(measurement.map().image) : [](int, int) { return 0.0; }, warnings);
    if (mean.bins == 0) {
        return;
    }
    spectrum->title = QStringLiteral("Mean spectrum of the area");
    spectrum->attributes = {
        {"energy_shift", QString::number(mean.shift, 'g', QLocale::FloatingPointShortest)}};
    for (std::size_t i = 0; i < spectrum->energies.size(); ++i) {
        spectrum->energies[i] = mean.spectrum.energy(static_cast<int>(i));
    }
    spectrum->curves.push_back(
        {QStringLiteral("mu_t"), QStringLiteral("mu-t"), valuesOf(mean.spectrum)});
}

}  // namespace

std::vector<NexusSpectrum> spectraOf(Measurement& measurement, const std::vector<ResultPart>& parts,
                                     QStringList* warnings) {
    std::vector<NexusSpectrum> spectra;
    const auto withRun = std::find_if(parts.begin(), parts.end(), [](const ResultPart& part) {
        return part.first().run != nullptr;
    });
    if (withRun == parts.end()) {
        return spectra;
    }
    const Run& run = *withRun->first().run;
    spectra.push_back(frameEnergies(run.inputs));
    addMean(measurement, withRun->first(), &spectra.back(), warnings);
    const auto count = std::min(run.inputs.references.size(), measurement.references().size());
    for (std::size_t i = 0; run.work == Work::Fit && i < count; ++i) {
        const ReferenceInput& used = run.inputs.references[i];
        const Reference& now = *measurement.references()[i];
        if (used.takesPart && sameReference(used, now.input())) {
            spectra.push_back(
                referenceSpectrum(static_cast<int>(i), used, run.inputs, now.spectrum()));
        }
    }
    return spectra;
}
