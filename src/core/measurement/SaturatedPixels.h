#pragma once

#include <QSize>
#include <QStringList>

#include "absorption/RasterPass.h"

class Stack;

/// Counts the pixels at 65535 of frames whose counts are read when they are needed. What the load
/// of others says at once is said of them at the end of the first pass that has read them.
class SaturatedPixels {
  public:
    /// A pass begins.
    void begin();
    /// It has worked out a row of bins, of images of this size.
    void take(const RasterPass::Row& row, const BinRaster& raster, const QSize& image,
              int i1Frames);
    /// After its end: what there is to say of the rows of pixels that it has read, once of the
    /// same frames.
    QStringList warnings(const Stack& i1, const Stack& i0);

  private:
    struct Share {
        quint64 saturated = 0;
        quint64 toldOf = 0;  // revision of the stack
    };

    QStringList warningsOf(const Stack& stack, Share* share) const;

    Share m_i1;
    Share m_i0;
    quint64 m_pixels = 0;  // of each frame
};
