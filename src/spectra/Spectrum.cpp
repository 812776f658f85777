#include "spectra/Spectrum.h"

#include <algorithm>

#include "spectra/Interpolation.h"
#include "spectra/LiveCounts.h"

namespace {

// Starting values far outside any index, kept as they have always been (0x8FFFFFFF, 0x70000001).
constexpr qint32 NoMinIndex = -1879048193;
constexpr qint32 NoMaxIndex = 1879048193;
constexpr int Extremes = 2;  // a spectrum holds two points of its own

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

}  // namespace

Spectrum::Points::Points(const Points& other) : QSharedData(other), list(other.list) {
    livecounts::addSpoints(static_cast<qint64>(list.size()));
}

Spectrum::Points::~Points() {
    livecounts::addSpoints(-static_cast<qint64>(list.size()));
}

QSharedDataPointer<Spectrum::Points> Spectrum::noPoints() {
    static const QSharedDataPointer<Points> shared(new Points);
    return shared;
}

Spectrum::Spectrum() : m_points(noPoints()) {
    resetExtremes();
    livecounts::addSpectra(1);
    livecounts::addSpoints(Extremes);
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
    livecounts::addSpoints(Extremes);
}

Spectrum::~Spectrum() {
    livecounts::addSpectra(-1);
    livecounts::addSpoints(-Extremes);
}

void Spectrum::reserve(int n) {
    m_points->list.reserve(static_cast<std::size_t>(n));
}

void Spectrum::append(double x, double y) {
    std::vector<Spoint>& list = m_points->list;
    list.push_back({x, y});
    livecounts::addSpoints(1);
    widen(static_cast<int>(list.size()) - 1);
}

void Spectrum::clear() {
    if (!isEmpty()) {
        m_points = noPoints();
    }
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
    const Spoint& p = qAsConst(*this).point(i);
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

Spoint* Spectrum::beginAssign(int n) {
    // Points that others share are left to them; our own storage is used again.
    const Points* held = m_points.constData();
    if (held->ref.loadRelaxed() != 1) {
        m_points = QSharedDataPointer<Points>(new Points);
    }
    std::vector<Spoint>& list = m_points->list;
    const qint64 before = static_cast<qint64>(list.size());
    list.resize(static_cast<std::size_t>(n));
    livecounts::addSpoints(n - before);
    return list.data();
}

void Spectrum::endAssign() {
    resetExtremes();
    const std::vector<Spoint>& list = m_points.constData()->list;
    Spoint low = m_minimum;
    Spoint high = m_maximum;
    qint32 lowIndex = m_minIndex;
    qint32 highIndex = m_maxIndex;
    const int n = static_cast<int>(list.size());
    for (int i = 0; i < n; ++i) {
        const Spoint& p = list[static_cast<std::size_t>(i)];
        low.x = p.x < low.x ? p.x : low.x;
        high.x = p.x > high.x ? p.x : high.x;
        if (p.y < low.y) {
            low.y = p.y;
            lowIndex = i;
        }
        if (p.y > high.y) {
            high.y = p.y;
            highIndex = i;
        }
    }
    m_minimum = low;
    m_maximum = high;
    m_minIndex = lowIndex;
    m_maxIndex = highIndex;
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
