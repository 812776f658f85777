#include <QPoint>
#include <climits>
#include <cmath>
#include <cstring>
#include <random>

#include "TestMain.h"
#include "TinyStacks.h"
#include "absorption/AbsorptionSource.h"
#include "frames/DarkFrame.h"
#include "frames/RowMemory.h"
#include "spectra/Logarithm.h"

namespace {

constexpr int Width = 23;
constexpr int Height = 17;

bool sameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

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

/// What a spectrum is, word for word.
double plainValue(const FrameSet& i1, const FrameSet& i0, int i, int x, int y, int hw, int hh) {
    const double s1 = i1.at(i)->boxSum(x, y, hw, hh);
    const double s0 = setValueAt(i0, i1.at(i)->energy, x, y, hw, hh);
    return s0 * s1 > 0 ? logarithm(s0 / s1) : 1.0;
}

/// The same with the dark sum taken off both sums.
double darkValue(const FrameSet& i1, const FrameSet& i0, double dark, int i, int x, int y, int hw,
                 int hh) {
    const double s1 = i1.at(i)->boxSum(x, y, hw, hh) - dark;
    const double interpolated = setValueAt(i0, i1.at(i)->energy, x, y, hw, hh);
    const double s0 = i0.isEmpty() ? interpolated : interpolated - dark;
    return s0 * s1 > 0 ? logarithm(s0 / s1) : 1.0;
}

}  // namespace

class TestAbsorption : public QObject {
    Q_OBJECT

  private slots:
    void everyPathGivesTheSameBits_data() {
        QTest::addColumn<QVector<double>>("i0Energies");
        QTest::addColumn<int>("halfWidth");
        QTest::addColumn<int>("halfHeight");
        const QVector<double> few{7100, 7110, 7150};
        QTest::newRow("no I0") << QVector<double>{} << 1 << 1;
        QTest::newRow("one I0 frame") << QVector<double>{7000} << 1 << 0;
        QTest::newRow("two I0 frames") << QVector<double>{7105, 7118} << 2 << 1;
        QTest::newRow("equal energies") << QVector<double>{7110, 7110} << 1 << 2;
        QTest::newRow("single pixels") << few << 0 << 0;
        QTest::newRow("wide boxes") << few << 3 << 2;
        QTest::newRow("negative half widths") << few << -1 << -3;
        QTest::newRow("boxes beyond the image") << few << 2000000000 << 2000000000;
        QTest::newRow("the smallest integer") << few << INT_MIN << INT_MIN;
    }
    void everyPathGivesTheSameBits() {
        QFETCH(QVector<double>, i0Energies);
        QFETCH(int, halfWidth);
        QFETCH(int, halfHeight);
        FrameSet i1 = noisyStack({7090, 7100, 7105.5, 7110, 7110, 7120, 7200}, 1);
        FrameSet i0 = noisyStack(std::vector<double>(i0Energies.begin(), i0Energies.end()), 2);
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
        const int stepX = halfWidth == 0 ? 1 : 3;
        BlockRowSpectra darkRows(darkened, 1, stepX, Width, halfWidth, halfHeight);
        BlockRowSpectra rows(source, 1, stepX, Width, halfWidth, halfHeight);
        for (int y = 0; y < Height; ++y) {
            for (int x = 0; x < Width; ++x) {  // most of them lie between the blocks
                const Spectrum a = source.spectrumAt(x, y, halfWidth, halfHeight);
                const Spectrum b = rows.at(x, y);
                const Spectrum c = darkened.spectrumAt(x, y, halfWidth, halfHeight);
                const Spectrum d = darkRows.at(x, y);
                const Spectrum none = undarkened.spectrumAt(x, y, halfWidth, halfHeight);
                const double darkSum = dark.boxSum(x, y, halfWidth, halfHeight);
                QCOMPARE(a.size(), i1.size());
                QCOMPARE(b.size(), i1.size());
                for (int i = 0; i < a.size(); ++i) {
                    const double v = plainValue(i1, i0, i, x, y, halfWidth, halfHeight);
                    QVERIFY(sameBits(a.value(i), v));
                    QVERIFY(sameBits(b.value(i), v));
                    QVERIFY(sameBits(none.value(i), v));
                    const double w = darkValue(i1, i0, darkSum, i, x, y, halfWidth, halfHeight);
                    QVERIFY(sameBits(c.value(i), w));
                    QVERIFY(sameBits(d.value(i), w));
                    QCOMPARE(b.energy(i), i1.at(i)->energy);
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
        BlockRowSpectra rows(source, INT_MIN, 3, INT_MAX, 1, 1);
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
};

TARNWICK_TEST_MAIN(QCoreApplication, TestAbsorption)
#include "tst_absorption.moc"
