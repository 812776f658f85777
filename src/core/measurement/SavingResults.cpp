// All results in one file.

#include <QCoreApplication>
#include <algorithm>

#include "files/Hdf5File.h"
#include "measurement/Display.h"
#include "measurement/Origin.h"
#include "measurement/ResultParts.h"
#include "measurement/Room.h"
#include "measurement/Saving.h"
#include "measurement/Writing.h"

namespace {

class SavingResults {
    Q_DECLARE_TR_FUNCTIONS(SavingResults)
};

/// What somebody should know of the results of an analysis that have been saved.
Outcome judgement(const Measurement& measurement, const ResultPart& part) {
    Outcome outcome;
    const Result& result = part.first();
    if (result.run) {
        result.run->saved = true;
    }
    if (result.run && result.run->state == Run::State::Stopped) {
        outcome.warnings
            << SavingResults::tr("%1: the result was %2").arg(part.name, stoppedText(*result.run));
    }
    const Difference difference = differenceWhenSaved(measurement, result);
    if (difference != Difference::None) {
        outcome.warnings << SavingResults::tr("%1: the result is %2")
                                .arg(part.name, QCoreApplication::translate(
                                                    "Difference", differenceText(difference)));
    }
    return outcome;
}

/// While the file is made, in memory: all of its maps, and one more.
quint64 bytesOf(const std::vector<ResultPart>& parts) {
    quint64 values = 0;
    quint64 most = 0;
    for (const ResultPart& part : parts) {
        const BinRaster raster = rasterOf(part.first());
        const quint64 bins = quint64(raster.rows) * quint64(raster.columns);
        values += bins * part.results.size();
        most = std::max(most, bins);
    }
    return (values + most) * sizeof(double) + 2 * most;  // and the mask
}

NexusContent contentOf(Measurement& measurement, const std::vector<ResultPart>& parts) {
    OriginText origin = originOf(measurement, parts, QStringLiteral("save_results"));
    NexusContent content;
    content.version = QStringLiteral(TARNWICK_VERSION);
    for (const ResultPart& part : parts) {
        content.parts.push_back(mapsOf(part));
    }
    content.spectra = spectraOf(measurement, parts);
    for (const QString& line : qAsConst(origin.record)) {
        content.record += line + QLatin1Char('\n');
    }
    origin.record.clear();
    content.origin = origin.toText();
    return content;
}

}  // namespace

Outcome saveResults(Measurement& measurement, const QString& fileName) {
    const std::vector<ResultPart> parts = resultParts(measurement);
    if (parts.empty()) {
        return Outcome::failure(SavingResults::tr("there are no results to save"));
    }
    if (!canUseHdf5()) {
        return Outcome::failure(
            SavingResults::tr("this program was installed without its module for HDF5 files"));
    }
    const Outcome room = judgeRoomFor(measurement, bytesOf(parts));
    if (room.failed()) {
        return room;
    }
    Outcome outcome = writeFile(
        measurement, fileName, [&] { return writeNexus(fileName, contentOf(measurement, parts)); });
    for (const ResultPart& part : parts) {
        outcome += outcome.failed() ? Outcome() : judgement(measurement, part);
    }
    return outcome;
}

Outcome saveTable(const Measurement& measurement, const QString& fileName) {
    const std::vector<ResultPart> parts = resultParts(measurement);
    const BinTable table = fitTable(parts);
    if (table.columns.empty()) {
        return Outcome::failure(SavingResults::tr("there are no results of a fit to save"));
    }
    Outcome outcome =
        writeFile(measurement, fileName, [&] { return writeBinTable(fileName, table); });
    if (!outcome.failed()) {
        outcome += judgement(measurement, parts.front());
    }
    return outcome;
}
