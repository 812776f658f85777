#include <QPainter>
#include <QSignalSpy>
#include <cmath>
#include <limits>

#include "Mouse.h"
#include "TestMain.h"
#include "display/ImageView.h"

Q_DECLARE_METATYPE(Area)

namespace {

QPointF onScreen(const ImageView& view, double x, double y) {
    return QPointF(view.coord().r2sX(x), view.coord().r2sY(y));
}

bool near(const QPointF& a, const QPointF& b, double tolerance = 1e-9) {
    return std::abs(a.x() - b.x()) < tolerance && std::abs(a.y() - b.y()) < tolerance;
}

QRectF rect(double x0, double y0, double x1, double y1) {
    return QRectF(QPointF(x0, y0), QPointF(x1, y1));
}

// A view of a size that has shown an image of a size.
struct View : ImageView {
    View(const QSize& size, const QSize& image) {
        resize(size);
        setImageSize(image.width(), image.height());
        grab();
    }
};

}  // namespace

// The canvas and the image view, with events as a real mouse makes them.
class ImageViewTest : public QObject {
    Q_OBJECT

  private slots:
    void canvasTellsOfTheMouse() {
        DispA canvas;
        QSignalSpy moved(&canvas, &DispA::mouseMoved0);
        canvas.setScreenMousePos(3, 4);
        Mouse::move(&canvas, QPointF(10, 20), Qt::RightButton);
        QCOMPARE(moved.count(), 2);
        QCOMPARE(canvas.mouse().previous(), QPoint(3, 4));
        QCOMPARE(canvas.mouse().current(), QPoint(10, 20));
        QCOMPARE(canvas.mouse().buttons(), Qt::MouseButtons(Qt::RightButton));
        // What Qt makes up itself is no movement.
        Mouse::send(&canvas, QEvent::MouseMove, QPointF(1, 1), Qt::NoButton, Qt::NoButton,
                    Qt::NoModifier, Qt::MouseEventSynthesizedByQt);
        QCOMPARE(moved.count(), 2);
        QCOMPARE(canvas.mouse().current(), QPoint(10, 20));
        QSignalSpy pressed(&canvas, &DispA::mousePressed0);
        QSignalSpy released(&canvas, &DispA::mouseReleased0);
        QSignalSpy doubleClicked(&canvas, &DispA::mouseDoubleClicked0);
        QSignalSpy wheeled(&canvas, &DispA::wheelMoved0);
        Mouse::doubleClick(&canvas, QPointF(5, 6));
        Mouse::wheel(&canvas, QPointF(7, 8), 1);
        QCOMPARE((QVector<int>{pressed.count(), released.count(), doubleClicked.count()}),
                 (QVector<int>{1, 2, 1}));
        QCOMPARE(wheeled.count(), 1);
        QCOMPARE(canvas.mouse().current(), QPoint(7, 8));
    }

    void canvasTruncatesPositions() {
        const double infinity = std::numeric_limits<double>::infinity();
        DispA canvas;  // its transform is one to one
        const QVector<QPair<double, int>> places{{12.7, 12},       {-0.5, 0},
                                                 {-3.9, -3},       {std::nan(""), 0},
                                                 {1e300, 1 << 30}, {-infinity, -(1 << 30)}};
        for (const auto& [real, screen] : places) {
            canvas.setRealMousePos(real, real);
            QCOMPARE(canvas.mouse().current(), QPoint(screen, screen));
        }
    }

