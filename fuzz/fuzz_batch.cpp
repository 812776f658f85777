#include "Fuzz.h"
#include "batch/BatchTargets.h"

// Batches on a tiny measurement, but for lines that draw letters.

void fuzz(const QByteArray& input) {
    runBatch(input, false);
}
