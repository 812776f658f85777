#pragma once

#include <QColor>
#include <QLineF>
#include <QRectF>
#include <Qt>

class QPainter;
class QString;

// Lines and letters that are seen on any picture, with a dark edge.

void drawOutlined(QPainter& painter, const QLineF& line, const QColor& color);
void drawOutlined(QPainter& painter, const QRectF& area, const QColor& color);
/// See drawText() in drawing/DrawText.h.
void drawLabel(QPainter& painter, const QPointF& anchor, const QString& text,
               Qt::Alignment alignment, const QRectF& inside, const QColor& color);
