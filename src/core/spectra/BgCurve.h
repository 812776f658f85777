#pragma once

#include "spectra/Spectrum.h"

/// A pre-edge or post-edge background: the fitted function at every energy of the spectrum that
/// was fitted, so that point i lies under point i of that spectrum, and its coefficients.
class BgCurve : public Spectrum {
  public:
    /// Fits y = c0 + c3 E (least squares) to the points with start <= E < end; the scan stops at
    /// the first energy at or beyond the end. A spectrum of fewer than three points leaves the
    /// curve as it was; one point in the range gives its value, none gives 0.
    void fitLine(const Spectrum& spectrum, double start, double end);

    /// Fits y = c0 + c1 lambda^3 + c2 lambda^4 with lambda = Hc / E (the Victreen form) over the
    /// same range. A spectrum of fewer than four points leaves the curve as it was; fewer than
    /// three points in the range make the system singular, whose solution is then arbitrary.
    void fitVictreen(const Spectrum& spectrum, double start, double end);

    bool isVictreen() const { return m_victreen; }
    double c0() const { return m_c0; }  ///< constant
    double c1() const { return m_c1; }  ///< of lambda^3
    double c2() const { return m_c2; }  ///< of lambda^4
    double c3() const { return m_c3; }  ///< slope of the straight line

  private:
    /// The points become the function at every energy of the spectrum.
    template <typename Function>
    void evaluate(const Spectrum& spectrum, Function function);

    bool m_victreen = false;
    double m_c0 = 0.0;
    double m_c1 = 0.0;
    double m_c2 = 0.0;
    double m_c3 = 0.0;
};
