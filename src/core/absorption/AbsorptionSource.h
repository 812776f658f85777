#pragma once

#include <vector>

#include "spectra/Lanes.h"
#include "spectra/Spectrum.h"

class DarkFrame;
class FrameSet;
struct TiffData;

/// Turns the I1 and I0 stacks into absorption spectra: at every I1 energy the value
/// mu-t = ln(s0 / s1) of the box sums at a position, I0 interpolated to the energy; 1.0 where the
/// product of the sums is not above 0. With a dark frame both sums first lose its sum over the same
/// box, s0 after the interpolation; without I0 frames s0 is 1.0 and loses nothing.
///
/// Holds which I0 frames lie around each I1 energy: valid until either stack or the dark frame
/// changes.
class AbsorptionSource {
  public:
    /// Frames count as images of width x height pixels (those of the first I1 frame).
    AbsorptionSource(const FrameSet& i1, const FrameSet& i0, int width, int height,
                     const DarkFrame* dark = nullptr);

    int energyCount() const { return static_cast<int>(m_energies.size()); }
    const std::vector<double>& energies() const { return m_energies; }

    /// One point an I1 frame, in their order; empty outside the image or without frames.
    Spectrum spectrumAt(int x, int y, int halfWidth, int halfHeight) const;

  private:
    friend class BlockRowSpectra;

    /// Where an I1 energy lies among the I0 frames.
    struct Bracket {
        int first = 0;
        double fromFirst = 0.0;  // energy less that of the first frame
        double span = 0.0;       // energy between both frames
    };

    bool isInside(int x, int y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    double interpolated(const Bracket& bracket, double y0, double y1) const;
    double darkSum(int x, int y, int halfWidth, int halfHeight) const;

    const FrameSet& m_i1;
    const FrameSet& m_i0;
    int m_width;
    int m_height;
    const DarkFrame* m_dark;
    std::vector<double> m_energies;
    std::vector<Bracket> m_brackets;  // one an I1 frame, when there are two or more I0 frames
};

/// The spectra of a raster of positions, formed a whole row of blocks at a time: every frame's rows
/// are read once, in order, instead of once a position. The same numbers as spectrumAt().
class BlockRowSpectra {
  public:
    /// Positions firstX, firstX + stepX, ... below endX and inside the image.
    BlockRowSpectra(const AbsorptionSource& source, int firstX, int stepX, int endX, int halfWidth,
                    int halfHeight);

    /// Positions of a row.
    int count() const { return m_count; }

    /// Spectrum at a position. Forms its row when that is not the one held; a position off the
    /// raster is formed on its own.
    Spectrum at(int x, int y);

    /// Sums up the bins of `blocks` positions of row y from the given one on; what at() holds is
    /// kept.
    void sum(int y, int firstBlock, int blocks);
    /// mu-t of a pack of the bins summed last, mu[energy * lanes::Count + block]: those from
    /// `block` on, a multiple of lanes::Count counted from their first. What lies beyond the last
    /// bin is some number.
    void formPack(int block, double* mu) const;

  private:
    void formRow(int y);
    void sumBlocks(const TiffData& frame, int y, double* sums);

    const AbsorptionSource& m_source;
    int m_firstX;
    int m_stepX;
    int m_count;
    int m_halfWidth;
    int m_halfHeight;
    const lanes::Kernels& m_kernels;

    int m_row = -1;
    std::vector<double> m_values;  // of the row held: energies of block 0, of block 1, ...
    std::vector<double> m_pack;

    // Of the bins summed last, whole packs of them for every frame.
    int m_sumFirst = 0;
    int m_sumCount = 0;
    std::size_t m_stride = 0;
    std::vector<double> m_i0Sums;
    std::vector<double> m_i1Sums;
    std::vector<double> m_darkSums;
    std::vector<lanes::Sums> m_sums;  // of every energy
    std::vector<quint32> m_columns;   // column sums of the frame being summed
};
