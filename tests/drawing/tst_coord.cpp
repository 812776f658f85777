#include <QImage>
#include <QPainter>
#include <cmath>
#include <limits>

#include "TestMain.h"
#include "drawing/ChCoord.h"
#include "drawing/DrawText.h"
#include "drawing/Ticks.h"

namespace {
const double Infinity = std::numeric_limits<double>::infinity();
const double NotANumber = std::numeric_limits<double>::quiet_NaN();
}  // namespace

// The transform between screen and real coordinates, ticks and the texts beside them.
class CoordTest : public QObject {
    Q_OBJECT

  private slots:
    void transforms() {
        ChCoord c;
        c.setScreen(100, 0, 20, 220);  // x runs backwards
        c.setReal(10, 20, -1, 3);
        QCOMPARE(c.r2sX(12), 80.0);
        QCOMPARE(c.s2rX(150), 5.0);
        QCOMPARE(c.s2rClampedX(150), 10.0);
        QCOMPARE(c.s2rClampedX(-1), 20.0);
        QCOMPARE(c.s2rClampedX(80), 12.0);
        QCOMPARE(c.s2rOffsetX(80), 2.0);
        QCOMPARE(c.r2sLengthX(2), -20.0);
        QCOMPARE(c.s2rLengthX(20), -2.0);
        QCOMPARE(c.r2sY(0), 70.0);
        QCOMPARE(c.s2rY(70), 0.0);
        QCOMPARE(c.s2rOffsetY(70), 1.0);
        QCOMPARE(c.s2rClampedY(1000), 3.0);
        QCOMPARE(c.r2sLengthY(1), 50.0);
        QCOMPARE(c.s2rLengthY(50), 1.0);
        c.setReal(4, 4, 0, 1);  // no range: what the arithmetic gives
        QVERIFY(std::isinf(c.r2sX(5)) && std::isnan(c.r2sX(4)));
    }

    void tickStep_data() {
        columns<double, double, double, double>("pixelsPerUnit", "base", "spacing", "step");
        QTest::newRow("base") << 10.0 << 1.0 << 9.0 << 1.0;
        QTest::newRow("strictly more") << 10.0 << 1.0 << 10.0 << 2.0;
        QTest::newRow("two") << 10.0 << 1.0 << 15.0 << 2.0;
        QTest::newRow("five") << 10.0 << 1.0 << 45.0 << 5.0;
        QTest::newRow("next decade") << 10.0 << 1.0 << 55.0 << 10.0;
        QTest::newRow("other base") << 10.0 << 0.25 << 30.0 << 5.0;
        QTest::newRow("last decade") << 1e-7 << 1.0 << 4.0 << 5e7;
        QTest::newRow("none of eight decades") << 1e-9 << 1.0 << 40.0 << 1e8;
        QTest::newRow("backwards") << -10.0 << 1.0 << 15.0 << 1e8;
        QTest::newRow("no number") << NotANumber << 1.0 << 15.0 << 1e8;
    }

    void tickStep() {
        QFETCH(double, pixelsPerUnit);
        QFETCH(double, base);
        QFETCH(double, spacing);
        ChCoord c;
        c.setScreen(0, pixelsPerUnit, 0, 2 * pixelsPerUnit);
        c.setReal(0, 1, 3, 5);
        QTEST(c.tickStepX(base, spacing), "step");
        QTEST(c.tickStepY(base, spacing), "step");
    }

    void niceRange() {
        using Nice = QVector<double>;
        const auto nice = [](double low, double high) {
            const ChCoord::NiceRange range = ChCoord::niceRange(low, high);
            return Nice{range.step, range.first, range.last};
        };
        QCOMPARE(nice(0.0, 37.0), (Nice{5.0, 0.0, 35.0}));
        QCOMPARE(nice(0.0, 1.0), (Nice{0.2, 0.0, 1.0}));
        QCOMPARE(nice(3.0, 28.0), (Nice{2.0, 4.0, 28.0}));
        QCOMPARE(nice(-2.0, 2.9), (Nice{0.5, -2.0, 2.5}));
        QCOMPARE(nice(1.0, 71.5), (Nice{10.0, 10.0, 70.0}));
        QCOMPARE(nice(0.0, 950.0), (Nice{200.0, 0.0, 800.0}));
        for (const auto& [low, high] : QVector<QPair<double, double>>{{0.0, 0.5},
                                                                      {1.0, 1.004},
                                                                      {5.0, 1.0},
                                                                      {5.0, 5.0},
                                                                      {0.0, NotANumber},
                                                                      {0.0, Infinity}}) {
            const Nice none = nice(low, high);
            QVERIFY(none[0] == 0.0 && std::isnan(none[1]) && std::isnan(none[2]));
        }
    }

    void ticksOfAnySpan_data() {
        columns<double, double>("low", "high");
        for (double scale : {1e-150, 1e-9, 1e-3, 0.1, 1.0, 10.0, 1e6, 1e200}) {
            for (double span : {1.0, 1.0000001, 1.9, 2.5, 4.2, 7.0, 9.99999999}) {
                for (double from : {0.0, -0.3, 17.3}) {
                    QTest::addRow("%g from %g, times %g", span, from, scale)
                        << from * scale << (from + span) * scale;
                }
            }
        }
        QTest::newRow("energies") << 7077.21 << 7388.3;
    }

