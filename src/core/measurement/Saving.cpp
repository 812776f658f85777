#include "measurement/Saving.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include "calibration/EnergyMapFile.h"
#include "drawing/BarPicture.h"
#include "drawing/PlotPicture.h"
#include "files/FileNames.h"
#include "files/PictureFile.h"
#include "files/WholeFile.h"
#include "measurement/CalibrationJudgement.h"
#include "measurement/Display.h"
#include "measurement/Origin.h"
#include "measurement/Writing.h"
#include "output/FlatDark.h"
#include "output/ResultWriter.h"
#include "spectra/SpectrumFile.h"

namespace {

class Saving {
    Q_DECLARE_TR_FUNCTIONS(Saving)
};

bool hasLetters() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

/// What somebody should know of a result that has been saved.
Outcome judgement(const Measurement& measurement, const Result& result) {
    Outcome outcome;
    if (result.run) {
        result.run->saved = true;
    }
    if (result.run && result.run->state == Run::State::Stopped) {
        outcome.warnings << stoppedText(*result.run);
    }
    const Difference difference = measurement.differenceOf(result);
    // An energy map is made of a standard's frames and kept for those of samples.
    const bool counts = result.id != ResultId::Shift || difference == Difference::Before;
    if (difference != Difference::None && counts) {
        outcome.warnings << Saving::tr("the result is %1")
                                .arg(QCoreApplication::translate("Difference",
                                                                 differenceText(difference)));
    }
    return outcome;
}

/// What the form makes of the values.
Outcome judgeForm(const Settings& form, const AnalysisGrid& grid) {
    const TiffOptions& tiff = form.tiff;
    const qint64 width = tiff.asAnalyzed ? grid.columns() : grid.width;
    const qint64 height = tiff.asAnalyzed ? grid.rows() : grid.height;
    return form.savesTiff && height > width
               ? Outcome::warning(Saving::tr("a 16-bit TIFF taller than wide has shifted rows; a "
                                             "table or a float TIFF has not"))
               : Outcome();
}

Outcome noPart() {
    return Outcome::failure(
        Saving::tr("the reference took no part in the fit: its map holds no values"));
}

QString originText(const Measurement& measurement, const Result& result, const char* savedBy) {
    return originOf(measurement, result, QString::fromLatin1(savedBy)).toText();
}

Outcome savePicture(Measurement& measurement, const QString& fileName, const QImage& picture,
                    const char* savedBy) {
    if (picture.isNull()) {
        return Outcome::failure(Saving::tr("no image is shown"));
    }
    const Result* result = measurement.shownResult();
    if (result != nullptr && !result->tookPart()) {
        return noPart();
    }
    const QString origin =
        result != nullptr ? originText(measurement, *result, savedBy) : QString();
    Outcome outcome =
        writeFile(measurement, fileName, [&] { return writePicture(fileName, picture, origin); });
    if (result != nullptr && !outcome.failed()) {
        outcome += judgement(measurement, *result);
    }
    return outcome;
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

}  // namespace

Outcome saveImage(Measurement& measurement, const QString& fileName) {
    return savePicture(measurement, fileName, shownPicture(measurement), "save_image");
}

Outcome saveImageWithBar(Measurement& measurement, const QString& fileName) {
    if (!hasLetters()) {
        return Outcome::failure(Saving::tr("there are no letters to draw with"));
    }
    return savePicture(measurement, fileName, withColorBar(shownWithBar(measurement)),
                       "save_image_with_bar");
}

Outcome saveAllImages(const Measurement& measurement, const QString& fileName) {
    Outcome outcome;
    for (int kind = 0; kind < Reference::KindCount; ++kind) {
        for (int i = 0; i < measurement.referenceCount(); ++i) {
            const Reference& reference = *measurement.references()[static_cast<std::size_t>(i)];
            const Result& result = reference.result(kind);
            if (!reference.takesPart() || !result.tookPart() || result.image.img() == nullptr) {
                continue;
            }
            const QString name = taggedName(fileName, QStringLiteral("%1-%2").arg(i).arg(kind));
            const QString origin = originText(measurement, result, "save_image");
            outcome += writeFile(measurement, name,
                                 [&] { return writePicture(name, *result.image.img(), origin); });
            const Outcome judged = judgement(measurement, result);
            if (outcome.texts().isEmpty()) {
                outcome += judged;  // once for all of them
            }
        }
    }
    return outcome.files.isEmpty() && !outcome.failed()
               ? Outcome::failure(Saving::tr("there are no result images"))
               : outcome;
}

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
    if (!result->tookPart()) {
        return noPart();
    }
    const Settings& form = measurement.settings();
    const QString origin = originText(measurement, *result, "save_data_as_tiff");
    Outcome outcome = writeFile(measurement, fileName, [&] {
        return form.savesTiff
                   ? writeResultTiff(fileName, result->image, form.tiff, origin)
                   : writeResultTable(fileName, result->image, form.table, headOf(*result), origin);
    });
    if (!outcome.failed()) {
        outcome += judgement(measurement, *result);
        outcome += judgeForm(form, result->image.grid());
    }
    return outcome;
}

Outcome saveSpectra(Measurement& measurement, const QString& fileName,
                    const QVector<XafsSpectrum>& more) {
    if (measurement.sample().isEmpty()) {
        return Outcome::failure(Saving::tr("there is no spectrum at the position"));
    }
    QVector<XafsSpectrum> spectra{measurement.sample()};
    const XafsSpectrum* standard = measurement.standard();
    if (standard != nullptr && !standard->isEmpty()) {
        spectra << *standard;
    }
    spectra << more;
    Outcome outcome;
    int number = 0;
    for (const XafsSpectrum& spectrum : qAsConst(spectra)) {
        const QString name = number == 0 ? fileName : taggedName(fileName, QString::number(number));
        ++number;
        outcome += writeFile(measurement, name, [&] {
            return writeSpectrumFile(name, spectrum, measurement.settings().correctedSpectra) &&
                   noteSaved(name);
        });
    }
    return outcome;
}

Outcome savePlot(Measurement& measurement, const QString& fileName) {
    const SpectrumPlot plot = shownPlot(measurement);
    if (plot.shown().isEmpty()) {
        return Outcome::failure(Saving::tr("the spectrum window shows no spectrum"));
    }
    if (!hasLetters()) {
        return Outcome::failure(Saving::tr("there are no letters to draw with"));
    }
    return writeFile(measurement, fileName, [&] { return writePlot(fileName, plot); });
}

Outcome saveMap(const Measurement& measurement, const QString& fileName) {
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
        writeFile(measurement, fileName, [&] { return writeEMap(fileName, map.image, info); });
    if (!outcome.failed()) {
        outcome += judgement(measurement, map);
    }
    return outcome;
}

Outcome saveFlatDark(const Measurement& measurement) {
    const QSize size = measurement.imageSize();
    if (size.isEmpty()) {
        return Outcome::failure(Saving::tr("no images are loaded"));
    }
    Outcome outcome;
    for (const FlatDark& file : FlatDarkFiles) {
        outcome += writeFile(measurement, QLatin1String(file.name),
                             [&] { return writeFlatDark(file, size.width(), size.height()); });
    }
    return outcome;
}