    void exactPositionSurvivesAnyViewSize() {
        ImageView view;
        view.setImageSize(100, 100);
        QPointF told;
        connect(&view, &ImageView::mouseMoved, [&](double x, double y) { told = QPointF(x, y); });
        int offByTruncation = 0;
        for (int size = 100; size <= 1200; ++size) {
            view.resize(size, size);
            QApplication::sendPostedEvents();
            view.grab();  // a view that was never shown is resized when it is painted
            view.setRealMousePos(12, 7);
            QCOMPARE(told, QPointF(12, 7));
            QCOMPARE(view.realPosition(), QPointF(12, 7));
            const double back = view.coord().s2rX(view.mouse().current().x());
            offByTruncation += std::floor(back) == 12.0 ? 0 : 1;
            if (size == 150) {
                size += 997;  // grabs take their time: both ends of the range
            }
        }
        QVERIFY(offByTruncation > 0);
        // The next real movement counts again.
        Mouse::move(&view, onScreen(view, 40.5, 50.5));
        QVERIFY(near(told, QPointF(40.5, 50.5)));
        QCOMPARE(told, view.realPosition());
        view.setScreenMousePos(0, 0);
        QCOMPARE(view.realPosition(), QPointF(view.coord().s2rX(0), view.coord().s2rY(0)));
    }

    void wholeImageIsLetterBoxed_data() {
        columns<QSize, QSize>("image", "view");
        QTest::newRow("square") << QSize(16, 16) << QSize(400, 400);
        QTest::newRow("wide view") << QSize(100, 100) << QSize(500, 300);
        QTest::newRow("tall image") << QSize(16, 200) << QSize(500, 300);
        QTest::newRow("reduced") << QSize(2048, 2048) << QSize(333, 501);
        QTest::newRow("one pixel") << QSize(1, 1) << QSize(301, 200);
    }

    void wholeImageIsLetterBoxed() {
        QFETCH(QSize, image);
        QFETCH(QSize, view);
        const View canvas(view, image);
        const ChCoord& c = canvas.coord();
        QCOMPARE(canvas.visibleRect(), QRectF(QPointF(), QSizeF(image)));
        QVERIFY(qFuzzyCompare(c.r2sLengthX(1), c.r2sLengthY(1)));
        const QPointF low = onScreen(canvas, 0, 0);
        const QPointF high = onScreen(canvas, image.width(), image.height());
        QVERIFY(near(low + high, QPointF(view.width(), view.height()), 1e-6));  // centred
        QVERIFY(low.x() > -1e-6 && low.y() > -1e-6 && std::min(low.x(), low.y()) < 1e-6);
    }

    void wheelZoomsAboutTheCursor() {
        View view(QSize(400, 300), QSize(400, 300));
        const QPointF cursor(130, 220);
        QCOMPARE(view.coord().r2sLengthX(1), 1.0);
        for (int notch = 1; notch <= 5; ++notch) {
            Mouse::wheel(&view, cursor, 1);
            QVERIFY(qFuzzyCompare(view.coord().r2sLengthX(1), std::pow(1.25, notch)));
            QVERIFY(near(onScreen(view, 130, 220), cursor, 1e-6));
        }
        Mouse::wheel(&view, cursor, -2);
        QVERIFY(qFuzzyCompare(view.coord().r2sLengthX(1), std::pow(1.25, 3)));
        QVERIFY(near(onScreen(view, 130, 220), cursor, 1e-6));
        QCOMPARE(view.area(), rect(0, 0, 400, 300));  // whatever the zoom
        QSignalSpy changed(&view, &ImageView::viewChanged);
        view.resetImageViewWindow();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(view.visibleRect(), rect(0, 0, 400, 300));
        // Beside an upright image there are bars at first, then it is under the cursor again.
        view.setImageSize(75, 300);
        for (int notch = 1; notch <= 12; ++notch) {
            Mouse::wheel(&view, QPointF(192.5, 220), 1);
        }
        QVERIFY(near(onScreen(view, 30, 220), QPointF(192.5, 220), 1e-6));
    }

    void zoomHasLimits_data() {
        columns<QSize, QSizeF>("image", "closest");
        QTest::newRow("square") << QSize(100, 100) << QSizeF(8, 8);
        QTest::newRow("large") << QSize(2048, 2048) << QSizeF(8, 8);
        QTest::newRow("wide") << QSize(2000, 4) << QSizeF(8, 4);
        QTest::newRow("small") << QSize(4, 4) << QSizeF(4, 4);
    }

