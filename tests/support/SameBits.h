#pragma once

#include <cmath>
#include <cstring>

#include "spectra/Spectrum.h"

/// Bit for bit, but one NaN is as good as another.
inline bool same(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

/// Points and extremes.
inline bool same(const Spectrum& a, const Spectrum& b) {
    bool equal = a.size() == b.size() && a.minIndex() == b.minIndex() &&
                 a.maxIndex() == b.maxIndex() && same(a.minimum().x, b.minimum().x) &&
                 same(a.minimum().y, b.minimum().y) && same(a.maximum().x, b.maximum().x) &&
                 same(a.maximum().y, b.maximum().y);
    for (int i = 0; equal && i < a.size(); ++i) {
        equal = same(a.point(i).x, b.point(i).x) && same(a.value(i), b.value(i));
    }
    return equal;
}
