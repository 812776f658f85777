#pragma once

#include <vector>

#include "spectra/LaneErrors.h"
#include "spectra/Spectrum.h"

class DarkFrame;
class FrameSet;
struct TiffData;

/// Turns the I1 and I0 stacks into absorption spectra: at every I1 energy the value
/// mu-t = ln(s0 / s1) of the box sums at a position, I0 interpolated to the energy; 1.0 where a
/// sum is not above 0 (no counts). With a dark frame both sums first lose its sum over the same
/// box, s0 after the interpolation; without I0 frames s0 is 1.0 and loses nothing.
///
/// The frames count in order of energy, whatever the order of their arrival. Several I1 frames of
/// one energy are points of their own, in order of arrival. Several I0 frames of one energy count
/// as one, the mean of their sums: at that energy it is the value, elsewhere the interpolation runs
/// through it. One energy in the whole I0 stack gives one value for all.
///
/// Holds the frames in that order: valid until either stack or the dark frame changes.
class AbsorptionSource {
  public:
    /// Frames count as images of width x height pixels (those of the first I1 frame).
    AbsorptionSource(const FrameSet& i1, const FrameSet& i0, int width, int height,
                     const DarkFrame* dark = nullptr);

    int energyCount() const { return static_cast<int>(m_energies.size()); }
    /// Of the I1 frames in eV, ascending.
    const std::vector<double>& energies() const { return m_energies; }

    int width() const { return m_width; }
    int height() const { return m_height; }

    /// The place of an I1 frame in order of energy; -1 for another.
    int indexOf(const TiffData* frame) const;
    /// The I1 frames in order of energy, then those of I0.
    const std::vector<const TiffData*>& frames() const { return m_frames; }
    /// Counts of some frame are read when they are needed (TiffData::countFile).
    bool isStreamed() const { return m_isStreamed; }
    /// The same with some of the I1 frames alone, given by their places in ascending order: mu-t at
    /// their energies has the same bits.
    AbsorptionSource ofFrames(const std::vector<int>& places) const;

    /// One point an I1 frame, in order of energy; empty outside the image or without frames. Throws
    /// UnreadCounts.
    Spectrum spectrumAt(int x, int y, int halfWidth, int halfHeight) const;

  private:
    friend class BinRowSpectra;

    /// The I0 frames of one energy.
    struct I0Energy {
        double energy = 0.0;
        std::vector<const TiffData*> frames;
        std::size_t place = 0;  // of the first among all frames
    };

    /// Where an I1 energy lies among the I0 energies.
    struct Bracket {
        std::size_t first = 0;
        bool isInterpolated = false;  // else the value of `first` alone
        double fromFirst = 0.0;       // energy less the first
        double span = 0.0;            // from the first to the next
    };

    AbsorptionSource(int width, int height, const DarkFrame* dark)
        : m_width(width), m_height(height), m_dark(dark) {}

    void gatherI0(const FrameSet& i0);
    Bracket bracketOf(double e) const;
    void placeFrames();
    void shareI0();
    bool isInside(int x, int y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    double darkSum(int x, int y, int halfWidth, int halfHeight) const;

    int m_width;
    int m_height;
    const DarkFrame* m_dark;
    std::vector<const TiffData*> m_i1;
    std::vector<const TiffData*> m_frames;
    bool m_isStreamed = false;
    std::vector<double> m_energies;
    std::vector<I0Energy> m_i0;
    std::vector<Bracket> m_brackets;       // one an I1 frame; none without I0 frames
    std::vector<lanes::I0Share> m_shares;  // one an I1 frame
    std::vector<double> m_i0PerFrame;      // one an I0 energy: 1 / number of its frames
    bool m_haveSharedI0 = false;
};
