#pragma once

#include <functional>
#include <vector>

#include "absorption/RasterPass.h"

/// For each bin mu-t at one energy less that at another (eV, of the calibrated scale), one
/// evaluator for each thread: a bin's mu-t at an energy is that of its spectrum at this energy plus
/// the bin's shift (eV; called from several threads), interpolated between the frames. Beyond the
/// first and the last frame it is that frame's. No number for a bin without counts at some energy,
/// or without two energies.
std::vector<RasterPass::Evaluate> differenceEvaluators(
    int threads, const BinRaster& raster, const std::vector<double>& energies, double from,
    double to, const std::function<double(int x, int y)>& shiftAt);
