#include "RandomCounts.h"

#include <cmath>

namespace samples {

double RandomCounts::uniform() {
    return static_cast<double>(m_engine() >> 11) * 0x1.0p-53;
}

std::int64_t RandomCounts::poisson(double mean) {
    if (!(mean > 0.0)) {
        return 0;
    }
    return mean < 12.0 ? poissonByProducts(mean) : poissonByRejection(mean);
}

// Counts arrivals until their exponential waiting times exceed one unit.
std::int64_t RandomCounts::poissonByProducts(double mean) {
    const double limit = std::exp(-mean);
    std::int64_t count = 0;
    for (double product = uniform(); product > limit; product *= uniform()) {
        ++count;
    }
    return count;
}

// Transformed rejection with squeeze: W. Hoermann, Insurance: Mathematics and Economics 12 (1993)
// 39, algorithm PTRS. Needs one logarithm of the gamma function for about one draw in eight.
std::int64_t RandomCounts::poissonByRejection(double mean) {
    const double b = 0.931 + 2.53 * std::sqrt(mean);
    const double a = -0.059 + 0.02483 * b;
    const double inverseAlpha = 1.1239 + 1.1328 / (b - 3.4);
    const double vr = 0.9277 - 3.6224 / (b - 2.0);
    const double logMean = std::log(mean);
    for (;;) {
        const double u = uniform() - 0.5;
        const double v = uniform();
        const double us = 0.5 - std::abs(u);
        if (us <= 0.0) {
            continue;
        }
        const double k = std::floor((2.0 * a / us + b) * u + mean + 0.43);
        if (us >= 0.07 && v <= vr) {
            return static_cast<std::int64_t>(k);
        }
        if (k < 0.0 || (us < 0.013 && v > us) || v <= 0.0) {
            continue;
        }
        const double accepted = std::log(v * inverseAlpha / (a / (us * us) + b));
        if (accepted <= k * logMean - mean - std::lgamma(k + 1.0)) {
            return static_cast<std::int64_t>(k);
        }
    }
}

}  // namespace samples
