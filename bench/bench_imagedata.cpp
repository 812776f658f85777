#include <benchmark/benchmark.h>
#include <tiffio.h>

#include <QTemporaryDir>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "base/Globals.h"
#include "frames/FrameSet.h"
#include "frames/TiffFile.h"

// Read pairs of rows as ratios: Load against ScanlineLoop (reading), BinRows against
// PointByPoint (spectra of a whole image), BoxSum against PlainBox.

namespace {

constexpr int Width = 1024;
constexpr int Height = 512;
constexpr int Frames = 40;

std::vector<quint16> counts(unsigned seed) {
    std::mt19937 random(seed);
    std::vector<quint16> data(static_cast<std::size_t>(Width) * Height);
    for (quint16& c : data) {
        c = static_cast<quint16>(8000 + random() % 20000);
    }
    return data;
}

/// Two stacks on disk, written once.
class Files {
  public:
    Files() {
        for (unsigned stack = 0; stack < 2; ++stack) {
            const std::vector<quint16> data = counts(stack);
            for (int i = 0; i < Frames; ++i) {
                const QString name = m_dir.filePath(QString("s%1-%2eV.tif").arg(stack).arg(i));
                if (!writeTiff(name, Width, Height, data.data())) {
                    qFatal("can not write the sample stack");
                }
                names[stack].push_back(name);
            }
        }
    }
    std::vector<QString> names[2];

  private:
    QTemporaryDir m_dir;
};

const Files& files() {
    static const Files instance;
    return instance;
}

template <typename Read>
void bothStacks(benchmark::State& state, Read read) {
    const Files& sample = files();
    for (auto _ : state) {
        std::thread other([&] { read(sample.names[1]); });
        read(sample.names[0]);
        other.join();
    }
    state.SetBytesProcessed(state.iterations() * 2 * Frames * Width * Height * 2);
}

void ScanlineLoop(benchmark::State& state) {
    bothStacks(state, [](const std::vector<QString>& names) {
        std::vector<std::vector<quint16>> frames;
        for (const QString& name : names) {
            TIFF* tiff = TIFFOpen(name.toLatin1().constData(), "r");
            std::vector<quint16> frame(static_cast<std::size_t>(Width) * Height);
            for (int y = 0; y < Height; ++y) {
                TIFFReadScanline(tiff, &frame[static_cast<std::size_t>(y) * Width],
                                 static_cast<uint32_t>(y), 0);
            }
            TIFFClose(tiff);
            frames.push_back(std::move(frame));
        }
        benchmark::DoNotOptimize(frames.data());
    });
}
BENCHMARK(ScanlineLoop)->UseRealTime()->Unit(benchmark::kMillisecond);

void Load(benchmark::State& state) {
    bothStacks(state, [](const std::vector<QString>& names) {
        FrameSet set;
        for (const QString& name : names) {
            auto frame = std::make_unique<TiffData>();
            if (!frame->load(name)) {
                qFatal("can not read the sample stack");
            }
            set.append(std::move(frame));
        }
        benchmark::DoNotOptimize(set.at(0));
    });
}
BENCHMARK(Load)->UseRealTime()->Unit(benchmark::kMillisecond);

FrameSet loadedStack(int stack, int frames) {
    FrameSet set;
    for (int i = 0; i < frames; ++i) {
        auto frame = std::make_unique<TiffData>();
        frame->load(files().names[stack][static_cast<std::size_t>(i)]);
        frame->energy = 7000.0 + i * Frames / frames;
        set.append(std::move(frame));
    }
    return set;
}

/// Every bin of the image; the argument is the half width of a bin.
template <typename SpectrumAt>
void wholeImage(benchmark::State& state, SpectrumAt spectrumAt) {
    const int half = static_cast<int>(state.range(0));
    const int step = 2 * half + 1;
    for (auto _ : state) {
        double sum = 0.0;
        for (int y = half; y < Height; y += step) {
            for (int x = half; x < Width; x += step) {
                sum += spectrumAt(x, y).maximum().y;
            }
        }
        benchmark::DoNotOptimize(sum);
    }
}

void PointByPoint(benchmark::State& state) {
    const FrameSet i1 = loadedStack(0, Frames);
    const FrameSet i0 = loadedStack(1, Frames / 4);
    const AbsorptionSource source(i1, i0, Width, Height);
    const int half = static_cast<int>(state.range(0));
    wholeImage(state, [&](int x, int y) { return source.spectrumAt(x, y, half, half); });
}
BENCHMARK(PointByPoint)->Arg(0)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

void BinRows(benchmark::State& state) {
    const FrameSet i1 = loadedStack(0, Frames);
    const FrameSet i0 = loadedStack(1, Frames / 4);
    const AbsorptionSource source(i1, i0, Width, Height);
    const int half = static_cast<int>(state.range(0));
    BinRowSpectra rows(source, half, 2 * half + 1, Width, half, half);
    wholeImage(state, [&](int x, int y) { return rows.at(x, y); });
}
BENCHMARK(BinRows)->Arg(0)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

/// The sum over a box in the middle; the argument is its half width. Read against PlainBox.
void BoxSum(benchmark::State& state) {
    const FrameSet set = loadedStack(0, 1);
    const int half = static_cast<int>(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(set.at(0)->boxSum(Width / 2, Height / 2, half, half));
    }
}
void PlainBox(benchmark::State& state) {
    const FrameSet set = loadedStack(0, 1);
    const TiffData* frame = set.at(0);
    const int half = static_cast<int>(state.range(0));
    for (auto _ : state) {
        double sum = 0.0;
        for (int y = Height / 2 - half; y <= Height / 2 + half; ++y) {
            for (int x = Width / 2 - half; x <= Width / 2 + half; ++x) {
                sum += frame->rows[static_cast<std::size_t>(y)][x];
            }
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BoxSum)->Arg(0)->Arg(2)->Arg(20);
BENCHMARK(PlainBox)->Arg(0)->Arg(2)->Arg(20);

}  // namespace

int main(int argc, char** argv) {
    initGlobals();
    silenceTiffMessages();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
