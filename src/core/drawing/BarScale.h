#pragma once

#include <QRectF>

class Letters;
class QPainter;
struct ColorScale;

// What colour bars on the screen and in saved pictures have in common.

/// The colours of a map in the bar, its upper end at the top; one line a pixel. Without a range
/// (low not below high) the colour of the lower end everywhere, which is what the image shows.
void paintBarColors(QPainter& painter, const QRectF& bar, const ColorScale& colors, double low,
                    double high);

/// Ticks beside the right side of the bar with the painter's pen, their texts inside `inside`.
/// Texts nearer than `keepOff` to an end of the bar are left out, for the ends have their own.
void paintBarTicks(QPainter& painter, const Letters& letters, const QRectF& bar, double low,
                   double high, double keepOff, const QRectF& inside);

/// Triangles of this height over and under the bar with the colours of values outside the range.
void paintBarMarks(QPainter& painter, const QRectF& bar, const ColorScale& colors, double height);
