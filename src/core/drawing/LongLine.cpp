#include "drawing/LongLine.h"

#include <QPaintEngine>
#include <QPainter>
#include <algorithm>

namespace {
constexpr int PointsOfPiece = 24;
}

void drawLongLine(QPainter& painter, const QPolygonF& points) {
    // A drawing in a file is to hold whole lines, and dashes would begin anew with each piece.
    if (painter.paintEngine()->type() != QPaintEngine::Raster ||
        painter.pen().style() != Qt::SolidLine) {
        painter.drawPolyline(points);
        return;
    }
    for (int first = 0; first + 1 < points.size(); first += PointsOfPiece - 1) {
        painter.drawPolyline(points.constData() + first,
                             std::min(PointsOfPiece, points.size() - first));
    }
}
