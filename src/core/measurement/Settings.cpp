#include "measurement/Settings.h"

#include <algorithm>

QRectF Area::within(int width, int height) const {
    const QPointF low(std::min(x0, x1), std::min(y0, y1));
    const QPointF high(std::max(x0, x1), std::max(y0, y1));
    const QRectF inside =
        QRectF(low, high).intersected(QRectF(0, 0, std::max(0, width), std::max(0, height)));
    return inside.isEmpty() ? QRectF() : inside;
}

Area Area::clipped(const QSize& image) const {
    const auto isInside = [&image](int x, int y) {
        return x >= 0 && y >= 0 && x <= image.width() && y <= image.height();
    };
    if (image.isEmpty() || (isInside(x0, y0) && isInside(x1, y1))) {
        return *this;
    }
    const QRect inside = within(image.width(), image.height()).toRect();
    return {inside.left(), inside.top(), inside.left() + inside.width(),
            inside.top() + inside.height()};
}
