#pragma once

#include <QRectF>

class QPainter;

// What colour bars on the screen and in saved pictures have in common.

enum class BarColors { Grey, False };

/// The colours of a table in the bar, its upper end at the top; one line a pixel. Without a range
/// (low not below high) the colour of the lower end everywhere, which is what the image shows.
void paintBarColors(QPainter& painter, const QRectF& bar, BarColors colors, double low,
                    double high);

/// Ticks beside the right side of the bar with the painter's pen and font, their texts inside
/// `inside`. Texts nearer than `keepOff` to an end of the bar are left out, for the ends have their
/// own.
void paintBarTicks(QPainter& painter, const QRectF& bar, double low, double high, double keepOff,
                   const QRectF& inside);
