#include "measurement/Settings.h"

#include <algorithm>

QRectF Area::within(int width, int height) const {
    const QPointF low(std::min(x0, x1), std::min(y0, y1));
    const QPointF high(std::max(x0, x1), std::max(y0, y1));
    const QRectF inside =
        QRectF(low, high).intersected(QRectF(0, 0, std::max(0, width), std::max(0, height)));
    return inside.isEmpty() ? QRectF() : inside;
}
