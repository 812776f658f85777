#pragma once

#include <QVector>

/// Ticks of an axis from low to high.
struct Ticks {
    double step = 0.0;
    QVector<double> values;
};

/// Round ticks inside low..high, for spans of any size: the nice range of the span scaled up by a
/// power of ten to at least 1 and down again. None for a range that is empty or not finite.
Ticks ticksBetween(double low, double high);
