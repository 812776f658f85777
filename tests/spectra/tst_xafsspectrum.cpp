#include <cmath>
#include <limits>
#include <random>

#include "SameBits.h"
#include "TestMain.h"
#include "spectra/Constants.h"
#include "spectra/XafsSpectrum.h"

namespace {

/// Step of the given height between straight lines: 0 below e0 - 5, full above e0 + 5.
Spectrum straightEdge(double e0, double jump, double preSlope, double postSlope) {
    Spectrum s;
    // The middle of the step lies between two points: on a point, rounding would decide.
    for (double e = e0 - 150.3; e <= e0 + 200; e += 1.0) {
        const double t = std::min(1.0, std::max(0.0, (e - e0 + 5.0) / 10.0));
        s.append(e, 0.2 + preSlope * (e - e0) + t * (jump + postSlope * (e - e0)));
    }
    return s;
}

}  // namespace

class TestXafsSpectrum : public QObject {
    Q_OBJECT

  private slots:
    /// Lines over four points each, worked out by hand: 2 + 0.3 (E - 93) and 12 + 0.6 (E - 107).
    void commonE0ByHand() {
        const double e[] = {88, 90, 92, 94, 96, 97, 101, 104, 106, 108, 110, 111};
        const double mu[] = {99, 1, 2, 2, 3, 50, -20, 10, 12, 12, 14, 77};
        Spectrum raw;
        raw.assign(e, mu, 12);
        Normalisation rule(XafsSpectrum::Simple);
        rule.e0 = 99.5;
        rule.ranges = {-10.0, -3.0, 4.0, 11.0};
        XafsSpectrum spectrum(raw, rule, 0.5);
        const XafsSpectrum copy = spectrum;
        spectrum.normalise(XafsSpectrum::Simple);
        for (const XafsSpectrum& each : {spectrum, copy}) {
            QCOMPARE(each.midE(), 100.0);
            QVERIFY(std::abs(each.preEdge().c3() - 0.3) < 1e-9);
            QVERIFY(std::abs(each.postEdge().c3() - 0.6) < 1e-9);
            QVERIFY(std::abs(each.dMut() - (7.8 - 4.1)) < 1e-9);
            // At 101 eV the lines are at 4.4 and 8.4.
            QVERIFY(std::abs(each.doubleNormalizedPreBase().value(6) - (-20 - 4.4) / 4.0) < 1e-9);
        }
        rule.e0 = 3000.0;  // no point in either range: the lines are 0
        QCOMPARE(XafsSpectrum(raw, rule, 0.0, XafsSpectrum::Quiet).dMut(), 0.0);
    }

    void straightBackgroundsAreFound() {
        const Spectrum data = straightEdge(7000.0, 1.5, 1e-3, 5e-4);
        const XafsSpectrum xs(data, XafsSpectrum::Simple, 0.25);
        QVERIFY(std::abs(xs.preEdge().c3() - 1e-3) < 1e-9);
        QVERIFY(std::abs(xs.postEdge().c3() - 1.5e-3) < 1e-9);
        // the middle is that of the point before the crossing, where it lies a slope lower
        QVERIFY(std::abs(xs.midE() - 7000.0) < 0.01);
        QVERIFY(std::abs(xs.dMut() - 1.5) < 1e-5);
        QCOMPARE(xs.energyCorrection(), 0.25);
        QCOMPARE(xs.correctedEnergy(0), data.energy(0) - 0.25);
        const int above = 300;  // 7149.7 eV
        const int below = 50;   // 6899.7 eV
        QVERIFY(std::abs(xs.doubleNormalizedPreBase().value(above) - 1.0) < 1e-9);
        QVERIFY(std::abs(xs.doubleNormalizedPreBase().value(below)) < 1e-9);
        QVERIFY(std::abs(xs.postBasedBySpan().value(below) + 1.0) < 1e-9);
        QVERIFY(std::abs(xs.normalized().value(above) - 1.0) < 1e-9);
        // the post-edge line lies 1.5 - 5e-4 * 100.3 above the data there
        QVERIFY(std::abs(xs.postBased().value(below) + (1.5 - 0.05015) / 1.5) < 1e-5);
        QCOMPARE(xs.normalized().value(below), xs.postBased().value(below) + 1.0);
        QCOMPARE(xs.preEdge().size(), data.size());
    }

