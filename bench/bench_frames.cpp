// A frame of 2048 x 2048 pixels as absorption, and the difference of two energies, made on demand.
//
// Ratios to read: Absorption and Difference, each with its range and its picture, on all cores,
// against Naive: ln(I0 / I1) of every pixel in one loop on one thread. Milliseconds to read:
// Absorption takes less than 30 on two cores.

#include <benchmark/benchmark.h>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>

#include "absorption/PixelPass.h"
#include "drawing/ValuePicture.h"
#include "frames/DarkFrame.h"
#include "frames/FrameSet.h"

namespace {

constexpr int Side = 2048;

FrameSet stack(int frames, double firstEnergy, double step, int counts) {
    std::mt19937 random(1);
    FrameSet set;
    for (int i = 0; i < frames; ++i) {
        auto frame = std::make_unique<TiffData>();
        frame->width = frame->height = Side;
        frame->energy = firstEnergy + i * step;
        frame->makeRows(Side * sizeof(quint16));
        for (quint16* row : frame->rows) {
            for (int x = 0; x < Side; ++x) {
                row[x] = static_cast<quint16>(counts + static_cast<int>(random() % 2000));
            }
        }
        set.append(std::move(frame));
    }
    return set;
}

struct Frames {
    FrameSet i1 = stack(6, 7100.0, 2.0, 9000);
    FrameSet i0 = stack(3, 7099.0, 5.5, 30000);
    FrameSet darkSet = stack(1, 0.0, 0.0, 100);
    DarkFrame dark{darkSet, Side, Side};
    AbsorptionSource plain{i1, i0, Side, Side};
    AbsorptionSource withDark{i1, i0, Side, Side, &dark};
};

const Frames& frames() {
    static const Frames all;
    return all;
}

int threads() {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

void show(benchmark::State& state, const PixelPass& pass) {
    const std::atomic<bool> stop{false};
    PixelValues pixels;
    for (auto _ : state) {
        pass.run(threads(), stop, &pixels);
        const auto range = valuePercentiles(pixels.values.get(), Side, Side, pixels.min, pixels.max,
                                            0.01, threads());
        benchmark::DoNotOptimize(valuePicture(pixels.values.get(), Side, Side, range.first,
                                              range.second, frameColors(), threads()));
    }
}

void Naive(benchmark::State& state) {
    const TiffData& i1 = *frames().i1.at(3);
    const TiffData& i0 = *frames().i0.at(1);
    std::vector<double> values(Side * Side);
    for (auto _ : state) {
        for (std::size_t y = 0; y < Side; ++y) {
            for (std::size_t x = 0; x < Side; ++x) {
                values[y * Side + x] = std::log(static_cast<double>(i0.rows[y][x]) /
                                                static_cast<double>(i1.rows[y][x]));
            }
        }
        benchmark::DoNotOptimize(values.data());
    }
}
BENCHMARK(Naive)->Unit(benchmark::kMillisecond)->UseRealTime();

void Absorption(benchmark::State& state) {
    const Frames& all = frames();
    show(state,
         PixelPass::absorption(state.range(0) != 0 ? all.withDark : all.plain, all.i1.at(3)));
}
BENCHMARK(Absorption)
    ->ArgName("dark")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// With the shifts of an energy map, or without.
void Difference(benchmark::State& state) {
    const double most = state.range(0) != 0 ? 0.9 : 0.0;
    const auto shiftAt = [most](int x, int) { return most * x / Side; };
    show(state, PixelPass::difference(frames().plain, 7102.0, 7108.0, shiftAt, 0.0, most));
}
BENCHMARK(Difference)->ArgName("map")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The parts of it.
void Values(benchmark::State& state) {
    const PixelPass pass = PixelPass::absorption(frames().plain, frames().i1.at(3));
    const std::atomic<bool> stop{false};
    PixelValues pixels;
    for (auto _ : state) {
        pass.run(threads(), stop, &pixels);
    }
}
BENCHMARK(Values)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
