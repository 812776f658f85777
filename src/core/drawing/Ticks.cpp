#include "drawing/Ticks.h"

#include <cmath>

#include "drawing/ChCoord.h"

namespace {
constexpr int MostTicks = 50;
}

Ticks ticksBetween(double low, double high) {
    Ticks ticks;
    const double span = high - low;
    if (!(span > 0.0) || !std::isfinite(span) || span < 1e-200) {
        return ticks;
    }
    // One digit more than the span's first: a span just above a power of ten has ticks, too.
    const double scale = span < 10.0 ? std::pow(10.0, 1.0 - std::floor(std::log10(span))) : 1.0;
    ChCoord::NiceRange nice = ChCoord::niceRange(low * scale, high * scale);
    if (!(nice.step > 0.0)) {
        const double tenth = std::pow(10.0, std::floor(std::log10(span * scale)));
        nice = {tenth, tenth * std::ceil(low * scale / tenth), high * scale};
    }
    ticks.step = nice.step / scale;
    for (int i = 0; i < MostTicks; ++i) {
        const double value = (nice.first + i * nice.step) / scale;
        if (value > high + 1e-9 * span) {
            break;
        }
        ticks.values.append(value);
    }
    return ticks;
}
