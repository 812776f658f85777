#pragma once

#include <cstddef>

#include "spectra/Background.h"

// Spectra that are worked on side by side, for speed: every operation of a kernel is done for all
// of them before the next. Each spectrum sees its own operations in the order in which it would
// see them alone, so that it gets the same bits whoever is beside it.
namespace lanes {

/// Spectra in a pack. Value i of spectrum l of a pack is at [i * Count + l].
constexpr int Count = 8;

/// The units of the processor that a kernel may use. All of them give the same bits.
enum class Units { Baseline, Wide4, Wide8 };

/// The widest that this processor has.
Units bestUnits();

/// Coefficients of a background's curve for every spectrum of a pack, in the order of its kind.
struct Curve {
    double c[background::MaxTerms][Count];
};

/// What curves of a kind are drawn over: the two numbers of every energy, see background::Abscissa.
struct Abscissae {
    int kind;
    const double* x;
    const double* z;
};

/// Indices first <= i < end of the points that count, for every spectrum of a pack.
struct Range {
    int first[Count];
    int end[Count];
};

/// Two neighbouring energies for every spectrum, with their abscissae, and one that is between them
/// or beyond.
struct Bracket {
    double at[Count];    ///< eV
    double e[2][Count];  ///< eV, not alike
    double x[2][Count];
    double z[2][Count];
};

/// Where mu-t of a row of bins comes from at one energy: one number a bin.
struct Sums {
    const double* i1;      ///< box sums of the I1 frame
    const double* before;  ///< of the I0 frame at or before the energy; null: s0 is 1.0
    const double* after;   ///< of the next I0 frame; null: no interpolation
    const double* dark;    ///< of the dark frame; null: none
    double fromBefore;     ///< energy less that of the I0 frame before
    double span;           ///< energy between the two I0 frames
};

struct Kernels {
    /// Counts as doubles.
    void (*fromCounts)(const unsigned short* counts, std::ptrdiff_t n, double* out);

    /// mu-t of the pack of bins from `bin` on: mu[i * Count + l] = ln(s0 / s1) at energy i, 1.0
    /// where s0 or s1 is not above 0 (no counts); lacksCounts[l] tells whether that is so at any.
    void (*muT)(const Sums* sums, int energies, std::size_t bin, double* mu, bool* lacksCounts);

    /// Energy at which each spectrum first rises through minimum + fraction (maximum - minimum),
    /// interpolated; e[0] where it does not. At least one point.
    void (*risingEdge)(const double* mu, const double* e, int n, double fraction, double* edge);

    /// sums[k * Count + l] = sum over the spectrum's range of functions[i * Terms + k] mu[i], in
    /// ascending order; the functions of a kind of background.
    void (*rangeSums)(const double* mu, int kind, const double* functions, const Range& range,
                      double* sums);

    /// Mean energy at which each spectrum crosses the middle between two curves between two points
    /// of its range; 0.0 for none.
    void (*middle)(const double* mu, const double* e, const Abscissae& at, const Curve& pre,
                   const Curve& post, const Range& range, double* midE);

    /// Post-edge less pre-edge curve of each spectrum, both interpolated in its bracket.
    void (*jump)(int kind, const Bracket& bracket, const Curve& pre, const Curve& post,
                 double* jump);

    /// y[p] = (mu - pre) / (post - pre) at points[p]; span[p] = post - pre, unless it is null.
    void (*doubleNormalised)(const double* mu, const Abscissae& at, const Curve& pre,
                             const Curve& post, const int* points, int count, double* y,
                             double* span);

    /// sums[r * Count + l] = sum of f[p * stride + r] y[p] over the points, in their order.
    void (*projections)(const double* y, const double* f, int stride, int count, double* sums);

    /// The solutions x[k * Count + l] of n equations that are decomposed, one matrix for all
    /// spectra; see substitute(). Must not overlap b.
    void (*substitute)(const double* lu, const int* row, int n, const double* b, double* x);
    /// The same with a matrix for each spectrum, lu[(i * n + k) * Count + l], and b in the order of
    /// its rows.
    void (*substituteOwn)(const double* lu, int n, const double* b, double* x);
};

const Kernels& kernels(Units units);

}  // namespace lanes
