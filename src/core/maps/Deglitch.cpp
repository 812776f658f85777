// The two deglitchers of Analyzed2DRes. Both walk the analysed points (bin centres), take the
// neighbours one step away, and leave what was not analysed as it is.

#include <QDebug>
#include <cmath>

#include "maps/Analyzed2DRes.h"

namespace {

/// Mean of the values that come in; NaN and infinities, common outside the sample, stay out.
class FiniteMean {
  public:
    void add(double value) {
        if (std::isfinite(value)) {
            m_sum += value;
            ++m_count;
        }
    }
    double orElse(double none) const { return m_count > 0 ? m_sum / m_count : none; }

  private:
    double m_sum = 0.0;
    int m_count = 0;
};

}  // namespace

double Analyzed2DRes::glitchMeasure(int x, int y) const {
    const double c = valueAt(x, y);
    const auto across = [&](qint64 dx, qint64 dy, double* measure) {
        if (!m_grid.isInsideImage(x - dx, y - dy) || !m_grid.isInsideImage(x + dx, y + dy)) {
            return false;
        }
        *measure = std::abs(2 * c - valueAt(x - dx, y - dy) - valueAt(x + dx, y + dy));
        return true;
    };
    double h = 0.0;
    double v = 0.0;
    const bool hasH = across(m_grid.stepX, 0, &h);
    const bool hasV = across(0, m_grid.stepY, &v);
    return hasH && hasV ? (h + v) / 2 : (hasH ? h : v);
}

double Analyzed2DRes::meanOfNeighbours(int x, int y) const {
    const qint64 dx = m_grid.stepX;
    const qint64 dy = m_grid.stepY;
    FiniteMean mean;
    const qint64 neighbours[4][2] = {{x - dx, y}, {x + dx, y}, {x, y - dy}, {x, y + dy}};
    for (const auto& n : neighbours) {
        if (m_grid.isInsideImage(n[0], n[1])) {
            mean.add(valueAt(n[0], n[1]));
        }
    }
    return mean.orElse(valueAt(x, y));
}

void Analyzed2DRes::setProcPoint(int x, int y, double t) {
    if (std::isfinite(t)) {
        m_procMin = std::fmin(m_procMin, t);
        m_procMax = std::fmax(m_procMax, t);
    }
    fillBin(&m_proc, x, y, m_grid.halfW, m_grid.halfH, t);
}

void Analyzed2DRes::deglitch() {
    if (m_data.isEmpty()) {
        return;
    }
    m_proc = m_data;
    FiniteMean measures;
    forEachPoint(m_grid, [&](int x, int y) {
        const double g = glitchMeasure(x, y);
        fillBin(&m_proc, x, y, m_grid.halfW, m_grid.halfH, g);
        measures.add(g);
    });

    const double threshold = measures.orElse(0.0) * m_deglitchFactor;
    const double margin = (m_dataMax - m_dataMin) * m_deglitchRatio;
    setProcRange(1e300, -1e300);
    forEachPoint(
        m_grid,
        [&](int x, int y) {
            const double c = valueAt(x, y);
            const double g = m_grid.isInsideImage(x, y) ? at(m_proc, x, y) : glitchMeasure(x, y);
            const bool outside = c < m_dataMin + margin || c > m_dataMax - margin;
            setProcPoint(x, y, g > threshold && outside ? meanOfNeighbours(x, y) : c);
        },
        [](int row) { qDebug() << "deglitch 2" << row; });
    if (m_showProc) {
        genImg();
    }
}

void Analyzed2DRes::deglitch2(double limit) {
    if (m_data.isEmpty()) {
        return;
    }
    m_proc = m_data;
    // The first pass compares the value with the limit, the second its distance from the mean.
    FiniteMean all;
    forEachPoint(m_grid, [&](int x, int y) {
        const double c = valueAt(x, y);
        if (std::abs(c) < limit) {
            all.add(c);
        }
    });
    const double mean = all.orElse(0.0);

    setProcRange(1e300, -1e300);
    const auto replacement = [&](int x, int y) {
        FiniteMean near;
        for (qint64 dx = -1; dx <= 1; ++dx) {
            for (qint64 dy = -1; dy <= 1; ++dy) {
                const qint64 nx = x + dx * m_grid.stepX;
                const qint64 ny = y + dy * m_grid.stepY;
                if ((dx != 0 || dy != 0) && m_grid.isInsideImage(nx, ny) &&
                    std::abs(valueAt(nx, ny) - mean) < limit) {
                    near.add(valueAt(nx, ny));
                }
            }
        }
        return near.orElse(0.0);
    };
    forEachPoint(
        m_grid,
        [&](int x, int y) {
            const double c = valueAt(x, y);
            setProcPoint(x, y, std::abs(c - mean) > limit ? replacement(x, y) : c);
        },
        [](int row) { qDebug() << row; });
    if (m_showProc) {
        genImg();
    }
}
