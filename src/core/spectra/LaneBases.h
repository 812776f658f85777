#pragma once

#include "spectra/Lanes.h"

// Least squares of spectra side by side that have energies of their own, so that no two of them
// share a basis: what LinearFit does for one of them at a time, to the same bits.
namespace lanes {

/// From a point to the next: y + (E - e) rise / run.
struct Piece {
    double e;  ///< eV
    double y;
    double rise;
    double run;
};

/// A curve through points of ascending energies, at least two: straight lines, of which the
/// outermost go on beyond the ends.
struct Polyline {
    const Piece* pieces = nullptr;
    int count = 0;              ///< 0: no such curve
    const int* near = nullptr;  ///< of equal steps of the energy, from the first on: a piece near
    int steps = 0;
    double stepsPerEv = 0.0;
    double shifts[2] = {};  ///< eV, added to an energy one after the other
};

/// The functions that a fit is made of: with `leading` 2 first 1 and the energy, then a curve for
/// each reference. The energies of spectrum l are energies[i] - corrections[l]; only those of its
/// points are looked at.
struct OwnBases {
    const double* energies;
    const double* corrections;
    Range points;
    int leading;
    const Polyline* curves;
    int references;

    int terms() const { return leading + references; }
};

/// Terms that BasisKernels::invert() takes at most.
constexpr int MostInverted = 10;

struct BasisKernels {
    /// rows[(i * terms + r) * Count + l]: function r at energy i, wherever that is a point of any
    /// spectrum.
    void (*rows)(const OwnBases& bases, double* rows);

    /// normal[(r * terms + s) * Count + l] = sum of the products of functions r and s over the
    /// points, right[r * Count + l] = that of function r and y[i * Count + l].
    void (*normal)(const double* rows, int terms, const Range& points, const double* y,
                   double* normal, double* right);

    /// Solves the equations of every spectrum as LuDecomposition does; both sides are used up.
    void (*solve)(int terms, double* normal, double* right, double* solution);

    /// inverse, laid out as `normal`: of the matrix of every spectrum, as invertPositive() finds
    /// it; NaN for one that is singular. isSingular: Count of them.
    void (*invert)(int terms, const double* normal, double* inverse, bool* isSingular);

    /// The rows of Fits::response from those of the basis, with `inverse` laid out as `normal`: a
    /// number for each reference, then, with leading functions, their sum.
    void (*response)(const double* rows, int terms, int leading, const Range& points,
                     const double* inverse, double* out);
};

const BasisKernels& basisKernels(Units units);

}  // namespace lanes
