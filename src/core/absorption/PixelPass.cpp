#include "absorption/PixelPass.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <new>

#include "absorption/BinRowSpectra.h"
#include "absorption/EnergyDifference.h"
#include "base/LargeMemory.h"
#include "base/RowShares.h"

namespace {

constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();

/// Few enough for their counts to stay in the fast part of the memory.
constexpr int PixelsAtATime = 32 * lanes::Count;

/// Indices of ascending energies that hold those from `low` to `high` and their neighbours; that of
/// a frame alone where this is all that is asked for.
void addAround(const std::vector<double>& energies, double low, double high,
               std::vector<int>* indices) {
    if (energies.empty()) {
        return;
    }
    const int last = static_cast<int>(energies.size()) - 1;
    const auto begin = energies.begin();
    // Of equal energies the last, as pairAround() has it.
    const int before = static_cast<int>(std::upper_bound(begin, energies.end(), low) - begin) - 1;
    if (low == high && before >= 0 && energies[static_cast<std::size_t>(before)] == low) {
        indices->push_back(before);
        return;
    }
    const int behind = static_cast<int>(std::lower_bound(begin, energies.end(), high) - begin);
    // Two at an end, for a line needs both.
    const int first = std::clamp(before, 0, std::max(0, last - 1));
    const int end = std::clamp(behind + 1, std::min(last, first + 1), last);
    for (int i = first; i <= end; ++i) {
        indices->push_back(i);
    }
}

RasterPass::Found valueOfOne(const RasterPass::Pack& pack, double* values) {
    for (int l = 0; l < pack.count; ++l) {
        values[l] = pack.lacksCounts[l] ? NoNumber : pack.mu[l];
    }
    return {};
}

}  // namespace

/// The extremes that a thread has seen: of values side by side, so that none waits for another.
struct PixelPass::Extremes {
    static constexpr int Lanes = 8;
    double mins[Lanes];
    double maxs[Lanes];

    Extremes() {
        std::fill(mins, mins + Lanes, std::numeric_limits<double>::infinity());
        std::fill(maxs, maxs + Lanes, -std::numeric_limits<double>::infinity());
    }
    void take(int lane, double value) {
        mins[lane] = value < mins[lane] ? value : mins[lane];
        maxs[lane] = value > maxs[lane] ? value : maxs[lane];
    }
    void take(const double* values, int n) {
        int i = 0;
        for (; i + Lanes <= n; i += Lanes) {
            for (int lane = 0; lane < Lanes; ++lane) {
                take(lane, values[i + lane]);
            }
        }
        for (; i < n; ++i) {
            take(0, values[i]);
        }
    }
    double min() const { return *std::min_element(mins, mins + Lanes); }
    double max() const { return *std::max_element(maxs, maxs + Lanes); }
};

PixelPass PixelPass::absorption(const AbsorptionSource& source, const TiffData* frame) {
    const int place = source.indexOf(frame);
    return PixelPass(source.ofFrames(place < 0 ? std::vector<int>() : std::vector<int>{place}),
                     valueOfOne);
}

PixelPass PixelPass::difference(const AbsorptionSource& source, double from, double to,
                                const std::function<double(int x, int y)>& shiftAt,
                                double lowestShift, double highestShift) {
    std::vector<int> indices;
    for (const double e : {from, to}) {
        addAround(source.energies(), e + lowestShift, e + highestShift, &indices);
    }
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    if (indices.size() == 1 && source.energyCount() > 1) {
        // No difference, but two energies are what a difference is made of.
        indices.insert(indices.front() > 0 ? indices.begin() : indices.end(),
                       indices.front() > 0 ? indices.front() - 1 : 1);
    }
    AbsorptionSource few = source.ofFrames(indices);
    const BinRaster raster{0, 1, source.width(), 0, 1, source.height(), 0, 0};
    return PixelPass(few,
                     differenceEvaluators(1, raster, few.energies(), from, to, shiftAt).front());
}

bool PixelPass::run(int threads, const std::atomic<bool>& stop, PixelValues* out) const {
    const int width = m_source.width();
    const int height = m_source.height();
    if (m_source.energyCount() == 0) {
        *out = PixelValues();
        return false;
    }
    const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    if (out->width != width || out->height != height) {
        *out = PixelValues();
        if (mayTakeMemory(pixels * sizeof(double))) {
            out->values.reset(new (std::nothrow) double[pixels]);  // not cleared: it is all filled
        }
        if (!out->values) {
            out->problem = lackOfMemory();
            return false;
        }
        out->width = width;
        out->height = height;
    }
    RowShares rows(height, &stop);
    out->min = std::numeric_limits<double>::infinity();
    out->max = -out->min;
    std::mutex mutex;
    QString problem;
    inThreads(threads, [&] {
        Extremes own;
        QString ownProblem;
        try {
            fill(&rows, out, &own);
        } catch (const UnreadCounts& unread) {
            ownProblem = unread.problem;
        } catch (const std::bad_alloc&) {
            ownProblem = lackOfMemory();
        }
        const std::lock_guard<std::mutex> lock(mutex);
        problem = ownProblem.isEmpty() ? problem : ownProblem;
        out->min = std::min(out->min, own.min());
        out->max = std::max(out->max, own.max());
    });
    if (!problem.isEmpty()) {
        *out = PixelValues();
        out->problem = problem;
        return false;
    }
    return !stop;
}

void PixelPass::fill(RowShares* rows, PixelValues* out, Extremes* extremes) const {
    const int width = m_source.width();
    BinRowSpectra bins(m_source, 0, 1, width, 0, 0);
    std::vector<double> mu(static_cast<std::size_t>(m_source.energyCount()) * lanes::Count);
    bool lacksCounts[lanes::Count];
    int y = 0;
    int end = 0;
    while (rows->take(&y, &end)) {
        bins.band().read(y, end - 1);
        for (; y < end; ++y) {
            double* const line =
                &out->values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width)];
            for (int x = 0; x < width; x += PixelsAtATime) {
                const int count = std::min(PixelsAtATime, width - x);
                bins.sum(y, x, count);
                for (int bin = 0; bin < count; bin += lanes::Count) {
                    bins.formPack(bin, mu.data(), lacksCounts);
                    const int n = std::min(lanes::Count, count - bin);
                    m_evaluate({mu.data(), lacksCounts, y, x + bin, n}, line + x + bin);
                }
            }
            extremes->take(line, width);
        }
    }
}
