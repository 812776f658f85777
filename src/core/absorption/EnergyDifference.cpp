#include "absorption/EnergyDifference.h"

#include <algorithm>
#include <limits>

#include "base/Numbers.h"
#include "spectra/Lanes.h"

namespace {

/// mu-t of spectrum l of a pack at an energy.
double valueAt(double e, const std::vector<double>& energies, const double* mu, int l) {
    const double inside = std::clamp(e, energies.front(), energies.back());
    const int pair = pairAround(static_cast<int>(energies.size()), inside,
                                [&](int i) { return energies[static_cast<std::size_t>(i)]; });
    const auto low = static_cast<std::size_t>(pair);
    const double* const at = mu + pair * lanes::Count + l;
    if (inside == energies[low + 1]) {
        return at[lanes::Count];  // a line through it would round
    }
    return interpolate(inside, energies[low], at[0], energies[low + 1], at[lanes::Count]);
}

}  // namespace

std::vector<RasterPass::Evaluate> differenceEvaluators(
    int threads, const BinRaster& raster, const std::vector<double>& energies, double from,
    double to, const std::function<double(int x, int y)>& shiftAt) {
    const auto evaluate = [=](const RasterPass::Pack& pack, double* values) {
        for (int l = 0; l < pack.count; ++l) {
            const double shift = shiftAt(raster.x(pack.column + l), raster.y(pack.row));
            values[l] = pack.lacksCounts[l] || energies.size() < 2
                            ? std::numeric_limits<double>::quiet_NaN()
                            : valueAt(to + shift, energies, pack.mu, l) -
                                  valueAt(from + shift, energies, pack.mu, l);
        }
        return RasterPass::Found{};
    };
    return std::vector<RasterPass::Evaluate>(static_cast<std::size_t>(threads), evaluate);
}
