// One spectrum of 100 points: made, copied, normalised, asked. Read Victreen / Simple, and
// CopySpectrum / MakeSpectrum.

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "app/Globals.h"
#include "spectra/XafsSpectrum.h"

namespace {

constexpr int Points = 100;

struct Curve {
    std::vector<double> x;
    std::vector<double> y;
};

const Curve& curve() {
    static const Curve instance = [] {
        Curve c;
        for (int i = 0; i < Points; ++i) {
            const double e = 7000.0 + 3.0 * i;
            const double t = 1.0 / (1.0 + std::exp((7112.0 - e) / 3.0));
            c.x.push_back(e);
            c.y.push_back(0.3 + t + t * (1.0 - t) - 1e-4 * (e - 7000.0));
        }
        return c;
    }();
    return instance;
}

Spectrum measured() {
    Spectrum s;
    s.assign(curve().x.data(), curve().y.data(), Points);
    return s;
}

void MakeSpectrum(benchmark::State& state) {
    for (auto _ : state) {
        const Spectrum s = measured();
        benchmark::DoNotOptimize(s.size());
    }
}
BENCHMARK(MakeSpectrum);

void MakeSpectrumPointByPoint(benchmark::State& state) {
    for (auto _ : state) {
        Spectrum s;
        s.reserve(Points);
        for (int i = 0; i < Points; ++i) {
            const std::size_t k = static_cast<std::size_t>(i);
            s.append(curve().x[k], curve().y[k]);
        }
        benchmark::DoNotOptimize(s.size());
    }
}
BENCHMARK(MakeSpectrumPointByPoint);

void CopySpectrum(benchmark::State& state) {
    const Spectrum s = measured();
    for (auto _ : state) {
        const Spectrum copy = s;
        benchmark::DoNotOptimize(copy.size());
    }
}
BENCHMARK(CopySpectrum);

void CopyXafsSpectrum(benchmark::State& state) {
    const XafsSpectrum s(measured(), XafsSpectrum::Simple, 0.0);
    for (auto _ : state) {
        const XafsSpectrum copy = s;
        benchmark::DoNotOptimize(copy.dMut());
    }
}
BENCHMARK(CopyXafsSpectrum);

void normaliseNew(benchmark::State& state, int type) {
    const Spectrum s = measured();
    for (auto _ : state) {
        const XafsSpectrum x(s, type, 0.0);
        benchmark::DoNotOptimize(x.dMut());
    }
}
void NormaliseSimple(benchmark::State& state) {
    normaliseNew(state, XafsSpectrum::Simple);
}
void NormaliseVictreen(benchmark::State& state) {
    normaliseNew(state, XafsSpectrum::Victreen);
}
BENCHMARK(NormaliseSimple);
BENCHMARK(NormaliseVictreen);

void FindEdge(benchmark::State& state) {
    const Spectrum s = measured();
    for (auto _ : state) {
        benchmark::DoNotOptimize(s.findE(0.7, 0));
    }
}
BENCHMARK(FindEdge);

}  // namespace

int main(int argc, char** argv) {
    initGlobals();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
