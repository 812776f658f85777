#include "AbsorptionModel.h"

#include <algorithm>
#include <cmath>

namespace samples {

namespace {

constexpr double step = 0.01;
constexpr double edge = 7112.0;

struct Peak {
    double energy;  // eV
    double width;   // eV
    double height;  // edge steps
};

// One coordination shell: distance (A), amplitude, disorder sigma^2 (A^2), phase (rad).
struct Shell {
    double distance;
    double amplitude;
    double disorder;
    double phase;
};

struct SpeciesShape {
    double edgeEnergy;   // eV
    double edgeWidth;    // eV
    double lowerShells;  // absorption below the edge, in edge steps
    Peak preEdge;        // Gaussian
    Peak whiteLine;      // Lorentzian, growing with the edge
    std::array<Shell, 2> shells;
};

// The half heights lie within 6 eV, as those of neighbouring oxidation states do, so that the
// 10 eV kept free on both sides of the edge hold the structure of all three.
const std::array<SpeciesShape, speciesCount> shapes = {{
    {7116.4,
     1.9,
     0.16,
     {7113.6, 1.1, 0.16},
     {7130.5, 6.0, 0.16},
     {{{2.24, 0.30, 0.005, 0.5}, {3.90, 0.26, 0.006, 1.9}}}},
    {7119.2,
     1.6,
     0.22,
     {7114.0, 1.2, 0.045},
     {7124.0, 3.0, 0.40},
     {{{1.95, 0.36, 0.009, 0.2}, {2.90, 0.26, 0.010, 1.2}}}},
    {7121.8,
     1.7,
     0.25,
     {7114.4, 1.3, 0.07},
     {7128.0, 3.4, 0.44},
     {{{1.80, 0.40, 0.008, 0.4}, {2.85, 0.26, 0.010, 1.6}}}},
}};

// Oscillations of the photoelectron, k = sqrt(2 m (E - E0)) / hbar in 1/A, fading in over the
// first 14 eV where the single-scattering picture does not hold.
double fineStructure(const SpeciesShape& shape, double energy) {
    const double excess = energy - shape.edgeEnergy;
    if (excess <= 0.0) {
        return 0.0;
    }
    const double k = std::sqrt(excess * 0.26246842);
    double sum = 0.0;
    for (const Shell& shell : shape.shells) {
        sum += shell.amplitude * std::sin(2.0 * k * shell.distance + shell.phase) *
               std::exp(-2.0 * shell.disorder * k * k) / std::max(k, 1.0);
    }
    const double onset = excess / 14.0;
    return sum * (1.0 - std::exp(-onset * onset));
}

double absorption(const SpeciesShape& shape, double energy) {
    const double rise = 0.5 * std::erfc(-(energy - shape.edgeEnergy) / (1.6 * shape.edgeWidth));
    const double atPeak = (energy - shape.preEdge.energy) / shape.preEdge.width;
    const double atLine = (energy - shape.whiteLine.energy) / shape.whiteLine.width;
    const double structure = rise + shape.preEdge.height * std::exp(-0.5 * atPeak * atPeak) +
                             rise * shape.whiteLine.height / (1.0 + atLine * atLine) +
                             fineStructure(shape, energy);
    // Photoabsorption falls with a power of the energy, a little faster below the edge.
    const double ratio = energy / edge;
    return shape.lowerShells * std::pow(ratio, -2.9) + structure * std::pow(ratio, -2.75);
}

}  // namespace

const std::string& speciesName(int species) {
    static const std::array<std::string, speciesCount> names = {"metal", "oxide2", "oxide3"};
    return names.at(static_cast<std::size_t>(species));
}

AbsorptionModel::AbsorptionModel() {
    const int count = static_cast<int>(std::lround((lastEnergy - firstEnergy) / step)) + 1;
    for (std::size_t s = 0; s < shapes.size(); ++s) {
        m_tables[s].reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            m_tables[s].push_back(absorption(shapes[s], firstEnergy + i * step));
        }
    }
}

double AbsorptionModel::value(int species, double energy) const {
    const std::vector<double>& table = m_tables.at(static_cast<std::size_t>(species));
    const double at =
        std::clamp((energy - firstEnergy) / step, 0.0, static_cast<double>(table.size() - 1));
    const std::size_t i = std::min(static_cast<std::size_t>(at), table.size() - 2);
    const double part = at - static_cast<double>(i);
    return table[i] + part * (table[i + 1] - table[i]);
}

}  // namespace samples
