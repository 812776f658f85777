#pragma once

#include <QPolygonF>
#include <QRectF>
#include <QVector>

#include "drawing/ChCoord.h"
#include "drawing/PlotCurve.h"
#include "drawing/Ticks.h"

struct SpectrumPlot;

/// The sizes of letters that a plot's layout depends on, in units of the painter.
struct PlotLetters {
    double row;               ///< height of a line
    double number;            ///< width of a number beside the ordinate
    double difference = 0.0;  ///< width of one beside the residual, which has more digits
};

/// Where everything of a plot lies: made once from the value, then painted. It needs no painter and
/// no application.
struct PlotLayout {
    /// The plot in a rectangle.
    PlotLayout(const SpectrumPlot& plot, const QRectF& rect, const PlotLetters& letters);

    /// The axes' rectangle in `all`, which has room under it for a residual or not.
    static QRectF axesIn(const QRectF& all, const PlotLetters& letters, bool withResidual);

    QRectF all;
    QRectF axes;
    QRectF residual;            ///< under the axes, of no size without a fit on display
    bool hasRoom = false;       ///< else nothing but paper is painted, and what follows is empty
    QVector<PlotCurve> curves;  ///< empty: nothing to show, and no axes
    ChCoord coord;              ///< from units of the axes to places in `all`
    Ticks xTicks;
    Ticks yTicks;
    QPolygonF differences;  ///< sample minus fit over the abscissa
    double reach = 1.0;     ///< of the residual's ordinate, the same to both sides of zero

    /// The largest difference that is to be seen, which the residual's ends are labelled with.
    double largestDifference() const { return reach / 1.1; }
    double residualToY(double difference) const {
        return residual.center().y() - difference / reach * residual.height() / 2;
    }
    /// The lowest line of axes and residual, where the ticks of the abscissa stand.
    double foot() const { return residual.isEmpty() ? axes.bottom() : residual.bottom(); }

  private:
    void placeResidual(const SpectrumPlot& plot);
};
