#pragma once

#include <array>
#include <vector>

#include "AbsorptionModel.h"

namespace samples {

// One value per pixel, row by row.
struct Map {
    Map(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * h, 0.0) {}
    double& at(int x, int y) { return values[static_cast<std::size_t>(y) * width + x]; }
    double at(int x, int y) const { return values[static_cast<std::size_t>(y) * width + x]; }

    int width;
    int height;
    std::vector<double> values;
};

// A thin section of rusting iron: metal grains in a 2+ oxide, with 3+ oxide as a rim towards the
// outside, as shells around the grains and along a crack. Empty field all around it.
struct Phantom {
    Phantom(int width, int height);

    // Share of the iron atoms in each species, 0..1; they add up to 1 inside the sample and are 0
    // outside.
    std::array<Map, speciesCount> fractions;
    // Edge jump of mu-t; 0 outside the sample.
    Map thickness;
    // Where the edge appears, relative to its true energy (eV): the monochromator's fan over the
    // field. Present outside the sample too.
    Map energyShift;
};

}  // namespace samples
