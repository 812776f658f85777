#include "drawing/ChCoord.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Decades = 8;

double tickStep(double base, double spacing, double pixelsPerUnit) {
    double m = 1.0;
    for (int decade = 0; decade < Decades; ++decade, m *= 10.0) {
        const double t = base * m;
        for (double factor : {1.0, 2.0, 5.0}) {
            if (factor * t * pixelsPerUnit > spacing) {
                return factor * t;
            }
        }
    }
    return base * 1e8;
}

}  // namespace

void ChCoord::setScreen(double x0, double x1, double y0, double y1) {
    sx0 = x0;
    sx1 = x1;
    sy0 = y0;
    sy1 = y1;
}

void ChCoord::setReal(double x0, double x1, double y0, double y1) {
    rx0 = x0;
    rx1 = x1;
    ry0 = y0;
    ry1 = y1;
}

double ChCoord::clamped(double value, double end0, double end1) {
    const double low = std::min(end0, end1);
    const double high = std::max(end0, end1);
    return value < low ? low : (value > high ? high : value);
}

double ChCoord::tickStepX(double base, double spacing) const {
    return tickStep(base, spacing, (sx1 - sx0) / (rx1 - rx0));
}

double ChCoord::tickStepY(double base, double spacing) const {
    return tickStep(base, spacing, (sy1 - sy0) / (ry1 - ry0));
}

ChCoord::NiceRange ChCoord::niceRange(double a, double c) {
    const double exponent = std::trunc(std::log10(c - a));
    double step = 0.0;
    if (c > a && std::isfinite(exponent)) {
        step = std::pow(10.0, exponent);
        const double n = std::trunc((c - a) / step);
        if (n == 1.0 || n == 2.0) {
            step *= 0.2;
        } else if (n == 3.0 || n == 4.0) {
            step *= 0.5;
        } else if (n == 8.0 || n == 9.0) {
            step *= 2.0;
        } else if (!(n >= 5.0 && n <= 7.0)) {
            step *= 0.0;
        }
    }
    return {step, step * std::ceil(a / step), step * std::floor(c / step)};
}
