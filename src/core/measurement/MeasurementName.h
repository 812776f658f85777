#pragma once

#include <QString>

class Measurement;

/// What a measurement is called: the deepest folder of its frames, but for one that only says what
/// it holds, such as i1 or images; where no folder says more, what the names of the I1 files (else
/// I0) begin with. Empty without frames.
QString measurementName(const Measurement& measurement);