    void zoomHasLimits() {
        QFETCH(QSize, image);
        View view(QSize(320, 320), image);
        for (int i = 0; i < 60; ++i) {
            Mouse::wheel(&view, QPointF(300, 160), 1);
        }
        QTEST(view.visibleRect().size(), "closest");
        QVERIFY(QRectF(QPointF(), QSizeF(image)).contains(view.visibleRect()));
        for (int i = 0; i < 60; ++i) {
            Mouse::wheel(&view, QPointF(10, 160), -1);
        }
        QCOMPARE(view.visibleRect(), QRectF(QPointF(), QSizeF(image)));
    }

    void dragPans() {
        for (const Qt::MouseButton button : {Qt::MiddleButton, Qt::LeftButton}) {
            const auto modifier = button == Qt::LeftButton ? Qt::ShiftModifier : Qt::NoModifier;
            View view(QSize(400, 400), QSize(400, 400));
            Mouse::wheel(&view, QPointF(200, 200), 5);
            const QPointF real(view.coord().s2rX(180), view.coord().s2rY(190));
            const auto pan = [&](const QPointF& to) {
                Mouse::drag(&view, QPointF(180, 190), to, button, modifier);
            };
            pan(QPointF(230, 170));
            QVERIFY(near(onScreen(view, real.x(), real.y()), QPointF(230, 170), 1e-6));
            QVERIFY(!view.hasSelection());
            QVERIFY(!view.isPinned());
            for (int i = 0; i < 20; ++i) {
                pan(QPointF(399, 399));
            }
            QVERIFY(near(view.visibleRect().topLeft(), QPointF(0, 0)));  // not beyond the edge
        }
    }

    void dragSelects() {
        View view(QSize(400, 400), QSize(40, 40));
        QSignalSpy changed(&view, &ImageView::selectionChanged);
        Mouse::drag(&view, onScreen(view, 20.7, 11.2), onScreen(view, 10.2, 30.5));
        QCOMPARE(view.selection(), rect(10, 11, 21, 31));  // whole pixels, either direction
        QCOMPARE(view.area(), view.selection());
        QVERIFY(changed.count() > 0);
        QVERIFY(!view.isPinned());
        Mouse::drag(&view, onScreen(view, 35.5, 35.5), QPointF(1000, 1000));
        QCOMPARE(view.selection(), rect(35, 35, 40, 40));
    }

    void selectionIsClipped_data() {
        // corners: x, y, and the opposite corner in place of a size
        columns<QRect, QRectF>("corners", "selection");
        QTest::newRow("inside") << QRect(1, 2, 5, 9) << rect(1, 2, 5, 9);
        QTest::newRow("other order") << QRect(5, 9, 1, 2) << rect(1, 2, 5, 9);
        QTest::newRow("mixed order") << QRect(5, 2, 1, 9) << rect(1, 2, 5, 9);
        QTest::newRow("beyond") << QRect(-5, 20, 300, 400) << rect(0, 20, 40, 30);
        QTest::newRow("nought") << QRect(0, 0, 0, 0) << QRectF();
        QTest::newRow("a line") << QRect(3, 3, 3, 9) << QRectF();
        QTest::newRow("outside") << QRect(50, 3, 60, 9) << QRectF();
        QTest::newRow("everything")
            << QRect(std::numeric_limits<int>::min(), 0, std::numeric_limits<int>::max(), 1 << 30)
            << rect(0, 0, 40, 30);
    }

    void selectionIsClipped() {
        QFETCH(QRect, corners);
        ImageView view;
        view.setImageSize(40, 30);
        view.select({2, 2, 4, 4});
        int x, y, w, h;
        corners.getRect(&x, &y, &w, &h);
        view.select({x, y, w, h});
        QTEST(view.selection(), "selection");
        QCOMPARE(view.hasSelection(), !view.selection().isEmpty());
        QCOMPARE(view.area(), view.hasSelection() ? view.selection() : rect(0, 0, 40, 30));
    }

