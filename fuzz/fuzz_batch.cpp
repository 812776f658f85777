#include "Fuzz.h"
#include "batch/BatchExecution.h"
#include "batch/BatchTargets.h"

// Batches that are run on a tiny measurement: each line is answered once, the batch ends, nothing
// is written but what is said, and no setting holds what is no number.

void fuzz(const QByteArray& input) {
    TinyFolder& folder = tinyFolder();
    folder.enter();
    BatchExecution execution(folder);
    {
        Measurement measurement;
        measurement.readCountsWhenNeeded();
        execution.run(measurement, linesOf(input), MostRounds);
        checkSettings(measurement.settings());
    }
    folder.putBack(execution.written());
    folder.leave();
}
