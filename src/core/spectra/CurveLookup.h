#pragma once

#include <vector>

#include "spectra/Spectrum.h"

/// The values of one curve at very many energies: Spectrum::valueAt() to the same bits, without the
/// search for the two points around an energy.
class CurveLookup {
  public:
    explicit CurveLookup(const Spectrum& curve);

    double valueAt(double e) const;

  private:
    int pairAround(double e) const;

    Spectrum m_curve;
    std::vector<double> m_energies;  // empty where the search is needed: energies not ascending
    std::vector<double> m_values;
    double m_perEv = 0.0;
    std::vector<int> m_pairs;  // of equal steps of the energy: a pair near by
};
