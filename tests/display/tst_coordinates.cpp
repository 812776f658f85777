#include <QImage>
#include <QPainter>
#include <cmath>
#include <limits>

#include "TestMain.h"
#include "TinyStacks.h"
#include "display/ChCoord.h"
#include "display/DrawText.h"
#include "display/FramePicture.h"
#include "display/Profiles.h"
#include "display/Ticks.h"
#include "imagedata/TiffData.h"

namespace {
const double NaN = std::numeric_limits<double>::quiet_NaN();
}

class TestCoordinates : public QObject {
    Q_OBJECT

  private slots:
    void realAndScreenBelongTogether() {
        ChCoord c;
        c.setScreen(0, 100, 300, 100);  // y grows upwards
        c.setReal(10, 20, -1, 1);
        QCOMPARE(c.r2sX(15), 50.0);
        QCOMPARE(c.s2rX(50), 15.0);
        QCOMPARE(c.r2sLengthX(2), 20.0);
        QCOMPARE(c.s2rLengthX(20), 2.0);
        QCOMPARE(c.s2rOffsetX(50), 5.0);
        QCOMPARE(c.s2rX(150), 25.0);
        QCOMPARE(c.s2rClampedX(150), 20.0);
        QCOMPARE(c.s2rClampedX(-150), 10.0);
        QCOMPARE(c.r2sY(0.5), 150.0);
        QCOMPARE(c.s2rY(150), 0.5);
        QCOMPARE(c.r2sLengthY(1), -100.0);
        QCOMPARE(c.s2rLengthY(-100), 1.0);
        QCOMPARE(c.s2rOffsetY(200), 1.0);
        QCOMPARE(c.s2rClampedY(0), 1.0);
        c.setReal(20, 10, 1, -1);  // the larger end first
        QCOMPARE(c.s2rClampedX(-50), 20.0);
        QCOMPARE(c.s2rClampedY(400), 1.0);
    }

    void aRangeWithoutWidthGivesNoNumbers() {
        ChCoord c;
        c.setScreen(0, 100, 0, 100);
        c.setReal(3, 3, 3, 3);
        QVERIFY(std::isinf(c.r2sX(4)));
        QVERIFY(std::isnan(c.r2sX(3)));
        QCOMPARE(c.s2rX(50), 3.0);
        c.setScreen(5, 5, 5, 5);
        QVERIFY(std::isnan(c.s2rY(5)));
    }

    void tickStep_data() {
        QTest::addColumn<double>("base");
        QTest::addColumn<double>("spacing");
        QTest::addColumn<double>("expected");
        QTest::newRow("one") << 1.0 << 5.0 << 1.0;
        QTest::newRow("exactly the spacing is not enough") << 1.0 << 10.0 << 2.0;
        QTest::newRow("two") << 1.0 << 15.0 << 2.0;
        QTest::newRow("five") << 1.0 << 45.0 << 5.0;
        QTest::newRow("next decade") << 1.0 << 55.0 << 10.0;
        QTest::newRow("another base") << 0.3 << 100.0 << 15.0;
        QTest::newRow("none in eight decades") << 1.0 << 1e12 << 1e8;
    }
    void tickStep() {
        QFETCH(double, base);
        QFETCH(double, spacing);
        ChCoord c;
        c.setScreen(0, 100, 0, 100);
        c.setReal(10, 20, 10, 20);
        QTEST(c.tickStepX(base, spacing), "expected");
        QTEST(c.tickStepY(base, spacing), "expected");
    }

    void niceRange_data() {
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("c");
        QTest::addColumn<double>("step");
        QTest::addColumn<double>("first");
        QTest::addColumn<double>("last");
        QTest::newRow("37") << 0.0 << 37.0 << 5.0 << 0.0 << 35.0;
        QTest::newRow("1") << 0.1 << 1.1 << 0.2 << 0.2 << 1.0;
        QTest::newRow("6") << -3.0 << 3.0 << 1.0 << -3.0 << 3.0;
        QTest::newRow("95") << 7101.0 << 7196.0 << 20.0 << 7120.0 << 7180.0;
        QTest::newRow("a span below 1") << 0.0 << 0.5 << 0.0 << NaN << NaN;
        QTest::newRow("empty") << 5.0 << 5.0 << 0.0 << NaN << NaN;
        QTest::newRow("reversed") << 37.0 << 0.0 << 0.0 << NaN << NaN;
        QTest::newRow("no number") << NaN << 1.0 << 0.0 << NaN << NaN;
        QTest::newRow("beyond doubles") << -1.5e308 << 1.5e308 << 0.0 << NaN << NaN;
    }
    void niceRange() {
        QFETCH(double, a);
        QFETCH(double, c);
        QFETCH(double, first);
        QFETCH(double, last);
        const ChCoord::NiceRange range = ChCoord::niceRange(a, c);
        QTEST(range.step, "step");
        QVERIFY(std::isnan(first) ? std::isnan(range.first)
                                  : qFuzzyCompare(1 + range.first, 1 + first));
        QVERIFY(std::isnan(last) ? std::isnan(range.last)
                                 : qFuzzyCompare(1 + range.last, 1 + last));
    }

