// The main window at its work, without a display, against the plain loops that do the same.
//
// Ratios to read: WindowLoad / ScanlineLoop (reading two stacks), ShownWindowLoad / ScanlineLoop
// (the same into a window that paints; "first_frame" is when the first frame has been painted, as a
// share of the load), WindowLcf / PlainLcf (fitting an image), Calibration and ResidualAbsorption /
// FormAndNormalise (per point). The counters "bytes_per_count" and "beside_stacks" are memory:
// resident bytes for each pixel of each frame after a load, and what an analysis with its result
// images takes, as a share of the stacks' counts.

#include <benchmark/benchmark.h>
#include <tiffio.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "SampleStacks.h"
#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "base/Globals.h"
#include "calibration/EnergyShift.h"
#include "fitting/LinearFit.h"
#include "frames/TiffFile.h"
#include "maps/AnalysisGrid.h"
#include "maps/Analyzed2DRes.h"
#include "panels/BatchCtrl.h"
#include "spectra/SpectrumFile.h"
#include "window/Body.h"

namespace {

const SampleStacks& stacks() {
    static const SampleStacks instance(512, 512, 100);
    return instance;
}

double counts() {
    return 2.0 * stacks().frames() * static_cast<double>(stacks().pixels());
}

// --- reading

void scanlineLoop(const QStringList& names) {
    std::vector<std::vector<quint16>> frames;
    const std::size_t width = static_cast<std::size_t>(stacks().width());
    for (const QString& name : names) {
        TIFF* tiff = TIFFOpen(name.toLocal8Bit().constData(), "r");
        std::vector<quint16> frame(static_cast<std::size_t>(stacks().pixels()));
        for (std::size_t y = 0; y < static_cast<std::size_t>(stacks().height()); ++y) {
            TIFFReadScanline(tiff, &frame[y * width], static_cast<uint32_t>(y), 0);
        }
        TIFFClose(tiff);
        frames.push_back(std::move(frame));
    }
    benchmark::DoNotOptimize(frames.data());
}

void ScanlineLoop(benchmark::State& state) {
    stacks();
    for (auto _ : state) {
        std::thread other([] { scanlineLoop(stacks().i0()); });
        scanlineLoop(stacks().i1());
        other.join();
    }
}
BENCHMARK(ScanlineLoop)->UseRealTime()->Unit(benchmark::kMillisecond);

/// Both stacks of a window, its two readers at work side by side.
void loadBoth(Body& body) {
    QEventLoop loop;
    bool ready[2] = {false, false};
    QObject::connect(&body, &Body::loadProgress, &loop, [&](int stack, int done, int total) {
        ready[stack] = ready[stack] || (total > 0 && done == total);
        if (ready[0] && ready[1]) {
            loop.quit();
        }
    });
    body.readI1Files(stacks().i1(), true);
    body.readI0Files(stacks().i0(), true);
    loop.exec();
}

void WindowLoad(benchmark::State& state) {
    stacks();
    Body body;
    const qint64 before = residentBytes();
    for (auto _ : state) {
        loadBoth(body);
        state.PauseTiming();
        state.counters["bytes_per_count"] =
            static_cast<double>(residentBytes() - before) / counts();
        body.clearI1Files();
        body.clearI0Files();
        state.ResumeTiming();
    }
}
BENCHMARK(WindowLoad)->UseRealTime()->Unit(benchmark::kMillisecond);

/// When the first frame of a load has been painted.
class FirstPaint : public QObject {
  public:
    explicit FirstPaint(Body* body) : m_body(body) {
        body->findChild<QWidget*>(QStringLiteral("dispA"))->installEventFilter(this);
    }
    void start() {
        m_clock.start();
        m_painted = -1;
    }
    double share() const {
        return static_cast<double>(m_painted) / static_cast<double>(m_clock.nsecsElapsed());
    }

  private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Paint || m_painted >= 0 ||
            m_body->measurement().imageSize().isEmpty()) {
            return false;
        }
        watched->removeEventFilter(this);
        QCoreApplication::sendEvent(watched, event);
        watched->installEventFilter(this);
        m_painted = m_clock.nsecsElapsed();
        return true;
    }

    Body* m_body;
    QElapsedTimer m_clock;
    qint64 m_painted = -1;
};

