#include "measurement/Saving.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

#include "calibration/EnergyMapTiff.h"
#include "files/FileNames.h"
#include "files/WholeFile.h"
#include "measurement/CalibrationJudgement.h"
#include "measurement/Origin.h"
#include "measurement/Room.h"
#include "measurement/SavedResult.h"
#include "measurement/Writing.h"
#include "output/FlatDark.h"
#include "output/ResultWriter.h"
#include "spectra/SpectrumFile.h"

namespace {

class Saving {
    Q_DECLARE_TR_FUNCTIONS(Saving)
};

QSize sizeInTiff(const TiffOptions& form, const AnalysisGrid& grid) {
    return form.asAnalyzed ? QSize(static_cast<int>(grid.columns()), static_cast<int>(grid.rows()))
                           : QSize(grid.width, grid.height);
}

constexpr int FewestSteps = 64;

/// What the form makes of the values.
Outcome judgeForm(const Settings& form, const Analyzed2DRes& image) {
    Outcome outcome;
    if (form.dataForm != DataForm::Tiff) {
        return outcome;
    }
    const QSize size = sizeInTiff(form.tiff, image.grid());
    if (size.height() > size.width()) {
        outcome.warnings << Saving::tr(
            "a 16-bit TIFF taller than wide has shifted rows; a "
            "table or a float TIFF has not");
    }
    const std::optional<int> steps = stepsInTiff(image, form.tiff);
    if (steps && *steps < FewestSteps) {
        outcome.warnings << Saving::tr(
            "the range leaves %n of 65535 steps for the middle 90 % of the "
            "values; a table or a float TIFF keeps them as they are",
            nullptr, *steps);
    }
    return outcome;
}

/// What the file of a result would be to those that read it.
Rehearsal::Written writtenAs(const Settings& form, const Result& result) {
    const QSize size = sizeInTiff(form.tiff, result.image.grid());
    if (form.dataForm == DataForm::Tiff) {
        return {Rehearsal::Kind::Frame, size, {}};
    }
    if (form.dataForm == DataForm::FloatTiff) {
        const bool isMap = result.id == ResultId::Shift;
        return {isMap ? Rehearsal::Kind::TiffMap : Rehearsal::Kind::FloatTiff, size, {}};
    }
    return {};
}

/// What the head of a result's table says of where it comes from.
QVector<HeaderLine> headOf(const Result& result) {
    QVector<HeaderLine> lines{
        {QStringLiteral("source"), QString::fromLatin1(result.kind().source)}};
    if (const ReferenceInput* reference = result.referenceInput()) {
        lines.append(
            {QStringLiteral("reference file"), nameInHead(reference->file, result.run->inputs)});
    }
    return lines;
}

bool writeData(const Measurement& measurement, const QString& fileName, Result& result) {
    const Settings& form = measurement.settings();
    const auto origin = [&](const OriginEntries& meaning) {
        return originOf(measurement, result, QStringLiteral("save_data_as_tiff"), meaning).toText();
    };
    switch (form.dataForm) {
        case DataForm::Tiff:
            return writeResultTiff(fileName, result.image, form.tiff,
                                   origin(meaningOfCounts(result, form.tiff)));
        case DataForm::FloatTiff:
            return writeResultFloat(fileName, result.image, form.tiff.asAnalyzed,
                                    origin(meaningOfFloats()));
        case DataForm::Text:
            break;
    }
    return writeResultTable(fileName, result.image, form.table, headOf(result), origin({}));
}

bool isOfFit(const Result& result) {
    const ResultFamily family = result.kind().family;
    return family == ResultFamily::Reference || family == ResultFamily::Fit;
}

/// Counts have no number for "no value".
Outcome judgeBlanks(const Settings& form, const Analyzed2DRes& masked) {
    if (form.dataForm != DataForm::Tiff) {
        return {};
    }
    const MapValues values = masked.values();
    const auto blank = std::count_if(values.begin(), values.end(),
                                     [](double value) { return !std::isfinite(value); });
    return blank == 0 ? Outcome()
                      : Outcome::warning(Saving::tr("%1 of %2 pixels are blank: a 16-bit TIFF has "
                                                    "0 there")
                                             .arg(blank)
                                             .arg(values.size()));
}

std::vector<double> energiesOf(const XafsSpectrum& spectrum) {
    std::vector<double> energies;
    for (int i = 0; i < spectrum.size(); ++i) {
        energies.push_back(spectrum.energy(i));
    }
    return energies;
}

/// All values, or those that the mask leaves.
Outcome saveValues(const Measurement& measurement, Result& result, const QString& fileName,
                   const QString& asked) {
    const Settings& form = measurement.settings();
    const bool isMasked = form.savesMasked && form.mask > 0.0 && isOfFit(result);
    if (isMasked && !result.image.isMasked()) {
        return Outcome::failure(
            Saving::tr("no mask without error maps: run again with error maps"));
    }
    Result masked(result.id, result.reference);
    if (isMasked) {
        const Outcome room = judgeRoomForPixels(measurement, sizeof(double));
        if (room.failed()) {
            return room;
        }
        masked.run = result.run;
        masked.deglitched = result.deglitched;
        masked.isOfBefore = result.isOfBefore;
        masked.image.takeVisible(result.image);
    }
    Result& saved = isMasked ? masked : result;
    Outcome outcome = writeFile(
        measurement, asGiven(fileName, asked),
        [&] { return writeData(measurement, fileName, saved); }, writtenAs(form, saved));
    if (!outcome.failed()) {
        outcome += judgeSaved(measurement, saved);
        outcome += judgeForm(form, saved.image);
        if (isMasked ? measurement.rehearsal() == nullptr : saved.image.grid().inside != nullptr) {
            outcome += judgeBlanks(form, saved.image);
        }
    }
    return outcome;
}

}  // namespace

