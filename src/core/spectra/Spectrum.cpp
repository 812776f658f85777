#include "spectra/Spectrum.h"

#include <algorithm>

#include "base/Numbers.h"
#include "spectra/LiveCounts.h"

namespace {

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
    livecounts::addSpectra(1);
}

Spectrum::Spectrum(const Spectrum& other)
    : m_valid(other.m_valid),
      m_extremesHeld(other.m_extremesHeld),
      m_points(other.m_points),
      m_extremes(other.m_extremes),
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
    if (!m_extremesHeld) {
        m_extremes = findExtremes();
        m_extremesHeld = true;
    }
    m_points.append({x, y});
    widen(size() - 1);
}

void Spectrum::clear() {
    m_points.clear();
    m_extremes = Extremes();
    m_extremesHeld = true;
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
    if (p.x < m_extremes.minimum.x) {
        m_extremes.minimum.x = p.x;
    }
    if (p.y < m_extremes.minimum.y) {
        m_extremes.minimum.y = p.y;
        m_extremes.minIndex = i;
    }
    if (p.x > m_extremes.maximum.x) {
        m_extremes.maximum.x = p.x;
    }
    if (p.y > m_extremes.maximum.y) {
        m_extremes.maximum.y = p.y;
        m_extremes.maxIndex = i;
    }
}

Spectrum::Extremes Spectrum::findExtremes() const {
    Extremes found;
    const Spoint* p = points();
    const int n = size();
    // Four independent chains of comparisons: one alone would wait for itself at every point.
    constexpr int Lanes = 4;
    Pair lows[Lanes];
    Pair highs[Lanes];
    std::fill_n(lows, Lanes, pairOf(found.minimum));
    std::fill_n(highs, Lanes, pairOf(found.maximum));
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
    if (low[0] < found.minimum.x) {
        found.minimum.x = asFirstHeld(p, low[0]);
    }
    if (low[1] < found.minimum.y) {
        found.minIndex = firstWithValue(p, n, low[1]);
        found.minimum.y = p[found.minIndex].y;
    }
    if (high[0] > found.maximum.x) {
        found.maximum.x = asFirstHeld(p, high[0]);
    }
    if (high[1] > found.maximum.y) {
        found.maxIndex = firstWithValue(p, n, high[1]);
        found.maximum.y = p[found.maxIndex].y;
    }
    return found;
}

double Spectrum::levelAt(double fraction) const {
    const Extremes found = extremes();
    return found.minimum.y + fraction * (found.maximum.y - found.minimum.y);
}

int Spectrum::firstCrossing(double level, int mode) const {
    for (int i = 0; i + 1 < size(); ++i) {
        if (crosses(value(i), value(i + 1), level, mode)) {
            return i;
        }
    }
    return -1;
}

int Spectrum::findIndex(double fraction, int mode) const {
    return firstCrossing(levelAt(fraction), mode);
}

double Spectrum::findE(double fraction, int mode) const {
    if (isEmpty()) {
        return 0.0;
    }
    const double level = levelAt(fraction);
    const int i = firstCrossing(level, mode);
    if (i < 0) {
        return energy(0);
    }
    return interpolate(level, value(i), energy(i), value(i + 1), energy(i + 1));
}

int Spectrum::pairAt(double e) const {
    return pairAround(size(), e, [this](int i) { return energy(i); });
}

double Spectrum::valueAt(double e) const {
    const int n = size();
    if (n < 2) {
        return n == 0 ? 0.0 : value(0);
    }
    const int low = pairAt(e);
    return interpolate(e, energy(low), value(low), energy(low + 1), value(low + 1));
}
