#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "absorption/RasterPass.h"
#include "spectra/Spectrum.h"

// The mean of the spectra of an area, summed up by a pass over its bins.

/// Energy shift (eV) at a pixel; called from several threads.
using ShiftAt = std::function<double(int x, int y)>;

/// Sums over the bins of each row, of the raster's inside, that have counts at all energies.
struct RowSums {
    struct Row {
        std::vector<double> mu;  ///< at each energy
        double shift = 0.0;
        int bins = 0;
    };
    std::vector<Row> rows;
};

/// Of the bins that have counts at all energies.
struct MeanSpectrum {
    Spectrum spectrum;   ///< mean mu-t at the energies of the frames less the mean shift, in eV
    double shift = 0.0;  ///< the mean of their energy shifts, in eV
    int bins = 0;        ///< how many; with none there is no spectrum

    bool hasEdge() const;
    /// Where it rises through half its height, in eV.
    double e0() const;
};

/// What a RasterPass works out, one evaluator for each thread, to fill the sums of its rows: one
/// value a bin, 1 for those that count and 0 for the others. A row's bins are added in their order.
std::vector<RasterPass::Evaluate> meanEvaluators(int threads, const BinRaster& raster,
                                                 int energyCount, const ShiftAt& shiftAt,
                                                 const std::shared_ptr<RowSums>& sums);

/// The rows are added in their order, so that the bits are the same for any number of threads.
MeanSpectrum meanOf(const RowSums& sums, const std::vector<double>& energies);
