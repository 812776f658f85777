#pragma once

#include <algorithm>

#include "maps/BinRaster.h"

/// The rows of bins of a raster in parts of nearly equal numbers of rows. It depends on the raster
/// alone, so that every run of the same work finds the same parts.
class PartCut {
  public:
    PartCut() = default;
    explicit PartCut(const BinRaster& raster) : m_rows(std::max(0, raster.rows)) {
        const long long bins = static_cast<long long>(m_rows) * std::max(0, raster.columns);
        const long long wanted = std::max(FewestParts, (bins + MostBins - 1) / MostBins);
        m_parts = static_cast<int>(std::min<long long>(m_rows, wanted));
    }

    int rows() const { return m_rows; }
    int parts() const { return m_parts; }
    /// First row of a part; of part parts(): behind the last row.
    int first(int part) const {
        return m_parts > 0 ? static_cast<int>(static_cast<long long>(m_rows) * part / m_parts) : 0;
    }
    int end(int part) const { return first(part + 1); }
    /// The part that a row belongs to.
    int partOf(int row) const {
        const long long guess = (static_cast<long long>(row) + 1) * m_parts - 1;
        return m_rows > 0 ? static_cast<int>(guess / m_rows) : 0;
    }

  private:
    static constexpr long long FewestParts = 64;
    static constexpr long long MostBins = 1 << 18;  // of a part

    int m_rows = 0;
    int m_parts = 0;
};
