#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "TestMain.h"
#include "spectra/Constants.h"
#include "spectra/LinearSolver.h"
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

/// The normalisation in its plainest form: one formula after the other, point by point.
struct PlainNormalisation {
    Spectrum pre, post, normalized, doubleNormalized, postBased, bySpan;
    double midE = 0.0;
    double dMut = 0.0;

    static Spectrum background(const Spectrum& s, int type, double start, double end) {
        double sums[9] = {};
        for (int i = 0; i < s.size() && !(s.energy(i) >= end); ++i) {
            const double e = s.energy(i), y = s.value(i);
            if (!(e >= start)) {
                continue;
            }
            const double l = Hc / e, l3 = l * l * l, l4 = l3 * l;
            const double line[] = {1.0, e, e * e, y, e * y, 0.0, 0.0, 0.0, 0.0};
            const double curve[] = {1.0, l3, l4, l3 * l3, l3 * l4, l4 * l4, y, l3 * y, l4 * y};
            for (int k = 0; k < 9; ++k) {
                sums[k] += type == XafsSpectrum::Simple ? line[k] : curve[k];
            }
        }
        double c[3] = {};
        Spectrum result;
        if (type == XafsSpectrum::Simple && sums[0] < 2.0) {
            c[1] = sums[3];
        } else if (type == XafsSpectrum::Simple) {
            const double a[] = {sums[2], sums[1], sums[1], sums[0]};
            const double b[] = {sums[4], sums[3]};
            solveLinear(a, b, 2, c);
        } else {
            const double a[] = {sums[0], sums[1], sums[2], sums[1], sums[3],
                                sums[4], sums[2], sums[4], sums[5]};
            solveLinear(a, sums + 6, 3, c);
        }
        for (int i = 0; i < s.size(); ++i) {
            const double e = s.energy(i), l = Hc / e;
            result.append(e, type == XafsSpectrum::Simple ? c[1] + c[0] * e
                                                          : c[0] + (c[2] * l + c[1]) * (l * l * l));
        }
        return result;
    }

    PlainNormalisation(const Spectrum& s, int type) {
        const double e0 = s.findE(0.5, 0);
        pre = background(s, type, e0 - 100.0, e0 - 10.0);
        post = background(s, type, e0 + 10.0, e0 + 1000.0);
        int crossings = 0;
        for (int i = 0; i + 1 < s.size(); ++i) {
            const double e = s.energy(i);
            const double mid = pre.value(i) + 0.5 * (post.value(i) - pre.value(i));
            const double a = s.value(i), b = s.value(i + 1);
            if (e > e0 - 10.0 && e < e0 + 10.0 && (a - mid) * (b - mid) <= 0.0) {
                midE += a == b ? (e + s.energy(i + 1)) * 0.5
                               : e + (mid - a) / (b - a) * (s.energy(i + 1) - e);
                ++crossings;
            }
        }
        midE = crossings > 0 ? midE / crossings : 0.0;
        dMut = post.valueAt(midE) - pre.valueAt(midE);
        for (int i = 0; i < s.size(); ++i) {
            const double e = s.energy(i), mu = s.value(i);
            const double below = pre.value(i), above = post.value(i);
            normalized.append(e, (mu - above) / dMut + 1.0);
            doubleNormalized.append(e, (mu - below) / (above - below));
            postBased.append(e, (mu - above) / dMut);
            bySpan.append(e, (mu - above) / (above - below));
        }
    }
};

/// Bit for bit, but one NaN is as good as another.
bool same(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

bool same(const Spectrum& a, const Spectrum& b) {
    bool equal = a.size() == b.size() && a.minIndex() == b.minIndex() &&
                 a.maxIndex() == b.maxIndex() && same(a.minimum().x, b.minimum().x) &&
                 same(a.minimum().y, b.minimum().y) && same(a.maximum().x, b.maximum().x) &&
                 same(a.maximum().y, b.maximum().y);
    for (int i = 0; equal && i < a.size(); ++i) {
        equal = same(a.point(i).x, b.point(i).x) && same(a.value(i), b.value(i));
    }
    return equal;
}

}  // namespace

class TestXafsSpectrum : public QObject {
    Q_OBJECT

  private slots:
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

    /// One spectrum object that is normalised again and again gives, bit for bit, what the plain
    /// formulas give: whatever it held before, and with zero counts (infinite and no number)
    /// inside.
    void theFastPathEqualsThePlainFormulas() {
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
            const int type = round / 2 % 2;
            const XafsSpectrum fresh(data, type, 0.0);
            static_cast<Spectrum&>(again) = data;
            again.normalise(type);
            const PlainNormalisation plain(data, type);
            for (const XafsSpectrum* s : {&fresh, static_cast<const XafsSpectrum*>(&again)}) {
                QVERIFY(same(s->preEdge(), plain.pre));
                QVERIFY(same(s->postEdge(), plain.post));
                QVERIFY(same(s->midE(), plain.midE));
                QVERIFY(same(s->dMut(), plain.dMut));
                QVERIFY(same(s->normalized(), plain.normalized));
                QVERIFY(same(s->doubleNormalizedPreBase(), plain.doubleNormalized));
                QVERIFY(same(s->postBased(), plain.postBased));
                QVERIFY(same(s->postBasedBySpan(), plain.bySpan));
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
