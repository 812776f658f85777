#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "SameBits.h"
#include "TestMain.h"
#include "spectra/LaneNormaliser.h"
#include "spectra/Lanes.h"
#include "spectra/Logarithm.h"
#include "spectra/XafsSpectrum.h"

Q_DECLARE_METATYPE(lanes::Units)

namespace {

using lanes::Count;
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

/// A whole number below a limit.
double whole(std::mt19937& random, unsigned limit) {
    return static_cast<double>(random() % limit);
}

std::vector<double> energies() {
    std::vector<double> e;
    for (int i = 0; i < 120; ++i) {
        e.push_back(7000.0 + 2.1 * i + (i % 3) * 0.3);
    }
    return e;
}

/// Noisy edges at various energies, and what a detector gives where it does not work.
std::vector<std::vector<double>> spectra(const std::vector<double>& e) {
    std::mt19937 random(5);
    std::normal_distribution<double> noise;
    std::vector<std::vector<double>> all;
    for (int s = 0; s < 20 * Count; ++s) {
        const double edge = 7112.0 + 30.0 * noise(random);
        std::vector<double> mu;
        for (double x : e) {
            mu.push_back(0.3 + 1.2 / (1.0 + std::exp((edge - x) / 3.0)) +
                         (s % 7) * 0.02 * noise(random));
        }
        all.push_back(mu);
    }
    all[3].assign(e.size(), 1.0);
    all[4].assign(e.size(), Nan);
    all[9][50] = Nan;
    all[12][60] = Infinity;
    all[13][0] = -Infinity;
    all[21].back() = 1e301;
    std::reverse(all[25].begin(), all[25].end());
    all[26].assign(e.size(), 0.0);
    all[26].back() = 1.0;
    return all;
}

std::vector<double> packed(const std::vector<std::vector<double>>& all, std::size_t first) {
    std::vector<double> mu(all[0].size() * Count);
    for (std::size_t i = 0; i < all[0].size(); ++i) {
        for (std::size_t l = 0; l < Count; ++l) {
            mu[i * Count + l] = all[first + l][i];
        }
    }
    return mu;
}

}  // namespace

/// Spectra side by side against one after the other, to the last bit, on all the units that this
/// processor has.
class TestLanes : public QObject {
    Q_OBJECT

  private:
    static void eachUnit() {
        QTest::addColumn<lanes::Units>("units");
        QTest::newRow("baseline") << lanes::Units::Baseline;
        if (lanes::bestUnits() >= lanes::Units::Wide4) {
            QTest::newRow("wide4") << lanes::Units::Wide4;
        }
        if (lanes::bestUnits() >= lanes::Units::Wide8) {
            QTest::newRow("wide8") << lanes::Units::Wide8;
        }
    }

  private slots:
    void logarithmIsWithinOneUnitInTheLastPlace() {
        if (std::numeric_limits<long double>::digits <= std::numeric_limits<double>::digits) {
            QSKIP("nothing more precise to compare with");
        }
        double worst = 0.0;
        const auto check = [&](double x) {
            const double ln = logarithm(x);
            const long double exact = std::log(static_cast<long double>(x));
            const double rounded = std::abs(static_cast<double>(exact));
            const double unit = std::nextafter(rounded, Infinity) - rounded;
            worst = std::max(worst, static_cast<double>(std::abs(ln - exact)) / unit);
        };
        // Every mantissa to 19 bits, with the exponents of count ratios; ratios of small counts;
        // and close to 1, where the result is small.
        for (double m = 1.0; m < 2.0; m += 0x1p-19) {
            check(m);
            check(m * 0x1p-1);
            check(m * 0x1p-16);
        }
        for (int a = 1; a <= 600; ++a) {
            for (int b = 1; b <= 600; ++b) {
                check(static_cast<double>(a) / b);
            }
        }
        std::mt19937 random(3);
        for (int i = 0; i < 400000; ++i) {
            check((1.0 + whole(random, 110000000)) / (1.0 + whole(random, 110000000)));
            const double count = 1.0 + whole(random, 65535);
            check(count / (count + 1.0));
        }
        QVERIFY2(worst < 1.0, qPrintable(QString::number(worst)));
        QCOMPARE(logarithm(1.0), 0.0);
        QCOMPARE(logarithm(0.0), -Infinity);
        QCOMPARE(logarithm(Infinity), Infinity);
        QVERIFY(std::isnan(logarithm(Nan)));
        QVERIFY(qFuzzyCompare(logarithm(5e-324), std::log(5e-324)));
    }

