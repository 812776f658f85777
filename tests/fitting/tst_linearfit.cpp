#include <cmath>
#include <limits>

#include "Edges.h"
#include "SameBits.h"
#include "TestMain.h"
#include "fitting/LinearFit.h"

namespace {

/// A spectrum whose series are exact mixtures of the references', with jump and baseline.
XafsSpectrum mixture(double a, double bumpA, double b, double bumpB, double offset, double slope,
                     double correction = 0.0) {
    return XafsSpectrum(edges::curve(edges::energies(),
                                     [=](double e) {
                                         const double x = e - correction;
                                         return a * edges::step(x, bumpA) +
                                                b * edges::step(x, bumpB) + offset + slope * x;
                                     }),
                        XafsSpectrum::Simple, correction);
}

bool near(double actual, double expected, double tolerance = 1e-9) {
    return std::abs(actual - expected) <= tolerance;
}

}  // namespace

class TestLinearFit : public QObject {
    Q_OBJECT

  private slots:
    void mixturesComeBack_data() {
        columns<bool, double, double>("mlcf", "offset", "slope");
        // Straight backgrounds take the line off before LCF sees the sample; MLCF fits it.
        QTest::newRow("LCF") << false << 0.0 << 0.0;
        QTest::newRow("LCF, on a constant") << false << 0.7 << 0.0;
        QTest::newRow("LCF, on a line") << false << 0.7 << -1e-4;
        QTest::newRow("MLCF") << true << 0.0 << 0.0;
        QTest::newRow("MLCF, on a line") << true << 0.7 << -1e-4;
    }

    void mixturesComeBack() {
        QFETCH(bool, mlcf);
        QFETCH(double, offset);
        QFETCH(double, slope);
        // Jumps of 0.6 and 0.2: shares of three quarters and one.
        const XafsSpectrum sample = mixture(0.6, 0.3, 0.2, -0.2, offset, slope);
        LinearFit fit({edges::reference(0.3), edges::reference(-0.2)},
                      mlcf ? LinearFit::Mlcf : LinearFit::Lcf);
        fit.fit(sample);
        // The normal equations of a constant and an energy of 7000 eV lose half the digits.
        const double tolerance = mlcf ? 1e-6 : 1e-9;
        QVERIFY(near(fit.ratios().at(0), 0.75, tolerance));
        QVERIFY(near(fit.ratios().at(1), 0.25, tolerance));
        QVERIFY(near(fit.dMuts().at(0), 0.6, tolerance));
        QVERIFY(near(fit.dMuts().at(1), 0.2, tolerance));
    }

    void offsetsAndCorrectionsAreTakenOffOnce() {
        // The sample was measured 4 eV too high, which its correction says; one reference 6 eV too
        // low in the sense of its offset (it is compared at E + 6).
        const XafsSpectrum sample = mixture(0.6, 0.3, 0.2, -0.2, 0.0, 0.0, 4.0);
        XafsSpectrum shifted(edges::curve(edges::energies(7006.0, 7306.0),
                                          [](double e) { return edges::step(e - 6.0, 0.3); }),
                             XafsSpectrum::Simple, 0.0);
        shifted.setShift(6.0);
        shifted.setShiftOn(true);
        LinearFit fit({shifted, edges::reference(-0.2)}, LinearFit::Lcf);
        fit.fit(sample);
        QVERIFY(near(fit.ratios().at(0), 0.75));
        QVERIFY(near(fit.ratios().at(1), 0.25));
        const XafsSpectrum& curve = fit.fittedCurve({1.0, 0.0});
        QCOMPARE(curve.energy(0),
                 7000.0);  // the first sample energy, corrected, in the common range
    }

    void rangeIsThatCommonToAllReferences() {
        LinearFit fit(
            {edges::reference(0.3, 7020.0, 7300.0), edges::reference(-0.2, 7000.0, 7260.0)},
            LinearFit::Lcf);
        fit.fit(mixture(0.6, 0.3, 0.2, -0.2, 0.0, 0.0));
        const XafsSpectrum& curve = fit.fittedCurve({0.5, 0.5});
        QCOMPARE(curve.energy(0), 7020.0);
        QCOMPARE(curve.energy(curve.size() - 1), 7260.0);
        QVERIFY(near(fit.ratios().at(0), 0.75));
    }

