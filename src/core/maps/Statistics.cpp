#include "maps/Statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

Statistics statisticsOf(std::vector<double> values) {
    constexpr double None = std::numeric_limits<double>::quiet_NaN();
    Statistics found{static_cast<int>(values.size()), None, None, None, None, None};
    if (values.empty()) {
        return found;
    }
    const auto n = static_cast<double>(values.size());
    found.mean = std::accumulate(values.begin(), values.end(), 0.0) / n;
    if (values.size() > 1) {
        double squares = 0.0;
        for (const double value : values) {
            squares += (value - found.mean) * (value - found.mean);
        }
        found.sd = std::sqrt(squares / (n - 1.0));
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    const double below =
        *std::max_element(values.begin(), middle == values.begin() ? middle + 1 : middle);
    found.median = values.size() % 2 == 1 ? *middle : 0.5 * (below + *middle);
    found.min = *std::min_element(values.begin(), values.end());
    found.max = *std::max_element(values.begin(), values.end());
    return found;
}

Histogram histogramOf(std::vector<double> values, int classes) {
    Histogram histogram;
    if (values.empty() || classes < 1) {
        return histogram;
    }
    const auto outside = static_cast<std::ptrdiff_t>(values.size() / 100);
    const auto first = values.begin() + outside;
    const auto last = values.end() - 1 - outside;
    std::nth_element(values.begin(), last, values.end());
    std::nth_element(values.begin(), first, last + 1);
    const double from = *first;
    const double to = *last;
    const double least = *std::min_element(values.begin(), first + 1);
    const double most = *std::max_element(last, values.end());
    histogram.low = std::max(least, from - (to - from) / 4.0);
    histogram.high = std::min(most, to + (to - from) / 4.0);
    const double span = histogram.high - histogram.low;
    histogram.counts.assign(span > 0.0 ? static_cast<std::size_t>(classes) : 1, 0);
    const double highest = static_cast<double>(histogram.counts.size() - 1);
    for (const double value : values) {
        if (value >= histogram.low && value <= histogram.high) {
            const double at = span > 0.0 ? (value - histogram.low) / span * classes : 0.0;
            ++histogram.counts[static_cast<std::size_t>(std::min(at, highest))];
        }
    }
    return histogram;
}
