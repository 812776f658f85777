#pragma once

#include <memory>
#include <vector>

#include "fitting/CountingErrors.h"
#include "fitting/LinearFit.h"

/// CountingErrors of spectra that are fitted one by one, to the same bits. Energies may come in any
/// order; points without a finite one are in no range. Where the points of a line or of the fit do
/// not lie side by side in order of energy, everything but the sums is NaN. For one thread.
class SpectrumErrors {
  public:
    SpectrumErrors(const FitRule& rule, int references);

    /// Takes in the last fit() of a spectrum as number l of a pack. All spectra of a pack have the
    /// energies of its number 0.
    void take(int l, LinearFit& fit, const XafsSpectrum& sample);
    /// Of the first `count` spectra, whose 2 m first values stand in results; the counts are those
    /// of the points in the order of the spectra. Null: errors from the residuals alone.
    void evaluate(int count, const lanes::Counts* counts, double* results);

  private:
    void setEnergies(const XafsSpectrum& sample);
    void takeRows(int l, LinearFit& fit);
    bool setRange(const std::vector<int>& points, int l, lanes::Range* range) const;
    std::vector<int> pointsOf(const BgCurve& line, const XafsSpectrum& sample) const;

    FitRule m_rule;
    int m_references;
    std::vector<double> m_energies;            // of the points
    std::vector<int> m_order;                  // of those with finite energies, ascending
    std::vector<int> m_places;                 // of every point in that order, -1 for none
    std::unique_ptr<CountingErrors> m_errors;  // null with too few points

    CountingErrors::Pack m_pack;
    std::vector<double> m_y;
    std::vector<double> m_span;
    std::vector<double> m_basis;
    std::vector<double> m_response;
    std::vector<double> m_coefficients;
    std::vector<lanes::Sums> m_sums;
    std::vector<lanes::I0Share> m_shares;
};

/// Fits a spectrum that has no counts: the numbers of FitValues with errors. The errors carry the
/// variance of the residuals, which stands in the place of chi2Reduced(), through the fit and both
/// lines. `rule` is that of the fit.
std::vector<double> fitWithErrors(LinearFit& fit, const FitRule& rule, const XafsSpectrum& sample);