    void ticksFitSpansOfAnySize_data() {
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        for (double span : {3e-9, 0.5, 0.99, 1.0, 9.7, 10.0, 100.0, 1234.0, 1e9, 3e200}) {
            for (double low : {0.0, -0.37 * span, 7112.0 * span}) {
                QTest::addRow("%g from %g", span, low) << low << low + span;
            }
        }
    }
    void ticksFitSpansOfAnySize() {
        QFETCH(double, low);
        QFETCH(double, high);
        const Ticks ticks = ticksBetween(low, high);
        QVERIFY(ticks.values.size() >= 3);
        QVERIFY(ticks.values.size() <= 16);
        const double slack = 1e-6 * (high - low);
        for (int i = 0; i < ticks.values.size(); ++i) {
            QVERIFY(ticks.values[i] >= low - slack && ticks.values[i] <= high + slack);
            QVERIFY(i == 0 ||
                    std::abs(ticks.values[i] - ticks.values[i - 1] - ticks.step) <= slack);
        }
        QVERIFY(ticks.values.first() - low <= ticks.step + slack);
        QVERIFY(high - ticks.values.last() <= ticks.step + slack);
    }

    void badSpansHaveNoTicks() {
        const double inf = std::numeric_limits<double>::infinity();
        QVERIFY(ticksBetween(1.0, 1.0).values.isEmpty());
        QVERIFY(ticksBetween(2.0, 1.0).values.isEmpty());
        QVERIFY(ticksBetween(NaN, 1.0).values.isEmpty());
        QVERIFY(ticksBetween(-inf, 1.0).values.isEmpty());
        QVERIFY(ticksBetween(-1.5e308, 1.5e308).values.isEmpty());
        QVERIFY(ticksBetween(1e20, 1e20 + 20000.0).values.size() < 60);
    }

    void tickTexts_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("step");
        QTest::addColumn<QString>("expected");
        QTest::newRow("whole") << 7112.0 << 20.0 << "7112";
        QTest::newRow("one decimal") << 0.6 << 0.2 << "0.6";
        QTest::newRow("two decimals") << 0.3 << 0.05 << "0.30";
        QTest::newRow("never minus zero") << -1e-17 << 0.2 << "0.0";
        QTest::newRow("never minus zero, whole") << -0.0 << 5.0 << "0";
        QTest::newRow("large") << 3e9 << 1e9 << "3e+09";
        QTest::newRow("no step") << 2.5 << 0.0 << "2.5";
        QTest::newRow("no number") << NaN << 1.0 << "nan";
    }
    void tickTexts() {
        QFETCH(double, value);
        QFETCH(double, step);
        QTEST(tickText(value, step), "expected");
    }

    void textLiesWhereItIsAskedTo() {
        QImage paper(200, 100, QImage::Format_RGB32);
        paper.fill(Qt::white);
        QPainter painter(&paper);
        const QPointF anchor(100, 50);
        const QRectF right = drawText(painter, anchor, "7112", Qt::AlignRight | Qt::AlignVCenter);
        QCOMPARE(right.right(), 100.0);
        QCOMPARE(right.center().y(), 50.0);
        const QRectF above = drawText(painter, anchor, "7112", Qt::AlignHCenter | Qt::AlignBottom);
        QCOMPARE(above.center().x(), 100.0);
        QCOMPARE(above.bottom(), 50.0);
        const QRectF upright =
            drawText(painter, anchor, "7112", Qt::AlignLeft | Qt::AlignTop, QRectF(), true);
        QCOMPARE(upright.topLeft(), anchor);
        QCOMPARE(upright.size(), above.size().transposed());
        const QRectF all(0, 0, 200, 100);
        const QRectF kept =
            drawText(painter, QPointF(199, 1), "7112", Qt::AlignLeft | Qt::AlignBottom, all);
        QVERIFY(all.contains(kept));
        const QRectF wide = drawText(painter, QPointF(5, 5), QString(500, 'w'), Qt::AlignLeft, all);
        QCOMPARE(wide.left(), 0.0);  // too long for its room: the beginning is seen
    }

    void profilesAreMeansAcrossTheCut() {
        const PixelValue value = [](int x, int y) { return 10.0 * y + x; };
        QCOMPARE(rowProfile(3, 4, value, 1, 0), (QVector<double>{10, 11, 12}));
        QCOMPARE(rowProfile(3, 4, value, 1, 1), (QVector<double>{10, 11, 12}));
        QCOMPARE(rowProfile(3, 4, value, 0, 1), (QVector<double>{5, 6, 7}));  // row -1 is left out
        QCOMPARE(columnProfile(3, 4, value, 2, -1), (QVector<double>{1.5, 11.5, 21.5, 31.5}));
        QCOMPARE(columnProfile(3, 4, value, 1, std::numeric_limits<int>::min()),
                 (QVector<double>{1, 11, 21, 31}));
        QVERIFY(rowProfile(3, 4, value, 4, 1).isEmpty());
        QVERIFY(columnProfile(3, 4, value, -1, 1).isEmpty());
        QVERIFY(rowProfile(0, 0, value, 0, 0).isEmpty());
    }

    void framesAreShownInAnyRange() {
        const auto frame = tinyFrame(
            3, 2, 7112.0, [](int x, int y) { return static_cast<quint16>(100 * x + 10 * y); });
        const QImage picture = framePicture(*frame, 0.0, 200.0);
        QCOMPARE(picture.size(), QSize(3, 2));
        QCOMPARE(qGray(picture.pixel(0, 0)), 0);
        QCOMPARE(qGray(picture.pixel(1, 0)), 128);
        QCOMPARE(qGray(picture.pixel(2, 1)), 255);
        for (const auto& bad : {qMakePair(5.0, 5.0), qMakePair(9.0, 1.0), qMakePair(NaN, 1.0)}) {
            QCOMPARE(qGray(framePicture(*frame, bad.first, bad.second).pixel(2, 1)), 0);
        }
    }
};

TARNWICK_TEST_MAIN(QGuiApplication, TestCoordinates)
#include "tst_coordinates.moc"
