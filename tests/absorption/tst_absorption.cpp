#include <QPoint>
#include <climits>
#include <cmath>
#include <iterator>
#include <map>
#include <random>

#include "SameBits.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "absorption/EnergyDifference.h"
#include "absorption/PixelPass.h"
#include "base/Numbers.h"
#include "frames/DarkFrame.h"
#include "frames/RowMemory.h"
#include "spectra/Logarithm.h"

Q_DECLARE_METATYPE(std::vector<double>)

namespace {

constexpr int Width = 23;
constexpr int Height = 17;

void truncate(TiffData* frame, std::size_t rows) {
    while (frame->rows.size() > rows) {
        freeRow(frame->rows.back());
        frame->rows.pop_back();
    }
}

FrameSet noisyStack(const std::vector<double>& energies, unsigned seed) {
    std::mt19937 random(seed);
    FrameSet set = tinyStack(Width, Height, energies, [&](int, int, int) {
        const auto v = random() % 5000;
        return static_cast<quint16>(v < 300 ? 0 : v);
    });
    return set;
}

/// Frames by energy, those of one energy in order of arrival.
std::map<double, std::vector<const TiffData*>> byEnergy(const FrameSet& set) {
    std::map<double, std::vector<const TiffData*>> frames;
    for (int i = 0; i < set.size(); ++i) {
        frames[set.at(i)->energy].push_back(set.at(i));
    }
    return frames;
}

/// What a spectrum is, word for word; with the dark sum taken off both sums.
std::vector<Spoint> plainSpectrum(const FrameSet& i1, const FrameSet& i0, double dark, int x, int y,
                                  int hw, int hh) {
    const auto before = byEnergy(i0);
    const auto mean = [&](const std::vector<const TiffData*>& frames) {
        double sum = 0.0;
        for (const TiffData* frame : frames) {
            sum += frame->boxSum(x, y, hw, hh);
        }
        return sum / static_cast<double>(frames.size());
    };
    const auto i0At = [&](double e) {
        const auto same = before.find(e);
        if (before.size() == 1 || (same != before.end() && same->second.size() > 1)) {
            return mean(before.size() == 1 ? before.begin()->second : same->second);
        }
        auto after = before.upper_bound(e);
        after = after == before.end() ? std::prev(after) : after;
        after = after == before.begin() ? std::next(after) : after;
        const auto [e0, first] = *std::prev(after);
        return lerp(e, e0, mean(first), after->first, mean(after->second));
    };
    std::vector<Spoint> spectrum;
    for (const auto& [e, frames] : byEnergy(i1)) {
        for (const TiffData* frame : frames) {
            const double s1 = frame->boxSum(x, y, hw, hh) - dark;
            const double s0 = before.empty() ? 1.0 : i0At(e) - dark;
            spectrum.push_back({e, s0 > 0 && s1 > 0 ? logarithm(s0 / s1) : 1.0});
        }
    }
    return spectrum;
}

/// Of a frame, and of two energies with shifts, against the spectra of bins of one pixel.
void judgePixels(const AbsorptionSource& source, const FrameSet& i1) {
    const std::atomic<bool> goOn{false};
    PixelValues pixels;
    for (int i = 0; i < i1.size(); ++i) {
        const int place = source.indexOf(i1.at(i));
        bool hasExtremes[2] = {false, false};
        QVERIFY(PixelPass::absorption(source, i1.at(i)).run(1 + i % 3, goOn, &pixels));
        for (int p = 0; p < Width * Height; ++p) {
            const Spectrum whole = source.spectrumAt(p % Width, p / Width, 0, 0);
            const double muT = whole.value(place);
            const double v = pixels.at(p % Width, p / Width);
            QVERIFY(muT == 1.0 ? std::isnan(v) : same(v, muT));  // 1.0 stands for no counts
            hasExtremes[0] |= v == pixels.min;
            hasExtremes[1] |= v == pixels.max;
            QVERIFY(std::isnan(v) || (pixels.min <= v && v <= pixels.max));
        }
        QVERIFY(pixels.min > pixels.max || (hasExtremes[0] && hasExtremes[1]));
    }
    const BinRaster raster{0, 1, Width, 0, 1, Height, 0, 0};
    const double energies[][2] = {{7100, 7110}, {7095.3, 7121}, {7300, 7000},
                                  {7110, 7110}, {7090, 7220},   {7105.5, 7105.6}};
    for (const double most : {0.0, 1.0}) {
        const auto shiftAt = [most](int x, int y) { return most * (0.7 * x - y); };
        for (const auto& [from, to] : energies) {
            RasterPass map(source, raster, 1,
                           differenceEvaluators(2, raster, source.energies(), from, to, shiftAt));
            QVERIFY(PixelPass::difference(source, from, to, shiftAt, -16 * most, 15.4 * most)
                        .run(2, goOn, &pixels));
            for (int p = 0; p < Width * Height; ++p) {
                const double inMap = *map.at(p % Width, p / Width);
                // The map has no number either where a frame lacks counts that is not needed here.
                QVERIFY(std::isnan(inMap) || same(pixels.at(p % Width, p / Width), inMap));
            }
        }
    }
}

}  // namespace

