#pragma once

#include <vector>

/// What some values have in common; no numbers, each, where there are too few.
struct Statistics {
    int n = 0;
    double mean;
    double sd;  ///< of a sample: the squares' sum is divided by n - 1
    double median;
    double min;
    double max;
};

/// Of values that are all finite; summed up in their order.
Statistics statisticsOf(std::vector<double> values);

/// How many values lie in each of some classes of one width, side by side from low to high; one at
/// high belongs to the last.
struct Histogram {
    double low = 0.0;
    double high = 0.0;
    std::vector<int> counts;  ///< empty without values
};

/// Between the 1st and the 99th percentile of values that are all finite, a quarter of that wider
/// on either side but no wider than they reach; values beyond are not counted. One class where low
/// and high are the same.
Histogram histogramOf(std::vector<double> values, int classes);
