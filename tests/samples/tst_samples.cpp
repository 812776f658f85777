#include <QTemporaryDir>
#include <cmath>

#include "Phantom.h"
#include "RandomCounts.h"
#include "ResultTable.h"
#include "SampleFiles.h"
#include "TestMain.h"

using namespace samples;

// The sample measurement is what other checks stand on, so it is checked itself.
class TestSamples : public QObject {
    Q_OBJECT

  private slots:
    void countsAreSpreadAsTheirMean_data() {
        QTest::addColumn<double>("mean");
        for (const double mean : {0.3, 5.0, 11.9, 12.1, 150.0, 40000.0}) {
            QTest::newRow(qPrintable(QString::number(mean))) << mean;
        }
    }

    void countsAreSpreadAsTheirMean() {
        QFETCH(double, mean);
        constexpr int draws = 200000;
        RandomCounts random(7);
        double sum = 0.0;
        double squares = 0.0;
        for (int i = 0; i < draws; ++i) {
            const double d = double(random.poisson(mean)) - mean;
            sum += d;
            squares += d * d;
        }
        // Five standard errors of the mean and of the variance (fourth moment: 3 mean^2 + mean).
        const double standardError = std::sqrt(mean / draws);
        QVERIFY(std::abs(sum / draws) < 5.0 * standardError);
        const double varianceError = std::sqrt((2.0 * mean * mean + mean) / draws);
        QVERIFY(std::abs(squares / draws - mean) < 5.0 * varianceError);
    }

    void framesFollowTheAbsorption() {
        const AbsorptionModel model;
        const Phantom phantom(96, 64);
        const Measurement camera(model, phantom, false);
        const Frame beam = camera.beam(7120.0, 0);
        const Frame sample = camera.sample(7120.0, 0);
        for (std::size_t i = 0; i < beam.size(); ++i) {
            double expected = 0.0;
            for (int s = 0; s < speciesCount; ++s) {
                expected += phantom.thickness.values[i] *
                            phantom.fractions[std::size_t(s)].values[i] *
                            model.value(s, 7120.0 - phantom.energyShift.values[i]);
            }
            // Both counts are rounded to whole numbers.
            const double found = std::log(double(beam[i]) / sample[i]);
            QVERIFY(std::abs(found - expected) < 0.5 / beam[i] + 0.51 / sample[i]);
        }
        const Measurement noisy(model, phantom, true);
        QVERIFY(noisy.beam(7120.0, 3) == noisy.beam(7120.0, 3));
        QVERIFY(noisy.beam(7120.0, 3) != noisy.beam(7120.0, 4));
    }

    void comparisonFindsKnownErrors() {
        Map fraction(6, 3);
        Map thickness(6, 3);
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 6; ++x) {
                fraction.at(x, y) = x < 3 ? 0.25 : 0.75;
                thickness.at(x, y) = 1.0;
            }
        }
        // A column three times as thick and pure weighs three times: (6 * 0.25 + 9 * 1) / 15 = 0.7.
        for (int y = 0; y < 3; ++y) {
            fraction.at(0, y) = 1.0;
            thickness.at(0, y) = 3.0;
        }
        ResultTable table;
        table.halfWidth = table.halfHeight = 1;
        table.points = {{1, 1, 0.7 + 0.1}, {4, 1, 0.75 - 0.3}, {0, 1, 5.0}};
        const Recovery r = compareWithTruth(table, fraction, thickness, 0.5);
        QCOMPARE(r.points, 2);  // the third bin reaches past the border
        QCOMPARE(r.meanError(), -0.1);
        QCOMPARE(r.rmsError, std::sqrt((0.01 + 0.09) / 2.0));
        QCOMPARE(r.maxError, 0.3);

        table.points[0].value = std::nan("");
        QCOMPARE(compareWithTruth(table, fraction, thickness, 0.5).notFinite, 1);
        QCOMPARE(compareWithTruth(table, fraction, thickness, 2.0).points, 0);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestSamples)
#include "tst_samples.moc"
