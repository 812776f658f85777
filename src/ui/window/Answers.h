#pragma once

#include "measurement/Inputs.h"
#include "measurement/Outcome.h"

class Measurement;

// What the window says of how an action ended; a batch says less, for its lines say what was asked.

/// Of many files that a load did not take, their number: a line for each would bury the rest.
Outcome inShort(const Measurement& measurement, Work work, const Outcome& outcome);

/// With what a load has brought, or how many bins a deglitching has replaced.
Outcome withWhatWasMade(const Measurement& measurement, Work work, Outcome outcome);

/// With the number of bins that a deglitching or smoothing has replaced; nothing while it runs.
Outcome withReplaced(const Measurement& measurement, Outcome outcome);
