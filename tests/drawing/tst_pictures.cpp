#include <QImage>
#include <QRectF>
#include <cmath>
#include <limits>
#include <memory>
#include <tuple>
#include <vector>

#include "TestMain.h"
#include "TinyStacks.h"
#include "drawing/CompositePicture.h"
#include "drawing/FramePicture.h"
#include "drawing/Profiles.h"
#include "drawing/ValuePicture.h"
#include "frames/TiffData.h"
#include "maps/Analyzed2DRes.h"

namespace {
const double Infinity = std::numeric_limits<double>::infinity();
const double NotANumber = std::numeric_limits<double>::quiet_NaN();
}  // namespace

// Pictures of frames and results as they are shown, and the profiles of cross sections.
class PicturesTest : public QObject {
    Q_OBJECT

  private slots:
    // The picture of a map through the stated colours and range is the one it makes itself.
    void statedMapsAreTheirOwnPictures_data() {
        columns<double, double>("low", "high");
        QTest::newRow("of all values") << NotANumber << NotANumber;
        QTest::newRow("fixed") << -0.3 << 0.7001;
        QTest::newRow("outside") << 2.0 << 3.0;
        QTest::newRow("of no width") << 0.5 << 0.5;
    }

    void statedMapsAreTheirOwnPictures() {
        QFETCH(double, low);
        QFETCH(double, high);
        Analyzed2DRes map;
        map.markGaps();
        map.startOver(AnalysisGrid::ofArea(61, 37, 1, 0, QRectF(0, 0, 61, 37)));
        forEachPoint(map.grid(), [&map](int x, int y) {
            const double value = std::sin(x * 37.7 + y * 11.3);
            map.setData(x, y, 1, 0, x == y ? NotANumber : x == 2 * y ? Infinity : value);
        });
        if (!std::isnan(low)) {
            map.setScale(low, high);
            map.setFixedScale(true);
        }
        MaskPixels mask(61 * 37);
        mask[100] = mask[1000] = true;
        map.setMask(std::make_shared<const MaskPixels>(mask));
        MapColoring coloring{&resultColors(), map.rangeMin(), map.rangeMax(), false};
        const ShownValues values{map.shown(), 61, 37, QRect(0, 0, 61, 37), &mask};
        const QImage own = map.img()->convertToFormat(QImage::Format_RGB32);
        QCOMPARE(mapPicture(values, coloring), own);
        // Marked, only what lies outside differs.
        coloring.marksOutside = true;
        const QImage marked = mapPicture(values, coloring);
        const auto& [below, above] = std::tie(resultColors().below, resultColors().above);
        for (int y = 0; y < 37; ++y) {
            for (int x = 0; x < 61; ++x) {
                const double value = map.visibleValueAt(x, y);
                const bool isRange = coloring.high > coloring.low;
                const QRgb wanted =
                    isRange && value < coloring.low    ? qRgb(below[0], below[1], below[2])
                    : isRange && value > coloring.high ? qRgb(above[0], above[1], above[2])
                                                       : own.pixel(x, y);
                QCOMPARE(marked.pixel(x, y), wanted);
            }
        }
    }

    void compositesMixLight() {
        const double red[] = {0.0, 1.0, 0.5, 2.0, NotANumber, 0.0};
        const double blue[] = {0.0, 0.0, 0.5, -1.0, 1.0, 1.0};
        const MaskPixels masked{0, 0, 0, 0, 0, 1};
        const QRect all(0, 0, 6, 1);
        const QImage mixed = compositePicture(
            {{ShownValues{red, 6, 1, all, nullptr}, {}, ShownValues{blue, 6, 1, all, &masked}},
             0.0,
             1.0});
        // 0.5 of the light has the code 188.
        const QRgb wanted[] = {qRgb(0, 0, 0),   qRgb(255, 0, 0),     qRgb(188, 0, 188),
                               qRgb(255, 0, 0), qRgb(128, 128, 128), qRgb(128, 128, 128)};
        for (int x = 0; x < 6; ++x) {
            QCOMPARE(mixed.pixel(x, 0), wanted[x]);
        }
        QVERIFY(compositePicture({}).isNull());
    }

    void framesGoThroughTheColours_data() {
        columns<double, double, bool>("low", "high", "empty");
        QTest::newRow("all counts") << 0.0 << 65535.0 << false;
        QTest::newRow("inner range") << 1000.5 << 3000.25 << false;
        QTest::newRow("outer range") << -1e6 << 1e7 << false;
        QTest::newRow("equal") << 100.0 << 100.0 << true;
        QTest::newRow("reversed") << 2.0 << 1.0 << true;
        QTest::newRow("no number") << NotANumber << 1.0 << true;
        QTest::newRow("without end") << 0.0 << Infinity << true;
        QTest::newRow("overflow") << -1.7e308 << 1.7e308 << true;
    }

