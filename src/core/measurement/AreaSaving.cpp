#include "measurement/AreaSaving.h"

#include <QCoreApplication>
#include <QLocale>
#include <cmath>

#include "files/WholeDevice.h"
#include "files/WholeFile.h"
#include "maps/Statistics.h"
#include "measurement/AreaSpectrum.h"
#include "measurement/AreaValues.h"
#include "measurement/Display.h"
#include "measurement/Room.h"
#include "measurement/Share.h"
#include "measurement/Writing.h"
#include "spectra/SpectrumFile.h"

namespace {

class AreaSaving {
    Q_DECLARE_TR_FUNCTIONS(AreaSaving)
};

QByteArray numberText(double value) {
    return std::isnan(value) ? QByteArray("nan")
                             : QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

QByteArray lineOf(const Result& result, const Area& area) {
    const Statistics s = statisticsOf(valuesInArea(result, area));
    QByteArray line(result.kind().name);
    line += ',' + (result.reference < 0 ? QByteArray() : QByteArray::number(result.reference)) +
            ',' + QByteArray::number(s.n);
    for (const double value : {s.mean, s.sd, s.median, s.min, s.max}) {
        line += ',' + numberText(value);
    }
    return line + '\n';
}

bool writeStatistics(const QString& fileName, const QByteArray& text) {
    WholeDevice file(fileName);
    return file.open() && file.write(text) == text.size() && file.putInPlace() &&
           noteSaved(fileName);
}

/// Another area is what they are made for.
void warnOf(const Measurement& measurement, const Result& result, QStringList* warnings) {
    const Difference difference = differenceWhenSaved(measurement, result);
    if (difference == Difference::None || difference == Difference::Area) {
        return;
    }
    const QString text =
        AreaSaving::tr("%1: the result is %2")
            .arg(QString::fromLatin1(result.kind().name),
                 QCoreApplication::translate("Difference", differenceText(difference)));
    if (!warnings->contains(text)) {
        *warnings << text;
    }
}

}  // namespace

Outcome saveAreaSpectrum(Measurement& measurement, const QString& fileName) {
    const Outcome judged = judgeAreaSpectrum(measurement);
    if (judged.failed()) {
        return judged;
    }
    AreaSpectrum area;
    const bool isKept =
        measurement.parts().share() == nullptr || measurement.parts().share()->keeps(fileName);
    if (measurement.rehearsal() != nullptr || !isKept) {
        area.spectrum = XafsSpectrum(Rehearsal::spectrumOf(measurement.source().energies()),
                                     measurement.sampleRule(), 0.0);
    } else {
        area = areaSpectrumOf(measurement);
    }
    if (area.spectrum.isEmpty()) {
        return Outcome::failure(
            area.problem.isEmpty()
                ? Measurement::tr(
                      "no bin of the area has counts at all energies: there is no mean spectrum")
                : area.problem);
    }
    std::vector<double> energies;
    for (int i = 0; i < area.spectrum.size(); ++i) {
        energies.push_back(area.spectrum.energy(i));
    }
    Outcome outcome =
        writeFile(measurement, fileName,
                  [&] {
                      return writeSpectrumFile(fileName, area.spectrum,
                                               measurement.settings().correctedSpectra) &&
                             noteSaved(fileName);
                  },
                  {Rehearsal::Kind::Spectrum, {}, energies});
    outcome.warnings += area.aboutCounts;
    return outcome;
}

Outcome saveStatistics(const Measurement& measurement, const QString& fileName) {
    QByteArray text("map,reference,n,mean,sd,median,min,max\n");
    Outcome outcome = judgeRoomForPixels(measurement, sizeof(double));  // the values of a map
    if (outcome.failed()) {
        return outcome;
    }
    int maps = 0;
    for (const Result* result : measurement.results()) {
        if (result->tookPart()) {
            text += lineOf(*result, measurement.settings().area);
            warnOf(measurement, *result, &outcome.warnings);
            ++maps;
        }
    }
    if (maps == 0) {
        return Outcome::failure(AreaSaving::tr("there are no maps"));
    }
    const Outcome written =
        writeFile(measurement, fileName, [&] { return writeStatistics(fileName, text); });
    return written.failed() ? written : outcome += written;
}
