#include <QRectF>
#include <QVector>
#include <cmath>

#include <memory>
#include "DebugLines.h"

#include "TestMain.h"
#include "calibration/EnergyShift.h"
#include "maps/AnalysisGrid.h"
#include "maps/Analyzed2DRes.h"
#include "spectra/Spectrum.h"

namespace {

constexpr double kEdge = 7112.0;
constexpr double kStep = 0.5;  // eV between the points of a scan

// An edge with a white line on a falling background, moved by shift, measured from first on.
Spectrum scan(double shift, double first = 7060.0, double step = kStep) {
    Spectrum spectrum;
    for (double energy = first; energy < 7180.0; energy += step) {
        const double e = energy - kEdge - shift;
        const double whiteLine = 0.4 / (1.0 + std::pow((e - 4.0) / 3.0, 2.0));
        spectrum.append(energy, 0.5 - 1e-4 * e + 0.5 + std::atan(e / 1.5) / M_PI + whiteLine);
    }
    return spectrum;
}

AnalysisGrid gridOf(int width, int height, int halfW, int halfH, const QRectF& area) {
    return AnalysisGrid::ofArea(width, height, halfW, halfH, area);
}

/// The edges of made-up spectra.
BinValuesAt edgesOf(const std::function<Spectrum(int x, int y)>& spectrumAt) {
    const auto edge = std::make_shared<double>();
    return [=](int x, int y) {
        const Spectrum spectrum = spectrumAt(x, y);
        *edge = calibrationEdge(&spectrum);
        return edge.get();
    };
}

}  // namespace

class TestEnergyShift : public QObject {
    Q_OBJECT

  private slots:
    void aLinearDriftComesBack_data() {
        QTest::addColumn<int>("half");
        QTest::newRow("single pixels") << 0;
        QTest::newRow("bins of 3 x 3") << 1;
    }

