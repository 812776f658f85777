#include "spectra/Spectrum.h"

#include <algorithm>

#include "spectra/Interpolation.h"
#include "spectra/LiveCounts.h"

namespace {

// Starting values far outside any index, kept as they have always been (0x8FFFFFFF, 0x70000001).
constexpr qint32 NoMinIndex = -1879048193;
constexpr qint32 NoMaxIndex = 1879048193;

bool crosses(double y0, double y1, double level, int mode) {
    switch (mode) {
        case 0:
            return y0 < level && y1 >= level;
        case 1:
            return y0 > level && y1 <= level;
        default:
            return (y0 - level) * (y1 - level) <= 0.0;
    }
}

/// A point as both its numbers at once: one instruction compares them.
using Pair = double __attribute__((vector_size(2 * sizeof(double))));

Pair pairOf(const Spoint& p) {
    return Pair{p.x, p.y};
}

void widenRange(Pair& low, Pair& high, Pair p) {
    low = p < low ? p : low;
    high = p > high ? p : high;
}

/// Index of the first of n points with this value; there must be one.
int firstWithValue(const Spoint* p, int n, double y) {
    int i = 0;
    while (i + 4 <= n &&
           !((p[i].y == y) | (p[i + 1].y == y) | (p[i + 2].y == y) | (p[i + 3].y == y))) {
        i += 4;
    }
    while (p[i].y != y) {
        ++i;
    }
    return i;
}

/// The smallest or largest energy as its first holder has it: 0.0 and -0.0 are equal.
double asFirstHeld(const Spoint* p, double x) {
    if (x == 0.0) {
        while (p->x != x) {
            ++p;
        }
        return p->x;
    }
    return x;
}

}  // namespace

Spectrum::Spectrum() {
    resetExtremes();
    livecounts::addSpectra(1);
}

Spectrum::Spectrum(const Spectrum& other)
    : m_valid(other.m_valid),
      m_points(other.m_points),
      m_minimum(other.m_minimum),
      m_maximum(other.m_maximum),
      m_minIndex(other.m_minIndex),
      m_maxIndex(other.m_maxIndex),
      m_shiftOn(other.m_shiftOn),
      m_shift(other.m_shift) {
    livecounts::addSpectra(1);
}

Spectrum::~Spectrum() {
    livecounts::addSpectra(-1);
}

void Spectrum::reserve(int n) {
    m_points.reserve(n);
}

void Spectrum::append(double x, double y) {
    m_points.append({x, y});
    widen(size() - 1);
}

void Spectrum::clear() {
    m_points.clear();
    resetExtremes();
}

void Spectrum::assign(const double* x, const double* y, int n) {
    assignWith(n, [&](Spoint* points) {
        for (int i = 0; i < n; ++i) {
            points[i] = {x[i], y[i]};
        }
    });
}

void Spectrum::widen(int i) {
    const Spoint& p = point(i);
    if (p.x < m_minimum.x) {
        m_minimum.x = p.x;
    }
    if (p.y < m_minimum.y) {
        m_minimum.y = p.y;
        m_minIndex = i;
    }
    if (p.x > m_maximum.x) {
        m_maximum.x = p.x;
    }
    if (p.y > m_maximum.y) {
        m_maximum.y = p.y;
        m_maxIndex = i;
    }
}

void Spectrum::resetExtremes() {
    m_minimum = {1e300, 1e300};
    m_maximum = {-1e300, -1e300};
    m_minIndex = NoMinIndex;
    m_maxIndex = NoMaxIndex;
}

void Spectrum::findExtremes() {
    resetExtremes();
    const Spoint* p = points();
    const int n = size();
    // Four independent chains of comparisons: one alone would wait for itself at every point.
    constexpr int Lanes = 4;
    Pair lows[Lanes];
    Pair highs[Lanes];
    std::fill_n(lows, Lanes, pairOf(m_minimum));
    std::fill_n(highs, Lanes, pairOf(m_maximum));
    int i = 0;
    for (; i + Lanes <= n; i += Lanes) {
        for (int k = 0; k < Lanes; ++k) {
            widenRange(lows[k], highs[k], pairOf(p[i + k]));
        }
    }
    Pair low = lows[0];
    Pair high = highs[0];
    for (; i < n; ++i) {
        widenRange(low, high, pairOf(p[i]));
    }
    for (int k = 1; k < Lanes; ++k) {
        low = lows[k] < low ? lows[k] : low;
        high = highs[k] > high ? highs[k] : high;
    }
    if (low[0] < m_minimum.x) {
        m_minimum.x = asFirstHeld(p, low[0]);
    }
    if (low[1] < m_minimum.y) {
        m_minIndex = firstWithValue(p, n, low[1]);
        m_minimum.y = p[m_minIndex].y;
    }
    if (high[0] > m_maximum.x) {
        m_maximum.x = asFirstHeld(p, high[0]);
    }
    if (high[1] > m_maximum.y) {
        m_maxIndex = firstWithValue(p, n, high[1]);
        m_maximum.y = p[m_maxIndex].y;
    }
}

int Spectrum::findIndex(double fraction, int mode) const {
    const double level = m_minimum.y + fraction * (m_maximum.y - m_minimum.y);
    for (int i = 0; i + 1 < size(); ++i) {
        if (crosses(value(i), value(i + 1), level, mode)) {
            return i;
        }
    }
    return -1;
}

double Spectrum::findE(double fraction, int mode) const {
    if (isEmpty()) {
        return 0.0;
    }
    const int i = findIndex(fraction, mode);
    if (i < 0) {
        return energy(0);
    }
    const double level = m_minimum.y + fraction * (m_maximum.y - m_minimum.y);
    return interpolate(level, value(i), energy(i), value(i + 1), energy(i + 1));
}

double Spectrum::valueAt(double e) const {
    const int n = size();
    if (n < 2) {
        return n == 0 ? 0.0 : value(0);
    }
    int low = 0;
    int high = n - 1;
    if (e < energy(0)) {
        high = 1;
    } else if (e >= energy(n - 1)) {
        low = n - 2;
    } else {
        while (high - low > 1) {
            const int middle = low + (high - low) / 2;
            if (e < energy(middle)) {
                high = middle;
            } else {
                low = middle;
            }
        }
    }
    return interpolate(e, energy(low), value(low), energy(high), value(high));
}