void ShownWindowLoad(benchmark::State& state) {
    stacks();
    Body body;
    body.show();
    QCoreApplication::processEvents();
    FirstPaint first(&body);
    for (auto _ : state) {
        first.start();
        loadBoth(body);
        state.counters["first_frame"] = first.share();
        state.PauseTiming();
        body.clearI1Files();
        body.clearI0Files();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(ShownWindowLoad)->UseRealTime()->Unit(benchmark::kMillisecond);

// --- whole images; the argument is the half width of the bins

void runBatch(Body& body, const QStringList& lines) {
    QEventLoop loop;
    int left = lines.size();
    QObject::connect(
        &body, &Body::commandDone, &loop, [&](const CmdLine& line, const QStringList& problems) {
            if (!problems.isEmpty()) {
                qFatal("%s: %s", qPrintable(line.text), qPrintable(problems.join("; ")));
            }
            if (--left == 0) {
                loop.quit();
            }
        });
    body.batchCtrl()->dispatchLines(lines);
    loop.exec();
}

/// Sends the window an event again and again from another thread, as a display does, each when the
/// one before has been handled, and keeps the longest time that one waited.
class OtherEvents : public QObject {
  public:
    explicit OtherEvents(QWidget* target) : m_target(target) {
        target->installEventFilter(this);
        m_sender = std::thread([this] { send(); });
    }
    ~OtherEvents() override {
        m_ended = true;
        m_sender.join();
    }
    double worstMilliseconds() const { return static_cast<double>(m_worst) * 1e-6; }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::User && m_waiting) {
            m_worst = std::max(m_worst, m_since.nsecsElapsed());
            m_waiting = false;
        }
        return false;
    }

  private:
    void send() {
        while (!m_ended) {
            if (!m_waiting) {
                m_since.start();
                m_waiting = true;
                QCoreApplication::postEvent(m_target, new QEvent(QEvent::User));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
    }

    QWidget* m_target;
    std::thread m_sender;
    std::atomic<bool> m_ended{false};
    std::atomic<bool> m_waiting{false};
    QElapsedTimer m_since;
    qint64 m_worst = 0;
};

/// Seconds go to one batch line on a loaded window.
void windowLine(benchmark::State& state, const QString& line, bool withEvents = false) {
    Body body;
    loadBoth(body);
    const QString half = QString::number(state.range(0));
    runBatch(body, {"set_band_w " + half, "set_band_h " + half,
                    "analyzer_set_LCF_std 0 1 0.0 " + stacks().reference(0) + " 0",
                    "analyzer_set_LCF_std 1 1 0.0 " + stacks().reference(1) + " 0",
                    "calib_load_std " + stacks().reference(0), "analyzer_set_ra_energy 7112"});
    const qint64 before = residentBytes();
    std::unique_ptr<OtherEvents> events;
    if (withEvents) {
        events = std::make_unique<OtherEvents>(&body);
    }
    for (auto _ : state) {
        runBatch(body, {line});
    }
    if (events) {
        state.counters["worst_wait_ms"] = events->worstMilliseconds();
    }
    state.counters["beside_stacks"] =
        static_cast<double>(residentBytes() - before) / (2.0 * counts());
}

void WindowLcf(benchmark::State& state) {
    windowLine(state, QStringLiteral("analyzer_exec_LCF"));
}

/// The same with other events meanwhile; the counter tells how long one waited at most.
void WindowLcfEvents(benchmark::State& state) {
    windowLine(state, QStringLiteral("analyzer_exec_LCF"), true);
}
void ResidualAbsorption(benchmark::State& state) {
    windowLine(state, QStringLiteral("analyzer_exec_ra"));
}
void Calibration(benchmark::State& state) {
    windowLine(state, QStringLiteral("calib_exec"));
}

/// What every analysis needs: the spectrum of each bin, normalised; then done(spectrum).
template <typename Done>
void plainLoop(benchmark::State& state, Done done) {
    const FrameSet i1 = stacks().load(stacks().i1());
    const FrameSet i0 = stacks().load(stacks().i0());
    const AbsorptionSource source(i1, i0, stacks().width(), stacks().height());
    const int half = static_cast<int>(state.range(0));
    const int step = 2 * half + 1;
    for (auto _ : state) {
        BinRowSpectra rows(source, half, step, stacks().width(), half, half);
        for (int y = half; y < stacks().height(); y += step) {
            for (int x = half; x < stacks().width(); x += step) {
                const XafsSpectrum spectrum(rows.at(x, y), XafsSpectrum::Simple, 0.0);
                done(spectrum);
            }
        }
    }
}

void FormAndNormalise(benchmark::State& state) {
    plainLoop(state, [](const XafsSpectrum& s) { benchmark::DoNotOptimize(s.dMut()); });
}

QVector<XafsSpectrum> references() {
    QVector<XafsSpectrum> list(2);
    for (int i = 0; i < 2; ++i) {
        readSpectrumFile(stacks().reference(i), &list[i]);
        list[i].normalise(XafsSpectrum::Simple);
    }
    return list;
}

void PlainLcf(benchmark::State& state) {
    LinearFit fit(references(), LinearFit::Lcf);
    plainLoop(state, [&](const XafsSpectrum& s) {
        fit.fit(s);
        benchmark::DoNotOptimize(fit.ratios().data());
    });
}

/// What the cursor needs where it stands, without painting.
void Cursor(benchmark::State& state) {
    const FrameSet i1 = stacks().load(stacks().i1());
    const FrameSet i0 = stacks().load(stacks().i0());
    const AbsorptionSource source(i1, i0, stacks().width(), stacks().height());
    LinearFit fit(references(), LinearFit::Lcf);
    const int half = static_cast<int>(state.range(0));
    for (auto _ : state) {
        const Spectrum raw = source.spectrumAt(200, 300, half, half);
        const XafsSpectrum spectrum(raw, XafsSpectrum::Simple, 0.0);
        fit.fit(spectrum);
        benchmark::DoNotOptimize(calibrationEdge(&raw));
        benchmark::DoNotOptimize(fit.fittedCurve(fit.ratios()).size());
    }
}
BENCHMARK(Cursor)->Arg(0)->Arg(10)->Unit(benchmark::kMicrosecond);

BENCHMARK(FormAndNormalise)->Arg(0)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Calibration)->Arg(0)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ResidualAbsorption)->Arg(0)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(PlainLcf)->Arg(0)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(WindowLcfEvents)->Arg(0)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(WindowLcf)->Arg(0)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

void nowhere(QtMsgType, const QMessageLogContext&, const QString&) {}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    initGlobals();
    silenceTiffMessages();
    qInstallMessageHandler(nowhere);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
