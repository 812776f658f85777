#pragma once

#include "absorption/BinRowSpectra.h"
#include "absorption/RasterPass.h"

/// Works out rows of a raster for a RasterPass on one thread of it. Bins that are not inside cost
/// nothing where a pack holds no other, and are no number.
class RowEvaluation {
  public:
    RowEvaluation(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
                  const RasterPass::Evaluate& evaluate);

    /// Has the counts of rows first .. end - 1 read, where they are not in memory, and says of
    /// others that they are read soon.
    void read(int first, int end, int firstBehind, int endBehind);
    /// Of the rows read, see RasterPass::Row.
    std::vector<Saturated> saturated(int row);
    /// The values of a row, column after column, and what was seen in its bins.
    RasterPass::Tally row(int row, std::vector<double>* values);

  private:
    unsigned inner(int row, int first, int spectra) const;
    void some(int row, int first, int count, std::vector<double>* values);
    void pack(int row, int first, int bin, int spectra, std::vector<double>* values);

    const BinRaster& m_raster;
    const std::size_t m_valuesPerBin;
    const RasterPass::Evaluate& m_evaluate;
    BinRowSpectra m_bins;
    int m_packs = 4;  // that are summed up at once
    std::vector<double> m_mu;
    RasterPass::Tally m_tally;
};
