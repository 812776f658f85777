#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/Globals.h"
#include "spectra/LinearSolver.h"
#include "spectra/XafsSpectrum.h"

// Read as ratios: NormaliseNew (a spectrum of its own for every pixel) and NormaliseAgain (one
// whose storage is used again) against SumsOnly, the fewest passes over the points that a
// normalisation can do without.

namespace {

struct Measured {
    std::vector<double> energies;
    std::vector<double> values;
};

/// An edge with a white line at 7120 eV, energies from 7000 to 7400 eV.
Measured edge(int n) {
    Measured m;
    for (int i = 0; i < n; ++i) {
        const double e = 7000.0 + 400.0 * i / n;
        const double white = std::exp(-std::pow((e - 7124.0) / 4.0, 2.0));
        m.energies.push_back(e);
        m.values.push_back(0.5 - 1e-4 * (e - 7120.0) + 0.9 * std::atan((e - 7120.0) / 2.0) / 3.1 +
                           0.45 + 0.4 * white);
    }
    return m;
}

void SumsOnly(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Measured m = edge(n);
    std::vector<double> out(static_cast<std::size_t>(n) * 4);
    for (auto _ : state) {
        double low = 1e300, high = -1e300;
        for (double y : m.values) {
            low = std::min(low, y);
            high = std::max(high, y);
        }
        double sums[5] = {};
        for (std::size_t i = 0; i < m.values.size(); ++i) {
            const double e = m.energies[i], y = m.values[i];
            sums[0] += e;
            sums[1] += y;
            sums[2] += e * e;
            sums[3] += e * y;
            sums[4] += 1.0;
        }
        const double span = high - low;
        for (std::size_t i = 0; i < m.values.size(); ++i) {
            const double y = m.values[i];
            out[4 * i] = (y - high) / span;
            out[4 * i + 1] = (y - high) / (high - low + m.energies[i]);
            out[4 * i + 2] = (y - low) / (high - low + m.energies[i]);
            out[4 * i + 3] = out[4 * i] + 1.0;
        }
        benchmark::DoNotOptimize(sums);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(SumsOnly)->Arg(40)->Arg(100)->Arg(400);

void NormaliseNew(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const int type = static_cast<int>(state.range(1));
    const Measured m = edge(n);
    for (auto _ : state) {
        Spectrum data;
        data.assign(m.energies.data(), m.values.data(), n);
        const XafsSpectrum spectrum(data, type, 0.0);
        benchmark::DoNotOptimize(spectrum.dMut());
    }
}
BENCHMARK(NormaliseNew)->ArgsProduct({{40, 100, 400}, {0, 1}})->ThreadRange(1, 2);

void NormaliseAgain(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const int type = static_cast<int>(state.range(1));
    const Measured m = edge(n);
    XafsSpectrum spectrum;
    for (auto _ : state) {
        spectrum.assign(m.energies.data(), m.values.data(), n);
        spectrum.normalise(type);
        benchmark::DoNotOptimize(spectrum.dMut());
    }
}
BENCHMARK(NormaliseAgain)->ArgsProduct({{40, 100, 400}, {0, 1}});

void Copy(benchmark::State& state) {
    const Measured m = edge(100);
    Spectrum data;
    data.assign(m.energies.data(), m.values.data(), 100);
    const XafsSpectrum spectrum(data, XafsSpectrum::Simple, 0.0);
    for (auto _ : state) {
        const XafsSpectrum copy = spectrum;
        benchmark::DoNotOptimize(copy.dMut());
    }
}
BENCHMARK(Copy)->ThreadRange(1, 2);

void Solve(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<double> a(static_cast<std::size_t>(n) * static_cast<std::size_t>(n));
    std::vector<double> b(static_cast<std::size_t>(n), 1.0), x(b);
    for (std::size_t i = 0; i < a.size(); ++i) {
        a[i] = std::sin(static_cast<double>(i * i) + 1.0);
    }
    for (auto _ : state) {
        solveLinear(a.data(), b.data(), n, x.data());
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(Solve)->DenseRange(2, 5)->Arg(12);

}  // namespace

int main(int argc, char** argv) {
    initGlobals();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
