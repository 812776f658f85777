#pragma once

#include "measurement/Outcome.h"

class Measurement;
class Stack;

/// What somebody should know of a stack's frames, those from `firstNew` on having just come: their
/// energies as they were read from the names, the order of all, saturated pixels.
QStringList warningsOf(const Stack& stack, int firstNew);

/// What of the frames keeps an analysis that needs an edge from beginning, and what should be known
/// of it: sizes, number of energies, the want of I0. Rests on names and sizes alone.
Outcome judgeFrames(const Measurement& measurement);
