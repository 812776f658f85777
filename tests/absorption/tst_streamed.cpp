#include <cmath>
#include <limits>
#include <mutex>
#include <random>

#include "SameBits.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "absorption/AbsorptionSource.h"
#include "absorption/EnergyDifference.h"
#include "absorption/PixelPass.h"
#include "absorption/RasterPass.h"
#include "base/Memory.h"
#include "frames/CountFile.h"
#include "frames/DarkFrame.h"
#include "spectra/Lanes.h"

Q_DECLARE_METATYPE(BinRaster)

namespace {

constexpr int Width = 37;
constexpr int Height = 90;

/// The counts of a frame that is in memory elsewhere, which knows what was read of it.
class Counts : public CountFile {
  public:
    explicit Counts(const TiffData* frame) : reads(frame->height), m_frame(frame) {}

    QString read(quint32 first, quint32 rows, quint16* to) override {
        for (quint32 y = first; y < first + rows; ++y) {
            if (static_cast<int>(y) == broken || y >= m_frame->rows.size()) {
                return "frame.tif: broken";
            }
            std::copy_n(m_frame->rows[y], m_frame->width, to + (y - first) * m_frame->width);
            const std::lock_guard<std::mutex> lock(m_mutex);
            ++reads[y];
        }
        return {};
    }
    void willRead(quint32 first, quint32 rows) override {
        isTooFar = isTooFar || first + rows > m_frame->height || rows == 0;
    }
    QString change() const override { return changed; }

    std::vector<int> reads;  // how often each row was
    int broken = -1;
    QString changed;
    std::atomic<bool> isTooFar{false};

  private:
    const TiffData* m_frame;
    std::mutex m_mutex;
};

Counts& countsOf(const TiffData* frame) {
    return static_cast<Counts&>(*frame->countFile);
}

/// Noise, with pixels without counts and pixels at 65535 in some rows.
FrameSet noisyStack(const std::vector<double>& energies, unsigned seed) {
    std::mt19937 random(seed);
    return tinyStack(Width, Height, energies, [&](int i, int, int y) {
        const auto v = random() % 5000;
        return static_cast<quint16>(v < 20 ? 0 : v > 4500 && y % 5 == i % 3 ? 65535 : v);
    });
}

/// The same frames without their rows; each `inMemory`-th keeps them.
FrameSet streamed(const FrameSet& set, int inMemory = 0) {
    FrameSet others = tinyStack(Width, Height, std::vector<double>(set.size()),
                                [&](int i, int x, int y) { return set.at(i)->rows[y][x]; });
    for (int i = 0; i < set.size(); ++i) {
        TiffData* const frame = others.at(i);
        frame->energy = set.at(i)->energy;
        if (inMemory == 0 || i % inMemory != 0) {
            frame->clearRows();
            frame->countFile = std::make_shared<Counts>(set.at(i));
        }
    }
    return others;
}

/// All of mu-t.
std::vector<RasterPass::Evaluate> spectra(int threads, int energies) {
    return std::vector<RasterPass::Evaluate>(
        static_cast<std::size_t>(threads), [energies](const RasterPass::Pack& pack, double* to) {
            for (int l = 0; l < pack.count; ++l) {
                for (int e = 0; e < energies; ++e) {
                    *to++ = pack.lacksCounts[l] ? -1.0 : pack.mu[e * lanes::Count + l];
                }
            }
            return RasterPass::Found{};
        });
}

struct MemoryLimit {
    explicit MemoryLimit(quint64 bytes) : before(memoryLimit()) { setMemoryLimit(bytes); }
    ~MemoryLimit() { setMemoryLimit(before); }
    quint64 before;
};

constexpr quint64 Tiny = 1;
constexpr quint64 Ample = quint64(1) << 40;

}  // namespace

/// Counts that are read when they are needed, against counts in memory.
class TestStreamed : public QObject {
    Q_OBJECT

    const std::vector<double> m_energies{7090, 7100, 7105.5, 7110, 7110, 7120, 7200};
    const FrameSet m_i1 = noisyStack(m_energies, 1);
    const FrameSet m_i0 = noisyStack({7080, 7110, 7110, 7210}, 2);
    const FrameSet m_darks =
        tinyStack(Width, Height, {0, 0}, [](int i, int x, int y) { return 3 * i + x % 4 + y % 2; });
    const DarkFrame m_dark{m_darks, Width, Height};

