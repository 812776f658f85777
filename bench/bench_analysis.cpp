// One fit a point, as the image analysis makes them: with what the references allow to prepare
// kept from point to point, against preparing it anew for each.

#include <benchmark/benchmark.h>

#include <cmath>

#include "base/Globals.h"
#include "fitting/LinearFit.h"

namespace {

XafsSpectrum edge(double bump) {
    Spectrum points;
    for (int i = 0; i < 100; ++i) {
        const double e = 7000.0 + 3.0 * i;
        const double t = 1.0 / (1.0 + std::exp((7112.0 - e) / 3.0));
        points.append(e, t + bump * t * (1.0 - t) + 1e-4 * (e - 7000.0));
    }
    return XafsSpectrum(points, XafsSpectrum::Simple, 0.0);
}

QVector<XafsSpectrum> references() {
    return {edge(0.9), edge(-0.4), edge(0.2)};
}

void prepared(benchmark::State& state) {
    const XafsSpectrum sample = edge(0.5);
    LinearFit fit(references(), static_cast<LinearFit::Method>(state.range(0)));
    for (auto _ : state) {
        fit.fit(sample);
        benchmark::DoNotOptimize(fit.ratios().data());
    }
}

void plain(benchmark::State& state) {
    const XafsSpectrum sample = edge(0.5);
    const QVector<XafsSpectrum> list = references();
    for (auto _ : state) {
        LinearFit fit(list, static_cast<LinearFit::Method>(state.range(0)));
        fit.fit(sample);
        benchmark::DoNotOptimize(fit.ratios().data());
    }
}

void normalise(benchmark::State& state) {
    XafsSpectrum sample = edge(0.5);
    for (auto _ : state) {
        sample.normalise(XafsSpectrum::Simple);
        benchmark::DoNotOptimize(sample.dMut());
    }
}

BENCHMARK(prepared)->Arg(LinearFit::Lcf)->Arg(LinearFit::Mlcf);
BENCHMARK(plain)->Arg(LinearFit::Lcf)->Arg(LinearFit::Mlcf);
BENCHMARK(normalise);

}  // namespace

int main(int argc, char** argv) {
    initGlobals();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
