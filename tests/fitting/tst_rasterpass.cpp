#include <pthread.h>
#include <sys/resource.h>

#include <QFile>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include "DebugLines.h"
#include "Edges.h"
#include "SameBits.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "absorption/MeanSpectrum.h"
#include "calibration/EnergyShift.h"
#include "fitting/LaneFit.h"

using Energies = std::vector<double>;
Q_DECLARE_METATYPE(Energies)

namespace {

constexpr int Width = 21;
constexpr int Height = 4;
constexpr double At = 7101.25;  // eV, for residual absorption
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

/// Noisy steps at various energies.
FrameSet edgeStack(const Energies& energies) {
    std::mt19937 random(3);
    return tinyStack(Width, Height, energies, [&](int i, int x, int y) {
        const double e = energies[static_cast<std::size_t>(i)];
        const double mu = std::isfinite(e) ? edges::step(e + x - y, 0.2) : 0.5;
        return static_cast<quint16>(4000.0 * std::exp(-mu) + static_cast<double>(random() % 50));
    });
}

FrameSet flatStack() {
    return tinyStack(Width, Height, {7000, 7300},
                     [](int, int x, int) { return quint16(8000 + x); });
}

double correctionAt(int x, int y) {
    return 0.25 * (x / 3) - y;
}

/// Neighbours a little apart, far apart and out of the references' range; some no number.
double anyCorrectionAt(int x, int y) {
    const double far[] = {0.0, 33.3, -21.7, 400.0, 0.3, -1e6, y == 3 ? Nan : 12.5};
    return y == 0 ? 0.013 * x : y == 1 ? correctionAt(x, y) : far[(x + y) % 7];
}

BinRaster wholeImage() {
    return BinRaster{0, 1, Width, 0, 1, Height, 1, 0};
}

/// All values of a pass, row after row.
Energies valuesOf(RasterPass& pass, int perBin) {
    Energies values;
    for (RasterPass::Row row = pass.take(); row.values != nullptr; row = pass.take()) {
        values.insert(values.end(), row.values, row.values + Width * perBin);
    }
    return values;
}

Energies evenly(double from, double to, double step) {
    const QVector<double> list = edges::energies(from, to, step);
    return {list.begin(), list.end()};
}

/// Bins at the ends and in the middle of packs, alone and side by side; whole rows left out.
std::shared_ptr<const PixelSet> innerPixels(int width, int height) {
    const auto pixels = std::make_shared<PixelSet>(QRect(0, 0, width, height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; y % 5 != 1 && x < width; ++x) {
            pixels->insert(y, x, x + ((x * 7 + y * 3) % 11 < 4 && x > y ? 1 : 0));
        }
    }
    return pixels;
}

/// What threads ask of the system for themselves, for as long as it lives.
class ThreadCost {
  public:
    explicit ThreadCost(std::size_t bytes) {
        pthread_getattr_default_np(&m_old);
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_setstacksize(&attributes, bytes);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
    ~ThreadCost() {
        pthread_setattr_default_np(&m_old);
        pthread_attr_destroy(&m_old);
    }

  private:
    pthread_attr_t m_old;
};

}  // namespace

/// What a pass over rows of bins works out, against one spectrum at a time.
class TestRasterPass : public QObject {
    Q_OBJECT

