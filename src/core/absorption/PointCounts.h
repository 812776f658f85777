#pragma once

#include <vector>

#include "absorption/BinRowSpectra.h"

/// The counts behind the spectrum of one bin, which the errors of its fit go by. Valid without the
/// source that it was made from.
class PointCounts {
  public:
    /// Of the bin around (x, y), which lies inside the source's image.
    PointCounts(const AbsorptionSource& source, int x, int y, int halfWidth, int halfHeight);
    PointCounts(const PointCounts&) = delete;
    PointCounts& operator=(const PointCounts&) = delete;

    /// As spectrum 0 of a pack.
    const lanes::Counts& counts() const { return m_counts; }

  private:
    BinRowSpectra m_row;
    std::vector<lanes::I0Share> m_shares;
    std::vector<double> m_i0PerFrame;
    lanes::Counts m_counts;
};
