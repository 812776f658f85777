#pragma once

/// Value at t of the straight line through (a0, b0) and (a1, b1); the mean of b0 and b1 when the
/// abscissae are equal. Extrapolates outside the pair.
inline double interpolate(double t, double a0, double b0, double a1, double b1) {
    return a1 == a0 ? (b0 + b1) * 0.5 : b0 + (t - a0) * (b1 - b0) / (a1 - a0);
}
