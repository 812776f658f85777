#pragma once

#include <vector>

#include "spectra/Background.h"

/// How the curves before and after an edge follow the points that they are fitted to. A curve is
/// a' phi(E) with a = A^-1 (sum of mu-t phi), A the sum of phi phi', both over its points: so
/// da / dmu-t(E_k) = A^-1 phi(E_k).
///
/// phi spans the functions of a kind of background. It is 1 and, for straight lines, E less the
/// mean of all energies; further functions are less their parts along those before, over all
/// energies, so that A is well conditioned. For one thread.
class LineFunctions {
  public:
    /// Energies in eV, finite and ascending.
    LineFunctions(int kind, const std::vector<double>& energies);

    int terms() const { return m_terms; }
    /// phi at all energies, terms() for each; the first is 1.
    const double* values() const { return m_values.data(); }

    /// A^-1 for the points first <= k < end, terms() squared numbers, until the next call; of NaN
    /// where fewer points than terms or equal energies leave the curve open.
    const double* inverse(int first, int end);

    /// phi at an energy as curves are read there: on the straight line between the two energies
    /// around it.
    void at(double e, double* phi) const;

  private:
    template <typename Kind>
    void tabulate();
    void append(int first, int end);

    int m_terms = 0;
    bool m_isStraight = false;
    double m_mean = 0.0;  // energy; of straight lines
    std::vector<double> m_energies;
    std::vector<double> m_values;
    std::vector<double> m_inverses;
    std::vector<std::vector<int>> m_inverseOf;  // [first][end]: place in m_inverses, -1 for none
};
