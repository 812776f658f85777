#pragma once

#include <QString>
#include <QtGlobal>
#include <algorithm>
#include <cstdlib>

// Arithmetic that every room needs, once each.

/// trunc(v) clamped to [low, high]; NaN gives low. Never undefined, whatever v holds.
int toClampedInt(double v, int low, int high);

/// The pixel that a position lies in: pixel n covers n to n + 1. Positions far outside any image
/// are cut to +-2^30, NaN to -2^30.
int toPixel(double position);

/// A value and its error to the digits that count, such as "0.346" and "0.021".
struct RoundedPair {
    QString value;
    QString error;         ///< two significant digits; empty: none is known
    QString power;         ///< of ten that both are to be multiplied with, as "e-09"; mostly empty
    QString text() const;  ///< "0.346 ± 0.021", "(3.46 ± 0.21)e-09", or the value alone
};

/// The error with two significant digits and the value to its last one; with a power of ten where
/// more than six decimals or digits before the point would be needed. An error that is not above 0,
/// or no number: none, and a value of six digits. "-" for a value that is no number.
RoundedPair roundedPair(double value, double error);

// Two ways to write one straight line, since they round differently: box sums between the energies
// of frames have always been taken the first way, curves the second.

/// (e - e0) ((y1 - y0) / (e1 - e0)) + y0; the mean of y0 and y1 when e1 equals e0.
inline double lerp(double e, double e0, double y0, double e1, double y1) {
    return e1 == e0 ? 0.5 * (y0 + y1) : (e - e0) * ((y1 - y0) / (e1 - e0)) + y0;
}

/// y0 + (e - e0) (y1 - y0) / (e1 - e0); the mean of y0 and y1 when e1 equals e0.
inline double interpolate(double e, double e0, double y0, double e1, double y1) {
    return e1 == e0 ? (y0 + y1) * 0.5 : y0 + (e - e0) * (y1 - y0) / (e1 - e0);
}

/// Index i of the pair i, i + 1 of n >= 2 ascending energies at(0), at(1), ... between which e
/// lies: at(i) <= e < at(i + 1). The first pair below all energies; the last at or above the last
/// energy, and for NaN.
template <typename At>
int pairAround(int n, double e, At at) {
    int low = 0;
    int high = n - 1;
    if (e < at(low)) {
        return low;
    }
    if (e >= at(high)) {
        return high - 1;
    }
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        if (e < at(middle)) {
            high = middle;
        } else {
            low = middle;
        }
    }
    return low;
}

/// The same, walking from a pair that is near by.
template <typename At>
int pairAround(int n, double e, At at, int hint) {
    while (hint < n - 2 && !(e < at(hint + 1))) {
        ++hint;
    }
    while (hint > 0 && e < at(hint)) {
        --hint;
    }
    return hint;
}

/// Pixels first .. last of a row or a column, both included; none when last is below first.
struct PixelRange {
    qint64 first = 0;
    qint64 last = -1;

    bool isEmpty() const { return last < first; }
};

/// What of first .. last lies in 0 .. size - 1.
inline PixelRange clipped(qint64 first, qint64 last, qint64 size) {
    return {std::max<qint64>(0, first), std::min(size - 1, last)};
}

/// What of the 2 |half| + 1 pixels around a centre lies in 0 .. size - 1.
inline PixelRange clippedAround(qint64 centre, int half, qint64 size) {
    const qint64 magnitude = std::abs(static_cast<qint64>(half));
    return clipped(centre - magnitude, centre + magnitude, size);
}
