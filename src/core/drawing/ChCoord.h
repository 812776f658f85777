#pragma once

/// Linear transform between a screen rectangle and a real rectangle, with tick spacings. Either
/// pair of ends may be in decreasing order. A range of no width gives infinities or NaN.
class ChCoord {
  public:
    double sx0 = 0.0, sx1 = 1.0;  ///< screen x at the two ends
    double sy0 = 0.0, sy1 = 1.0;
    double rx0 = 0.0, rx1 = 1.0;  ///< real x at the same ends
    double ry0 = 0.0, ry1 = 1.0;

    void setScreen(double x0, double x1, double y0, double y1);
    void setReal(double x0, double x1, double y0, double y1);

    double r2sX(double r) const { return sx0 + (r - rx0) * (sx1 - sx0) / (rx1 - rx0); }
    double r2sY(double r) const { return sy0 + (r - ry0) * (sy1 - sy0) / (ry1 - ry0); }
    double r2sLengthX(double d) const { return (sx1 - sx0) / (rx1 - rx0) * d; }
    double r2sLengthY(double d) const { return (sy1 - sy0) / (ry1 - ry0) * d; }
    double s2rX(double s) const { return rx0 + (s - sx0) * (rx1 - rx0) / (sx1 - sx0); }
    double s2rY(double s) const { return ry0 + (s - sy0) * (ry1 - ry0) / (sy1 - sy0); }
    double s2rOffsetX(double s) const { return (rx1 - rx0) / (sx1 - sx0) * (s - sx0); }
    double s2rOffsetY(double s) const { return (ry1 - ry0) / (sy1 - sy0) * (s - sy0); }
    double s2rClampedX(double s) const { return clamped(s2rX(s), rx0, rx1); }
    double s2rClampedY(double s) const { return clamped(s2rY(s), ry0, ry1); }
    double s2rLengthX(double d) const { return (rx1 - rx0) / (sx1 - sx0) * d; }
    double s2rLengthY(double d) const { return (ry1 - ry0) / (sy1 - sy0) * d; }

    /// The smallest of 1, 2 and 5 times base times a power of ten whose ticks lie further apart
    /// than spacing pixels; base times 10^8 when none of eight decades does.
    double tickStepX(double base, double spacing) const;
    double tickStepY(double base, double spacing) const;

    struct NiceRange {
        double step;
        double first;
        double last;
    };
    /// Step and the first and last tick between a and c. For spans of at least 1 only: the exponent
    /// is cut towards zero, so that a smaller span, as well as an empty or reversed one, gives a
    /// step of 0 and ticks that are no numbers.
    static NiceRange niceRange(double a, double c);

  private:
    static double clamped(double value, double end0, double end1);
};