Outcome saveData(const Measurement& measurement, const QString& fileName) {
    Result* result = measurement.selectedResult();
    if (result == nullptr && measurement.settings().shown == Shown::Map) {
        result = measurement.shownResult();
    }
    if (result == nullptr) {
        return Outcome::failure(Saving::tr("no result image is selected"));
    }
    if (!result->image.hasData()) {
        return Outcome::failure(Saving::tr("the selected result holds no values"));
    }
    return result->tookPart() ? saveValues(measurement, *result, fileName, fileName)
                              : mapWithoutValues();
}

namespace {

Outcome writeAllMaps(const Measurement& measurement, const QString& fileName) {
    Outcome outcome;
    QVector<QPair<QString, QStringList>> warnings;  // with the maps that they are of
    int maps = 0;
    for (Result* result : measurement.results()) {
        if (!result->tookPart()) {
            continue;
        }
        QString tag = QString::fromLatin1(result->kind().name);
        if (result->reference >= 0) {
            tag += QStringLiteral("-%1").arg(result->reference);
        }
        Outcome saved = saveValues(measurement, *result, taggedName(fileName, tag), fileName);
        ++maps;
        for (const QString& text : qAsConst(saved.warnings)) {
            const auto same = std::find_if(warnings.begin(), warnings.end(),
                                           [&](const auto& each) { return each.first == text; });
            if (same == warnings.end()) {
                warnings.append({text, {tag}});
            } else {
                same->second << tag;
            }
        }
        saved.warnings.clear();
        outcome += saved;
        if (outcome.failed()) {
            break;
        }
    }
    for (const auto& warning : qAsConst(warnings)) {
        const QString of = warning.second.join(QStringLiteral(", "));
        outcome.warnings << (warning.second.size() == maps
                                 ? warning.first
                                 : QStringLiteral("%1: %2").arg(of, warning.first));
    }
    return outcome;
}

}  // namespace

Outcome saveAllMaps(const Measurement& measurement, const QString& fileName) {
    const Outcome outcome = writeTogether([&] { return writeAllMaps(measurement, fileName); });
    return outcome.files.isEmpty() && !outcome.failed()
               ? Outcome::failure(Saving::tr("there are no maps"))
               : outcome;
}

