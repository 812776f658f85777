#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "maps/BinRaster.h"
#include "measurement/Outcome.h"
#include "measurement/Reference.h"

// Whether the lines below and above an edge have points to rest on: at least three energies of the
// frames in each range. Energies are those of the frames in eV, ascending.

/// Of the references that take part in a fit, and of bins whose E0 the counts will tell: fails when
/// there is no E0 inside the energies around which both ranges hold three. With an E0 of each bin's
/// own, ranges as they are from the start pass; so they do for references, which are warned of
/// then, see judgeFit().
Outcome judgeRanges(Work work, const std::vector<double>& energies,
                    const std::vector<std::unique_ptr<Reference>>& references,
                    const Settings& settings);

/// Of bins that had each its own E0, after the analysis: `without` of them had too few energies in
/// a range around it. Warns of some, fails for all.
Outcome judgeOwnE0s(int without, int bins, const BackgroundRanges& ranges);

/// Of a common E0 (eV), which a bin has at that plus its energy shift: how many bins have it
/// outside the energies, or too few energies in a range around it. Warns of some, fails for all.
Outcome judgeCommonE0(double e0, const BackgroundRanges& ranges,
                      const std::vector<double>& energies, const BinRaster& raster,
                      const std::function<double(int x, int y)>& shiftAt);
