#include "measurement/Area.h"

#include <algorithm>

Area Area::ellipse(int x0, int y0, int x1, int y1) {
    const Area corners{std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
    if (corners.isWhole()) {
        return corners;
    }
    Area area = corners;
    area.shape = AreaShape::Ellipse;
    return area;
}

Area Area::polygon(const QVector<QPoint>& vertices) {
    const QRect box = boundsOf(vertices);
    return {box.left(),         box.top(), box.left() + box.width(), box.top() + box.height(),
            AreaShape::Polygon, vertices};
}

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
    if (shape != AreaShape::Rectangle || image.isEmpty() ||
        (isInside(x0, y0) && isInside(x1, y1))) {
        return *this;
    }
    const QRect inside = within(image.width(), image.height()).toRect();
    return {inside.left(), inside.top(), inside.left() + inside.width(),
            inside.top() + inside.height()};
}

std::shared_ptr<const PixelSet> Area::pixels(const QSize& image) const {
    const QRect whole(QPoint(), image);
    switch (shape) {
        case AreaShape::Rectangle:
            return nullptr;
        case AreaShape::Ellipse:
            return std::make_shared<const PixelSet>(
                pixelsInEllipse(QRect(x0, y0, x1 - x0, y1 - y0), whole));
        case AreaShape::Polygon:
            return std::make_shared<const PixelSet>(pixelsInPolygon(vertices, whole));
    }
    return nullptr;
}

bool Area::hasPixels(const QSize& image) const {
    const std::shared_ptr<const PixelSet> inside = pixels(image);
    return inside ? !inside->isEmpty() : !within(image.width(), image.height()).isEmpty();
}

Area Area::moved(const QPoint& by) const {
    Area area{x0 + by.x(), y0 + by.y(), x1 + by.x(), y1 + by.y(), shape, vertices};
    for (QPoint& vertex : area.vertices) {
        vertex += by;
    }
    return area;
}

bool sameArea(const Area& a, const Area& b, const QSize& image) {
    if (a.shape != AreaShape::Rectangle || b.shape != AreaShape::Rectangle) {
        return a == b;
    }
    return a.within(image.width(), image.height()) == b.within(image.width(), image.height());
}