class TestAbsorption : public QObject {
    Q_OBJECT

  private slots:
    void everyPathGivesTheSameBits_data() {
        using Energies = std::vector<double>;
        columns<Energies, Energies, int, int>("i1Energies", "i0Energies", "halfWidth",
                                              "halfHeight");
        const Energies ascending{7090, 7100, 7105.5, 7110, 7110, 7120, 7200};
        const Energies shuffled{7120, 7090, 7110, 7200, 7105.5, 7100, 7110};
        const Energies few{7100, 7110, 7150};
        QTest::newRow("no I0") << ascending << Energies{} << 1 << 1;
        QTest::newRow("one I0 frame") << ascending << Energies{7000} << 1 << 0;
        QTest::newRow("two I0 frames") << ascending << Energies{7105, 7118} << 2 << 1;
        QTest::newRow("one I0 energy") << ascending << Energies{7110, 7110, 7110} << 1 << 2;
        QTest::newRow("single pixels") << ascending << few << 0 << 0;
        QTest::newRow("wide boxes") << ascending << few << 3 << 2;
        QTest::newRow("negative half widths") << ascending << few << -1 << -3;
        QTest::newRow("boxes beyond the image") << ascending << few << 2000000000 << 2000000000;
        QTest::newRow("the smallest integer") << ascending << few << INT_MIN << INT_MIN;
        QTest::newRow("any order") << shuffled << Energies{7150, 7100, 7110} << 1 << 0;
        QTest::newRow("descending") << Energies{7200, 7110, 7090} << Energies{7150, 7090} << 0 << 0;
        QTest::newRow("repeated in the middle")
            << shuffled << Energies{7150, 7110, 7100, 7110} << 1 << 1;
        QTest::newRow("repeated at the ends")
            << shuffled << Energies{7110, 7100, 7105, 7100, 7110, 7110} << 0 << 0;
        QTest::newRow("two energies, all repeated")
            << ascending << Energies{7105, 7105, 7100, 7100} << 1 << 0;
        QTest::newRow("one I1 frame") << Energies{7105} << few << 1 << 1;
        QTest::newRow("one I1 energy") << Energies{7105, 7105} << Energies{7105, 7105} << 0 << 1;
    }
    void everyPathGivesTheSameBits() {
        QFETCH(std::vector<double>, i1Energies);
        QFETCH(std::vector<double>, i0Energies);
        QFETCH(int, halfWidth);
        QFETCH(int, halfHeight);
        FrameSet i1 = noisyStack(i1Energies, 1);
        FrameSet i0 = noisyStack(i0Energies, 2);
        // A wider, taller frame, a smaller one and one whose reading broke off.
        i1.append(tinyFrame(Width + 9, Height + 5, 7210,
                            [](int x, int y) { return static_cast<quint16>(x * y + 1); }));
        i1.append(tinyFrame(Width - 6, Height - 6, 7220, [](int, int) { return quint16(9); }));
        for (FrameSet* set : {&i0, &i1}) {
            if (!set->isEmpty()) {
                truncate(set->at(0), 9);
            }
        }
        // Thirds, which no double holds exactly: any other order of summing would show.
        FrameSet darkFrames = noisyStack({0, 0, 0}, 4);
        truncate(darkFrames.at(1), 12);
        const DarkFrame dark(darkFrames, Width, Height);
        const AbsorptionSource source(i1, i0, Width, Height);
        const AbsorptionSource darkened(i1, i0, Width, Height, &dark);
        const DarkFrame noDark;
        const AbsorptionSource undarkened(i1, i0, Width, Height, &noDark);
        for (const AbsorptionSource* each : {&source, &darkened}) {
            judgePixels(*each, i1);
        }
        const int stepX = halfWidth == 0 ? 1 : 3;
        BinRowSpectra darkRows(darkened, 1, stepX, Width, halfWidth, halfHeight);
        BinRowSpectra rows(source, 1, stepX, Width, halfWidth, halfHeight);
        for (int y = 0; y < Height; ++y) {
            for (int x = 0; x < Width; ++x) {  // most of them lie between the bins
                const Spectrum a = source.spectrumAt(x, y, halfWidth, halfHeight);
                const Spectrum b = rows.at(x, y);
                const Spectrum c = darkened.spectrumAt(x, y, halfWidth, halfHeight);
                const Spectrum d = darkRows.at(x, y);
                const Spectrum none = undarkened.spectrumAt(x, y, halfWidth, halfHeight);
                const double darkSum = dark.boxSum(x, y, halfWidth, halfHeight);
                const auto plain = plainSpectrum(i1, i0, 0.0, x, y, halfWidth, halfHeight);
                const auto dimmed = plainSpectrum(i1, i0, darkSum, x, y, halfWidth, halfHeight);
                QCOMPARE(a.size(), i1.size());
                QCOMPARE(b.size(), i1.size());
                for (int i = 0; i < a.size(); ++i) {
                    const Spoint& v = plain[static_cast<std::size_t>(i)];
                    QVERIFY(same(a.value(i), v.y));
                    QVERIFY(same(b.value(i), v.y));
                    QVERIFY(same(none.value(i), v.y));
                    const double w = dimmed[static_cast<std::size_t>(i)].y;
                    QVERIFY(same(c.value(i), w));
                    QVERIFY(same(d.value(i), w));
                    QCOMPARE(a.energy(i), v.x);
                    QCOMPARE(b.energy(i), v.x);
                }
                QCOMPARE(a.minIndex(), b.minIndex());
                QCOMPARE(a.maxIndex(), b.maxIndex());
            }
        }
    }

