#include "absorption/MeanSpectrum.h"

#include <algorithm>

#include "spectra/Lanes.h"

namespace {

constexpr double HalfHeight = 0.5;
constexpr int Rising = 0;

void add(const RasterPass::Pack& pack, const bool* counts, RowSums::Row* row) {
    const double* mu = pack.mu;
    for (double& sum : row->mu) {
        double total = sum;
        for (int l = 0; l < pack.count; ++l) {
            total += counts[l] ? mu[l] : 0.0;
        }
        sum = total;
        mu += lanes::Count;
    }
}

}  // namespace

bool MeanSpectrum::hasEdge() const {
    return spectrum.findIndex(HalfHeight, Rising) >= 0;
}

double MeanSpectrum::e0() const {
    return spectrum.findE(HalfHeight, Rising);
}

std::vector<RasterPass::Evaluate> meanEvaluators(int threads, const BinRaster& raster,
                                                 int energyCount, const ShiftAt& shiftAt,
                                                 const std::shared_ptr<RowSums>& sums) {
    sums->rows.assign(static_cast<std::size_t>(std::max(0, raster.rows)), {});
    const auto evaluate = [=](const RasterPass::Pack& pack, double* values) {
        RowSums::Row& row = sums->rows[static_cast<std::size_t>(pack.row)];
        row.mu.resize(static_cast<std::size_t>(energyCount));
        bool counts[lanes::Count] = {};
        for (int l = 0; l < pack.count; ++l) {
            counts[l] = !pack.lacksCounts[l];
            values[l] = counts[l] ? 1.0 : 0.0;
            if (counts[l]) {
                row.shift += shiftAt(raster.x(pack.column + l), raster.y(pack.row));
                ++row.bins;
            }
        }
        add(pack, counts, &row);
        return RasterPass::Found{};
    };
    return std::vector<RasterPass::Evaluate>(static_cast<std::size_t>(std::max(0, threads)),
                                             evaluate);
}

MeanSpectrum meanOf(const RowSums& sums, const std::vector<double>& energies) {
    RowSums::Row all;
    all.mu.resize(energies.size());
    for (const RowSums::Row& row : sums.rows) {
        for (std::size_t i = 0; i < row.mu.size(); ++i) {
            all.mu[i] += row.mu[i];
        }
        all.shift += row.shift;
        all.bins += row.bins;
    }
    MeanSpectrum mean;
    mean.bins = all.bins;
    if (all.bins == 0) {
        return mean;
    }
    mean.shift = all.shift / all.bins;
    for (std::size_t i = 0; i < energies.size(); ++i) {
        mean.spectrum.append(energies[i] - mean.shift, all.mu[i] / all.bins);
    }
    return mean;
}
