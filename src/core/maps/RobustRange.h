#pragma once

#include <functional>
#include <optional>
#include <utility>

/// Values row by row: of row 0 to rows - 1 those that count, finite, are put one behind the other;
/// how many is returned. Called in several threads.
struct ValueRows {
    int rows = 0;
    int mostInRow = 0;
    std::function<int(int row, double* to)> valuesOf;
};

/// Of n values in order those that have round(share (n - 1)) others below and above them; none of
/// no values. Exact for any low and high, quick where these are about the ends of the values. The
/// same for any number of threads.
std::optional<std::pair<double, double>> robustRange(const ValueRows& from, double share,
                                                     double low, double high, int threads);
