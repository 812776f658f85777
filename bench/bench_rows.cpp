// Fits of whole images on all cores against a loop written for nothing else.
//
// Ratios to read: Rows/threads:1 / Tight (from counts to fractions, one thread), Rows with one and
// with two threads, Rows with energy corrections of their own for every bin (Corrected), and the
// growth with pixels and energies (Growth/side/energies; growth_plot.py draws it).

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <random>

#include "absorption/AbsorptionSource.h"
#include "absorption/RasterPass.h"
#include "base/Globals.h"
#include "calibration/EnergyShift.h"
#include "fitting/LaneFit.h"
#include "frames/FrameSet.h"
#include "maps/AnalysisGrid.h"
#include "spectra/Logarithm.h"

namespace {

constexpr double Beam = 40000.0;

double muT(double e, double whiteLine) {
    const double t = 1.0 / (1.0 + std::exp((7112.0 - e) / 2.0));
    return 0.4 - 2e-4 * (e - 7000.0) + 0.8 * (t + whiteLine * t * (1.0 - t));
}

/// Two stacks in memory.
struct Stacks {
    int side;
    std::vector<double> energies;
    FrameSet i1;
    FrameSet i0;

    Stacks(int imageSide, int frames, int i0Frames) : side(imageSide) {
        std::mt19937 random(1);
        const auto frame = [&](double e, const auto& value) {
            auto made = std::make_unique<TiffData>();
            made->width = made->height = static_cast<quint32>(side);
            made->energy = e;
            made->makeRows(static_cast<std::size_t>(side) * sizeof(quint16));
            for (quint16* row : made->rows) {
                for (int x = 0; x < side; ++x) {
                    row[x] = static_cast<quint16>(value(x) + static_cast<double>(random() % 200));
                }
            }
            return made;
        };
        for (int i = 0; i < frames; ++i) {
            const double e = 7000.0 + 300.0 * i / (frames - 1);
            const double a = muT(e, 2.0);
            const double b = muT(e, 0.5);
            energies.push_back(e);
            i1.append(frame(e, [&](int x) {
                const double share = static_cast<double>(x) / side;
                return Beam * std::exp(-share * a - (1.0 - share) * b);
            }));
        }
        for (int i = 0; i < i0Frames; ++i) {
            i0.append(frame(7000.0 + 300.0 * i / (i0Frames - 1), [](int) { return Beam; }));
        }
    }
};

/// As many I0 frames as energies, or fewer.
const Stacks& stacks(int side, int energies, int i0Frames = 0) {
    static std::array<int, 3> kept;
    static std::unique_ptr<Stacks> made;
    const std::array<int, 3> wanted{side, energies, i0Frames > 0 ? i0Frames : energies};
    if (!made || kept != wanted) {
        made = std::make_unique<Stacks>(side, energies, wanted[2]);
        kept = wanted;
    }
    return *made;
}

QVector<XafsSpectrum> references(const std::vector<double>& whiteLines = {2.0, 0.5}) {
    QVector<XafsSpectrum> list;
    for (double whiteLine : whiteLines) {
        Spectrum points;
        for (double e = 6990.0; e <= 7310.0; e += 0.5) {
            points.append(e, muT(e, whiteLine));
        }
        list.append(XafsSpectrum(points, XafsSpectrum::Simple, 0.0));
    }
    return list;
}

// --- the loop written for nothing else: straight lines, two references, single pixels

constexpr int Tile = 64;

struct Fit {
    std::vector<double> f[2];  // the references at the energies
    double inverse[4];         // of the normal matrix
};

Fit fitOf(const std::vector<double>& energies) {
    Fit fit;
    const QVector<XafsSpectrum> list = references();
    double a = 0.0, b = 0.0, d = 0.0;
    for (double e : energies) {
        for (int r = 0; r < 2; ++r) {
            fit.f[r].push_back(list[r].doubleNormalizedPreBase(e));
        }
        a += fit.f[0].back() * fit.f[0].back();
        b += fit.f[0].back() * fit.f[1].back();
        d += fit.f[1].back() * fit.f[1].back();
    }
    const double det = a * d - b * b;
    const double inverse[] = {d / det, -b / det, -b / det, a / det};
    std::copy_n(inverse, 4, fit.inverse);
    return fit;
}

// The choice between clones runs before a sanitizer is ready for it.
#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__)
#define TIGHT __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define TIGHT
#endif

TIGHT void tightTile(const quint16* const* i1, const quint16* const* i0, const double* e, int n,
                     const Fit& fit, double* mu, double* out) {
    double low[Tile], high[Tile], level[Tile], edge[Tile], open[Tile];
    for (int p = 0; p < Tile; ++p) {
        low[p] = 1e300;
        high[p] = -1e300;
        edge[p] = e[0];
        open[p] = 1.0;
    }
    for (int i = 0; i < n; ++i) {
        double* y = mu + i * Tile;
        for (int p = 0; p < Tile; ++p) {
            logarithmOf<double, unsigned long long>(
                static_cast<double>(i0[i][p]) / static_cast<double>(i1[i][p]), y[p]);
            low[p] = y[p] < low[p] ? y[p] : low[p];
            high[p] = y[p] > high[p] ? y[p] : high[p];
        }
    }
    for (int p = 0; p < Tile; ++p) {
        level[p] = low[p] + 0.5 * (high[p] - low[p]);
    }
    for (int i = 0; i + 1 < n; ++i) {
        const double* y = mu + i * Tile;
        const double* next = y + Tile;
        for (int p = 0; p < Tile; ++p) {
            const bool here = (y[p] < level[p]) & (next[p] >= level[p]) & (open[p] > 0.0);
            const double at = e[i] + (level[p] - y[p]) * (e[i + 1] - e[i]) / (next[p] - y[p]);
            edge[p] = here ? at : edge[p];
            open[p] = here ? 0.0 : open[p];
        }
    }
    double c0[2][Tile], c1[2][Tile];
    for (int side = 0; side < 2; ++side) {
        const double from = side == 0 ? -100.0 : 10.0;
        const double to = side == 0 ? -10.0 : 1000.0;
        double count[Tile] = {}, se[Tile] = {}, see[Tile] = {}, sy[Tile] = {}, sey[Tile] = {};
        for (int i = 0; i < n; ++i) {
            const double* y = mu + i * Tile;
            for (int p = 0; p < Tile; ++p) {
                const bool in = (e[i] >= edge[p] + from) & (e[i] < edge[p] + to);
                const double w = in ? 1.0 : 0.0;
                count[p] += w;
                se[p] += w * e[i];
                see[p] += w * e[i] * e[i];
                sy[p] += w * y[p];
                sey[p] += w * y[p] * e[i];
            }
        }
        for (int p = 0; p < Tile; ++p) {
            const double det = count[p] * see[p] - se[p] * se[p];
            c1[side][p] = (count[p] * sey[p] - se[p] * sy[p]) / det;
            c0[side][p] = (sy[p] - c1[side][p] * se[p]) / count[p];
        }
    }
    double right[2][Tile] = {};
    for (int i = 0; i < n; ++i) {
        const double* y = mu + i * Tile;
        for (int p = 0; p < Tile; ++p) {
            const double pre = c0[0][p] + c1[0][p] * e[i];
            const double span = c0[1][p] + c1[1][p] * e[i] - pre;
            const double v = (y[p] - pre) / span;
            right[0][p] += fit.f[0][static_cast<std::size_t>(i)] * v;
            right[1][p] += fit.f[1][static_cast<std::size_t>(i)] * v;
        }
    }
    for (int p = 0; p < Tile; ++p) {
        out[2 * p] = fit.inverse[0] * right[0][p] + fit.inverse[1] * right[1][p];
        out[2 * p + 1] = fit.inverse[2] * right[0][p] + fit.inverse[3] * right[1][p];
    }
}

void Tight(benchmark::State& state) {
    const Stacks& s = stacks(512, 100);
    const int n = static_cast<int>(s.energies.size());
    const Fit fit = fitOf(s.energies);
    std::vector<double> mu(static_cast<std::size_t>(n) * Tile);
    std::vector<double> out(static_cast<std::size_t>(s.side) * 2);
    std::vector<const quint16*> i1(static_cast<std::size_t>(n)), i0(static_cast<std::size_t>(n));
    double sum = 0.0;
    for (auto _ : state) {
        for (int y = 0; y < s.side; ++y) {
            for (int x = 0; x < s.side; x += Tile) {
                for (int i = 0; i < n; ++i) {
                    const std::size_t frame = static_cast<std::size_t>(i);
                    i1[frame] = s.i1.at(i)->rows[static_cast<std::size_t>(y)] + x;
                    i0[frame] = s.i0.at(i)->rows[static_cast<std::size_t>(y)] + x;
                }
                tightTile(i1.data(), i0.data(), s.energies.data(), n, fit, mu.data(),
                          &out[static_cast<std::size_t>(2 * x)]);
            }
            sum += out[7];
        }
    }
    benchmark::DoNotOptimize(sum);
    state.counters["fraction"] = out[2 * 256];
}
BENCHMARK(Tight)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);

