#include <limits>

#include "TestMain.h"
#include "base/ColorMap.h"
#include "base/Numbers.h"

class TestGlobals : public QObject {
    Q_OBJECT

  private slots:
    void colourLookups_data() {
        columns<double, int, QVector<int>>("value", "grey", "rgb");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("one") << 1.0 << 255 << QVector<int>{255, 255, 255};
        QTest::newRow("just below one") << 0.999 << 255 << QVector<int>{255, 255, 255};
        QTest::newRow("half") << 0.5 << 128 << QVector<int>{255, 128, 0};
        QTest::newRow("zero") << 0.0 << 0 << QVector<int>{0, 0, 0};
        QTest::newRow("negative") << -0.5 << 0 << QVector<int>{0, 0, 0};
        QTest::newRow("end of red") << 255.5 / 766.0 << 85 << QVector<int>{255, 0, 0};
        QTest::newRow("end of yellow") << 510.5 / 766.0 << 170 << QVector<int>{255, 255, 0};
        QTest::newRow("NaN") << nan << 0 << QVector<int>{0, 0, 0};
        QTest::newRow("inf") << inf << 255 << QVector<int>{255, 255, 255};
        QTest::newRow("-inf") << -inf << 0 << QVector<int>{0, 0, 0};
        QTest::newRow("huge") << 1e300 << 255 << QVector<int>{255, 255, 255};
    }

    void colourLookups() {
        QFETCH(double, value);
        QFETCH(int, grey);
        QFETCH(QVector<int>, rgb);
        QCOMPARE(int(*greyOf(value)), grey);
        const unsigned char* c = colorOf(value);
        QCOMPARE((QVector<int>{c[0], c[1], c[2]}), rgb);
        const unsigned char* at = heatScale().at(value);
        QCOMPARE((QVector<int>{at[0], at[1], at[2]}), rgb);
        at = greyScale().at(value);
        QCOMPARE((QVector<int>{at[0], at[1], at[2]}), QVector<int>(3, grey));
    }

    void colourMapsAreToldApart() {
        for (const ColorScale& scale : colorScales()) {
            QCOMPARE(colorScaleOf(scale.id), &scale);
            bool isGrey = true;
            for (int i = 0; i <= scale.last; ++i) {
                const auto& c = scale.table[i];
                isGrey = isGrey && c[0] == c[1] && c[1] == c[2];
            }
            QCOMPARE(isGrey, scale.isGrey);
        }
        QVERIFY(colorScaleOf("none") == nullptr);
    }

    void valuesHaveTheDigitsOfTheirError_data() {
        columns<double, double, QString>("value", "error", "text");
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("two digits") << 0.345678 << 0.0214 << "0.346 \u00b1 0.021";
        QTest::newRow("rounds up") << 0.5 << 0.0996 << "0.50 \u00b1 0.10";
        QTest::newRow("negative") << -0.000691487 << 0.00012 << "-0.00069 \u00b1 0.00012";
        QTest::newRow("whole") << 7123.46 << 12.4 << "7123 \u00b1 12";
        QTest::newRow("tens") << 7126.4 << 345.0 << "7130 \u00b1 350";
        QTest::newRow("of nothing") << -0.001 << 0.5 << "0.00 \u00b1 0.50";
        QTest::newRow("error above value") << 0.02 << 3.0 << "0.0 \u00b1 3.0";
        QTest::newRow("small") << 3.456e-9 << 2.1e-10 << "(3.46 \u00b1 0.21)e-09";
        QTest::newRow("large") << 1.23456e8 << 2.1e6 << "(1.235 \u00b1 0.021)e+08";
        QTest::newRow("no error") << 0.3456789 << nan << "0.345679";
        QTest::newRow("an error of 0") << 0.25 << 0.0 << "0.25";
        QTest::newRow("no value") << nan << 0.1 << "-";
    }

    void valuesHaveTheDigitsOfTheirError() {
        QFETCH(double, value);
        QFETCH(double, error);
        QTEST(roundedPair(value, error).text(), "text");
    }

    void curveColoursRepeat() {
        QCOMPARE(getColor(9), QColor(255, 0, 0));
        QCOMPARE(getColor(10), QColor(0, 255, 0));
        QCOMPARE(getColor(-1), QColor(0, 200, 255));
        const QList<QColor> kept = Colors;
        Colors.clear();
        QCOMPARE(getColor(3), QColor(0, 0, 0, 255));
        Colors = kept;
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestGlobals)
#include "tst_globals.moc"