  private slots:
    void bitsAreTheSame_data() {
        columns<BinRaster, bool>("raster", "hasDark");
        const auto shape = std::make_shared<PixelSet>(QRect(0, 0, Width, Height));
        for (int y = 3; y < Height; y += y % 10 == 9 ? 6 : 1) {
            shape->insert(y, y / 5, 20 + y % 7);
        }
        QTest::newRow("pixels") << BinRaster{0, 1, Width, 0, 1, Height, 0, 0} << true;
        QTest::newRow("bins side by side") << BinRaster{1, 3, 12, 2, 5, 5, 1, 2} << false;
        QTest::newRow("bins one over the other") << BinRaster{0, 2, 18, 0, 1, Height, 3, 4} << true;
        QTest::newRow("bins apart") << BinRaster{4, 1, 30, 3, 7, 4, 0, 1} << false;
        QTest::newRow("negative half heights") << BinRaster{0, 1, 9, 0, 1, Height, -1, -2} << true;
        QTest::newRow("in a shape") << BinRaster{0, 1, Width, 0, 1, Height, 0, 0, shape} << true;
    }
    void bitsAreTheSame() {
        QFETCH(BinRaster, raster);
        QFETCH(bool, hasDark);
        const DarkFrame* const dark = hasDark ? &m_dark : nullptr;
        const AbsorptionSource inMemory(m_i1, m_i0, Width, Height, dark);
        const int each = inMemory.energyCount();
        RasterPass plain(inMemory, raster, each, spectra(2, each));
        std::vector<double> expected;
        std::vector<int> tallies;
        for (auto row = plain.take(); row.values != nullptr; row = plain.take()) {
            expected.insert(expected.end(), row.values, row.values + each * raster.columns);
            tallies.push_back(row.tally.bins * 1000 + row.tally.withoutCounts);
            QVERIFY(row.saturated.empty());
        }
        for (int threads = 1; threads <= 5; ++threads) {
            for (const quint64 limit : {Tiny, residentMemory() + 3000000, Ample}) {
                const MemoryLimit only(limit);
                const FrameSet i1 = streamed(m_i1, threads == 2 ? 3 : 0);
                const FrameSet i0 = threads == 4 ? FrameSet() : streamed(m_i0, threads == 3);
                const AbsorptionSource source(i1, threads == 4 ? m_i0 : i0, Width, Height, dark);
                RasterPass pass(source, raster, each, spectra(threads, each));
                std::size_t at = 0;
                for (int n = 0; n < raster.rows; ++n) {
                    const RasterPass::Row row = pass.take();
                    QVERIFY(row.values != nullptr);
                    QCOMPARE(row.row, n);
                    QCOMPARE(row.tally.bins * 1000 + row.tally.withoutCounts,
                             tallies[at / raster.columns / each]);
                    for (int i = 0; i < each * raster.columns; ++i) {
                        QVERIFY(same(row.values[i], expected[at++]));
                    }
                    judgeSaturated(row, raster, source);
                }
                QVERIFY(pass.take().values == nullptr);
                QCOMPARE(pass.failure(), RasterPass::Failure::None);
            }
        }
    }

    /// Each count is read once, the saturated ones are told of, and parts of a raster need no more.
    void readsWhatItNeeds() {
        const BinRaster raster{1, 3, 12, 1, 3, 9, 1, 1};
        for (const quint64 limit : {Tiny, Ample}) {
            const MemoryLimit only(limit);
            const FrameSet i1 = streamed(m_i1);
            const FrameSet i0 = streamed(m_i0);
            const AbsorptionSource source(i1, i0, Width, Height);
            RasterPass pass(source, raster, {2, 7}, 7, spectra(3, 7));
            while (pass.take().values != nullptr) {
            }
            for (const TiffData* frame : source.frames()) {
                for (int y = 0; y < Height; ++y) {
                    QCOMPARE(countsOf(frame).reads[y], y >= 6 && y < 21 ? 1 : 0);
                }
                QVERIFY(!countsOf(frame).isTooFar);
            }
            const AbsorptionSource inMemory(m_i1, m_i0, Width, Height);
            QVERIFY(same(source.spectrumAt(5, 27, 2, 3), inMemory.spectrumAt(5, 27, 2, 3)));
            QVERIFY(same(source.spectrumAt(36, 4, 0, 0), inMemory.spectrumAt(36, 4, 0, 0)));
            for (const TiffData* frame : source.frames()) {
                QCOMPARE(countsOf(frame).reads[23], 0);
                QCOMPARE(countsOf(frame).reads[24], 1);
                QCOMPARE(countsOf(frame).reads[4], 1);
            }
        }
    }