// --- the way of the programs

double fitRows(const Stacks& s, int threads, const std::function<double(int, int)>& correctionAt,
               const QVector<XafsSpectrum>& list = references(), FitRule rule = LinearFit::Lcf) {
    const AbsorptionSource source(s.i1, s.i0, s.side, s.side);
    BinRaster raster{0, 1, s.side, 0, 1, s.side, 0, 0};
    const FitValues places(list.size(), rule.withErrors);
    RasterPass pass(source, raster, places.count(),
                    fitEvaluators(threads, raster, list, rule, s.energies, correctionAt));
    double fraction = 0.0;
    for (RasterPass::Row row = pass.take(); row.values != nullptr; row = pass.take()) {
        fraction = row.values[places.count() * (s.side / 2) + places.ratio(0)];
    }
    return fraction;
}

void Rows(benchmark::State& state) {
    for (auto _ : state) {
        state.counters["fraction"] = fitRows(stacks(512, 100), static_cast<int>(state.range(0)),
                                             [](int, int) { return 0.0; });
    }
}
BENCHMARK(Rows)->ArgName("threads")->Arg(1)->Arg(2)->MeasureProcessCPUTime()->UseRealTime()->Unit(
    benchmark::kMillisecond);

void Corrected(benchmark::State& state) {
    for (auto _ : state) {
        fitRows(stacks(512, 100), static_cast<int>(state.range(0)),
                [](int x, int y) { return 0.001 * x + 0.0003 * y; });
    }
}
BENCHMARK(Corrected)
    ->ArgName("threads")
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// Edges 1.5 eV apart: spectra that no two others make up.
QVector<XafsSpectrum> apart(int count) {
    const std::vector<double> whiteLines{2.0, 0.5, 1.2, 0.9};
    QVector<XafsSpectrum> list;
    for (int i = 0; i < count; ++i) {
        Spectrum points;
        for (double e = 6990.0; e <= 7310.0; e += 0.5) {
            points.append(e, muT(e - 1.5 * i, whiteLines[static_cast<std::size_t>(i)]));
        }
        list.append(XafsSpectrum(points, XafsSpectrum::Simple, 0.0));
    }
    return list;
}

