#pragma once

#include <QtGlobal>

#include "measurement/Outcome.h"

class Measurement;

/// Failed, with the sizes: the limit of the system on the program's addresses leaves less than so
/// many bytes and what any action takes beside its arrays.
Outcome judgeAddresses(quint64 bytes);

/// The same, and failed: an action takes so many bytes more for a while than the limit leaves.
/// Judged where frames are read when they are needed; else they have the memory, whatever it is.
Outcome judgeRoomFor(const Measurement& measurement, quint64 bytes);

/// The same for some bytes for each pixel of the image.
Outcome judgeRoomForPixels(const Measurement& measurement, quint64 bytesEach);
