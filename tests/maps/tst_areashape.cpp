#include <cmath>
#include <numeric>
#include <random>

#include "TestMain.h"
#include "maps/AreaShape.h"
#include "maps/Statistics.h"

namespace {

const QRect Image(0, 0, 23, 17);

std::mt19937& generator() {
    static std::mt19937 numbers(12);
    return numbers;
}

int upTo(int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(generator());
}

/// What a predicate of pixels says, compared with a set; the first pixel that differs.
template <typename IsInside>
QString difference(const PixelSet& pixels, IsInside isInside) {
    QRect bounds;
    for (int y = -2; y < Image.height() + 2; ++y) {
        for (int x = -2; x < Image.width() + 2; ++x) {
            const bool expected = Image.contains(x, y) && isInside(x, y);
            bounds |= expected ? QRect(x, y, 1, 1) : QRect();
            if (pixels.contains(x, y) != expected) {
                return QString("%1, %2").arg(x).arg(y);
            }
        }
    }
    return pixels.bounds() == bounds ? QString() : QString("bounds");
}

/// Whether lines to the right of the middle of a pixel are crossed an odd number of times, in
/// whole numbers: all twice as large.
bool isInPolygon(const QVector<QPoint>& vertices, int x, int y) {
    const qint64 px = 2 * x + 1;
    const qint64 py = 2 * y + 1;
    bool inside = false;
    for (int i = 0; i < vertices.size(); ++i) {
        QPoint a = 2 * vertices.at(i);
        QPoint b = 2 * vertices.at((i + 1) % vertices.size());
        if (a.y() > b.y()) {
            std::swap(a, b);
        }
        const bool isCrossed = a.y() < py && py < b.y();
        inside ^=
            isCrossed && (px - a.x()) * (b.y() - a.y()) < qint64(b.x() - a.x()) * (py - a.y());
    }
    return inside;
}

}  // namespace

class TestAreaShape : public QObject {
    Q_OBJECT

  private slots:
    void polygonsFollowTheEvenOddRule() {
        for (int round = 0; round < 500; ++round) {
            QVector<QPoint> vertices;
            for (int n = upTo(3, 9); n > 0; --n) {
                vertices.append({upTo(-8, 30), upTo(-8, 25)});
            }
            QCOMPARE(difference(pixelsInPolygon(vertices, Image),
                                [&](int x, int y) { return isInPolygon(vertices, x, y); }),
                     QString());
        }
        // A side through middles: what it bounds on the left counts, on the right it does not.
        const PixelSet slanted = pixelsInPolygon({{0, 0}, {2, 0}, {4, 2}, {2, 2}}, Image);
        QCOMPARE(difference(slanted, [](int x, int y) { return y < 2 && x >= y && x < y + 2; }),
                 QString());
        QVERIFY(pixelsInPolygon({{3, 3}, {9, 3}, {5, 3}}, Image).isEmpty());
    }

    void ellipsesHoldWhatLiesOnThem() {
        for (int round = 0; round < 300; ++round) {
            const QRect box(upTo(-9, 20), upTo(-9, 15), upTo(1, 30), upTo(1, 30));
            const qint64 w = box.width();
            const qint64 h = box.height();
            QCOMPARE(difference(pixelsInEllipse(box, Image),
                                [&](int x, int y) {
                                    const qint64 dx = 2 * (x - box.left()) + 1 - w;
                                    const qint64 dy = 2 * (y - box.top()) + 1 - h;
                                    return dx * dx * h * h + dy * dy * w * w <= w * w * h * h;
                                }),
                     QString());
        }
    }

    /// Whatever the pixels, also with holes and where they touch at corners only.
    void anOutlineHoldsExactlyItsPixels() {
        for (int round = 0; round < 300; ++round) {
            PixelSet pixels(Image);
            const int density = upTo(1, 9);
            for (int i = 0; i < Image.width() * Image.height(); ++i) {
                if (upTo(1, 10) <= density) {
                    pixels.insert(i / Image.width(), i % Image.width(), i % Image.width() + 1);
                }
            }
            QCOMPARE(difference(pixelsInPolygon(outlineOf(pixels), Image),
                                [&](int x, int y) { return pixels.contains(x, y); }),
                     QString());
        }
        PixelSet box(Image);
        box.insert(3, 2, 6);
        box.insert(4, 2, 6);
        QCOMPARE(outlineOf(box), (QVector<QPoint>{{6, 3}, {6, 5}, {2, 5}, {2, 3}}));
        QVERIFY(outlineOf(PixelSet(Image)).isEmpty());
        box.insert(0, 0, 1);
        box.insert(6, 0, 1);
        const QVector<QPoint> three{{1, 0}, {1, 1}, {0, 1}, {0, 0}, {1, 0}, {6, 3}, {6, 5}, {2, 5},
                                    {2, 3}, {6, 3}, {1, 6}, {1, 7}, {0, 7}, {0, 6}, {1, 6}, {6, 3}};
        QCOMPARE(outlineOf(box, 16), three);
        QVERIFY(outlineOf(box, 15).isEmpty());
    }

    void statistics() {
        const Statistics even = statisticsOf({4.0, 1.0, 2.0, 9.0});
        QCOMPARE(even.n, 4);
        QCOMPARE(even.mean, 4.0);
        QCOMPARE(even.sd, std::sqrt(38.0 / 3.0));
        QCOMPARE(even.median, 3.0);
        QCOMPARE(even.min, 1.0);
        QCOMPARE(even.max, 9.0);
        QCOMPARE(statisticsOf({4.0, 1.0, 9.0}).median, 4.0);
        const Statistics one = statisticsOf({7.0});
        QVERIFY(one.median == 7.0 && one.mean == 7.0 && std::isnan(one.sd));
        QVERIFY(std::isnan(statisticsOf({}).mean) && std::isnan(statisticsOf({}).max));
        std::vector<double> values{1e9, -1e9};  // which no range should follow
        for (int i = 0; i < 400; ++i) {
            values.push_back(i % 100);
        }
        const Histogram classes = histogramOf(values, 10);
        QVERIFY(classes.low > -40.0 && classes.low <= 0.0 && classes.high >= 99.0);
        QVERIFY(classes.high < 140.0);
        QCOMPARE(std::accumulate(classes.counts.begin(), classes.counts.end(), 0), 400);
        QCOMPARE(histogramOf({2.0, 2.0}, 10).counts, std::vector<int>{2});
        QVERIFY(histogramOf({}, 10).counts.empty());
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestAreaShape)
#include "tst_areashape.moc"
