#pragma once

#include <filesystem>
#include <vector>

#include "Phantom.h"

namespace samples {

// A result map saved as text, one "x y value" triple a line, separated by blanks or commas.
struct ResultTable {
    struct Point {
        int x;  // pixel, the centre of its bin
        int y;
        double value;  // may be NaN
    };
    int halfWidth = 0;  // of a bin, pixels
    int halfHeight = 0;
    std::vector<Point> points;
};

// Both throw std::runtime_error when the file cannot be read or is damaged.
ResultTable readResultTable(const std::filesystem::path& fileName);
Map readMap(const std::filesystem::path& fileName);  // as written below truth/

struct Recovery {
    int points = 0;          // bins that lie wholly inside the sample
    int notFinite = 0;       // of these, without a usable value
    double knownMean = 0.0;  // of the known fraction over the bins
    double foundMean = 0.0;
    double rmsError = 0.0;
    double maxError = 0.0;  // largest magnitude
    double meanError() const { return foundMean - knownMean; }
};

// Compares a table with the known fractions, averaged over each bin with the thickness as weight
// (what absorbs twice counts twice). Bins with a pixel thinner than minThickness are left out.
Recovery compareWithTruth(const ResultTable& table, const Map& fraction, const Map& thickness,
                          double minThickness);

}  // namespace samples
