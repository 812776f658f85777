#include "Measurement.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "RandomCounts.h"

namespace samples {

namespace {

double rounded(double energy) {
    return std::round(energy * 100.0) / 100.0;
}

// The beam as it reaches the camera: brightest in the middle, striped by the mirror.
double profileAt(double u, double v) {
    const double x = (u - 0.47) / 0.55;
    const double y = (v - 0.52) / 0.42;
    const double stripes = 1.0 + 0.035 * std::sin(61.0 * v + 3.0 * u) + 0.02 * std::sin(23.0 * v);
    return (16000.0 + 32000.0 * std::exp(-0.5 * (x * x + y * y))) * stripes;
}

// The stored current falls while the scan goes up in energy.
double decay(double energy) {
    return std::exp(-(energy - 7000.0) / 4000.0);
}

}  // namespace

std::vector<double> edgeScan(int count) {
    struct Knot {
        double share;
        double energy;
    };
    static const std::array<Knot, 6> knots = {{{0.0, 7010.0},
                                               {0.11, 7104.0},
                                               {0.135, 7108.0},
                                               {0.58, 7138.0},
                                               {0.65, 7156.0},
                                               {1.0, 7396.0}}};
    std::vector<double> energies;
    for (int i = 0; i < count; ++i) {
        const double share = static_cast<double>(i) / (count - 1);
        std::size_t k = 1;
        while (k + 1 < knots.size() && share > knots[k].share) {
            ++k;
        }
        const Knot& from = knots[k - 1];
        const Knot& to = knots[k];
        energies.push_back(rounded(from.energy + (share - from.share) / (to.share - from.share) *
                                                     (to.energy - from.energy)));
    }
    return energies;
}

std::vector<double> beamScan(int count) {
    std::vector<double> energies;
    energies.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) {
        energies.push_back(rounded(7005.0 + 400.0 * i / (count - 1)));
    }
    return energies;
}

Measurement::Measurement(const AbsorptionModel& model, const Phantom& phantom, bool noisy)
    : m_model(model),
      m_phantom(phantom),
      m_noisy(noisy),
      m_profile(phantom.thickness.width, phantom.thickness.height) {
    for (int y = 0; y < m_profile.height; ++y) {
        for (int x = 0; x < m_profile.width; ++x) {
            m_profile.at(x, y) =
                profileAt((x + 0.5) / m_profile.width, (y + 0.5) / m_profile.height);
        }
    }
}

template <typename Absorption>
Frame Measurement::record(Stack stack, double energy, int frameNumber,
                          Absorption absorption) const {
    RandomCounts random((static_cast<std::uint64_t>(stack) << 32) +
                        static_cast<std::uint64_t>(frameNumber));
    const double strength = decay(energy);
    const std::size_t pixels = m_profile.values.size();
    Frame frame(pixels);
    for (std::size_t i = 0; i < pixels; ++i) {
        const double mean = m_profile.values[i] * strength * std::exp(-absorption(i));
        const double count = m_noisy ? static_cast<double>(random.poisson(mean)) : std::round(mean);
        frame[i] = static_cast<std::uint16_t>(std::clamp(count, 0.0, 65535.0));
    }
    return frame;
}

Frame Measurement::beam(double energy, int frameNumber) const {
    return record(Beam, energy, frameNumber, [](std::size_t) { return 0.0; });
}

Frame Measurement::sample(double energy, int frameNumber) const {
    return record(Sample, energy, frameNumber, [&](std::size_t i) {
        const double thickness = m_phantom.thickness.values[i];
        if (thickness <= 0.0) {
            return 0.0;
        }
        const double trueEnergy = energy - m_phantom.energyShift.values[i];
        double sum = 0.0;
        for (int s = 0; s < speciesCount; ++s) {
            sum += m_phantom.fractions[static_cast<std::size_t>(s)].values[i] *
                   m_model.value(s, trueEnergy);
        }
        return thickness * sum;
    });
}

Frame Measurement::foil(double energy, int frameNumber) const {
    return record(Foil, energy, frameNumber, [&](std::size_t i) {
        return m_model.value(Metal, energy - m_phantom.energyShift.values[i]);
    });
}

}  // namespace samples
