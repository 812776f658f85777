#pragma once

#include <vector>

#include "fitting/Constraints.h"
#include "fitting/LinearFit.h"
#include "spectra/LaneBases.h"
#include "spectra/LaneErrors.h"

/// The least squares of a pack of spectra of which each has its own energy correction: what
/// LinearFit::prepare() and solve() do for one of them, to the same bits. For one thread.
class ShiftedPack {
  public:
    /// The fit and the energies (eV, finite, ascending) stay as they are.
    ShiftedPack(const LinearFit& fit, const std::vector<double>& energies, bool withErrors,
                lanes::Units units);

    /// Whether these `count` corrections (eV) can be worked on: all are finite, and the energies of
    /// every reference ascend.
    bool suits(const double* corrections, int count) const;

    /// Fits y[energy * lanes::Count + spectrum]. Spectra from `count` on are those of number 0.
    void fit(const double* y, const double* corrections, int count);

    // Of the last fit.

    /// Number k of spectrum l at [k * lanes::Count + l].
    const std::vector<double>& coefficients() const { return m_coefficients; }
    /// Points of each in the range of the references.
    const lanes::Range& points() const { return m_bases.points; }
    /// See LinearFit, of spectrum l.
    unsigned held(int l) const { return m_held[l]; }
    int freedom(int l) const { return m_freedom[l]; }
    /// Rows of each spectrum's own; the second with errors only.
    lanes::Rows basis() const { return {m_rows.data(), m_terms, 0, true}; }
    lanes::Rows response() const { return {m_response.data(), m_responseStride, 0, true}; }

  private:
    void findPoints();
    void solveAlone(int l);

    const std::vector<double>& m_energies;
    const lanes::BasisKernels& m_kernels;
    const bool m_withErrors;
    const std::vector<lanes::Polyline> m_curves;
    ConstrainedSolver m_solver;
    int m_terms;
    int m_responseStride;
    double m_from = 0.0;  // eV
    double m_to = 0.0;

    lanes::OwnBases m_bases = {};
    double m_corrections[lanes::Count] = {};
    std::vector<double> m_rows;
    std::vector<double> m_normal;  // [(r * terms + s) * Count + l]
    std::vector<double> m_right;
    std::vector<double> m_usedNormal;
    std::vector<double> m_usedRight;
    std::vector<double> m_coefficients;
    std::vector<double> m_inverse;
    std::vector<double> m_response;
    std::vector<double> m_ownNormal;  // of one spectrum
    std::vector<double> m_ownRight;
    unsigned m_held[lanes::Count] = {};
    int m_freedom[lanes::Count] = {};
};
