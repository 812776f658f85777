#pragma once

#include <QRectF>
#include <QSize>
#include <QVector>
#include <memory>

#include "maps/AreaShape.h"

/// The part of the image that is analysed: two corners in pixels, in any order, the larger ones not
/// included; all zero: the whole image. In it a shape, outside of which no bin is analysed.
struct Area {
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;
    AreaShape shape = AreaShape::Rectangle;
    QVector<QPoint> vertices = {};  ///< of a polygon; the corners are those around it

    /// Between the corners; four zeros: the whole image.
    static Area ellipse(int x0, int y0, int x1, int y1);
    /// At least three vertices.
    static Area polygon(const QVector<QPoint>& vertices);

    bool isWhole() const {
        return x0 == 0 && y0 == 0 && x1 == 0 && y1 == 0 && shape == AreaShape::Rectangle;
    }
    /// The part of the area between its corners that lies inside the image, empty for none.
    QRectF within(int width, int height) const;
    /// That part of a rectangle as an area, all zero for none; the area itself where there is no
    /// image. Other shapes stay as they are, also where they reach over the edge.
    Area clipped(const QSize& image) const;
    /// The pixels of an image that lie in the shape, see maps/AreaShape.h; null for a rectangle.
    std::shared_ptr<const PixelSet> pixels(const QSize& image) const;
    /// Whether it has a pixel of the image.
    bool hasPixels(const QSize& image) const;
    Area moved(const QPoint& by) const;

    bool operator==(const Area& o) const {
        return x0 == o.x0 && y0 == o.y0 && x1 == o.x1 && y1 == o.y1 && shape == o.shape &&
               vertices == o.vertices;
    }
};

/// Whether an image has the same pixels in both.
bool sameArea(const Area& a, const Area& b, const QSize& image);