    /// Shifting the data must move edge and ranges alike and leave the stored points alone.
    void aShiftMovesEverything() {
        Spectrum data = straightEdge(7000.0, 1.5, 1e-3, 5e-4);
        const XafsSpectrum plain(data, XafsSpectrum::Simple, 0.0);
        data.setShift(3.0);
        data.setShiftOn(true);
        XafsSpectrum shifted(data, XafsSpectrum::Simple, 0.0);
        QVERIFY(std::abs(shifted.midE() - (plain.midE() - 3.0)) < 1e-6);
        QVERIFY(std::abs(shifted.dMut() - plain.dMut()) < 1e-9);
        QCOMPARE(shifted.normalized().point(0).x, data.point(0).x - 3.0);
        QCOMPARE(shifted.point(0).x, data.point(0).x);
        shifted.setShiftOn(false);
        shifted.normalise(XafsSpectrum::Simple);
        for (int i = 0; i < data.size(); ++i) {
            QCOMPARE(shifted.doubleNormalizedPreBase().value(i),
                     plain.doubleNormalizedPreBase().value(i));
        }
    }

    /// The background of Victreen's formula is found again on both sides of the edge, in
    /// wavelengths.
    void victreenBackgroundsAreFound() {
        const auto victreen = [](double e, double c0, double c3, double c4) {
            const double l = Hc / e;
            return c0 + c3 * l * l * l - c4 * l * l * l * l;
        };
        Spectrum data;
        for (double e = 6850.5; e < 7300.0; e += 1.0) {
            data.append(e, e < 7000.0 ? victreen(e, 0.1, 0.05, 0.01) : victreen(e, 0.2, 0.3, 0.02));
        }
        const XafsSpectrum xs(data, XafsSpectrum::Victreen, 0.0);
        for (double e : {6850.5, 6960.5, 7100.5, 7250.5}) {
            QVERIFY(std::abs(xs.preEdge().valueAt(e) - victreen(e, 0.1, 0.05, 0.01)) < 1e-6);
            QVERIFY(std::abs(xs.postEdge().valueAt(e) - victreen(e, 0.2, 0.3, 0.02)) < 1e-6);
        }
        QVERIFY(std::abs(xs.doubleNormalizedPreBase().valueAt(7050.5) - 1.0) < 1e-6);
    }

    /// Where the edge crosses its middle several times, the mean of the crossings counts; those
    /// further than 10 eV from the first do not.
    void theMiddleIsTheMeanOfTheCrossings() {
        Spectrum data;
        for (double e = 6850.0; e <= 7200.0; e += 1.0) {
            const bool dip = e == 7004.0 || e == 7005.0 || e == 7030.0;
            data.append(e, e < 7000.0 || dip ? 0.0 : 1.0);
        }
        // Up at 6999.5, down at 7003.5, up at 7005.5; the last dip moves the line a little.
        QVERIFY(std::abs(XafsSpectrum(data, XafsSpectrum::Simple, 0.0).midE() - 7002.83) < 0.05);
    }