    void outsideTheImageThereIsNoSpectrum() {
        const FrameSet i1 = noisyStack({1, 2}, 3);
        const FrameSet none;
        const AbsorptionSource source(i1, none, Width, Height);
        BinRowSpectra rows(source, INT_MIN, 3, INT_MAX, 1, 1);
        for (const QPoint p : {QPoint(-1, 0), QPoint(0, -1), QPoint(Width, 0), QPoint(0, Height),
                               QPoint(INT_MAX, INT_MIN)}) {
            QVERIFY(source.spectrumAt(p.x(), p.y(), 1, 1).isEmpty());
            QVERIFY(rows.at(p.x(), p.y()).isEmpty());
        }
        QCOMPARE(rows.at(Width - 1, 0).size(), 2);
        QVERIFY(AbsorptionSource(none, i1, Width, Height).spectrumAt(1, 1, 0, 0).isEmpty());
    }

    void valuesAreWhatTheTextbookSays() {
        const auto flat = [](quint16 v) { return [v](int, int, int) { return v; }; };
        const FrameSet i1 = tinyStack(4, 4, {10, 20}, flat(100));
        const FrameSet i0 = tinyStack(4, 4, {10}, flat(200));
        const Spectrum s = AbsorptionSource(i1, i0, 4, 4).spectrumAt(0, 0, 1, 1);
        QCOMPARE(s.value(0), std::log(2.0));
        const FrameSet dead = tinyStack(4, 4, {10, 20}, flat(0));
        QCOMPARE(AbsorptionSource(dead, i0, 4, 4).spectrumAt(0, 0, 1, 1).value(1), 1.0);
        QCOMPARE(AbsorptionSource(i1, dead, 4, 4).spectrumAt(0, 0, 1, 1).value(1), 1.0);
    }

