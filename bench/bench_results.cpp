// A result image of 1024 x 1024: filled, shown, saved. Read everything against CopyArray, one pass
// of plain copying.

#include <benchmark/benchmark.h>

#include <QRectF>
#include <memory>
#include <vector>

#include "base/Globals.h"
#include "drawing/MapPicture.h"
#include "maps/Analyzed2DRes.h"

namespace {

constexpr int Size = 1024;

AnalysisGrid grid(int half) {
    return AnalysisGrid::ofArea(Size, Size, half, half, QRectF(0, 0, Size, Size));
}

double valueOf(int x, int y) {
    return 0.001 * x - 0.002 * y;  // cheap beside what is measured
}

void fill(Analyzed2DRes& result, int half) {
    forEachPoint(
        grid(half), [&](int x, int y) { result.setData(x, y, half, half, valueOf(x, y)); },
        [](int) {});
}

void CopyArray(benchmark::State& state) {
    const std::vector<double> from(Size * Size, 0.5);
    std::vector<double> to(Size * Size);
    for (auto _ : state) {
        std::copy(from.begin(), from.end(), to.begin());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}

/// The argument is the half width of the bins.
void SetData(benchmark::State& state) {
    const int half = static_cast<int>(state.range(0));
    Analyzed2DRes result;
    result.setGrid(grid(half));
    result.clear();
    for (auto _ : state) {
        fill(result, half);
    }
}

void GenImg(benchmark::State& state) {
    Analyzed2DRes result;
    result.setGrid(grid(0));
    result.clear();
    fill(result, 0);
    for (auto _ : state) {
        result.genImg();
        benchmark::DoNotOptimize(result.img());
    }
}

/// The view's picture of 2048 x 2048 pixels with the values below and above marked.
void ViewPicture(benchmark::State& state) {
    constexpr int side = 2 * Size;
    std::vector<double> values;
    for (int i = 0; i < side * side; ++i) {
        values.push_back(valueOf(i % side, i / side));
    }
    const MapColoring coloring{colorScaleOf("viridis"), -3.0, 1.5, true};
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            mapPicture({values.data(), side, side, QRect(0, 0, side, side), nullptr}, coloring));
    }
}

/// Percentiles of 2048 x 2048 pixels; the argument is the half width of the bins.
void RobustRange(benchmark::State& state) {
    constexpr int side = 2 * Size;
    const int half = static_cast<int>(state.range(0));
    Analyzed2DRes result;
    result.startOver(AnalysisGrid::ofArea(side, side, half, half, QRectF(0, 0, side, side)));
    forEachPoint(
        result.grid(),
        [&](int x, int y) { result.setData(x, y, half, half, valueOf(x * 7919 % side, y)); },
        [](int) {});
    for (auto _ : state) {
        state.PauseTiming();
        result.genImg();
        state.ResumeTiming();
        benchmark::DoNotOptimize(result.robustRange());
    }
}

/// The argument tells whether one value a point is written, or one a pixel.
void TiffDataForSave(benchmark::State& state) {
    Analyzed2DRes result;
    result.setGrid(grid(1));
    result.clear();
    fill(result, 1);
    for (auto _ : state) {
        const std::unique_ptr<quint16[]> data(
            result.tiffDataForSave(false, 0.0, 1.0, state.range(0) != 0));
        benchmark::DoNotOptimize(data.get());
    }
}

BENCHMARK(CopyArray)->Unit(benchmark::kMillisecond);
BENCHMARK(SetData)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(GenImg)->Unit(benchmark::kMillisecond);
BENCHMARK(ViewPicture)->Unit(benchmark::kMillisecond);
BENCHMARK(RobustRange)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(TiffDataForSave)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    initGlobals();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
