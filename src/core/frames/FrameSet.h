#pragma once

#include <memory>
#include <vector>

#include "frames/TiffData.h"

/// An ordered list of frames in the order in which they arrived.
class FrameSet {
  public:
    int size() const { return static_cast<int>(m_frames.size()); }
    bool isEmpty() const { return m_frames.empty(); }
    /// Null out of range.
    TiffData* at(int i);
    const TiffData* at(int i) const;
    void append(std::shared_ptr<TiffData> frame) { m_frames.push_back(std::move(frame)); }
    void clear() { m_frames.clear(); }

  private:
    std::vector<std::shared_ptr<TiffData>> m_frames;
};

/// Indices of the frames in order of energy, those of equal energy in order of arrival; what has no
/// number for an energy comes last.
std::vector<int> inOrderOfEnergy(const FrameSet& set);

/// The frame whose energy (eV) is nearest, the first of equal ones; -1 of an empty set.
int nearestFrame(const FrameSet& set, double e);

/// Box sum of a set of ascending energies at an energy, interpolated linearly between frames and
/// extrapolated beyond them. 1.0 of an empty set; that of the only frame whatever the energy.
double setValueAt(const FrameSet& set, double e, int x, int y, int halfWidth, int halfHeight);