    void darkCountsAreTakenOffBothBeams() {
        const auto flat = [](quint16 v) { return [v](int, int, int) { return v; }; };
        const FrameSet i1 = tinyStack(4, 4, {10, 20}, flat(130));
        const FrameSet i0 = tinyStack(4, 4, {10, 20}, flat(230));
        FrameSet frames =
            tinyStack(4, 4, {0, 0}, [](int i, int, int) { return quint16(20 + 20 * i); });
        frames.append(tinyFrame(5, 4, 0, [](int, int) { return quint16(60000); }));
        const DarkFrame dark(frames, 4, 4);
        QCOMPARE(dark.frameCount(), 2);  // the third is of another size
        QCOMPARE(dark.boxSum(0, 0, 1, 1), 4 * 30.0);
        QCOMPARE(dark.boxSum(1, -5, 1, 1), 0.0);
        QCOMPARE(dark.boxSum(INT_MAX, 1, INT_MIN, INT_MIN), 16 * 30.0);
        const auto value = [&](const FrameSet& a, const FrameSet& b) {
            return AbsorptionSource(a, b, 4, 4, &dark).spectrumAt(0, 0, 1, 1).value(1);
        };
        QCOMPARE(value(i1, i0), std::log(2.0));
        // no I0: 1.0 over what is left of I1
        QCOMPARE(value(i1, FrameSet()), std::log(1.0 / 400.0));
        // less than the dark counts
        QCOMPARE(value(tinyStack(4, 4, {10, 20}, flat(30)), i0), 1.0);
        QCOMPARE(value(tinyStack(4, 4, {10, 20}, flat(29)), i0), 1.0);
        QCOMPARE(i1.at(0)->boxSum(0, 0, 0, 0), 130.0);
    }

    /// Also where a shift leads to the last frame, or beyond.
    void differencesAtFramesHaveTheirBits() {
        const std::vector<double> energies{7000.1, 7003.7, 7110.3};
        std::mt19937 random(7);
        std::uniform_real_distribution<double> muT(0.0, 3.0);
        double mu[3 * lanes::Count];
        const bool lacksCounts[lanes::Count] = {};
        const auto difference = [&](double from, double to, double shift) {
            const auto evaluators = differenceEvaluators(1, {0, 1, 1, 0, 1, 1, 0, 0}, energies,
                                                         from, to, [=](int, int) { return shift; });
            double value = 0.0;
            evaluators.front()({mu, lacksCounts, 0, 0, 1}, &value);
            return value;
        };
        for (int round = 0; round < 100; ++round) {
            for (double& each : mu) {
                each = muT(random);
            }
            const double step = mu[2 * lanes::Count] - mu[lanes::Count];
            QCOMPARE(difference(7003.7, 7110.3, 0.0), step);
            QCOMPARE(difference(7110.3, 7003.7, 0.0), -step);
            QCOMPARE(difference(7003.7, 7000.1, 200.0), 0.0);
        }
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestAbsorption)
#include "tst_absorption.moc"
