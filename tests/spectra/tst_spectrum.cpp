#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "SameBits.h"
#include "TestMain.h"
#include "spectra/CurveLookup.h"
#include "spectra/LiveCounts.h"
#include "spectra/Spectrum.h"
#include "spectra/XafsSpectrum.h"

Q_DECLARE_METATYPE(Spectrum)

namespace {

Spectrum make(const QVector<QPair<double, double>>& points) {
    Spectrum s;
    for (const auto& p : points) {
        s.append(p.first, p.second);
    }
    return s;
}

}  // namespace

class TestSpectrum : public QObject {
    Q_OBJECT

  private slots:
    void extremesKeepTheirFirstHolder() {
        Spectrum s = make({{3, 5}, {1, 2}, {2, 5}, {4, 2}});
        QCOMPARE(s.minimum().x, 1.0);
        QCOMPARE(s.minimum().y, 2.0);
        QCOMPARE(s.maximum().x, 4.0);
        QCOMPARE(s.maximum().y, 5.0);
        QCOMPARE(s.minIndex(), 1);
        QCOMPARE(s.maxIndex(), 0);
        s.clear();
        QCOMPARE(s.minIndex(), qint32(0x8FFFFFFF));
        QCOMPARE(s.maxIndex(), qint32(0x70000001));
        QCOMPARE(s.maximum().y, -1e300);
    }

    /// Points taken at once are the same, bit for bit, as points appended one by one: also with
    /// equal values, both zeros, infinities and values that are no number.
    void pointsAtOnceEqualPointsOneByOne() {
        const double special[] = {
            0.0,     -0.0,  std::nan(""), 1e300,
            -1e300,  2e300, 1.0,          std::numeric_limits<double>::infinity(),
            -1e-310, -1.0,  2.0,          -std::numeric_limits<double>::infinity()};
        std::mt19937 random(7);
        Spectrum bulk;
        for (int round = 0; round < 3000; ++round) {
            const int n = static_cast<int>(random() % 14);
            const unsigned kinds = 1 + static_cast<unsigned>(random() % std::size(special));
            std::vector<double> x, y;
            Spectrum oneByOne;
            for (int i = 0; i < n; ++i) {
                x.push_back(special[random() % kinds]);
                y.push_back(special[random() % kinds]);
                oneByOne.append(x.back(), y.back());
            }
            bulk.assign(x.data(), y.data(), n);
            QVERIFY(same(bulk, oneByOne));
        }
    }

    void crossings_data() {
        columns<Spectrum, int, double, double, int>("spectrum", "mode", "fraction", "energy",
                                                    "index");
        const Spectrum peak = make({{10, 0}, {11, 1}, {12, 4}, {13, 2}, {14, 0}});
        QTest::newRow("rising") << peak << 0 << 0.5 << 11.0 + 1.0 / 3.0 << 1;
        QTest::newRow("falling") << peak << 1 << 0.5 << 13.0 << 2;
        QTest::newRow("any") << peak << 2 << 0.25 << 11.0 << 0;
        const Spectrum fall = make({{10, 3}, {11, 1}, {12, 0}});
        QTest::newRow("no rising edge: first point") << fall << 0 << 0.5 << 10.0 << -1;
        const Spectrum flat = make({{10, 2}, {12, 2}, {13, 2}});
        QTest::newRow("flat, any: mean of the first pair") << flat << 2 << 0.5 << 11.0 << 0;
        QTest::newRow("flat, rising: first point") << flat << 0 << 0.5 << 10.0 << -1;
        QTest::newRow("one point") << make({{7, 1}}) << 0 << 0.5 << 7.0 << -1;
        QTest::newRow("none") << Spectrum() << 0 << 0.5 << 0.0 << -1;
        Spectrum shifted = peak;
        shifted.setShift(2.0);
        shifted.setShiftOn(true);
        QTest::newRow("shifted") << shifted << 0 << 0.5 << 9.0 + 1.0 / 3.0 << 1;
    }

    void crossings() {
        QFETCH(Spectrum, spectrum);
        QFETCH(int, mode);
        QFETCH(double, fraction);
        QTEST(spectrum.findE(fraction, mode), "energy");
        QTEST(spectrum.findIndex(fraction, mode), "index");
    }

