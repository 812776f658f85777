#include "Phantom.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "Files.h"
#include "TinyStacks.h"

namespace {

constexpr double FirstEnergy = 7000.0;
constexpr double LastEnergy = 7300.0;
constexpr double Beam = 60000.0;

double energyOf(int i, int count) {
    return FirstEnergy + (LastEnergy - FirstEnergy) * i / (count - 1);
}

/// 0 up to e0 - 6, 1 from e0 + 6 on, in between a cosine ramp with a hump of the given height.
double step(double e, double e0, double hump) {
    const double t = std::clamp((e - e0 + 6.0) / 12.0, 0.0, 1.0);
    const double pi = std::acos(-1.0);
    return 0.5 * (1.0 - std::cos(pi * t)) + hump * std::sin(pi * t) * std::sin(pi * t);
}

double background(double e) {
    return 0.3 - 2e-4 * (e - FirstEnergy);
}

}  // namespace

double Phantom::muA(double e) {
    return background(e) + 0.8 * step(e, 7110.0, 0.10);
}
double Phantom::muB(double e) {
    return background(e) + 0.8 * step(e, 7113.0, 0.45);
}

Phantom::Phantom(const Options& options) {
    writeStacks(options);
    std::vector<double> energies;
    for (double e = FirstEnergy - 20.0; e <= LastEnergy + 20.0; e += 0.5) {
        energies.push_back(e);
    }
    putCurve(file("a.dat"), energies, muA);
    putCurve(file("b.dat"), energies, muB);
}

void Phantom::writeStacks(const Options& options) {
    const auto darkAt = [&](int x, int y) { return options.dark ? options.dark(x, y) : 0; };
    const auto write = [&](const char* prefix, int count, const auto& beamAt) {
        std::vector<double> energies;
        for (int i = 0; i < count; ++i) {
            energies.push_back(energyOf(i, count));
        }
        const QStringList names = writeTinyStack(
            dir(), prefix, options.width, options.height, energies, [&](int i, int x, int y) {
                const double e = energies[static_cast<std::size_t>(i)];
                return static_cast<quint16>(beamAt(e, x, y) + darkAt(x, y));
            });
        if (names.isEmpty()) {
            qFatal("cannot write %s", prefix);
        }
    };
    write("i0", options.i0Energies, [](double, int, int) { return std::lround(Beam); });
    write("i1", options.energies, [&](double e, int x, int y) {
        const double shifted = options.energyShift ? e - options.energyShift(x, y) : e;
        const double a = options.fractionOfA(x, y);
        return std::lround(Beam * std::exp(-a * muA(shifted) - (1.0 - a) * muB(shifted)));
    });
}

QStringList Phantom::writeDarkFrames(int width, int height,
                                     const std::function<int(int x, int y)>& dark) const {
    const int offsets[] = {-30, 10, 20};
    return writeTinyStack(dir(), QString("dark%1").arg(width), width, height, {1, 2, 3},
                          [&](int i, int x, int y) { return dark(x, y) + offsets[i]; });
}

QStringList Phantom::loadAndSetReferences() const {
    return {"load_I1_files_of_pattern NEW " + dir() + " i1-*.tif",
            "load_I0_files_of_pattern NEW " + dir() + " i0-*.tif",
            "set_band_w 0",
            "set_band_h 0",
            "analyzer_set_LCF_std 0 1 0.0 " + file("a.dat") + " 0",
            "analyzer_set_LCF_std 1 1 0.0 " + file("b.dat") + " 0"};
}
