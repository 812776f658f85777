#pragma once

#include <array>
#include <string>
#include <vector>

namespace samples {

constexpr int speciesCount = 3;
enum Species { Metal = 0, Oxide2 = 1, Oxide3 = 2 };

// File-name stem of a species: "metal", "oxide2", "oxide3".
const std::string& speciesName(int species);

// The absorption of three iron species across the K edge: an edge step of height 1 with its white
// line, pre-edge peak and fine structure, on the falling absorption of the lower shells. All
// energies in eV.
//
// The values are tabulated once in steps of 0.01 eV, which keeps the error of the linear
// interpolation below 1e-5 of the edge step.
class AbsorptionModel {
  public:
    static constexpr double firstEnergy = 6900.0;
    static constexpr double lastEnergy = 7600.0;

    AbsorptionModel();

    // mu-t of an amount of the species whose edge jump is 1; energies outside the table take its
    // end values.
    double value(int species, double energy) const;

  private:
    std::array<std::vector<double>, speciesCount> m_tables;
};

}  // namespace samples