  private slots:
    void anyStackGivesTheSameBits_data() {
        QTest::addColumn<Energies>("energies");
        Energies shuffled = evenly(7000, 7300, 4);
        std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(1));
        Energies repeated = shuffled;
        repeated.insert(repeated.end(), {7096, 7100, 7100, 7000, 7300});
        Energies withoutNumber = repeated;
        withoutNumber.insert(withoutNumber.begin() + 5, {Nan, Infinity, Nan, -Infinity});
        QTest::newRow("ascending") << evenly(7000, 7300, 4);
        QTest::newRow("any order") << shuffled;
        QTest::newRow("repeated") << repeated;
        QTest::newRow("not finite") << withoutNumber;
        QTest::newRow("one energy") << Energies(6, 7100.0);
        QTest::newRow("one frame") << Energies{7100};
        QTest::newRow("two frames") << Energies{7120, 7080};
        QTest::newRow("three frames") << Energies{7080, 7120, 7100};
        QTest::newRow("three energies of four") << Energies{7080, 7120, 7100, 7100};
        QTest::newRow("outside the references") << evenly(6000, 6040, 2);
    }
    void anyStackGivesTheSameBits() {
        QFETCH(Energies, energies);
        const DebugLines quiet;
        const FrameSet i1 = edgeStack(energies);
        const FrameSet i0 = flatStack();
        const AbsorptionSource source(i1, i0, Width, Height);
        const BinRaster raster = wholeImage();
        QVector<XafsSpectrum> references{edges::reference(0.1), edges::reference(0.4)};
        references[1].setShiftOn(true);
        references[1].setShift(0.7);
        std::vector<Normalisation> rules;
        for (int type = 0; type < background::Count; ++type) {
            rules.insert(rules.end(), 2, type);
            rules.back().e0 = 7100.3;
            rules.back().ranges = {-50.0, -10.25, 5.0, 71.0};
        }
        for (const Normalisation& type : rules) {
            RasterPass lcf(source, raster, 4,
                           fitEvaluators(2, raster, references, {LinearFit::Lcf, type},
                                         source.energies(), anyCorrectionAt));
            RasterPass mlcf(source, raster, 4,
                            fitEvaluators(2, raster, references, {LinearFit::Mlcf, type},
                                          source.energies(), anyCorrectionAt));
            RasterPass curves(
                source, raster, 2,
                backgroundEvaluators(2, raster, source.energies(), type, At, anyCorrectionAt));
            RasterPass edge(source, raster, 1, edgeEvaluators(2, source.energies()));
            LinearFit alone(references, LinearFit::Lcf);
            LinearFit aloneM(references, LinearFit::Mlcf);
            for (int y = 0; y < Height; ++y) {
                for (int x = 0; x < Width; ++x) {
                    const XafsSpectrum spectrum(source.spectrumAt(x, y, 1, 0), type,
                                                anyCorrectionAt(x, y));
                    alone.fit(spectrum);
                    aloneM.fit(spectrum);
                    for (std::size_t r = 0; r < 2; ++r) {
                        QVERIFY(same(lcf.at(x, y)[r], alone.dMuts()[r]));
                        QVERIFY(same(lcf.at(x, y)[2 + r], alone.ratios()[r]));
                        QVERIFY(same(mlcf.at(x, y)[r], aloneM.dMuts()[r]));
                        QVERIFY(same(mlcf.at(x, y)[2 + r], aloneM.ratios()[r]));
                    }
                    QVERIFY(same(curves.at(x, y)[0], spectrum.preEdge().valueAt(At)));
                    QVERIFY(same(curves.at(x, y)[1], spectrum.postEdge().valueAt(At)));
                    QVERIFY(same(edge.at(x, y)[0], calibrationEdge(&spectrum)));
                }
            }
        }
    }