    /// One object that is normalised again and again holds nothing of what it was before, also with
    /// zero counts (infinite and no number) inside.
    void anObjectUsedAgainIsLikeANewOne() {
        std::mt19937 random(11);
        std::normal_distribution<double> noise(0.0, 0.02);
        XafsSpectrum again;
        for (int round = 0; round < 400; ++round) {
            const int n = 4 + static_cast<int>(random() % 120);
            Spectrum data;
            for (int i = 0; i < n; ++i) {
                const double e = 6900.0 + 350.0 * i / n;
                double y = std::atan((e - 7000.0) / 3.0) - 2e-4 * e + noise(random);
                if (round % 5 == 4 && random() % 20 == 0) {
                    y = random() % 2 ? std::nan("") : std::numeric_limits<double>::infinity();
                }
                data.append(e, y);
            }
            data.setShift(round % 3 - 1.25);
            data.setShiftOn(round % 2 == 0);
            const XafsSpectrum fresh(data, round / 2 % 2, 0.0);
            static_cast<Spectrum&>(again) = data;
            again.normalise(round / 2 % 2);
            QVERIFY(same(again.midE(), fresh.midE()) && same(again.dMut(), fresh.dMut()));
            QVERIFY(same(again.preEdge(), fresh.preEdge()));
            QVERIFY(same(again.postEdge(), fresh.postEdge()));
            QVERIFY(same(again.doubleNormalizedPreBase(), fresh.doubleNormalizedPreBase()));
            for (int i = 0; i < n; ++i) {
                const double above = data.value(i) - fresh.postEdge().value(i);
                const double span = fresh.postEdge().value(i) - fresh.preEdge().value(i);
                QVERIFY(same(again.normalized().value(i), above / fresh.dMut() + 1.0));
                QVERIFY(same(again.postBased().value(i), above / fresh.dMut()));
                QVERIFY(same(again.postBasedBySpan().value(i), above / span));
            }
        }
    }

    void degenerateDataAreSurvived_data() {
        QTest::addColumn<QVector<double>>("values");
        const double nan = std::nan("");
        QTest::newRow("one point") << QVector<double>{1};
        QTest::newRow("two points") << QVector<double>{1, 2};
        QTest::newRow("three points") << QVector<double>{0, 1, 2};
        QTest::newRow("flat") << QVector<double>(50, 1.0);
        QTest::newRow("NaN") << QVector<double>{nan, nan, nan, nan, nan};
        QTest::newRow("NaN inside") << QVector<double>{0, 0, nan, 1, 1, 1};
        QTest::newRow("falling") << QVector<double>{5, 4, 3, 2, 1, 0};
    }

    void degenerateDataAreSurvived() {
        QFETCH(QVector<double>, values);
        for (int type : {XafsSpectrum::Simple, XafsSpectrum::Victreen}) {
            Spectrum data;
            for (int i = 0; i < values.size(); ++i) {
                data.append(7000.0 + 5.0 * i, values[i]);
            }
            const XafsSpectrum xs(data, type, 0.0);
            QCOMPARE(xs.normalized().size(), values.size());
            QCOMPARE(xs.doubleNormalizedPreBase().size(), values.size());
            if (values.size() < 3) {
                QVERIFY(xs.preEdge().isEmpty());
            }
        }
        XafsSpectrum empty;
        QCOMPARE(empty.backgroundType(), int(XafsSpectrum::Victreen));
        empty.normalise(XafsSpectrum::Simple);
        QCOMPARE(empty.backgroundType(), int(XafsSpectrum::Victreen));
        QCOMPARE(empty.doubleNormalizedPreBase(7000.0), 0.0);
    }

    /// Too few points before the edge: the straight line through one point, or none, is a constant.
    void aRangeOfFewPointsGivesAConstant() {
        BgCurve curve;
        Spectrum s;
        for (int i = 0; i < 5; ++i) {
            s.append(i, 10.0 * i);
        }
        curve.fit(XafsSpectrum::Simple, s, 2.0, 3.0);
        QCOMPARE(curve.c0(), 20.0);
        QCOMPARE(curve.c3(), 0.0);
        curve.fit(XafsSpectrum::Simple, s, 7.0, 9.0);
        QCOMPARE(curve.c0(), 0.0);
        QCOMPARE(curve.value(4), 0.0);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestXafsSpectrum)
#include "tst_xafsspectrum.moc"
