#pragma once

#include <QImage>

struct TiffData;

/// Grey picture of a frame's counts with the given range from black to white, of its own memory.
/// A range that is empty or not finite gives a black picture.
QImage framePicture(const TiffData& frame, double low, double high);