    void ticksOfAnySpan() {
        QFETCH(double, low);
        QFETCH(double, high);
        const Ticks ticks = ticksBetween(low, high);
        const double span = high - low;
        QVERIFY2(ticks.values.size() >= 3 && ticks.values.size() <= 16,
                 qPrintable(QString::number(ticks.values.size())));
        const double digit =
            ticks.step / std::pow(10.0, std::floor(std::log10(ticks.step) + 1e-9));  // 1, 2 or 5
        QVERIFY(qFuzzyCompare(digit, 1.0) || qFuzzyCompare(digit, 2.0) ||
                qFuzzyCompare(digit, 5.0));
        for (int i = 0; i < ticks.values.size(); ++i) {
            const double value = ticks.values[i];
            QVERIFY(value >= low - 1e-6 * span && value <= high + 1e-6 * span);
            QVERIFY(i == 0 || value > ticks.values[i - 1]);
            QVERIFY(std::abs(value - ticks.step * std::round(value / ticks.step)) <= 1e-6 * span);
        }
    }

    void noTicksWithoutARange() {
        using Range = QPair<double, double>;
        for (const Range& range :
             {Range(3, 3), Range(1e300, -1e300), Range(NotANumber, 1), Range(0, Infinity),
              Range(-1.7e308, 1.7e308), Range(0, 5e-324)}) {
            QVERIFY(ticksBetween(range.first, range.second).values.isEmpty());
        }
    }

    void tickTexts_data() {
        columns<double, double, QString>("value", "step", "text");
        QTest::newRow("integer") << 35.0 << 5.0 << "35";
        QTest::newRow("hundreds") << 7100.0 << 200.0 << "7100";
        QTest::newRow("tenths") << 1.0 << 0.2 << "1.0";
        QTest::newRow("quarters") << 0.5 << 0.25 << "0.50";
        QTest::newRow("sum of steps") << 0.1 + 0.2 << 0.1 << "0.3";
        QTest::newRow("no minus nought") << -0.0 << 0.5 << "0.0";
        QTest::newRow("rounding error") << -1e-17 << 0.2 << "0.0";
        QTest::newRow("small step of a large value") << 7112.345 << 0.005 << "7112.345";
        QTest::newRow("large") << 2e8 << 1e8 << "2e+08";
        QTest::newRow("large, narrow range") << 12345678.0 << 1.0 << "12345678";
        QTest::newRow("tiny") << 1.5e-7 << 5e-8 << "1.5e-07";
        QTest::newRow("tiny, nought") << 1e-20 << 5e-8 << "0";
        QTest::newRow("no step") << 0.123456789 << 0.0 << "0.123457";
        QTest::newRow("no number") << NotANumber << 1.0 << "nan";
    }

    void tickTexts() {
        QFETCH(double, value);
        QFETCH(double, step);
        QTEST(tickText(value, step), "text");
    }

    void textStandsWhereItIsTold_data() {
        columns<int, bool>("alignment", "upright");
        for (int upright : {0, 1}) {
            for (int across : {int(Qt::AlignLeft), int(Qt::AlignHCenter), int(Qt::AlignRight)}) {
                for (int along : {int(Qt::AlignTop), int(Qt::AlignVCenter), int(Qt::AlignBottom)}) {
                    QTest::addRow("%d %d", across | along, upright)
                        << (across | along) << !!upright;
                }
            }
        }
    }

    void textStandsWhereItIsTold() {
        QFETCH(int, alignment);
        QFETCH(bool, upright);
        QImage paper(200, 200, QImage::Format_RGB32);
        paper.fill(Qt::white);
        QPainter painter(&paper);
        const auto draw = [&](const QPointF& at, const QRectF& inside) {
            return drawText(painter, at, "HxHxH", Qt::Alignment(QFlag(alignment)), inside, upright);
        };
        const QRectF place = draw(QPointF(100, 100), QRectF());
        QCOMPARE(place.height() > place.width(), upright);
        if (alignment & Qt::AlignLeft) {
            QCOMPARE(place.left(), 100.0);
        }
        if (alignment & Qt::AlignHCenter) {
            QCOMPARE(place.center().x(), 100.0);
        }
        if (alignment & Qt::AlignRight) {
            QCOMPARE(place.right(), 100.0);
        }
        if (alignment & Qt::AlignTop) {
            QCOMPARE(place.top(), 100.0);
        }
        if (alignment & Qt::AlignVCenter) {
            QCOMPARE(place.center().y(), 100.0);
        }
        if (alignment & Qt::AlignBottom) {
            QCOMPARE(place.bottom(), 100.0);
        }
        painter.end();

        // Ink lies in the rectangle that was reported, and nowhere else.
        QRect ink;
        for (int y = 0; y < paper.height(); ++y) {
            for (int x = 0; x < paper.width(); ++x) {
                if (qGray(paper.pixel(x, y)) < 200) {
                    ink |= QRect(x, y, 1, 1);
                }
            }
        }
        QVERIFY(!ink.isEmpty());
        QVERIFY(place.adjusted(-2, -2, 2, 2).contains(QRectF(ink)));

        QVERIFY(painter.begin(&paper));
        const QRectF inside(50, 60, 120, 120);
        for (const QPointF& corner :
             {QPointF(0, 0), QPointF(200, 0), QPointF(0, 200), QPointF(200, 200)}) {
            QVERIFY(inside.contains(draw(corner, inside)));
        }
    }
};

TARNWICK_TEST_MAIN(QGuiApplication, CoordTest)
#include "tst_coord.moc"
