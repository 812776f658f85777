#pragma once

#include <QPoint>
#include <QVector>

#include "base/Limits.h"
#include "maps/PixelSet.h"

// Which pixels lie in a shape. A pixel (x, y) does where its middle, (x + 0.5, y + 0.5), does;
// corners and vertices are whole pixels, so that pixel n reaches from n to n + 1. All that follows
// is worked out in whole numbers as long as coordinates stay below Limits::LargestCoordinate.

enum class AreaShape { Rectangle, Ellipse, Polygon };

/// The pixels of the image whose middle lies in the ellipse that touches the sides of the box, or
/// on it.
PixelSet pixelsInEllipse(const QRect& box, const QRect& image);

/// The pixels of the image whose middle lies in the closed polygon by the even-odd rule: where
/// lines of it cross, what they enclose twice is outside. A middle on a line that bounds the
/// polygon on the left is inside, one on a line that bounds it on the right is not.
PixelSet pixelsInPolygon(const QVector<QPoint>& vertices, const QRect& image);

/// The smallest rectangle that holds the vertices; empty where they lie on one line of pixels.
QRect boundsOf(const QVector<QPoint>& vertices);

/// A closed polygon that holds exactly these pixels by the rule above, whatever their shape: the
/// outlines of their parts and holes one after the other, joined by lines that are walked there
/// and back. Empty for none, and where it would have more vertices than that. Throws
/// NotEnoughMemory.
QVector<QPoint> outlineOf(const PixelSet& pixels, qint64 most = Limits::MostVertices);