    /// Counted the same by any number of threads, in packs and one by one.
    void binsAreTallied_data() {
        columns<int, bool, bool>("threads", "inPacks", "inside");
        QTest::newRow("one thread") << 1 << true << false;
        QTest::newRow("five threads") << 5 << true << false;
        QTest::newRow("one by one") << 2 << false << false;
        QTest::newRow("in a shape") << 3 << true << true;
        QTest::newRow("in a shape one by one") << 2 << false << true;
    }
    void binsAreTallied() {
        QFETCH(int, threads);
        QFETCH(bool, inPacks);
        QFETCH(bool, inside);
        const DebugLines said;
        Energies energies = evenly(7000, 7300, 4);
        if (!inPacks) {
            energies.push_back(7300);
        }
        // No counts in column 3, at one energy in every second row of column 5; mu-t 0 in column 4.
        const FrameSet i1 = tinyStack(Width, Height, energies, [](int i, int x, int y) {
            const bool isEmpty = x == 3 || (x == 5 && y % 2 == 0 && i == 7);
            return isEmpty ? 0 : x == 4 ? 8004 : 100 + i;
        });
        const FrameSet i0 = flatStack();
        const AbsorptionSource source(i1, i0, Width, Height);
        BinRaster raster = wholeImage();
        raster.halfWidth = 0;
        raster.halfHeight = 0;
        const auto evaluators = [&] {
            return backgroundEvaluators(threads, raster, source.energies(), XafsSpectrum::Simple,
                                        At, correctionAt);
        };
        RasterPass whole(source, raster, 2, evaluators());
        const std::vector<double> values = valuesOf(whole, 2);
        if (inside) {
            raster.inside = innerPixels(Width, Height);
        }
        RasterPass pass(source, raster, 2, evaluators());
        RasterPass::Tally all;
        for (auto row = pass.take(); row.values != nullptr; row = pass.take()) {
            all += row.tally;
            for (int i = 0; i < 2 * raster.columns; ++i) {
                const auto at = static_cast<std::size_t>(row.row * 2 * raster.columns + i);
                QVERIFY(raster.holds(i / 2, row.row) ? same(row.values[i], values[at])
                                                     : std::isnan(row.values[i]));
            }
        }
        int expected = 0;
        int flat = 0;
        for (int y = 0; y < raster.rows; ++y) {
            for (int x = 0; x < raster.columns; ++x) {
                if (!raster.holds(x, y)) {
                    continue;
                }
                const Spectrum at = source.spectrumAt(raster.x(x), raster.y(y), 0, 0);
                expected += at.maximum().y == 1.0 || at.minimum().y == 1.0;
                flat +=
                    XafsSpectrum(at, XafsSpectrum::Simple, 0.0, XafsSpectrum::Quiet).dMut() == 0;
            }
        }
        QCOMPARE(all.bins, raster.count());
        QVERIFY(inside == (raster.count() < raster.rows * raster.columns));
        QCOMPARE(all.withoutCounts, expected);
        QCOMPARE(all.withoutJump, flat);
        QVERIFY(expected > 0 && flat > 0);
        QCOMPARE(said.countOf("dMut_ is 0"), 0);
    }

    /// Over the bins with counts at all energies, as a plain loop sums them up.
    void meanSpectrum_data() {
        QTest::addColumn<int>("threads");
        for (const int threads : {1, 2, 5}) {
            QTest::addRow("%d threads", threads) << threads;
        }
    }
    void meanSpectrum() {
        QFETCH(int, threads);
        const Energies energies = evenly(7000, 7300, 4);
        std::mt19937 random(4);
        const FrameSet i1 = tinyStack(Width, 40, energies, [&](int i, int x, int y) {
            const double mu = edges::step(energies[static_cast<std::size_t>(i)] + x, 0.2);
            const bool isEmpty = (x == 3 && i == 7) || (x == 5 && y % 2 == 0) || y == 11;
            return isEmpty ? quint16(0)
                           : quint16(4000.0 * std::exp(-mu) + static_cast<double>(random() % 50));
        });
        const FrameSet i0 =
            tinyStack(Width, 40, {7000}, [](int, int x, int) { return quint16(8000 + x); });
        const AbsorptionSource source(i1, i0, Width, 40);
        BinRaster raster{0, 1, Width, 0, 1, 40, 0, 0};
        if (threads == 2) {
            raster.inside = innerPixels(Width, 40);
        }
        const auto sums = std::make_shared<RowSums>();
        RasterPass pass(source, raster, 1,
                        meanEvaluators(threads, raster, source.energyCount(), correctionAt, sums));
        double counted = 0.0;
        for (auto row = pass.take(); row.values != nullptr; row = pass.take()) {
            counted += static_cast<double>(std::count(row.values, row.values + Width, 1.0));
        }
        const MeanSpectrum mean = meanOf(*sums, source.energies());

        Energies all(energies.size());
        double shifts = 0.0;
        int bins = 0;
        for (int y = 0; y < raster.rows; ++y) {
            Energies ofRow(energies.size());
            double shift = 0.0;
            for (int x = 0; x < Width; ++x) {
                if (x == 3 || (x == 5 && y % 2 == 0) || y == 11 || !raster.holds(x, y)) {
                    continue;
                }
                const Spectrum bin = source.spectrumAt(x, y, 0, 0);
                for (std::size_t i = 0; i < energies.size(); ++i) {
                    ofRow[i] += bin.value(static_cast<int>(i));
                }
                shift += correctionAt(x, y);
                ++bins;
            }
            std::transform(all.begin(), all.end(), ofRow.begin(), all.begin(), std::plus<>());
            shifts += shift;
        }
        QCOMPARE(mean.bins, bins);
        QCOMPARE(counted, bins);
        QVERIFY(same(mean.shift, shifts / bins));
        Spectrum expected;
        for (std::size_t i = 0; i < energies.size(); ++i) {
            expected.append(energies[i] - shifts / bins, all[i] / bins);
            QVERIFY(same(mean.spectrum.value(static_cast<int>(i)), all[i] / bins));
        }
        QVERIFY(mean.hasEdge() && same(mean.e0(), expected.findE(0.5, 0)));
        QVERIFY(!meanOf(RowSums(), energies).hasEdge());
    }

