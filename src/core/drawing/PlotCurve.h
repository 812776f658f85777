#pragma once

#include <QColor>
#include <QPolygonF>
#include <QString>
#include <QVector>

class ChCoord;
class Letters;
class QPainter;

/// A curve of the spectrum plot, in the units of its axes.
struct PlotCurve {
    QPolygonF points;
    QColor color;
    Qt::PenStyle style;
    QString name;  // empty: not in the legend
};

/// Black on white, as in saved pictures, until told otherwise.
struct PlotColors {
    QColor ink = Qt::black;
    QColor paper = Qt::white;
    QColor faint = Qt::gray;  ///< of a note that there is nothing
};

/// Names the curves, in a box where it hides the least of them.
void paintLegend(QPainter& painter, const Letters& letters, const QRectF& plot,
                 const QVector<PlotCurve>& list, const ChCoord& coord, const PlotColors& colors);
