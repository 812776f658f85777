#include "Phantom.h"

#include <algorithm>
#include <cmath>

#include "RandomCounts.h"

namespace samples {

namespace {

constexpr double pi = 3.14159265358979323846;

struct Grain {
    double x;
    double y;
    double radius;
};

// 0 well below the edge, 1 well above, smooth over the given width.
double soft(double distance, double width) {
    return 0.5 * (1.0 + std::tanh(distance / width));
}

// Distance from the sample's border in units of the field's height, positive inside. The outline
// is an ellipse with a few bays.
double depth(double x, double y, double aspect) {
    const double dx = x / aspect;
    const double r = std::hypot(dx, y);
    const double angle = std::atan2(y, dx);
    const double outline = 0.405 + 0.022 * std::sin(3.0 * angle + 0.7) +
                           0.014 * std::sin(5.0 * angle + 2.1) + 0.008 * std::sin(11.0 * angle);
    return outline - r;
}

std::vector<Grain> makeGrains(double aspect) {
    RandomCounts random(20240611);
    std::vector<Grain> grains;
    for (int attempt = 0; attempt < 4000 && grains.size() < 26; ++attempt) {
        const Grain grain = {(random.uniform() - 0.5) * aspect, random.uniform() - 0.5,
                             0.022 + 0.038 * random.uniform()};
        if (depth(grain.x, grain.y, aspect) < grain.radius + 0.05) {
            continue;
        }
        const bool free = std::none_of(grains.begin(), grains.end(), [&](const Grain& other) {
            return std::hypot(grain.x - other.x, grain.y - other.y) <
                   grain.radius + other.radius + 0.02;
        });
        if (free) {
            grains.push_back(grain);
        }
    }
    return grains;
}

// Signed distance from the nearest grain's surface, positive inside the grain.
double insideGrain(const std::vector<Grain>& grains, double x, double y) {
    double best = -1.0;
    for (const Grain& grain : grains) {
        best = std::max(best, grain.radius - std::hypot(x - grain.x, y - grain.y));
    }
    return best;
}

double crack(double x, double y) {
    const double offset = y - 0.10 * std::sin(5.0 * x + 0.6) - 0.25 * x - 0.03;
    return std::exp(-0.5 * std::pow(offset / 0.022, 2.0));
}

}  // namespace

Phantom::Phantom(int width, int height)
    : fractions{Map(width, height), Map(width, height), Map(width, height)},
      thickness(width, height),
      energyShift(width, height) {
    const double aspect = static_cast<double>(width) / height;
    const std::vector<Grain> grains = makeGrains(aspect);
    for (int py = 0; py < height; ++py) {
        for (int px = 0; px < width; ++px) {
            const double x = ((px + 0.5) / width - 0.5) * aspect;
            const double y = (py + 0.5) / height - 0.5;
            energyShift.at(px, py) = 2.0 * y + 0.4 * x / aspect;

            const double inside = depth(x, y, aspect);
            if (inside <= 0.0) {
                continue;
            }
            const double grain = insideGrain(grains, x, y);
            const double metal = 0.06 + 0.86 * soft(grain, 0.010);
            const double rust =
                std::clamp(0.85 * std::exp(-inside / 0.06) + 0.55 * crack(x, y) +
                               0.45 * std::exp(-std::pow((grain + 0.012) / 0.012, 2.0)) + 0.12 +
                               0.10 * std::sin(2.0 * pi * (1.3 * x - 0.8 * y)),
                           0.0, 1.0);
            fractions[Metal].at(px, py) = metal;
            fractions[Oxide3].at(px, py) = (1.0 - metal) * rust;
            fractions[Oxide2].at(px, py) = (1.0 - metal) * (1.0 - rust);
            thickness.at(px, py) = (0.35 + 0.55 * std::sqrt(std::min(inside / 0.30, 1.0)) +
                                    0.22 * soft(grain, 0.012)) *
                                   (1.0 + 0.06 * std::sin(9.0 * x + 4.0 * y));
        }
    }
}

}  // namespace samples