    void escapeAndRightClickClear() {
        View view(QSize(400, 400), QSize(40, 40));
        view.select({1, 1, 5, 5});
        QTest::keyClick(&view, Qt::Key_Escape);
        QVERIFY(!view.hasSelection());
        view.select({1, 1, 5, 5});
        Mouse::click(&view, QPointF(200, 200), Qt::RightButton);
        QVERIFY(!view.hasSelection());
        // In the middle of a drag, too: the rest of it selects nothing.
        Mouse::press(&view, QPointF(100, 100));
        Mouse::move(&view, QPointF(200, 200), Qt::LeftButton);
        QVERIFY(view.hasSelection());
        QTest::keyClick(&view, Qt::Key_Escape);
        Mouse::move(&view, QPointF(300, 300), Qt::LeftButton);
        Mouse::release(&view, QPointF(300, 300));
        QVERIFY(!view.hasSelection());
        QVERIFY(!view.isPinned());
    }

    /// An area is taken inside and moved, at a handle and resized, and never leaves the image;
    /// beside it a drag draws another one.
    void theAreaIsMovedAndResized_data() {
        columns<Area, QPointF, QPointF, Area>("area", "from", "to", "expected");
        const Area box{10, 10, 20, 20};
        const Area ellipse = Area::ellipse(10, 10, 20, 20);
        const Area polygon = Area::polygon({{5, 5}, {30, 5}, {5, 35}});
        QTest::newRow("moved") << box << QPointF(15, 15) << QPointF(18.2, 13)
                               << Area{13, 8, 23, 18};
        QTest::newRow("to the edge")
            << box << QPointF(15, 15) << QPointF(39, 0) << Area{30, 0, 40, 10};
        QTest::newRow("at a corner")
            << box << QPointF(20, 20) << QPointF(25, 32) << Area{10, 10, 25, 32};
        QTest::newRow("at a side")
            << box << QPointF(10, 15) << QPointF(4, 1) << Area{4, 10, 20, 20};
        QTest::newRow("past the other side")
            << box << QPointF(10, 15) << QPointF(26, 15) << Area{20, 10, 26, 20};
        QTest::newRow("an ellipse")
            << ellipse << QPointF(20, 10) << QPointF(22, 8) << Area::ellipse(10, 8, 22, 20);
        QTest::newRow("beside an ellipse, in its box")
            << ellipse << QPointF(10.8, 10.8) << QPointF(12.5, 13.5) << Area{10, 10, 13, 14};
        QTest::newRow("a polygon")
            << polygon << QPointF(10, 10) << QPointF(11, 12) << polygon.moved({1, 2});
        QTest::newRow("a vertex") << polygon << QPointF(30, 5) << QPointF(24, 20)
                                  << Area::polygon({{5, 5}, {24, 20}, {5, 35}});
    }
    void theAreaIsMovedAndResized() {
        QFETCH(Area, area);
        QFETCH(QPointF, from);
        QFETCH(QPointF, to);
        QFETCH(Area, expected);
        View view(QSize(400, 400), QSize(40, 40));
        view.select(area);
        Mouse::drag(&view, 10 * from, 10 * to);
        QVERIFY(view.selectedArea() == expected);
        QTest::keyClick(&view, Qt::Key_Left, Qt::AltModifier);
        QVERIFY(view.selectedArea() == expected.moved({expected.x0 > 0 ? -1 : 0, 0}));
        const QRectF box = view.selection();
        QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier);
        const bool isPolygon = area.shape == AreaShape::Polygon;
        QCOMPARE(view.selection(), box.adjusted(0, 0, 0, isPolygon ? 0 : 1));
        QVERIFY(!view.isPinned());
    }

    void shapesAreDrawn() {
        View view(QSize(400, 400), QSize(40, 40));
        QSignalSpy changed(&view, &ImageView::selectionChanged);
        view.chooseShape(AreaShape::Ellipse);
        Mouse::drag(&view, QPointF(101, 101), QPointF(199, 299));
        QVERIFY(view.selectedArea() == Area::ellipse(10, 10, 20, 30));
        view.chooseShape(AreaShape::Polygon);
        const int before = changed.count();
        for (const QPointF& at : {QPointF(50, 52), QPointF(300, 50), QPointF(10, 10)}) {
            Mouse::click(&view, at);
        }
        QTest::keyClick(&view, Qt::Key_Backspace);
        Mouse::doubleClick(&view, QPointF(48, 351));
        QCOMPARE(changed.count(), before + 1);
        const Area drawn = Area::polygon({{5, 5}, {30, 5}, {5, 35}});
        QVERIFY(view.selectedArea() == drawn && !view.isPinned());
        Mouse::click(&view, QPointF(100, 100));  // no vertex any more
        QVERIFY(view.selectedArea() == drawn && view.isPinned());
        // Two corners make no polygon; Esc takes them and the area away.
        view.chooseShape(AreaShape::Polygon);
        Mouse::click(&view, QPointF(50, 50));
        Mouse::click(&view, QPointF(90, 50));
        QTest::keyClick(&view, Qt::Key_Return);
        QVERIFY(view.selectedArea() == drawn);
        QTest::keyClick(&view, Qt::Key_Escape);
        QVERIFY(!view.hasSelection());
    }

    /// Loading the next stack empties the view first. What was selected before is still wanted, and
    /// so is what was selected before the first stack.
    void theSelectionWaitsForAnImage() {
        ImageView view;
        view.select({10, 10, 30, 30});
        QVERIFY(!view.hasSelection());
        view.setImageSize(40, 20);
        QCOMPARE(view.selection(), rect(10, 10, 30, 20));
        view.setImageSize(0, 0);
        QVERIFY(!view.hasSelection() && view.area().isEmpty());
        view.setImageSize(20, 40);
        QCOMPARE(view.selection(), rect(10, 10, 20, 20));
        view.setImageSize(8, 8);  // holds none of it: there is no selection any more
        QVERIFY(!view.hasSelection());
        view.setImageSize(40, 40);
        QVERIFY(!view.hasSelection());
    }

    void clickPins() {
        View view(QSize(400, 200), QSize(40, 40));
        QSignalSpy moved(&view, &ImageView::mouseMoved);
        Mouse::move(&view, onScreen(view, 5.5, 6.5));
        Mouse::click(&view, onScreen(view, 5.5, 6.5));
        QVERIFY(view.isPinned());
        const int told = moved.count();
        Mouse::move(&view, onScreen(view, 30, 30));
        QCOMPARE(moved.count(), told);
        QVERIFY(near(view.realPosition(), QPointF(5.5, 6.5), 1e-6));
        Mouse::click(&view, onScreen(view, 31, 30));
        QVERIFY(!view.isPinned());
        QVERIFY(near(view.realPosition(), QPointF(31, 30), 1e-6));
        Mouse::move(&view, onScreen(view, 2, 3));
        QVERIFY(near(view.realPosition(), QPointF(2, 3), 1e-6));
        Mouse::click(&view, QPointF(3, 100));  // beside the image: nothing to hold on to
        QVERIFY(!view.isPinned());
        Mouse::wheel(&view, QPointF(110, 10), 4);
        Mouse::doubleClick(&view, QPointF(200, 100));
        QCOMPARE(view.visibleRect(), rect(0, 0, 40, 40));
        QVERIFY(!view.isPinned());
        Mouse::click(&view, onScreen(view, 5.5, 6.5));
        Mouse::doubleClick(&view, QPointF(300, 100));
        QVERIFY(view.isPinned());
        QVERIFY(near(view.realPosition(), QPointF(5.5, 6.5), 1e-6));
    }

    void arrowsMoveByBins() {
        View view(QSize(400, 400), QSize(40, 40));
        view.setBinBox(2, -1);
        view.grab();
        QTest::keyClick(&view, Qt::Key_Left);  // no position yet: the middle
        QCOMPARE(view.realPosition(), QPointF(20, 20));
        QSignalSpy moved(&view, &ImageView::mouseMoved);
        QTest::keyClick(&view, Qt::Key_Right);
        QTest::keyClick(&view, Qt::Key_Down);
        QCOMPARE(view.realPosition(), QPointF(25, 23));
        QTest::keyClick(&view, Qt::Key_Left);
        QTest::keyClick(&view, Qt::Key_Up);
        QCOMPARE(view.realPosition(), QPointF(20, 20));
        QCOMPARE(moved.count(), 4);
        for (int i = 0; i < 20; ++i) {
            QTest::keyClick(&view, Qt::Key_Left);
        }
        QCOMPARE(view.realPosition(), QPointF(0, 20));  // never off the image
        QCOMPARE(moved.count(), 8);
        Mouse::wheel(&view, QPointF(399, 399), 5);
        QTest::keyClick(&view, Qt::Key_Up);
        QVERIFY(view.visibleRect().contains(view.realPosition()));  // the view follows
    }

    void magnifiedPicturesAreCrisp() {
        View view(QSize(500, 300), QSize(4, 3));
        QImage picture(4, 3, QImage::Format_RGB888);
        for (int i = 0; i < 12; ++i) {
            picture.setPixelColor(i % 4, i / 4, QColor::fromHsv(30 * i, 255, 200));
        }
        connect(&view, &ImageView::drawImage2, [&](QPainter* p) { view.paintImage(p, picture); });
        const QImage grab = view.grab().toImage();
        for (int i = 0; i < 12; ++i) {
            // Well off the ticks at the upper and left edge, up to the last pixel of each.
            for (const QPointF& part :
                 {QPointF(0.6, 0.6), QPointF(0.97, 0.97), QPointF(0.6, 0.97)}) {
                const QPointF at = onScreen(view, i % 4 + part.x(), i / 4 + part.y());
                QCOMPARE(grab.pixelColor(at.toPoint()), picture.pixelColor(i % 4, i / 4));
            }
        }
        // Beside the letter-boxed image lies plain background.
        QCOMPARE(grab.pixelColor(20, 150), grab.pixelColor(480, 20));
        // Nor does a picture of another size fill the image.
        picture = picture.copy(0, 0, 2, 3);
        const QPointF missing = onScreen(view, 2.6, 1.6);
        QCOMPARE(view.grab().toImage().pixelColor(missing.toPoint()), grab.pixelColor(20, 150));
    }

    void reducedPicturesAreSmooth() {
        View view(QSize(128, 128), QSize(1024, 1024));
        QImage picture(1024, 1024, QImage::Format_Grayscale8);
        for (int y = 0; y < 1024; ++y) {
            for (int x = 0; x < 1024; ++x) {
                picture.scanLine(y)[x] = (x + y) % 2 == 0 ? 255 : 0;
            }
        }
        connect(&view, &ImageView::drawImage2, [&](QPainter* p) { view.paintImage(p, picture); });
        const auto middle = [&] { return qGray(view.grab().toImage().pixel(90, 90)); };
        QVERIFY(std::abs(middle() - 128) < 6);
        picture.fill(Qt::white);  // the same picture, changed
        QCOMPARE(middle(), 255);
    }

    void nothingToShow() {
        View view(QSize(300, 200), QSize(0, 0));
        connect(&view, &ImageView::drawImage2, [&](QPainter* p) { view.paintImage(p, QImage()); });
        Mouse::move(&view, QPointF(100, 100));
        Mouse::wheel(&view, QPointF(100, 100), 3);
        Mouse::drag(&view, QPointF(10, 10), QPointF(100, 100));
        Mouse::doubleClick(&view, QPointF(10, 10));
        QTest::keyClick(&view, Qt::Key_Right);
        QVERIFY(!view.hasSelection());
        QVERIFY(!view.isPinned());
        QVERIFY(view.area().isEmpty());
        QVERIFY(!view.grab().isNull());
        view.resize(0, 0);
        view.setImageSize(10, 10);
        view.setRealMousePos(3, 4);
        QCOMPARE(view.realPosition(), QPointF(3, 4));
    }
};

TARNWICK_TEST_MAIN(QApplication, ImageViewTest)
#include "tst_imageview.moc"