    void nothingInCommonGivesZeros() {
        Spectrum far = edges::curve(edges::energies(9000.0, 9100.0), [](double) { return 1.0; });
        for (LinearFit::Method method : {LinearFit::Lcf, LinearFit::Mlcf}) {
            LinearFit fit({edges::reference(0.3), edges::reference(-0.2)}, method);
            fit.fit(XafsSpectrum(far, XafsSpectrum::Simple, 0.0));
            QCOMPARE(fit.dMuts(), (std::vector<double>{0.0, 0.0}));
            QCOMPARE(fit.fittedCurve({1.0, 1.0}).size(), 0);
        }
        // A range that ends below 0 eV does not pull the fit there.
        Spectrum below = edges::curve({-50.0, -40.0, -30.0, -20.0}, [](double e) { return e; });
        const XafsSpectrum negative(below, XafsSpectrum::Simple, 0.0);
        LinearFit fit({negative, negative}, LinearFit::Lcf);
        fit.fit(negative);
        QCOMPARE(fit.ratios(), (std::vector<double>{0.0, 0.0}));
    }

    void allCoefficientsNegative() {
        LinearFit fit({edges::reference(0.3), edges::reference(-0.2)}, LinearFit::Mlcf);
        fit.fit(mixture(-0.6, 0.3, -0.2, -0.2, 5.0, 0.0));
        for (double ratio : fit.ratios()) {
            QVERIFY(!std::isfinite(ratio));
        }
        QCOMPARE(fit.dMuts(), (std::vector<double>{0.0, 0.0}));

        // One negative coefficient counts in the sum of all and is then left out: 0.9 / (0.9 -
        // 0.3).
        fit.fit(mixture(0.9, 0.3, -0.3, -0.2, 0.0, 0.0));
        QVERIFY(near(fit.ratios().at(0), 1.5, 1e-5));
        QCOMPARE(fit.ratios().at(1), 0.0);
    }

    void notANumberRunsThrough() {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const XafsSpectrum sample(edges::curve(edges::energies(), [=](double) { return nan; }),
                                  XafsSpectrum::Simple, nan);
        for (LinearFit::Method method : {LinearFit::Lcf, LinearFit::Mlcf}) {
            LinearFit fit({edges::reference(0.3), edges::reference(-0.2)}, method);
            fit.fit(sample);
            QCOMPARE(fit.ratios().size(), std::size_t(2));
            fit.fit(mixture(0.6, 0.3, 0.2, -0.2, 0.0, 0.0));  // and leaves nothing behind
            QVERIFY(near(fit.ratios().at(0), 0.75, 1e-6));
        }
    }

    void curveFollowsTheShares() {
        LinearFit fit({edges::reference(0.0), edges::reference(0.5)}, LinearFit::Mlcf);
        fit.fit(mixture(0.6, 0.0, 0.2, 0.5, 0.0, 0.0));
        const int middle = 50;  // 7100 eV, half way up
        QVERIFY(near(fit.fittedCurve({1.0, 0.0}).value(middle), 0.5));
        QVERIFY(near(fit.fittedCurve({0.0, 1.0}).value(middle), 1.0));
        QVERIFY(near(fit.fittedCurve({2.0, 1.0}).value(middle), 2.0));
    }

    void preparedFitsAreBitIdentical() {
        // The same fit object over samples that share energies and corrections or change them,
        // against a new object each time.
        const QVector<XafsSpectrum> references = {edges::reference(0.31), edges::reference(-0.17),
                                                  edges::reference(0.05)};
        for (LinearFit::Method method : {LinearFit::Lcf, LinearFit::Mlcf}) {
            LinearFit kept(references, method);
            for (int k = 0; k < 24; ++k) {
                const XafsSpectrum sample = mixture(0.1 + 0.03 * k, 0.31, 0.9 / (k + 1), -0.17,
                                                    0.1 * k, 1e-5 * k, k % 6 < 3 ? 0.0 : 0.25 * k);
                LinearFit fresh(references, method);
                kept.fit(sample);
                fresh.fit(sample);
                const std::vector<double> shares =
                    k % 2 ? kept.ratios() : std::vector<double>{.5, .3, .2};
                const XafsSpectrum a = kept.fittedCurve(shares);
                const XafsSpectrum b = fresh.fittedCurve(shares);
                for (std::size_t i = 0; i < 3; ++i) {
                    QVERIFY(same(kept.ratios()[i], fresh.ratios()[i]));
                    QVERIFY(same(kept.dMuts()[i], fresh.dMuts()[i]));
                }
                QCOMPARE(a.size(), b.size());
                for (int i = 0; i < a.size(); ++i) {
                    QVERIFY(a.energy(i) == b.energy(i) && same(a.value(i), b.value(i)));
                }
            }
        }
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestLinearFit)
#include "tst_linearfit.moc"
