#pragma once

#include <QtGlobal>

class AbsorptionSource;
struct BinRaster;

/// How a pass over a raster goes about counts that are not in memory: a thread reads those of some
/// rows of bins of all frames, a band, and works on them while its core has them near.
struct BandPlan {
    bool reads = false;  ///< else all counts are in memory, and a band is a row
    int rows = 1;        ///< of bins in a band
    int threads = 1;     ///< that work at once
    int ahead = 1;    ///< rows of bins of which the system is told at once that they are read soon
    int results = 1;  ///< rows of results that may be finished before they are taken

    /// Takes no more than memoryLeft(), but for one thread with one row, which has to be.
    static BandPlan of(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
                       int threads);
    /// Bytes without which a pass cannot be: one row of bins of all frames whose counts are read,
    /// twice, and what comes of it. 0 where all counts are in memory.
    static quint64 least(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin);
};
