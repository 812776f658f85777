#include <QRectF>
#include <cmath>

#include "TestMain.h"
#include "maps/AnalysisGrid.h"

namespace {

using Visited = QVector<QPoint>;

Visited visited(const AnalysisGrid& grid) {
    Visited points;
    forEachPoint(grid, [&](int x, int y) { points.append({x, y}); });
    return points;
}

}  // namespace

class TestAnalysisGrid : public QObject {
    Q_OBJECT

  private slots:
    void coversTheArea_data() {
        columns<QRectF, int, int, Visited>("area", "halfW", "halfH", "points");

        QTest::newRow("single pixels")
            << QRectF(1, 2, 2, 2) << 0 << 0 << Visited{{1, 2}, {2, 2}, {1, 3}, {2, 3}};
        QTest::newRow("bins tile the area")
            << QRectF(0, 0, 6, 6) << 1 << 1 << Visited{{1, 1}, {4, 1}, {1, 4}, {4, 4}};
        QTest::newRow("a last bin whose centre is inside counts")
            << QRectF(0, 0, 5, 3) << 1 << 1 << Visited{{1, 1}, {4, 1}};
        QTest::newRow("negative half sizes count by magnitude")
            << QRectF(0, 0, 6, 3) << -1 << -1 << Visited{{1, 1}, {4, 1}};
        QTest::newRow("narrower than one bin: the first column all the same")
            << QRectF(2, 0, 1, 6) << 1 << 1 << Visited{{3, 1}, {3, 4}};
        QTest::newRow("cut toward zero")
            << QRectF(0.9, 0.9, 2.0, 1.0) << 0 << 0 << Visited{{0, 0}, {1, 0}};
        QTest::newRow("turned round") << QRectF(3, 1, -2, -1) << 0 << 0 << Visited{{1, 0}, {2, 0}};
        QTest::newRow("clipped to the image")
            << QRectF(8, 7, 1e12, 1e12) << 0 << 0 << Visited{{8, 7}, {9, 7}};
        QTest::newRow("empty: the first point all the same")
            << QRectF(4, 4, 0, 0) << 0 << 0 << Visited{{4, 4}};
    }

    void coversTheArea() {
        QFETCH(QRectF, area);
        QFETCH(int, halfW);
        QFETCH(int, halfH);
        QFETCH(Visited, points);
        const AnalysisGrid grid = AnalysisGrid::ofArea(10, 8, halfW, halfH, area);
        QCOMPARE(visited(grid), points);
        QCOMPARE(grid.pointCount(), qint64(points.size()));
    }

    void extremeSizesStayInsideTheImage() {
        const int lowest = std::numeric_limits<int>::min();
        const int highest = std::numeric_limits<int>::max();
        const AnalysisGrid grid = AnalysisGrid::ofArea(10, 8, lowest, highest,
                                                       QRectF(-1e300, std::nan(""), 2e300, 1e300));
        QCOMPARE(grid.halfW, 10);
        QCOMPARE(grid.halfH, 8);
        QCOMPARE(grid.stepX, 21);
        QCOMPARE(grid.x0, 0);
        QCOMPARE(grid.x1, 10);
        QCOMPARE(visited(grid).size(), 1);

        const AnalysisGrid nothing = AnalysisGrid::ofArea(-1, -1, 0, 0, QRectF(0, 0, 5, 5));
        QCOMPARE(nothing.width, 0);
        QVERIFY(!nothing.isInsideImage(nothing.x, nothing.y));
    }

    void percentStaysBetweenItsEnds() {
        AnalysisGrid grid = AnalysisGrid::ofArea(10, 8, 0, 0, QRectF(0, 2, 10, 4));
        grid.y = 3;
        QCOMPARE(grid.percent(), 25.0);
        QCOMPARE(AnalysisGrid::ofArea(10, 8, 0, 0, QRectF(0, 2, 10, 0)).percent(), 0.0);
        // The first row of bins that are higher than the area lies below its end.
        QCOMPARE(AnalysisGrid::ofArea(10, 8, 0, 4, QRectF(0, 2, 10, 1)).percent(), 100.0);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestAnalysisGrid)
#include "tst_analysisgrid.moc"