/// Fits with 2, 3 or 4 references, without and with errors, without and with corrections, with as
/// many I0 frames as energies or 20.
void RowsWithErrors(benchmark::State& state) {
    FitRule rule = LinearFit::Lcf;
    rule.withErrors = state.range(1) != 0;
    const QVector<XafsSpectrum> list = apart(static_cast<int>(state.range(0)));
    const double slope = state.range(2) != 0 ? 0.001 : 0.0;
    for (auto _ : state) {
        fitRows(
            stacks(512, 100, static_cast<int>(state.range(3))), 1,
            [slope](int x, int y) { return slope * (x + 0.3 * y); }, list, rule);
    }
}
BENCHMARK(RowsWithErrors)
    ->ArgNames({"references", "errors", "map", "i0"})
    ->ArgsProduct({{2, 3, 4}, {0, 1}, {0, 1}, {100}})
    ->ArgsProduct({{2}, {0, 1}, {0}, {20}})
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// Fits with 3 references: without energy corrections, with smooth ones, with those of a noisy map
/// (sigma 0.3 eV).
void Shifted(benchmark::State& state) {
    FitRule rule(state.range(0) != 0 ? LinearFit::Mlcf : LinearFit::Lcf);
    rule.withErrors = state.range(1) != 0;
    rule.constraints = static_cast<FitRule::Constraints>(state.range(2));
    const QVector<XafsSpectrum> list = apart(3);
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0.0, state.range(3) == 2 ? 0.3 : 0.0);
    std::vector<double> map(512 * 512);
    for (std::size_t i = 0; i < map.size(); ++i) {
        const double smooth = 0.002 * static_cast<double>(i % 512) + 0.0007 * double(i / 512);
        map[i] = state.range(3) != 0 ? smooth + noise(random) : 0.0;
    }
    for (auto _ : state) {
        fitRows(
            stacks(512, 100), 1,
            [&map](int x, int y) { return map[static_cast<std::size_t>(512 * y + x)]; }, list,
            rule);
    }
}
BENCHMARK(Shifted)
    ->ArgNames({"mlcf", "errors", "constraints", "map"})
    ->ArgsProduct({{0, 1}, {0, 1}, {0}, {0, 1, 2}})
    ->ArgsProduct({{0}, {0}, {1, 3}, {0, 2}})
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// The passes of a calibration and of residual absorption.
void passRows(benchmark::State& state, int valuesPerBin,
              const std::vector<RasterPass::Evaluate>& evaluators) {
    const Stacks& s = stacks(512, 100);
    for (auto _ : state) {
        const AbsorptionSource source(s.i1, s.i0, s.side, s.side);
        const BinRaster raster{0, 1, s.side, 0, 1, s.side, 0, 0};
        RasterPass pass(source, raster, valuesPerBin, evaluators);
        while (pass.take().values != nullptr) {
        }
    }
}

void Edges(benchmark::State& state) {
    passRows(state, 1, edgeEvaluators(static_cast<int>(state.range(0)), stacks(512, 100).energies));
}
void Backgrounds(benchmark::State& state) {
    passRows(state, 2,
             backgroundEvaluators(static_cast<int>(state.range(0)), BinRaster(),
                                  stacks(512, 100).energies, XafsSpectrum::Simple, 7150.0,
                                  [](int, int) { return 0.0; }));
}
BENCHMARK(Edges)->ArgName("threads")->Arg(1)->MeasureProcessCPUTime()->UseRealTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(Backgrounds)
    ->ArgName("threads")
    ->Arg(1)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void Growth(benchmark::State& state) {
    const Stacks& s = stacks(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) {
        fitRows(s, 2, [](int, int) { return 0.0; });
    }
}
BENCHMARK(Growth)
    ->ArgNames({"side", "energies"})
    ->Args({64, 100})
    ->Args({128, 100})
    ->Args({256, 100})
    ->Args({512, 100})
    ->Args({1024, 100})
    ->Args({2048, 100})
    ->Args({512, 30})
    ->Args({512, 60})
    ->Args({512, 200})
    ->Args({512, 500})
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    initGlobals();
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
