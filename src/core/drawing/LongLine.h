#pragma once

#include <QPolygonF>

class QPainter;

/// Draws a solid line through the points in pieces: a painter that smooths edges on a raster takes
/// a time that grows with the square of the number of points of one line.
void drawLongLine(QPainter& painter, const QPolygonF& points);