    void framesGoThroughTheColours() {
        QFETCH(double, low);
        QFETCH(double, high);
        QFETCH(bool, empty);
        const auto frame = tinyFrame(7, 5, 7000.0, [](int x, int y) {
            return static_cast<quint16>((x * 9973 + y * 571) % 65536);
        });
        const QImage picture = framePicture(*frame, low, high);
        const QImage coloured = framePicture(*frame, low, high, heatScale());
        QCOMPARE(picture.size(), QSize(7, 5));
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 7; ++x) {
                const double count = frame->rows[static_cast<std::size_t>(y)][x];
                const double v = empty ? 0.0 : (count - low) / (high - low);
                QCOMPARE(qGray(picture.pixel(x, y)), int(*greyOf(v)));
                const uchar* c = colorOf(v);
                QCOMPARE(coloured.pixel(x, y), qRgb(c[0], c[1], c[2]));
            }
        }
    }

    void percentilesLeaveOutliersAside() {
        const auto counts = [](int x, int y) {
            const int i = x + 20 * y;  // 0..399; 4 pixels are a hundredth
            return static_cast<quint16>(i < 3 ? 0 : i > 395 ? 65535 : 1000 + i);
        };
        const auto frame = tinyFrame(20, 20, 7000.0, counts);
        QCOMPARE(countPercentiles(*frame, 0.01), qMakePair(1003.0, 1395.0));
        QCOMPARE(countPercentiles(*frame, 0.0), qMakePair(0.0, 65535.0));
        QCOMPARE(countPercentiles(TiffData(), 0.01), qMakePair(0.0, 0.0));
    }

    void valuesGoThroughTheColours() {
        std::vector<double> values(30 * 20);
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = i < 5 ? -1000.0 : i < 105 ? NotANumber : 0.01 * static_cast<double>(i);
        }
        // Of 500 numbers 5 lie far out.
        const auto [low, high] = valuePercentiles(values.data(), 30, 20, -1000.0, 5.99, 0.01, 2);
        const double step = 1006.0 / 65536;
        QVERIFY(std::abs(low - -1000.0) <= step && std::abs(high - 5.94) <= 2 * step);
        for (const ColorScale* colors : {&greyScale(), &heatScale()}) {
            const QImage picture = valuePicture(values.data(), 30, 20, 2.0, 5.0, *colors, 1);
            QCOMPARE(valuePicture(values.data(), 30, 20, 2.0, 5.0, *colors, 3), picture);
            for (int i = 0; i < 600; ++i) {
                const double value = values[static_cast<std::size_t>(i)];
                const uchar* c = colors->at((value - 2.0) / 3.0);
                const QColor at = picture.pixelColor(i % 30, i / 30);
                QVERIFY(std::isnan(value)
                            ? at == QColor(128, 128, 128)
                            : std::abs(at.red() - c[0]) + std::abs(at.blue() - c[2]) <= 1);
            }
        }
    }

    void gapsAreGrey() {
        std::vector<double> values{0.0, NotANumber, 1.0, Infinity, -NotANumber, 0.5};
        QImage picture(3, 2, QImage::Format_RGB888);
        picture.fill(QColor(255, 200, 0));
        const QImage before = picture.copy();
        const QImage marked = withGapsMarked(picture, values.data(), 3, 2);
        QCOMPARE(picture, before);  // what is saved knows no grey
        for (int i = 0; i < 6; ++i) {
            const QColor expected = std::isnan(values[static_cast<std::size_t>(i)])
                                        ? QColor(128, 128, 128)
                                        : QColor(255, 200, 0);
            QCOMPARE(marked.pixelColor(i % 3, i / 3), expected);
        }
        values.assign(6, 1.0);
        QCOMPARE(withGapsMarked(picture, values.data(), 3, 2).cacheKey(), picture.cacheKey());
        QCOMPARE(withGapsMarked(picture, values.data(), 2, 2).cacheKey(), picture.cacheKey());
        QCOMPARE(withGapsMarked(picture, nullptr, 3, 2).cacheKey(), picture.cacheKey());
    }

    void profilesAreMeansOverTheBin_data() {
        // mean: of at - half .. at + half inside 0..4
        columns<int, int, double>("at", "half", "mean");
        QTest::newRow("one line") << 2 << 0 << 2.0;
        QTest::newRow("inside") << 2 << 1 << 2.0;
        QTest::newRow("upper edge") << 0 << 2 << 1.0;
        QTest::newRow("lower edge") << 4 << 1 << 3.5;
        QTest::newRow("all") << 1 << 100 << 2.0;
        QTest::newRow("by magnitude") << 4 << -1 << 3.5;
        QTest::newRow("largest") << 3 << std::numeric_limits<int>::max() << 2.0;
        QTest::newRow("smallest") << 3 << std::numeric_limits<int>::min() << 2.0;
    }

    void profilesAreMeansOverTheBin() {
        QFETCH(int, at);
        QFETCH(int, half);
        QFETCH(double, mean);
        const QVector<double> row = rowProfile(
            3, 5, [](int x, int y) { return 100.0 * x + y; }, at, half);
        QCOMPARE(row, (QVector<double>{mean, 100.0 + mean, 200.0 + mean}));
        const QVector<double> column = columnProfile(
            5, 3, [](int x, int y) { return 100.0 * y + x; }, at, half);
        QCOMPARE(column, (QVector<double>{mean, 100.0 + mean, 200.0 + mean}));
    }

    void profilesOutsideAreEmpty() {
        const PixelValue never = [](int, int) -> double { qFatal("no pixel may be asked for"); };
        QVERIFY(rowProfile(3, 5, never, -1, 2).isEmpty());
        QVERIFY(rowProfile(3, 5, never, 5, 2).isEmpty());
        QVERIFY(columnProfile(3, 5, never, 3, 2).isEmpty());
        QVERIFY(rowProfile(0, 0, never, 0, 0).isEmpty());
    }

    void gapsStayGaps() {
        const QVector<double> row = rowProfile(
            3, 3, [](int x, int y) { return x == 1 && y == 0 ? NotANumber : 1.0; }, 1, 1);
        QCOMPARE(row[0], 1.0);
        QVERIFY(std::isnan(row[1]));
        QCOMPARE(row[2], 1.0);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, PicturesTest)
#include "tst_pictures.moc"