    void valuesAreInterpolatedAndExtrapolated() {
        Spectrum s = make({{1, 10}, {2, 20}, {4, 0}});
        QCOMPARE(s.valueAt(1.5), 15.0);
        QCOMPARE(s.valueAt(3.0), 10.0);
        QCOMPARE(s.valueAt(0.0), 0.0);
        QCOMPARE(s.valueAt(5.0), -10.0);
        QCOMPARE(s.valueAt(4.0), 0.0);
        s.setShift(1.0);
        s.setShiftOn(true);
        QCOMPARE(s.valueAt(0.5), 15.0);
        QCOMPARE(s.point(0).x, 1.0);
        QCOMPARE(make({{5, 3}}).valueAt(99.0), 3.0);
        QCOMPARE(make({{5, 3}, {5, 7}}).valueAt(5.0), 5.0);
        QVERIFY(std::isnan(s.valueAt(std::nan(""))));
    }

    /// The lookup against the search, on even and uneven steps and where it must search itself.
    void aLookupGivesTheSameValues() {
        std::mt19937 random(11);
        const auto number = [&] { return static_cast<double>(random() % 10000) / 7.0; };
        for (int kind = 0; kind < 6; ++kind) {
            Spectrum s;
            double e = 7000.0;
            for (int i = 0; i < 200; ++i) {
                e += kind == 0 ? 0.5 : kind == 1 ? 1e-9 + number() / (1 + i % 50) : number();
                s.append(kind == 2 && i == 70 ? 6000.0 : e, number());
            }
            s.setShift(3.25);
            s.setShiftOn(kind == 3);
            if (kind >= 4) {
                s = make(kind == 4 ? QVector<QPair<double, double>>{{5, 3}}
                                   : QVector<QPair<double, double>>{{1, 1}, {1, 2}, {2, 7}});
            }
            const CurveLookup lookup(s);
            const double first = s.energy(0);
            const double span = s.energy(s.size() - 1) - first;
            for (int i = 0; i < 4000; ++i) {
                const double at =
                    i < s.size() ? s.energy(i) : first + span * (number() / 1000 - 0.2);
                QVERIFY(same(s.valueAt(at), lookup.valueAt(at)));
            }
            QCOMPARE(lookup.valueAt(1e300), s.valueAt(1e300));
            QCOMPARE(std::isnan(lookup.valueAt(std::nan(""))), std::isnan(s.valueAt(std::nan(""))));
        }
    }

    /// A copy must not change with the original, and the counts must come out even, also for what
    /// is made in one thread and dropped in another.
    void copiesAreIndependentAndCounted() {
        const qint64 points = liveSpoints();
        const qint64 spectra = liveSpectra();
        const qint64 xafs = liveXafsSpectra();
        {
            Spectrum a = make({{1, 1}, {2, 4}});
            Spectrum b = a;
            QCOMPARE(liveSpectra(), spectra + 2);
            QCOMPARE(liveSpoints(), points + 4 + 2);  // two extremes each; shared points count once
            b.append(3, 9);
            QCOMPARE(a.size(), 2);
            QCOMPARE(liveSpoints(), points + 4 + 2 + 3);
            b.clear();
            const double x[] = {1, 2, 3, 4};
            b.assign(x, x, 4);
            const XafsSpectrum xs(b, XafsSpectrum::Simple, 0.0);
            QCOMPARE(liveSpectra(), spectra + 2 + 7);
            QCOMPARE(liveSpoints(), points + 10 + 7 * 2 + 6 * 4);
            XafsSpectrum copy = xs;
            copy.normalise(XafsSpectrum::Victreen);
            QCOMPARE(liveSpoints(), points + 10 + 14 * 2 + 12 * 4);
            QVERIFY(!xs.preEdge().isVictreen());
            std::vector<XafsSpectrum> made;
            std::thread([&] { made.assign(50, xs); }).join();
            QCOMPARE(liveXafsSpectra(), xafs + 52);
            std::thread([&] { made.resize(20); }).join();
            QCOMPARE(liveXafsSpectra(), xafs + 22);
            QCOMPARE(liveSpectra(), spectra + 2 + 22 * 7);
        }
        QCOMPARE(liveSpoints(), points);
        QCOMPARE(liveSpectra(), spectra);
        QCOMPARE(liveXafsSpectra(), xafs);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestSpectrum)
#include "tst_spectrum.moc"
