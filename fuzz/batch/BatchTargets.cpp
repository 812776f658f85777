#include "batch/BatchTargets.h"

#include <QBuffer>
#include <cmath>
#include <cstdlib>

#include "Fuzz.h"
#include "base/OneThread.h"
#include "batch/BatchExecution.h"
#include "batch/BatchText.h"

// A batch takes thousands of small pieces of memory: where each came from is not kept, and those
// that are free again are watched for one or two batches, as in ../run. A finding is run again with
// the usual options.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "malloc_context_size=0:quarantine_size_mb=1";
}

namespace {

/// Maps, too, are among what a batch finds.
void putMaps(const TinyFolder& folder) {
    Measurement measurement;
    BatchExecution made(folder);
    made.run(measurement,
             QStringList(loadingLines())
                 << QStringLiteral("calib_load_std foil.dat") << QStringLiteral("calib_exec")
                 << QStringLiteral("calib_save_map shift.emp")
                 << QStringLiteral("calib_save_map shift.tif"),
             MostRounds);
    for (const AnsweredLine& answer : made.answers()) {
        require(!answer.outcome.failed(), "the first batch does its work:",
                answer.text + answer.outcome.failures.join(QLatin1Char(' ')));
    }
}

TinyFolder* makeFolder() {
    useOneThread();
    auto* folder = new TinyFolder;
    std::atexit([] { tinyFolder().remove(); });
    putMaps(*folder);
    folder->keep();
    folder->leave();
    return folder;
}

}  // namespace

const QStringList& loadingLines() {
    static const QStringList lines{QStringLiteral("load_I1_files_of_pattern NEW i1"),
                                   QStringLiteral("load_I0_files NEW i0/b-7020eV.tif"),
                                   QStringLiteral("set_band_w 0"),
                                   QStringLiteral("set_band_h 0"),
                                   QStringLiteral("analyzer_set_LCF_std 0 1 0 a.dat 0"),
                                   QStringLiteral("analyzer_set_LCF_std 1 1 0 b.dat 0")};
    return lines;
}

QStringList linesOf(const QByteArray& input) {
    QBuffer buffer;
    buffer.setData(input);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    QStringList lines;
    for (const QString& line : BatchText::fromLines(readBatchLines(&buffer)).lines) {
        if (line == QLatin1String(Loading)) {
            lines << loadingLines();
        } else {
            lines << line;
        }
    }
    return lines;
}

TinyFolder& tinyFolder() {
    static TinyFolder* const folder = makeFolder();
    return *folder;
}

void runBatch(const QByteArray& input, bool draws) {
    TinyFolder& folder = tinyFolder();
    folder.enter();
    BatchExecution execution(folder);
    if (!draws) {
        execution.leaveOutLetters();
    }
    {
        Measurement measurement;
        measurement.readCountsWhenNeeded();
        execution.run(measurement, linesOf(input), MostRounds);
        checkSettings(measurement.settings());
    }
    folder.putBack(execution.written());
    folder.leave();
}

void checkSettings(const Settings& s) {
    for (const double number : {s.e0.energy,
                                s.ranges.preStart,
                                s.ranges.preEnd,
                                s.ranges.postStart,
                                s.ranges.postEnd,
                                s.mask,
                                s.differenceFrom,
                                s.differenceTo,
                                s.raEnergy,
                                s.raFactor,
                                s.dMutMin,
                                s.dMutMax,
                                s.ratioMin,
                                s.ratioMax,
                                s.tiff.scaleMin,
                                s.tiff.scaleMax,
                                s.viewRange.low,
                                s.viewRange.high,
                                s.absorptionRange.low,
                                s.absorptionRange.high,
                                s.differenceRange.low,
                                s.differenceRange.high,
                                s.frameView.from,
                                s.frameView.to.value_or(0.0)}) {
        require(std::isfinite(number), "settings are numbers");
    }
    for (const MapView& view : s.views.of) {
        require(std::isfinite(view.range.low) && std::isfinite(view.range.high),
                "ranges are numbers");
    }
}