    void picturesOfFrames() {
        const std::atomic<bool> goOn{false};
        const FrameSet i1 = streamed(m_i1);
        const AbsorptionSource source(i1, m_i0, Width, Height);
        const AbsorptionSource inMemory(m_i1, m_i0, Width, Height);
        const auto noShift = [](int, int) { return 0.0; };
        PixelValues a;
        PixelValues b;
        for (const bool isDifference : {false, true}) {
            const auto pass = [&](const AbsorptionSource& from, const FrameSet& set) {
                return isDifference ? PixelPass::difference(from, 7101, 7119, noShift, 0, 0)
                                    : PixelPass::absorption(from, set.at(2));
            };
            QVERIFY(pass(source, i1).run(3, goOn, &a) && pass(inMemory, m_i1).run(1, goOn, &b));
            for (int p = 0; p < Width * Height; ++p) {
                QVERIFY(same(a.values[p], b.values[p]));
            }
            QVERIFY(same(a.min, b.min) && same(a.max, b.max));
        }
        QCOMPARE(countsOf(i1.at(0)).reads[0], 0);
        countsOf(i1.at(2)).broken = 11;
        QVERIFY(!PixelPass::absorption(source, i1.at(2)).run(2, goOn, &a));
        QCOMPARE(a.problem, QString("frame.tif: broken"));
        QVERIFY(a.values == nullptr);
    }

    void failures_data() {
        columns<int, QString, int>("broken", "changed", "threads");
        QTest::newRow("the first row") << 0 << "" << 1;
        QTest::newRow("a row in the middle") << 13 << "" << 4;
        QTest::newRow("the last row") << Height - 1 << "" << 2;
        QTest::newRow("a file that changed") << -1 << "frame.tif: changed" << 3;
    }
    void failures() {
        QFETCH(int, broken);
        QFETCH(QString, changed);
        QFETCH(int, threads);
        for (const quint64 limit : {Tiny, Ample}) {
            const MemoryLimit only(limit);
            const FrameSet i1 = streamed(m_i1);
            countsOf(i1.at(3)).broken = broken;
            countsOf(i1.at(3)).changed = changed;
            const AbsorptionSource source(i1, m_i0, Width, Height);
            const BinRaster raster{0, 1, Width, 0, 1, Height, 0, 0};
            RasterPass pass(source, raster, 7, spectra(threads, 7));
            int rows = 0;
            while (pass.take().values != nullptr) {
                ++rows;
            }
            QVERIFY(rows <= (broken < 0 ? Height - 1 : broken));
            QCOMPARE(pass.failure(), RasterPass::Failure::Read);
            QCOMPARE(pass.problem(), changed.isEmpty() ? QString("frame.tif: broken") : changed);
            QVERIFY(broken < 0 || source.spectrumAt(3, broken == 0 ? 5 : 2, 0, 0).size() == 7);
        }
    }

  private:
    void judgeSaturated(const RasterPass::Row& row, const BinRaster& raster,
                        const AbsorptionSource& source) {
        std::vector<quint32> told(source.frames().size());
        for (const Saturated& frame : row.saturated) {
            QVERIFY(told.at(static_cast<std::size_t>(frame.frame)) == 0 && frame.pixels > 0);
            told[static_cast<std::size_t>(frame.frame)] = frame.pixels;
        }
        const int half = std::abs(raster.halfHeight);
        for (std::size_t f = 0; f < told.size(); ++f) {
            const TiffData* const frame = source.frames()[f];
            std::vector<quint16> counts(Width);
            quint32 pixels = 0;
            for (int y = std::max(0, raster.y(row.row) - half);
                 frame->rows.empty() && y <= std::min(Height - 1, raster.y(row.row) + half); ++y) {
                frame->countFile->read(quint32(y), 1, counts.data());
                pixels += quint32(std::count(counts.begin(), counts.end(), 65535));
            }
            QCOMPARE(told[f], pixels);
        }
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestStreamed)
#include "tst_streamed.moc"
