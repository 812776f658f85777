#pragma once

#include "spectra/Background.h"
#include "spectra/Spectrum.h"

/// A pre-edge or post-edge background: the fitted function at every energy of the spectrum that
/// was fitted, so that point i lies under point i of that spectrum, and its coefficients.
class BgCurve : public Spectrum {
  public:
    /// Fits a kind of background (least squares) to the points with start <= E < end; the scan
    /// stops at the first energy at or beyond the end. A spectrum of fewer points than the kind
    /// needs leaves the curve as it was.
    void fit(int kind, const Spectrum& spectrum, double start, double end);

    int kind() const { return m_kind; }
    /// The range of the last fit in eV: start <= E < end.
    double start() const { return m_start; }
    double end() const { return m_end; }
    bool isVictreen() const { return m_kind == 1; }
    double c0() const { return m_c[0]; }  ///< constant
    double c1() const { return m_c[1]; }  ///< of lambda^3
    double c2() const { return m_c[2]; }  ///< of lambda^4
    double c3() const { return m_c[3]; }  ///< slope of the straight line

  private:
    template <typename Kind>
    void fit(const Spectrum& spectrum, double start, double end);
    template <typename Kind>
    void evaluate(const Spectrum& spectrum, const double* coefficients);

    int m_kind = 0;
    double m_start = 0.0;
    double m_end = 0.0;
    double m_c[4] = {};
};
