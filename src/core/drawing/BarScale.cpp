#include "drawing/BarScale.h"

#include <QPainter>
#include <QPolygonF>

#include "base/ColorMap.h"
#include "drawing/ChCoord.h"
#include "drawing/DrawText.h"
#include "drawing/Letters.h"
#include "drawing/Ticks.h"

void paintBarColors(QPainter& painter, const QRectF& bar, const ColorScale& colors, double low,
                    double high) {
    const int steps = toClampedInt(bar.height(), 2, 1 << 15);
    for (int i = 0; i < steps; ++i) {
        const double t = high > low ? 1.0 - i / (steps - 1.0) : 0.0;
        const uchar* c = colors.at(t);
        painter.fillRect(QRectF(bar.left(), bar.top() + i, bar.width(), 1.0),
                         QColor(c[0], c[1], c[2]));
    }
}

void paintBarTicks(QPainter& painter, const Letters& letters, const QRectF& bar, double low,
                   double high, double keepOff, const QRectF& inside) {
    ChCoord coord;
    coord.setScreen(0, 1, bar.bottom(), bar.top());
    coord.setReal(0, 1, low, high);
    const Ticks ticks = ticksBetween(low, high);
    const double room = letters.height();
    double last = 1e300;
    for (double value : ticks.values) {
        const double y = coord.r2sY(value);
        painter.drawLine(QPointF(bar.right(), y), QPointF(bar.right() + room / 4, y));
        if (y < bar.top() + keepOff || y > bar.bottom() - keepOff || last - y < room) {
            continue;
        }
        last = y;
        drawText(painter, letters, QPointF(bar.right() + room / 3, y), tickText(value, ticks.step),
                 Qt::AlignLeft | Qt::AlignVCenter, inside);
    }
}

void paintBarMarks(QPainter& painter, const QRectF& bar, const ColorScale& colors, double height) {
    const auto triangle = [&](double base, double tip, const ColorScale::Rgb& rgb) {
        painter.setBrush(QColor(rgb[0], rgb[1], rgb[2]));
        painter.drawPolygon(QPolygonF({QPointF(bar.left(), base), QPointF(bar.right(), base),
                                       QPointF(bar.center().x(), tip)}));
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    triangle(bar.top() - 1, bar.top() - height, colors.above);
    triangle(bar.bottom() + 1, bar.bottom() + height, colors.below);
    painter.restore();
}
