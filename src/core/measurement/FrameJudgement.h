#pragma once

#include "measurement/Inputs.h"
#include "measurement/Outcome.h"

class Measurement;
class Stack;

/// What somebody should know of a stack's frames, those from `firstNew` on having just come: their
/// energies as they were read from the names, the order of all, saturated pixels.
QStringList warningsOf(const Stack& stack, int firstNew);

/// That a share of a stack's pixels is at 65535; empty for one that is not worth a word.
QString saturatedText(const Stack& stack, double share);

/// What of the frames keeps an analysis from beginning, and what should be known of it: sizes,
/// number of energies (of all but a difference of two energies, which needs no edge), the want of
/// I0. Rests on names and sizes alone.
Outcome judgeFrames(const Measurement& measurement, Work work);
