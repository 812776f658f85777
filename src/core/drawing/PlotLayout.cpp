#include "drawing/PlotLayout.h"

#include <algorithm>
#include <cmath>

#include "drawing/SpectrumPlot.h"

namespace {

constexpr double ResidualGap = 6.0;
constexpr double ResidualRows = 3.6;
constexpr double LeastSide = 20.0;
constexpr double MostOfResidual = 0.3;  // of the height that it shares with the axes

/// The range of finite values that a plot can span.
struct Range {
    double low = 1e150;
    double high = -1e150;

    void take(double v) {
        if (std::abs(v) < 1e150) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    }
    /// Widened until it is one.
    void settle() {
        if (low > high) {
            low = 0.0;
            high = 1.0;
        } else if (!(high - low > 1e-9 * std::max(std::abs(low), std::abs(high)))) {
            const double half = std::max(1.0, 1e-3 * std::abs(low));
            low -= half;
            high += half;
        }
    }
};

/// What all curves span, with some room above and below.
QRectF extent(const QVector<PlotCurve>& curves) {
    Range x;
    Range y;
    for (const PlotCurve& curve : curves) {
        for (const QPointF& p : curve.points) {
            if (std::isfinite(p.x()) && std::isfinite(p.y())) {
                x.take(p.x());
                y.take(p.y());
            }
        }
    }
    x.settle();
    y.settle();
    const double room = 0.04 * (y.high - y.low);
    return QRectF(x.low, y.low - room, x.high - x.low, y.high - y.low + 2 * room);
}

/// Of a plot's residual.
double residualHeight(const QRectF& all, const PlotLetters& letters) {
    const double shared = all.height() - 2.75 * letters.row - 12 - ResidualGap;
    return std::max(0.0, std::min(ResidualRows * letters.row, MostOfResidual * shared));
}

}  // namespace

QRectF PlotLayout::axesIn(const QRectF& all, const PlotLetters& letters, bool withResidual) {
    // Room for two rows of text below and a column of numbers beside an upright title.
    const double under = withResidual ? residualHeight(all, letters) + ResidualGap : 0.0;
    const double number =
        withResidual ? std::max(letters.number, letters.difference) : letters.number;
    return all.adjusted(letters.row + number + 14, letters.row * 0.75, -letters.row,
                        -2 * letters.row - 12 - under);
}

PlotLayout::PlotLayout(const SpectrumPlot& plot, const QRectF& rect, const PlotLetters& letters)
    : all(rect), axes(axesIn(rect, letters, plot.showsFit())) {
    hasRoom = axes.width() >= LeastSide && axes.height() >= LeastSide;
    if (!hasRoom) {
        return;
    }
    curves = plot.curves();
    if (curves.isEmpty()) {
        return;
    }
    const QRectF shown = plot.zoom.value_or(extent(curves));
    coord.setScreen(axes.left(), axes.right(), axes.bottom(), axes.top());
    coord.setReal(shown.left(), shown.right(), shown.top(), shown.bottom());
    xTicks = ticksBetween(coord.rx0, coord.rx1);
    yTicks = ticksBetween(coord.ry0, coord.ry1);
    if (plot.showsFit()) {
        residual = QRectF(axes.left(), axes.bottom() + ResidualGap, axes.width(),
                          residualHeight(all, letters));
        placeResidual(plot);
    }
}

void PlotLayout::placeResidual(const SpectrumPlot& plot) {
    differences = plot.residual();
    Range range;
    range.take(0.0);
    for (QPointF& p : differences) {
        p.setX(plot.abscissaOf(p.x()));
        if (p.x() >= coord.rx0 && p.x() <= coord.rx1) {
            range.take(p.y());
        }
    }
    // Equal reach to both sides of zero: the eye sees at once whether the residual is lopsided.
    reach = std::max(1e-6, 1.1 * std::max(-range.low, range.high));
}
