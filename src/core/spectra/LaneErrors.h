#pragma once

#include "spectra/Lanes.h"

// What counting statistics do to least-squares fits, a pack of spectra at a time.
namespace lanes {

/// How I0 at one energy of I1 is made of the counts of two neighbouring I0 energies [0] and [1].
struct I0Share {
    double weight[2] = {};  ///< of their mean sums in s0; 0: not of this one
    double shared[2] = {};  ///< the same, 0 for what no other point uses
    /// What a raw mean sum adds to the variance of s0: weight^2 / n. `all`: to that of the point by
    /// itself, nothing where a single I0 energy serves all points. `own`: of an I0 energy that no
    /// other point uses.
    double all[2] = {};
    double own[2] = {};
    int first = 0;         ///< number of I0 energy [0]
    bool hasOwn = false;   ///< any of `own`
    bool isPlain = false;  ///< the sum of one frame that no other point uses
};

/// The counts that the spectra of a pack were formed from; one of `sums` and of `shares` for every
/// energy, ascending. The pack starts at `bin` of the sums.
struct Counts {
    const Sums* sums = nullptr;  ///< null: not counts, every variance of mu-t is 1
    const I0Share* shares = nullptr;
    std::size_t bin = 0;

    // The I0 energies, for those that several points share; none otherwise.
    int i0Energies = 0;
    const double* i0 = nullptr;  ///< mean sums: energy j at i0[j * i0Stride + bin]
    std::size_t i0Stride = 0;
    const double* i0PerFrame = nullptr;  ///< 1 / n for the mean of n frames
};

/// `stride` numbers for every point of a fit, either the same for all spectra, those of energy i
/// from values[(i - first) * stride] on, or each spectrum's own, number r of energy i at
/// values[(i * stride + r) * Count + spectrum].
struct Rows {
    const double* values = nullptr;
    int stride = 0;
    int first = 0;
    bool areOwn = false;
};

/// The fits of a pack: coefficients c of y in the basis F over the points.
struct Fits {
    Range points = {};
    const double* y = nullptr;     ///< y[i * Count + spectrum], at all energies
    const double* span = nullptr;  ///< post-edge less pre-edge curve, likewise; with lines
    Rows basis;
    const double* coefficients = nullptr;  ///< [r * Count + spectrum], basis.stride of them
    /// dc_r / dy_i: a row of `references` numbers; without lines then their sum.
    Rows response;
    int references = 0;
    Counts counts;
};

/// The curves before [0] and after [1] the edge.
struct Lines {
    int terms = 0;                      ///< 0: the fit has no lines
    const double* functions = nullptr;  ///< phi, `terms` an energy, the first of them 1
    Range range[2] = {};
    /// A^-1 with A the sum of phi phi' over the range: [(t * terms + u) * Count + spectrum].
    double inverse[2][background::MaxTerms * background::MaxTerms * Count] = {};
    double middle[background::MaxTerms * Count] = {};  ///< phi at midE
};

/// Room for every energy, [i * Count + spectrum].
struct ErrorSpace {
    double* perSpan;
    double* variance;
    double* perI0;
};

/// What errors are made of, [spectrum] or [r * Count + spectrum]. Of the points of each fit, with
/// f = F c and the variances v of mu-t: chi2 = sum of span^2 (y - f)^2 / v, rest = sum of
/// (y - f)^2, square = sum of y^2. Over all counts the sums of variance times product of two
/// derivatives by mu-t: of reference r with itself, with the jump, and of the jump with itself. The
/// reference stands for its coefficient; the jump is post less pre at midE, without lines the sum
/// of the references' coefficients.
struct ErrorSums {
    double* chi2;
    double* rest;
    double* square;
    double* own;
    double* withJump;
    double* jump;
};

using ErrorKernel = void (*)(const Fits& fits, const Lines& lines, const ErrorSpace& space,
                             const ErrorSums& out);

/// One reference at least.
ErrorKernel errorKernel(Units units);

}  // namespace lanes
