#pragma once

#include <cstdint>
#include <vector>

#include "Phantom.h"

namespace samples {

// The energies of a scan in ascending order (eV, two decimals): dense across the edge, coarse
// before and after it, with room for a straight line on both sides.
std::vector<double> edgeScan(int count);

// Evenly spaced energies that enclose those of edgeScan.
std::vector<double> beamScan(int count);

using Frame = std::vector<std::uint16_t>;  // counts, row by row

// The camera behind the sample. Every frame draws its noise from a seed of its own, so that a
// frame does not depend on which others were made.
class Measurement {
  public:
    Measurement(const AbsorptionModel& model, const Phantom& phantom, bool noisy);

    Frame beam(double energy, int frameNumber) const;
    Frame sample(double energy, int frameNumber) const;
    // A metal foil of even thickness over the whole field, for the energy calibration.
    Frame foil(double energy, int frameNumber) const;

  private:
    enum Stack : std::uint64_t { Beam = 1, Sample = 2, Foil = 3 };
    template <typename Absorption>
    Frame record(Stack stack, double energy, int frameNumber, Absorption absorption) const;

    const AbsorptionModel& m_model;
    const Phantom& m_phantom;
    bool m_noisy;
    Map m_profile;  // counts of the empty beam at the start of the scan
};

}  // namespace samples