    void logarithmsSideBySide_data() { eachUnit(); }
    void logarithmsSideBySide() {
        QFETCH(lanes::Units, units);
        std::mt19937 random(7);
        double s1[Count], before[Count], after[Count], dark[Count], out[Count];
        for (int round = 0; round < 3000; ++round) {
            for (int l = 0; l < Count; ++l) {
                s1[l] = whole(random, 60000);
                before[l] = random() % 7 == 0 ? 0.0 : whole(random, 60000);
                after[l] = whole(random, 60000);
                dark[l] = 0.125 * whole(random, 100000);
            }
            const double fromBefore = 0.25 * (round % 5);
            const double span = round % 11 == 0 ? 0.0 : 1.5;
            const bool two = round % 3 != 0;
            const bool one = round % 7 != 0;
            const bool darkened = round % 2 != 0;
            const lanes::Sums sums = {s1,
                                      one ? before : nullptr,
                                      one && two ? after : nullptr,
                                      darkened ? dark : nullptr,
                                      fromBefore,
                                      span};
            bool lacksCounts[Count];
            lanes::kernels(units).muT(&sums, 1, 0, out, lacksCounts);
            for (int l = 0; l < Count; ++l) {
                double s0 = 1.0;
                if (one) {
                    s0 = !two          ? before[l]
                         : span == 0.0 ? 0.5 * (before[l] + after[l])
                                       : fromBefore * ((after[l] - before[l]) / span) + before[l];
                    s0 -= darkened ? dark[l] : 0.0;
                }
                const double s = s1[l] - (darkened ? dark[l] : 0.0);
                QCOMPARE(lacksCounts[l], !(s0 > 0.0 && s > 0.0));
                QVERIFY(same(out[l], s0 > 0.0 && s > 0.0 ? logarithm(s0 / s) : 1.0));
            }
        }
    }

    void normalisation_data() { eachUnit(); }
    void normalisation() {
        QFETCH(lanes::Units, units);
        const std::vector<double> e = energies();
        const std::vector<std::vector<double>> all = spectra(e);
        std::vector<int> points;
        for (int i = 10; i < 110; ++i) {
            points.push_back(i);
        }
        // Of each bin's own edge and of one for all, which lies outside the energies for some.
        const double corrections[Count] = {0.0, 0.25, -13.1, 6.0, -200.0, 300.0, 0.7, 1e5};
        std::vector<Normalisation> rules;
        for (int type = 0; type < background::Count; ++type) {
            rules.insert(rules.end(), 4, type);
            rules[rules.size() - 3].ranges = {-61.7, -8.3, -1.9, 33.3};
            rules[rules.size() - 2].e0 = 7113.7;
            rules.back().e0 = 7113.7;
            rules.back().ranges = {-61.7, -8.3, -8.3, 9.5};
        }
        for (const Normalisation& rule : rules) {
            LaneNormaliser normaliser(e, rule, units);
            std::vector<double> y(points.size() * Count);
            for (std::size_t first = 0; first < all.size(); first += Count) {
                const std::vector<double> mu = packed(all, first);
                double edges[Count];
                lanes::kernels(units).risingEdge(mu.data(), e.data(), static_cast<int>(e.size()),
                                                 0.7, edges);
                normaliser.normalise(mu.data(), Count, corrections);
                normaliser.doubleNormalised(mu.data(), points, y.data());
                for (int l = 0; l < Count; ++l) {
                    Spectrum raw;
                    raw.assign(e.data(), all[first + static_cast<std::size_t>(l)].data(),
                               static_cast<int>(e.size()));
                    QVERIFY(same(edges[l], raw.findE(0.7, 0)));
                    const XafsSpectrum alone(raw, rule, corrections[l]);
                    QVERIFY(same(normaliser.midE()[l], alone.midE()));
                    QVERIFY(!rule.e0 || alone.midE() == *rule.e0 + corrections[l]);
                    QVERIFY(same(normaliser.dMut()[l], alone.dMut()));
                    for (double at : {6900.0, 7100.05, e[7], e.back(), 9000.0}) {
                        QVERIFY(same(normaliser.preAt(at, l), alone.preEdge().valueAt(at)));
                        QVERIFY(same(normaliser.postAt(at, l), alone.postEdge().valueAt(at)));
                    }
                    for (std::size_t p = 0; p < points.size(); ++p) {
                        QVERIFY(same(y[p * Count + static_cast<std::size_t>(l)],
                                     alone.doubleNormalizedPreBase().value(points[p])));
                    }
                }
            }
        }
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestLanes)
#include "tst_lanes.moc"
