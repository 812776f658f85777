#pragma once

#include <vector>

#include "fitting/FitRule.h"
#include "fitting/FitValues.h"
#include "spectra/LaneErrors.h"
#include "spectra/LineFunctions.h"

/// Counting errors (1 sigma) and goodness of fit of packs of spectra, from the counts behind them:
/// the numbers of FitValues behind the first 2 m.
///
/// With mu-t(k) at energy k, F the basis, G = (F'F)^-1, S = post - pre, y = (mu-t - pre) / S, P and
/// Q the points of the lines before and after the edge and phi as in LineFunctions, a coefficient
/// changes by M(i, k) = dc_i / dmu-t(k):
///   LCF   u(i, k) = (G F')(i, k) / S(k),
///         M(i, k) = u(i, k) - [k in P] phi(k)' A_P^-1 sum_l u(i, l) (1 - y(l)) phi(l)
///                           - [k in Q] phi(k)' A_Q^-1 sum_l u(i, l) y(l) phi(l),
///         jump     D(k) = [k in Q] phi(k)' A_Q^-1 phi(midE) - [k in P] phi(k)' A_P^-1 phi(midE),
///         edge jump due to i: jump M(i, k) + c_i D(k), the jump as it is, not held at 0;
///   MLCF  M = G F' of the references, jump = sum of the c_i,
///         ratio: (M(i, k) - c_i / jump sum_j M(j, k)) / jump, also of ratios taken as 0.
/// Counts N1(k) and, of I0 energy j, N0(j), the mean of n(j) frames with the weight w(k, j), give
/// with s the same less dark counts
///   var = sum_k M(k)^2 N1(k) / s1(k)^2 + sum_j N0(j) / n(j) (sum_k M(k) w(k, j) / s0(k))^2,
///   v(k) = N1(k) / s1(k)^2 + sum_j w(k, j)^2 N0(j) / n(j) / s0(k)^2, without I0 for a single one,
///   chi2 = 1 / (K - m) sum_k S(k)^2 (y(k) - f(k))^2 / v(k),   sigma = sqrt(var chi2),
/// K points in the fit and m free parameters. The ranges and midE count as given. Without counts
/// every v(k) is 1: chi2 is then the variance of the residuals, and sigma goes by that.
///
/// NaN: errors and chi2 where a sum of counts in use is not above 0; everything but the sums where
/// no freedom is left or the references cannot be told apart; LCF's errors where a line has fewer
/// points than terms; what goes by the jump where a spectrum does not cross the middle of its edge
/// (midE = 0) or MLCF finds none; the errors of a coefficient that a constraint holds.
///
/// For one thread.
class CountingErrors {
  public:
    /// What has been fitted. The points of the lines count for LCF.
    struct Pack {
        lanes::Fits fits;
        lanes::Range line[2] = {};
        double midE[lanes::Count] = {};
        double dMut[lanes::Count] = {};
        unsigned held[lanes::Count] = {};  ///< see ConstrainedSolver
        int freedom[lanes::Count] = {};    ///< points less free parameters
    };

    /// Energies (eV) of the points of all spectra: at least two, finite, ascending.
    CountingErrors(const std::vector<double>& energies, const FitRule& rule, int references,
                   lanes::Units units = lanes::bestUnits());

    /// Of the first `count` spectra, whose 2 m first values stand in results.
    void evaluate(const Pack& pack, int count, double* results);

  private:
    void setLines(const Pack& pack);
    void finish(const Pack& pack, int l, double* values) const;
    void finishErrors(const Pack& pack, int l, double chi2, double* values) const;
    bool isHeld(const Pack& pack, int l, int r) const;

    FitRule m_rule;
    FitValues m_places;
    bool m_hasLines;
    const lanes::ErrorKernel m_kernel;
    LineFunctions m_functions;
    lanes::Lines m_lines;
    std::vector<double> m_perSpan;  // see lanes::ErrorSpace
    std::vector<double> m_variance;
    std::vector<double> m_perI0;
    double m_chi2[lanes::Count] = {};
    double m_rest[lanes::Count] = {};
    double m_square[lanes::Count] = {};
    std::vector<double> m_own;  // see lanes::ErrorSums
    std::vector<double> m_withJump;
    double m_jump[lanes::Count] = {};
};
