#include "maps/RobustRange.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <vector>

#include "base/RowShares.h"

namespace {

constexpr std::size_t Steps = 4096;
constexpr std::size_t Sides = 4;  // neighbours in an image are often of the same step

/// Sorts values into steps in their order: what lies beside the ends is in the first or the last.
class Ladder {
  public:
    Ladder(double low, double high)
        : m_low(low), m_scale(static_cast<double>(Steps) / (high - low)) {
        if (!(high > low) || !std::isfinite(m_scale)) {
            m_low = m_scale = 0.0;
        }
    }

    std::size_t stepOf(double value) const {
        const double step = (value - m_low) * m_scale;
        return static_cast<std::size_t>(
            std::min(std::max(0.0, step), static_cast<double>(Steps - 1)));
    }

  private:
    double m_low;
    double m_scale;
};

using Values = std::vector<double>;

/// Hands the values of each row to one of the functions that start() makes, one a thread.
void forEachRow(const ValueRows& from, int threads,
                const std::function<std::function<void(const Values&, int)>()>& start) {
    RowShares rows(from.rows);
    inThreads(threads, [&] {
        Values values(static_cast<std::size_t>(from.mostInRow));
        const auto take = start();
        int row = 0;
        int end = 0;
        while (rows.take(&row, &end)) {
            for (; row < end; ++row) {
                take(values, from.valuesOf(row, values.data()));
            }
        }
    });
}

std::vector<std::size_t> counted(const ValueRows& from, const Ladder& ladder, int threads) {
    std::vector<std::vector<std::size_t>> all;
    std::mutex mutex;
    forEachRow(from, threads, [&] {
        const std::lock_guard<std::mutex> lock(mutex);
        all.reserve(static_cast<std::size_t>(std::max(1, threads)));
        all.emplace_back(Sides * Steps);
        return [own = all.back().data(), &ladder](const Values& values, int count) {
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
                ++own[(i % Sides) * Steps + ladder.stepOf(values[i])];
            }
        };
    });
    std::vector<std::size_t> sum(Steps);
    for (const std::vector<std::size_t>& one : all) {
        for (std::size_t i = 0; i < one.size(); ++i) {
            sum[i % Steps] += one[i];
        }
    }
    return sum;
}

/// The step that holds the value of this place in order, whose place within it is left over.
std::size_t stepOfPlace(const std::vector<std::size_t>& counts, std::size_t* place) {
    std::size_t step = 0;
    while (*place >= counts[step]) {
        *place -= counts[step];
        ++step;
    }
    return step;
}

double valueAt(Values values, std::size_t place) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(place);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

}  // namespace

std::optional<std::pair<double, double>> robustRange(const ValueRows& from, double share,
                                                     double low, double high, int threads) {
    const Ladder ladder(low, high);
    const std::vector<std::size_t> counts = counted(from, ladder, threads);
    std::size_t all = 0;
    for (const std::size_t count : counts) {
        all += count;
    }
    if (all == 0) {
        return std::nullopt;
    }
    auto lowPlace = static_cast<std::size_t>(std::lround(share * static_cast<double>(all - 1)));
    std::size_t highPlace = all - 1 - lowPlace;
    const std::size_t lowStep = stepOfPlace(counts, &lowPlace);
    const std::size_t highStep = stepOfPlace(counts, &highPlace);
    Values lowest;
    Values highest;
    std::mutex mutex;
    forEachRow(from, threads, [&] {
        return [&](const Values& values, int count) {
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
                const std::size_t step = ladder.stepOf(values[i]);
                if (step == lowStep || step == highStep) {
                    const std::lock_guard<std::mutex> lock(mutex);
                    (step == lowStep ? lowest : highest).push_back(values[i]);
                }
            }
        };
    });
    return std::make_pair(valueAt(lowest, lowPlace),
                          valueAt(lowStep == highStep ? lowest : highest, highPlace));
}