namespace {

Outcome writeSpectra(const Measurement& measurement, const QString& fileName,
                     const QVector<XafsSpectrum>& spectra) {
    Outcome outcome;
    int number = 0;
    for (const XafsSpectrum& spectrum : spectra) {
        const QString name = number == 0 ? fileName : taggedName(fileName, QString::number(number));
        ++number;
        outcome += writeFile(
            measurement, asGiven(name, fileName),
            [&] {
                return writeSpectrumFile(name, spectrum, measurement.settings().correctedSpectra) &&
                       noteSaved(name);
            },
            {Rehearsal::Kind::Spectrum, {}, energiesOf(spectrum)});
        if (outcome.failed()) {
            break;
        }
    }
    return outcome;
}

}  // namespace

Outcome saveSpectra(Measurement& measurement, const QString& fileName,
                    const QVector<XafsSpectrum>& more) {
    if (measurement.sample().isEmpty()) {
        const QString& problem = measurement.sampleProblem();
        return Outcome::failure(
            problem.isEmpty() ? Saving::tr("there is no spectrum at the position") : problem);
    }
    QVector<XafsSpectrum> spectra{measurement.sample()};
    const XafsSpectrum* standard = measurement.standard();
    if (standard != nullptr && !standard->isEmpty()) {
        spectra << *standard;
    }
    spectra << more;
    Outcome outcome = writeTogether([&] { return writeSpectra(measurement, fileName, spectra); });
    if (!outcome.failed() && measurement.lacksMeanE0()) {
        outcome.warnings << Saving::tr(
            "the E0 of the mean spectrum is not known before an analysis of the area (LCF or "
            "residual absorption): the spectrum was saved with its own");
    }
    return outcome;
}

namespace {

Outcome saveMapAsTiff(const Measurement& measurement, const QString& fileName) {
    const Result& map = measurement.map();
    Outcome outcome = judgeTiffMapToSave(map.image);
    if (outcome.failed()) {
        return outcome;
    }
    outcome += writeFile(
        measurement, fileName,
        [&] {
            return writeTiffMap(
                fileName, map.image,
                originOf(measurement, map, QStringLiteral("calib_save_map"), meaningOfFloats())
                    .toText());
        },
        {Rehearsal::Kind::TiffMap, QSize(map.image.grid().width, map.image.grid().height), {}});
    if (!outcome.failed()) {
        outcome += judgeSaved(measurement, map);
    }
    return outcome;
}

}  // namespace

Outcome saveMap(const Measurement& measurement, const QString& fileName) {
    if (isTiffMapName(fileName)) {
        return saveMapAsTiff(measurement, fileName);
    }
    EMapInfo info;
    info.imageSize = measurement.imageSize();
    info.edgeEnergy = edgeEnergyForMap(measurement.standard(), measurement.edgeEnergy());
    info.spacing = measurement.spacing();
    info.standardFileName = measurement.standardFile();
    const Result& map = measurement.map();
    Outcome outcome = judgeMapToSave(map.image, info);
    if (outcome.failed()) {
        return outcome;
    }
    outcome +=
        writeFile(measurement, fileName, [&] { return writeEMap(fileName, map.image, info); },
                  {Rehearsal::Kind::Map, info.imageSize, {}});
    if (!outcome.failed()) {
        outcome += judgeSaved(measurement, map);
        if (!map.image.hasData()) {
            outcome.warnings << Saving::tr("there is no energy map: every shift in the file is 0");
        }
    }
    return outcome;
}

Outcome saveFlatDark(const Measurement& measurement) {
    const QSize size = measurement.imageSize();
    if (size.isEmpty()) {
        return Outcome::failure(Saving::tr("no images are loaded"));
    }
    return writeTogether([&] {
        Outcome outcome;
        for (const FlatDark& file : FlatDarkFiles) {
            outcome += writeFile(measurement, QLatin1String(file.name),
                                 [&] { return writeFlatDark(file, size.width(), size.height()); },
                                 {Rehearsal::Kind::Frame, size, {}});
        }
        return outcome;
    });
}
