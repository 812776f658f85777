#pragma once

#include <QVector>
#include <vector>

#include "fitting/Constraints.h"
#include "fitting/FitRule.h"
#include "fitting/ReferenceSeries.h"
#include "spectra/XafsSpectrum.h"

/// Fits spectra as linear combinations of references, by least squares over the energies that all
/// references cover (both ends included).
///
/// LCF: double-normalized-pre-base of the sample = sum of c_i times that of reference i.
/// MLCF: mu-t of the sample = c + d E + sum of c_i times the normalized series of reference i.
/// With FitRule::ReferenceScale::None both take the values of the references' files instead.
/// The c_i are held to the rule's constraints, a sum of 1 with LCF alone.
///
/// What depends on the references and the energies alone (the reference values at the sample's
/// energies, the normal matrix, its decomposition) is kept from fit to fit while these stay the
/// same; the results are the same to the last bit as without.
class LinearFit {
  public:
    using Method = FitRule::Method;
    static constexpr Method Lcf = FitRule::Lcf;
    static constexpr Method Mlcf = FitRule::Mlcf;

    /// The references; the shift of each, when on, is its energy offset (eV).
    LinearFit(QVector<XafsSpectrum> references, const FitRule& rule);

    /// Fits the sample; its energies count less its shift (when on) and energy correction. A
    /// sample wholly outside the common range gives coefficients of 0.
    void fit(const XafsSpectrum& sample);

    /// Share of each reference. LCF: its coefficient; MLCF: its coefficient, negative ones taken
    /// as 0, over the sum of all as solved (no number where that sum is not above 0).
    const std::vector<double>& ratios() const { return m_ratios; }
    /// Edge jump due to each reference. LCF: coefficient times the sample's edge jump (at least
    /// 0); MLCF: the coefficient, negative ones taken as 0.
    const std::vector<double>& dMuts() const { return m_dMuts; }

    /// Sum of the references' double-normalized-pre-base values (with ReferenceScale::None those of
    /// their files) times the given shares, at the energies of the last fit, normalised as the rule
    /// says with the sample's background type.
    const XafsSpectrum& fittedCurve(const std::vector<double>& shares);

    // What a fit of samples with given energies rests on, for those who fit several at once.

    /// Brings it up to date: corrected energies of all points of a sample, in eV.
    void prepare(const std::vector<double>& energies);
    /// Indices of the points in the range, ascending.
    const std::vector<int>& points() const { return m_points; }
    /// Basis functions at those points, coefficientCount() a point.
    const std::vector<double>& basis() const { return m_basis; }
    int coefficientCount() const;
    int referenceCount() const { return m_references.size(); }
    /// Under the constraints of the fit, for the points of the last prepare().
    ConstrainedSolver& solver() { return m_solver; }
    const ConstrainedSolver& solver() const { return m_solver; }

    // The same for spectra side by side, each with energies of its own.

    /// Ends of the range of the fit, in eV.
    void commonRange(double* from, double* to) const;
    /// The basis function of each reference, valid as long as this; none where the energies of one
    /// do not ascend. With MLCF 1 and the energy come before them.
    std::vector<lanes::Polyline> basisCurves() const;

    // What errors rest on, with some references held at 0.

    /// dc_r / dy_k at points() for every reference, referenceCount() a point, then, with MLCF,
    /// their sum; NaN where the references cannot be told apart. Valid until the next prepare().
    const std::vector<double>& response(unsigned held);
    int responseStride() const { return referenceCount() + (m_rule.method == Mlcf ? 1 : 0); }
    /// Points less free parameters; 0 where the references cannot be told apart.
    int freedom(unsigned held);
    /// Of the last fit().
    unsigned held() const { return m_held; }
    const std::vector<double>& coefficients() const { return m_right; }

    /// Turns coefficients into ratios() and dMuts(), referenceCount() of each.
    void shares(const double* coefficients, double edgeJump, double* ratios, double* dMuts) const;

  private:
    QVector<XafsSpectrum> m_references;
    std::vector<ReferenceSeries> m_drawnSeries;  // what the fitted curve is made of
    std::vector<ReferenceSeries> m_basisSeries;  // and the fit
    FitRule m_rule;

    // Of the energies of the last sample.
    std::vector<double> m_allEnergies;  // of every point
    std::vector<double> m_given;        // those of the sample being fitted
    std::vector<double> m_energies;     // of the points in range
    std::vector<int> m_points;          // their indices
    std::vector<double> m_basis;        // the rows of the fit, point by point
    std::vector<double> m_normal;       // the normal matrix
    ConstrainedSolver m_solver;

    struct Response {
        bool isMade = false;
        std::vector<double> rows;
    };
    std::vector<Response> m_responses;  // by what is held

    std::vector<double> m_right;  // of the last sample: the right-hand side, then the solution
    unsigned m_held = 0;
    std::vector<double> m_ratios;
    std::vector<double> m_dMuts;

    std::vector<double> m_curveShares;
    int m_curveType = -1;
    bool m_curveValid = false;
    XafsSpectrum m_curve;
};
