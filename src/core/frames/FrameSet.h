#pragma once

#include <memory>
#include <vector>

#include "frames/TiffData.h"

/// An ordered list of frames that it owns, in the order in which they arrived; ascending energy is
/// expected of them.
class FrameSet {
  public:
    int size() const { return static_cast<int>(m_frames.size()); }
    bool isEmpty() const { return m_frames.empty(); }
    /// Null out of range.
    TiffData* at(int i);
    const TiffData* at(int i) const;
    void append(std::unique_ptr<TiffData> frame) { m_frames.push_back(std::move(frame)); }
    void clear() { m_frames.clear(); }

  private:
    std::vector<std::unique_ptr<TiffData>> m_frames;
};

/// (e - e0) ((y1 - y0) / (e1 - e0)) + y0; the mean of y0 and y1 when e1 equals e0.
inline double lerp(double e, double e0, double y0, double e1, double y1) {
    return e1 == e0 ? 0.5 * (y0 + y1) : (e - e0) * ((y1 - y0) / (e1 - e0)) + y0;
}

/// Index i of the frame of the pair i, i + 1 between whose energies e lies: the first pair below
/// the first energy, the last at or above the last. At least two frames.
int bracketOf(const FrameSet& set, double e);

/// Box sum of the set at an energy, interpolated linearly between frames and extrapolated beyond
/// them. 1.0 of an empty set; that of the only frame whatever the energy.
double setValueAt(const FrameSet& set, double e, int x, int y, int halfWidth, int halfHeight);
