#include "Fuzz.h"
#include "batch/BatchTargets.h"

// Batches with plots, bars of colours and composites.

void fuzz(const QByteArray& input) {
    runBatch(input, true);
}
