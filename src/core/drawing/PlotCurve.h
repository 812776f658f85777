#pragma once

#include <QColor>
#include <QPolygonF>
#include <QString>
#include <QVector>

class ChCoord;
class QPainter;

/// A curve of the spectrum plot, in the units of its axes.
struct PlotCurve {
    QPolygonF points;
    QColor color;
    Qt::PenStyle style;
    QString name;  // empty: not in the legend
};

struct PlotColors {
    QColor ink;
    QColor paper;
};

/// Names the curves, in a box where it hides the least of them.
void paintLegend(QPainter& painter, const QRectF& plot, const QVector<PlotCurve>& list,
                 const ChCoord& coord, const PlotColors& colors);
