// All results in one file.

#include <QCoreApplication>
#include <algorithm>

#include "files/Hdf5File.h"
#include "measurement/Origin.h"
#include "measurement/ResultParts.h"
#include "measurement/Room.h"
#include "measurement/SavedResult.h"
#include "measurement/Saving.h"
#include "measurement/Writing.h"

namespace {

class SavingResults {
    Q_DECLARE_TR_FUNCTIONS(SavingResults)
};

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

NexusContent contentOf(Measurement& measurement, const std::vector<ResultPart>& parts,
                       QStringList* warnings) {
    OriginText origin = originOf(measurement, parts, QStringLiteral("save_results"));
    NexusContent content;
    content.version = QStringLiteral(TARNWICK_VERSION);
    for (const ResultPart& part : parts) {
        content.parts.push_back(mapsOf(part));
    }
    content.spectra = spectraOf(measurement, parts, warnings);
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
    const QString whyNot = whyNoHdf5();
    if (!whyNot.isEmpty()) {
        return Outcome::failure(whyNot);
    }
    const Outcome room = judgeRoomFor(measurement, bytesOf(parts));
    if (room.failed()) {
        return room;
    }
    QStringList warnings;
    Outcome outcome = writeFile(measurement, fileName, [&] {
        return writeNexus(fileName, contentOf(measurement, parts, &warnings));
    });
    outcome.warnings += outcome.failed() ? QStringList() : warnings;
    for (const ResultPart& part : parts) {
        outcome += outcome.failed() ? Outcome() : judgeSaved(measurement, part.first(), part.name);
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
        outcome += judgeSaved(measurement, parts.front().first(), parts.front().name);
    }
    return outcome;
}
