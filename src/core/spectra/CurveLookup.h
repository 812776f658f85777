#pragma once

#include <vector>

#include "spectra/LaneBases.h"
#include "spectra/Spectrum.h"

/// The values of one curve at very many energies: Spectrum::valueAt() to the same bits, without the
/// search for the two points around an energy.
class CurveLookup {
  public:
    explicit CurveLookup(const Spectrum& curve);

    double valueAt(double e) const;
    /// The same for spectra side by side, without shifts; valid as long as this lookup. Not for
    /// energies that do not ascend.
    lanes::Polyline polyline() const;

  private:
    int pieceAround(double e) const;

    Spectrum m_curve;
    std::vector<lanes::Piece> m_pieces;  // none where the search is needed
    double m_perEv = 0.0;
    std::vector<int> m_near;  // of equal steps of the energy: a piece near by
};
