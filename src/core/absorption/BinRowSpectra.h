#pragma once

#include <QtGlobal>
#include <vector>

#include "absorption/CountBand.h"
#include "spectra/LaneErrors.h"
#include "spectra/Spectrum.h"

class AbsorptionSource;
struct PixelRange;

/// The spectra of a raster of positions, formed a whole row of bins at a time: every frame's rows
/// are read once, in order, instead of once a position. The same numbers as spectrumAt().
class BinRowSpectra {
  public:
    /// Positions firstX, firstX + stepX, ... below endX and inside the image.
    BinRowSpectra(const AbsorptionSource& source, int firstX, int stepX, int endX, int halfWidth,
                  int halfHeight);

    /// The counts of frames that are not in memory. What follows reads those of the rows of pixels
    /// that it needs, where they are not there yet, and throws UnreadCounts.
    CountBand& band() { return m_band; }

    /// Positions of a row.
    int count() const { return m_count; }

    /// Spectrum at a position. Forms its row when that is not the one held; a position off the
    /// raster is formed on its own.
    Spectrum at(int x, int y);

    /// Sums up the bins of `bins` positions of row y from the given one on; what at() holds is
    /// kept.
    void sum(int y, int firstBin, int bins);
    /// mu-t of a pack of the bins summed last, mu[energy * lanes::Count + bin]: those from
    /// `bin` on, a multiple of lanes::Count counted from their first. What lies beyond the last
    /// bin is some number. Returns how many of its bins have no counts at some energy.
    /// lacksCounts[l], lanes::Count of them, tells which.
    int formPack(int bin, double* mu, bool* lacksCounts) const;
    /// The counts behind that pack; valid until the next call of sum().
    lanes::Counts counts(int bin) const;

  private:
    void formRow(int y);
    void sumI0(int y, std::size_t energy);
    void sumColumns(std::size_t frame, const PixelRange& lines, const PixelRange& covered);
    void sumBins(std::size_t frame, int y, double* sums);

    const AbsorptionSource& m_source;
    CountBand m_band;
    int m_firstX;
    int m_stepX;
    int m_count;
    int m_halfWidth;
    int m_halfHeight;
    const lanes::Kernels& m_kernels;

    int m_row = -1;
    std::vector<double> m_values;  // of the row held: energies of bin 0, of bin 1, ...
    std::vector<double> m_pack;

    // Of the bins summed last, whole packs of them for every frame.
    int m_sumFirst = 0;
    int m_sumCount = 0;
    std::size_t m_stride = 0;
    std::vector<double> m_i0Sums;  // of every I0 energy
    std::vector<double> m_i1Sums;
    std::vector<double> m_darkSums;
    std::vector<lanes::Sums> m_sums;  // of every energy
    std::vector<double> m_moreSums;   // of a further I0 frame of an energy
    std::vector<quint32> m_columns;   // column sums of the frame being summed
};
