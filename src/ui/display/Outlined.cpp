#include "display/Outlined.h"

#include <QPainter>

#include "drawing/DrawText.h"

void drawOutlined(QPainter& painter, const QLineF& line, const QColor& color) {
    painter.setPen(QPen(QColor(0, 0, 0, 90), 3));
    painter.drawLine(line);
    painter.setPen(QPen(color, 1));
    painter.drawLine(line);
}

void drawOutlined(QPainter& painter, const QRectF& area, const QColor& color) {
    painter.setPen(QPen(QColor(0, 0, 0, 90), 3));
    painter.drawRect(area);
    painter.setPen(QPen(color, 1));
    painter.drawRect(area);
}

void drawLabel(QPainter& painter, const QPointF& anchor, const QString& text,
               Qt::Alignment alignment, const QRectF& inside, const QColor& color) {
    painter.setPen(QColor(0, 0, 0, 150));
    for (const QPointF& shift : {QPointF(1, 1), QPointF(-1, 0), QPointF(0, -1)}) {
        drawText(painter, anchor + shift, text, alignment, inside.translated(shift));
    }
    painter.setPen(color);
    drawText(painter, anchor, text, alignment, inside);
}