    void withoutFramesAnEdgeIsZero() {
        const double mu = 0.0;
        double edge = 1.0;
        edgeEvaluators(1, {})[0]({&mu, nullptr, 0, 0, 1}, &edge);
        QCOMPARE(edge, 0.0);
    }

    void goesOnWithTheThreadsThatThereAre_data() {
        // stacks: that the process has room for
        columns<int, int>("threads", "stacks");
        QTest::newRow("all of them") << 3 << 100;
        QTest::newRow("fewer") << 20 << 2;
        QTest::newRow("none") << 3 << 0;
        QTest::newRow("none asked for") << 0 << 100;
    }
    void goesOnWithTheThreadsThatThereAre() {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitizer needs address space of its own");
#endif
        QFETCH(int, threads);
        QFETCH(int, stacks);
        const FrameSet i1 = edgeStack(evenly(7000, 7300, 4));
        const FrameSet i0;
        const AbsorptionSource source(i1, i0, Width, Height);
        RasterPass whole(source, wholeImage(), 1, edgeEvaluators(2, source.energies()));
        const Energies expected = valuesOf(whole, 1);

        constexpr rlim_t Stack = rlim_t(8) << 30;
        rlimit old;
        getrlimit(RLIMIT_AS, &old);
        QFile memory("/proc/self/statm");
        QVERIFY(memory.open(QIODevice::ReadOnly));
        const rlim_t used = memory.readAll().split(' ').first().toULongLong() * 4096;
        const rlimit limit = {used + Stack / 2 + static_cast<rlim_t>(stacks) * Stack, old.rlim_max};
        const ThreadCost dear(Stack);
        setrlimit(RLIMIT_AS, &limit);
        std::atomic<int> calls{0};
        auto pass = std::make_unique<RasterPass>(
            source, wholeImage(), 1, edgeEvaluators(threads, source.energies()), [&] { ++calls; });
        const Energies values = valuesOf(*pass, 1);
        const RasterPass::Failure failure = pass->failure();
        pass.reset();  // a thread may be on its way to the call
        setrlimit(RLIMIT_AS, &old);

        const bool works = threads > 0 && stacks > 0;
        QCOMPARE(failure, works ? RasterPass::Failure::None : RasterPass::Failure::NoThread);
        QCOMPARE(values, works ? expected : Energies());
        QVERIFY(calls > 0);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestRasterPass)
#include "tst_rasterpass.moc"
