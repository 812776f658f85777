#include "maps/Deglitch.h"

#include <QDebug>
#include <cmath>

#include "maps/FillBin.h"

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

/// Values over a grid, 0.0 beside it.
class Points {
  public:
    Points(const AnalysisGrid& grid, const double* values) : m_grid(grid), m_values(values) {}

    double at(qint64 x, qint64 y) const {
        return m_grid.isInsideImage(x, y) ? m_values[y * m_grid.width + x] : 0.0;
    }

    double glitchMeasure(int x, int y) const {
        const double c = at(x, y);
        const auto across = [&](qint64 dx, qint64 dy, double* measure) {
            if (!m_grid.isAnalysed(x - dx, y - dy) || !m_grid.isAnalysed(x + dx, y + dy)) {
                return false;
            }
            *measure = std::abs(2 * c - at(x - dx, y - dy) - at(x + dx, y + dy));
            return true;
        };
        double h = 0.0;
        double v = 0.0;
        const bool hasH = across(m_grid.stepX, 0, &h);
        const bool hasV = across(0, m_grid.stepY, &v);
        return hasH && hasV ? (h + v) / 2 : (hasH ? h : v);
    }

    double meanOfNeighbours(int x, int y) const {
        const qint64 dx = m_grid.stepX;
        const qint64 dy = m_grid.stepY;
        FiniteMean mean;
        const qint64 neighbours[4][2] = {{x - dx, y}, {x + dx, y}, {x, y - dy}, {x, y + dy}};
        for (const auto& n : neighbours) {
            if (m_grid.isAnalysed(n[0], n[1])) {
                mean.add(at(n[0], n[1]));
            }
        }
        return mean.orElse(at(x, y));
    }

    /// Of the eight neighbours that are within limit of the mean.
    double meanOfNear(int x, int y, double mean, double limit) const {
        FiniteMean near;
        for (qint64 dx = -1; dx <= 1; ++dx) {
            for (qint64 dy = -1; dy <= 1; ++dy) {
                const qint64 nx = x + dx * m_grid.stepX;
                const qint64 ny = y + dy * m_grid.stepY;
                if ((dx != 0 || dy != 0) && m_grid.isAnalysed(nx, ny) &&
                    std::abs(at(nx, ny) - mean) < limit) {
                    near.add(at(nx, ny));
                }
            }
        }
        return near.orElse(0.0);
    }

  private:
    const AnalysisGrid& m_grid;
    const double* m_values;
};

/// One of the two passes over a map: forEachPoint() as far as there is a wish to go on.
template <typename Visit, typename Log>
bool visitAll(const AnalysisGrid& grid, double from, const GoOn& goOn, Visit visit, Log log) {
    const double share = 0.5 / static_cast<double>(grid.rows());
    double done = from;
    bool goesOn = true;
    forEachPoint(
        grid,
        [&](int x, int y) {
            if (goesOn && !grid.isLeftOut(x, y)) {
                visit(x, y);
            }
        },
        [&](int row) {
            log(row);
            goesOn = goesOn && (!goOn || goOn(done += share));
        });
    return goesOn;
}

void keepQuiet(int) {}

void put(const AnalysisGrid& grid, int x, int y, double value, double* values, Processed* made) {
    if (std::isfinite(value)) {
        made->min = std::fmin(made->min, value);
        made->max = std::fmax(made->max, value);
    }
    fillBin(values, grid, x, y, grid.halfW, grid.halfH, value);
}

}  // namespace

std::optional<Processed> deglitched(const MapToProcess& map, double factor, double ratio,
                                    const GoOn& goOn) {
    const AnalysisGrid& grid = map.grid;
    const Points points(grid, map.values.constData());
    Processed made{map.values, 1e300, -1e300};
    double* const values = made.values.data();
    FiniteMean measures;
    if (!visitAll(
            grid, 0.0, goOn,
            [&](int x, int y) {
                const double g = points.glitchMeasure(x, y);
                fillBin(values, grid, x, y, grid.halfW, grid.halfH, g);
                measures.add(g);
            },
            keepQuiet)) {
        return {};
    }
    const double threshold = measures.orElse(0.0) * factor;
    const double margin = (map.max - map.min) * ratio;
    const Points marks(grid, values);
    if (!visitAll(
            grid, 0.5, goOn,
            [&](int x, int y) {
                const double c = points.at(x, y);
                const double g =
                    grid.isInsideImage(x, y) ? marks.at(x, y) : points.glitchMeasure(x, y);
                const bool outside = c < map.min + margin || c > map.max - margin;
                put(grid, x, y, g > threshold && outside ? points.meanOfNeighbours(x, y) : c,
                    values, &made);
            },
            [](int row) { qDebug() << "deglitch 2" << row; })) {
        return {};
    }
    return made;
}

std::optional<Processed> smoothed(const MapToProcess& map, double limit, const GoOn& goOn) {
    const AnalysisGrid& grid = map.grid;
    const Points points(grid, map.values.constData());
    // The first pass compares the value with the limit, the second its distance from the mean.
    FiniteMean all;
    if (!visitAll(
            grid, 0.0, goOn,
            [&](int x, int y) {
                const double c = points.at(x, y);
                if (std::abs(c) < limit) {
                    all.add(c);
                }
            },
            keepQuiet)) {
        return {};
    }
    const double mean = all.orElse(0.0);
    Processed made{map.values, 1e300, -1e300};
    double* const values = made.values.data();
    if (!visitAll(
            grid, 0.5, goOn,
            [&](int x, int y) {
                const double c = points.at(x, y);
                const bool isFar = std::abs(c - mean) > limit;
                put(grid, x, y, isFar ? points.meanOfNear(x, y, mean, limit) : c, values, &made);
            },
            [](int row) { qDebug() << row; })) {
        return {};
    }
    return made;
}