    void aLinearDriftComesBack() {
        QFETCH(int, half);
        const int width = 45;
        const int height = 9;
        const auto drift = [](int x, int y) { return -4.0 + 0.2 * x + 0.1 * y; };
        Analyzed2DRes map;
        // The standard was measured on other energies than the images.
        const Spectrum standard = scan(0.0, 7060.17, 0.45);
        calibrate(&map, gridOf(width, height, half, half, QRectF(0, 0, width, height)),
                  edgesOf([&](int x, int y) { return scan(drift(x, y)); }),
                  calibrationEdge(&standard), {});
        // What limits it: between two points the edge is taken as straight, and the highest point
        // of the white line, which sets the level, is sampled up to half a step beside its peak.
        // Both are second order in the step; at 0.5 eV on an edge some eV wide they stay well
        // below 0.1 eV. Within a bin all pixels have the value of its centre.
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int centreX = x - x % (2 * half + 1) + half;
                const int centreY = y - y % (2 * half + 1) + half;
                const double error = shiftAt(&map, x, y) - drift(centreX, centreY);
                QVERIFY2(std::abs(error) < 0.1, qPrintable(QString::number(error)));
            }
        }
        QVERIFY(std::abs(map.dataMin() - drift(half, half)) < 0.1);
        QVERIFY(std::abs(map.dataMax() - drift(width - 1 - half, height - 1 - half)) < 0.1);
        QVERIFY(map.isValid());
    }

    void onlyTheAreaIsCalibrated() {
        Analyzed2DRes map;
        map.selectProcImg(true);  // the map before was deglitched
        QVector<QPoint> asked;
        const Spectrum standard = scan(0.0);
        calibrate(&map, gridOf(10, 8, 1, 0, QRectF(5, 3, 100, 2)), edgesOf([&](int x, int y) {
            asked.append(QPoint(x, y));
            return scan(2.0);
        }),
                  calibrationEdge(&standard), {});
        // The area ends with the image, and the last bins reach past it.
        QCOMPARE(asked, (QVector<QPoint>{{6, 3}, {9, 3}, {6, 4}, {9, 4}}));
        for (int y = 0; y < 8; ++y) {
            for (int x = 0; x < 10; ++x) {
                const bool inside = x >= 5 && (y == 3 || y == 4);
                QCOMPARE(std::abs(shiftAt(&map, x, y) - 2.0) < 0.1, inside);
                QVERIFY(inside || shiftAt(&map, x, y) == 0.0);
            }
        }
        QCOMPARE(map.shownValueAt(6, 3), shiftAt(&map, 6, 3));
        QCOMPARE(shiftAt(&map, 10, 3), 0.0);
        QCOMPARE(shiftAt(&map, -1, 3), 0.0);
        QCOMPARE(shiftAt(nullptr, 0, 0), 0.0);
        // Pixels that were not calibrated belong to the map's range too.
        QCOMPARE(map.dataMin(), 0.0);
    }

    void aCentreBesideTheImageIsLeftOut() {
        Analyzed2DRes map;
        int asked = 0;
        // One column at the right border and a bin of seven: the centre lies beyond the image.
        calibrate(&map, gridOf(10, 3, 3, 0, QRectF(9, 0, 1, 3)), edgesOf([&](int, int) {
            ++asked;
            return Spectrum();
        }),
                  7112.0, {});
        QCOMPARE(asked, 0);
        QCOMPARE(map.dataMin(), 0.0);
        QCOMPARE(map.dataMax(), 0.0);
    }

    void withoutAStandardTheMapHoldsEdges() {
        QCOMPARE(calibrationEdge(nullptr), 0.0);
        const Spectrum empty;
        QCOMPARE(calibrationEdge(&empty), 0.0);
        Analyzed2DRes map;
        // A falling spectrum has no rising edge: its first energy stands in.
        calibrate(&map, gridOf(1, 1, 0, 0, QRectF(0, 0, 1, 1)), edgesOf([](int, int) {
            Spectrum falling;
            falling.append(7000.0, 2.0);
            falling.append(7001.0, 1.0);
            return falling;
        }),
                  0.0, {});
        QCOMPARE(shiftAt(&map, 0, 0), 7000.0);
    }

    void rowsAreReported() {
        Analyzed2DRes map;
        QVector<double> percents;
        DebugLines debug;
        calibrate(&map, gridOf(4, 8, 0, 0, QRectF(0, 2, 4, 4)),
                  edgesOf([](int, int) { return scan(0.0); }), 0.0,
                  [&](double percent) { percents.append(percent); });
        QCOMPARE(percents, (QVector<double>{0.0, 25.0, 50.0, 75.0}));
        QCOMPARE(debug.countOf("progress "), 4);
        QVERIFY(debug.all().first().startsWith(QLatin1String("Start Calibration")));
        QVERIFY(debug.all().last().startsWith(QLatin1String("End Calibration   ")));
    }

    void nothingWithoutAnImage() {
        Analyzed2DRes map;
        DebugLines debug;
        calibrate(&map, AnalysisGrid(), edgesOf([](int, int) { return Spectrum(); }), 0.0, {});
        smoothShiftMap(&map);
        smoothShiftMap(nullptr);
        QVERIFY(debug.all().isEmpty());
        QVERIFY(!map.hasData());
    }

    void smoothingReplacesGlitchesForGood() {
        Analyzed2DRes map;
        map.setGrid(gridOf(5, 5, 0, 0, QRectF(0, 0, 5, 5)));
        map.clear();
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 5; ++x) {
                map.setData(x, y, 0, 0, x == 2 && y == 2 ? -7112.0 : 1.0 + x);
            }
        }
        smoothShiftMap(&map);
        // The eight neighbours hold three 2s, two 3s and three 4s.
        QCOMPARE(shiftAt(&map, 2, 2), 3.0);
        QCOMPARE(shiftAt(&map, 4, 0), 5.0);
        QCOMPARE(map.dataMin(), 1.0);
        QCOMPARE(map.dataMax(), 5.0);
        clearShiftMap(&map);
        QCOMPARE(shiftAt(&map, 2, 2), 0.0);
        QVERIFY(!map.hasData() && map.grid().width == 0);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestEnergyShift)
#include "tst_energyshift.moc"
