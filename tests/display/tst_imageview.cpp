#include <QPainter>
#include <QSignalSpy>
#include <cmath>
#include <limits>

#include "Mouse.h"
#include "TestMain.h"
#include "display/ImageView.h"

class TestImageView : public QObject {
    Q_OBJECT

  private:
    /// A view that shows an image of this size, four screen pixels a pixel for 100 x 100.
    struct Fixture {
        explicit Fixture(int width = 100, int height = 100, QSize size = QSize(400, 400)) {
            view.resize(size);
            view.show();
            view.setImageSize(width, height);
        }
        ImageView view;
    };

    static QVector<double> screen(const ImageView& view) {
        const ChCoord& c = view.coord();
        return {c.sx0, c.sx1, c.sy0, c.sy1};
    }

  private slots:
    void pixelsAreSquareWhateverTheView() {
        Fixture f(100, 100, QSize(400, 300));
        QCOMPARE(screen(f.view), (QVector<double>{50, 350, 0, 300}));
        f.view.resize(300, 400);
        QCOMPARE(screen(f.view), (QVector<double>{0, 300, 50, 350}));
        f.view.setImageSize(200, 50);
        QCOMPARE(screen(f.view), (QVector<double>{0, 300, 162.5, 237.5}));
        QCOMPARE(f.view.coord().rx1, 200.0);
        QCOMPARE(f.view.coord().ry1, 50.0);
    }

    void onlyRealMouseMovesCount() {
        Fixture f;
        QSignalSpy moved0(&f.view, &DispA::mouseMoved0);
        QSignalSpy moved(&f.view, &ImageView::mouseMoved);
        QTest::mouseMove(&f.view, QPoint(40, 80));
        QCOMPARE(moved0.size(), 0);
        mouse::move(&f.view, QPointF(40, 80));
        mouse::move(&f.view, QPointF(42, 80), Qt::RightButton);
        QCOMPARE(moved0.size(), 2);
        QCOMPARE(moved.size(), 2);
        QCOMPARE(moved.last().at(0).toDouble(), 10.5);
        QCOMPARE(moved.last().at(1).toDouble(), 20.0);
        QCOMPARE(f.view.mouse().previous(), QPoint(40, 80));
        QCOMPARE(f.view.mouse().current(), QPoint(42, 80));
        QCOMPARE(f.view.mouse().buttons(), Qt::MouseButtons(Qt::RightButton));
    }

    // Screen pixels are whole: going through them would land on another image pixel.
    void aSetPositionIsExactInEveryViewSize() {
        Fixture f;
        QSignalSpy moved(&f.view, &ImageView::mouseMoved);
        QSignalSpy moved0(&f.view, &DispA::mouseMoved0);
        for (int width = 40; width <= 1140; ++width) {
            f.view.resize(width, 700);
            f.view.setRealMousePos(12, 7);
            QCOMPARE(f.view.realPosition(), QPointF(12, 7));
            QCOMPARE(f.view.mouse().current(), QPoint(static_cast<int>(f.view.coord().r2sX(12)),
                                                      static_cast<int>(f.view.coord().r2sY(7))));
        }
        QCOMPARE(moved.size(), 1101);
        QCOMPARE(moved0.size(), 1101);
        QCOMPARE(moved.last().at(0).toDouble(), 12.0);
        QCOMPARE(moved.last().at(1).toDouble(), 7.0);
        mouse::move(&f.view, QPointF(f.view.coord().r2sX(50), f.view.coord().r2sY(60)));
        QVERIFY(std::abs(f.view.realPosition().x() - 50) < 1e-9);
    }

    void screenPositionsAreCutTowardsZero() {
        Fixture f;
        f.view.setScreenMousePos(12.7, -0.5);
        QCOMPARE(f.view.mouse().current(), QPoint(12, 0));
        QCOMPARE(f.view.realPosition(), QPointF(3.0, 0.0));
        const double inf = std::numeric_limits<double>::infinity();
        f.view.setRealMousePos(std::nan(""), inf);
        QCOMPARE(f.view.mouse().current().x(), 0);
        f.view.setRealMousePos(-1e300, 1e300);
        f.view.setBinBox(std::numeric_limits<int>::min(), 1);
        f.view.grab();
    }

    void theWheelMagnifiesAboutTheCursor() {
        Fixture f;
        const QPointF at(100, 300);
        mouse::wheel(&f.view, at, 1);
        QCOMPARE(f.view.visibleRect(), QRectF(5, 15, 80, 80));
        QVERIFY(std::abs(f.view.coord().s2rX(100) - 25) < 1e-9);
        QVERIFY(std::abs(f.view.coord().s2rY(300) - 75) < 1e-9);
        for (int i = 0; i < 40; ++i) {
            mouse::wheel(&f.view, at, 1);
        }
        QVERIFY(std::abs(f.view.visibleRect().width() - 8) < 1e-9);
        QVERIFY(std::abs(f.view.coord().s2rX(100) - 25) < 1e-9);
        for (int i = 0; i < 40; ++i) {
            mouse::wheel(&f.view, at, -1);
        }
        QCOMPARE(f.view.visibleRect(), QRectF(0, 0, 100, 100));

        Fixture small(3, 2);  // smaller than the closest look: stays whole
        mouse::wheel(&small.view, at, 5);
        QVERIFY(small.view.visibleRect().height() <= 2);
        QVERIFY(small.view.visibleRect().height() > 0);
        Fixture none(0, 0);
        mouse::wheel(&none.view, at, 1);
        QVERIFY(none.view.visibleRect().isEmpty());
    }

    void draggingPansAndStopsAtTheImage_data() {
        QTest::addColumn<bool>("middle");
        QTest::newRow("middle button") << true;
        QTest::newRow("shift and left button") << false;
    }
    void draggingPansAndStopsAtTheImage() {
        QFETCH(bool, middle);
        Fixture f;
        for (int i = 0; i < 4; ++i) {
            mouse::wheel(&f.view, QPointF(200, 200), 1);
        }
        const Qt::MouseButton button = middle ? Qt::MiddleButton : Qt::LeftButton;
        const Qt::KeyboardModifiers keys = middle ? Qt::NoModifier : Qt::ShiftModifier;
        const QRectF before = f.view.visibleRect();
        const QPointF position = f.view.realPosition();
        mouse::drag(&f.view, QPointF(200, 200), QPointF(150, 220), button, keys);
        const QPointF moved = f.view.visibleRect().topLeft() - before.topLeft();
        QVERIFY(std::abs(moved.x() - before.width() / 8) < 1e-9);
        QVERIFY(std::abs(moved.y() + before.height() / 20) < 1e-9);
        mouse::drag(&f.view, QPointF(200, 200), QPointF(-5000, 5000), button, keys);
        QVERIFY(std::abs(f.view.visibleRect().right() - 100) < 1e-9);
        QVERIFY(std::abs(f.view.visibleRect().top()) < 1e-9);
        QVERIFY(!f.view.hasSelection());
        QVERIFY(!f.view.isPinned());
        QCOMPARE(f.view.realPosition(), position);
        f.view.resetImageViewWindow();
        QCOMPARE(f.view.visibleRect(), QRectF(0, 0, 100, 100));
    }

    void aDragSelectsWholePixelsOfTheImage() {
        Fixture f;
        QSignalSpy changed(&f.view, &ImageView::selectionChanged);
        QCOMPARE(f.view.area(), QRectF(0, 0, 100, 100));
        mouse::drag(&f.view, QPointF(41, 41), QPointF(99, 79));
        QCOMPARE(f.view.selection(), QRectF(10, 10, 15, 10));
        mouse::drag(&f.view, QPointF(99, 79), QPointF(41, 41));  // backwards
        QCOMPARE(f.view.selection(), QRectF(10, 10, 15, 10));
        mouse::drag(&f.view, QPointF(350, 390), QPointF(900, -50));  // over the edge
        QCOMPARE(f.view.selection(), QRectF(87, 0, 13, 98));
        QCOMPARE(f.view.area(), f.view.selection());
        QVERIFY(!f.view.isPinned());
        QVERIFY(changed.size() >= 3);

        mouse::click(&f.view, QPointF(20, 20), Qt::RightButton);
        QVERIFY(!f.view.hasSelection());
        mouse::drag(&f.view, QPointF(41, 41), QPointF(99, 79));
        QTest::keyClick(&f.view, Qt::Key_Escape);
        QVERIFY(!f.view.hasSelection());
        mouse::wheel(&f.view, QPointF(10, 10), 3);
        QCOMPARE(f.view.area(), QRectF(0, 0, 100, 100));  // whatever the zoom
    }

    void areasAreClippedAndEmptyOnesAreNone() {
        Fixture f(100, 50);
        f.view.setSelection(20, 40, 10, 5);
        QCOMPARE(f.view.selection(), QRectF(10, 5, 10, 35));
        f.view.setSelection(-10, -10, 2000000000, 10);
        QCOMPARE(f.view.selection(), QRectF(0, 0, 100, 10));
        f.view.setSelection(5, 5, 5, 20);
        QVERIFY(!f.view.hasSelection());
        f.view.setSelection(90, 10, 100, 20);
        f.view.setSelection(0, 0, 0, 0);
        QVERIFY(!f.view.hasSelection());
        f.view.setSelection(200, 200, 300, 300);
        QVERIFY(!f.view.hasSelection());
        f.view.setSelection(90, 10, 100, 50);
        f.view.setImageSize(95, 20);  // another image
        QCOMPARE(f.view.selection(), QRectF(90, 10, 5, 10));
        f.view.setImageSize(0, 0);
        QVERIFY(!f.view.hasSelection());
        QVERIFY(f.view.area().isEmpty());
    }

    void aClickPinsThePositionAndTheNextFreesIt() {
        Fixture f;
        mouse::move(&f.view, QPointF(40, 40));
        mouse::click(&f.view, QPointF(80, 120));
        QVERIFY(f.view.isPinned());
        QCOMPARE(f.view.realPosition(), QPointF(20, 30));
        QSignalSpy moved(&f.view, &ImageView::mouseMoved);
        mouse::move(&f.view, QPointF(300, 300));
        QCOMPARE(moved.size(), 0);
        QCOMPARE(f.view.realPosition(), QPointF(20, 30));
        mouse::click(&f.view, QPointF(200, 200));
        QVERIFY(!f.view.isPinned());
        mouse::move(&f.view, QPointF(300, 300));
        QCOMPARE(f.view.realPosition(), QPointF(75, 75));
    }

    void aDoubleClickShowsEverythingAndPinsNothing_data() {
        QTest::addColumn<int>("button");
        QTest::newRow("left") << int(Qt::LeftButton);
        QTest::newRow("right") << int(Qt::RightButton);
        QTest::newRow("middle") << int(Qt::MiddleButton);
    }
    void aDoubleClickShowsEverythingAndPinsNothing() {
        QFETCH(int, button);
        Fixture f;
        mouse::wheel(&f.view, QPointF(10, 10), 4);
        mouse::doubleClick(&f.view, QPointF(80, 120), static_cast<Qt::MouseButton>(button));
        QVERIFY(!f.view.isPinned());
        QCOMPARE(f.view.visibleRect() == QRectF(0, 0, 100, 100), button == Qt::LeftButton);
    }

    void arrowKeysStepByTheBinInsideTheImage() {
        Fixture f;
        f.view.setBinBox(-2, 1);  // the sign of a half width does not matter
        f.view.setRealMousePos(50, 50);
        QTest::keyClick(&f.view, Qt::Key_Right);
        QCOMPARE(f.view.realPosition(), QPointF(55, 50));
        QTest::keyClick(&f.view, Qt::Key_Left);
        QTest::keyClick(&f.view, Qt::Key_Up);
        QCOMPARE(f.view.realPosition(), QPointF(50, 47));
        QTest::keyClick(&f.view, Qt::Key_Down);
        QCOMPARE(f.view.realPosition(), QPointF(50, 50));
        for (const auto key : {Qt::Key_Right, Qt::Key_Down}) {
            for (int i = 0; i < 60; ++i) {
                QTest::keyClick(&f.view, key);
            }
        }
        QCOMPARE(f.view.realPosition(), QPointF(95, 98));  // 100 is no pixel any more
    }

    void magnifiedPixelsAreCrispAndTheRestIsPlain() {
        Fixture f(4, 2, QSize(400, 300));
        QImage picture(4, 2, QImage::Format_RGB32);
        picture.fill(Qt::black);
        picture.setPixelColor(1, 0, Qt::white);
        picture.setPixelColor(2, 1, Qt::yellow);
        connect(&f.view, &DispA::drawImage2, this,
                [&](QPainter* p) { f.view.paintImage(p, picture); });
        const QImage grab = f.view.grab().toImage();
        // 100 screen pixels a pixel, 50 rows of letter-box above and below
        for (int x : {101, 150, 198}) {
            for (int y : {51, 100, 148}) {
                QCOMPARE(grab.pixelColor(x, y), QColor(Qt::white));
                QCOMPARE(grab.pixelColor(x + 100, y + 100), QColor(Qt::yellow));
                QCOMPARE(grab.pixelColor(x, y + 100), QColor(Qt::black));
            }
        }
        const QColor background = grab.pixelColor(200, 2);
        QCOMPARE(grab.pixelColor(150, 47), background);
        QCOMPARE(grab.pixelColor(150, 252), background);
        QVERIFY(background != QColor(Qt::black));

        mouse::wheel(&f.view, QPointF(0, 50), 1);  // never closer than the image's own two rows
        f.view.setImageSize(0, 0);
        picture = QImage();
        const QImage empty = f.view.grab().toImage();
        QCOMPARE(empty.pixelColor(150, 60), background);
    }

    void aMagnifiedPartShowsItsOwnPixels() {
        Fixture f(64, 64, QSize(320, 320));
        QImage picture(64, 64, QImage::Format_Grayscale8);
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) {
                picture.scanLine(y)[x] = static_cast<uchar>(3 * x + y);
            }
        }
        connect(&f.view, &DispA::drawImage2, this,
                [&](QPainter* p) { f.view.paintImage(p, picture); });
        mouse::wheel(&f.view, QPointF(100, 140), 4);
        mouse::wheel(&f.view, QPointF(60, 300), 1);
        const QImage grab = f.view.grab().toImage();
        const ChCoord& c = f.view.coord();
        for (int y = 31; y < 62; y += 3) {
            for (int x = 10; x < 40; x += 4) {
                const QPointF middle(c.r2sX(x + 0.5), c.r2sY(y + 0.5));
                if (!QRectF(0, 0, 320, 320).contains(middle)) {
                    continue;
                }
                QCOMPARE(qGray(grab.pixel(middle.toPoint())), 3 * x + y);
            }
        }
    }

    void reducedPicturesAreSmooth() {
        Fixture f(400, 400, QSize(200, 200));
        QImage picture(400, 400, QImage::Format_Grayscale8);
        for (int y = 0; y < 400; ++y) {
            for (int x = 0; x < 400; ++x) {
                picture.scanLine(y)[x] = (x + y) % 2 != 0 ? 255 : 0;
            }
        }
        connect(&f.view, &DispA::drawImage2, this,
                [&](QPainter* p) { f.view.paintImage(p, picture); });
        const int grey = qGray(f.view.grab().toImage().pixel(100, 57));
        QVERIFY2(grey > 90 && grey < 165, qPrintable(QString::number(grey)));
    }

    void selectionAndBinAreOutlined() {
        Fixture f;
        connect(&f.view, &DispA::drawImage2, this,
                [](QPainter* p) { p->fillRect(0, 0, 400, 400, Qt::black); });
        f.view.setSelection(20, 20, 60, 60);
        f.view.setBinBox(2, 2);
        f.view.setRealMousePos(80.5, 80.5);
        const QImage grab = f.view.grab().toImage();
        const QColor outline = grab.pixelColor(160, 80);
        QVERIFY(outline.red() > 150 && outline.green() < 60);
        const QColor bin = grab.pixelColor(78 * 4, 79 * 4);
        QVERIFY(bin.green() > 150 && bin.red() < 60);
        QVERIFY(grab.pixelColor(322, 10) != QColor(Qt::black));  // the cross hair
    }

    void layersArePaintedInOrder() {
        DispA canvas;
        canvas.resize(20, 20);
        connect(&canvas, &DispA::drawImage2, this,
                [](QPainter* p) { p->fillRect(0, 0, 10, 20, Qt::red); });
        connect(&canvas, &DispA::drawImage1, this,
                [](QPainter* p) { p->fillRect(0, 0, 20, 20, Qt::blue); });
        const QImage grab = canvas.grab().toImage();
        QCOMPARE(grab.pixelColor(5, 5), QColor(Qt::red));
        QCOMPARE(grab.pixelColor(15, 5), QColor(Qt::blue));
        QSignalSpy pressed(&canvas, &DispA::mousePressed0);
        QSignalSpy released(&canvas, &DispA::mouseReleased0);
        QSignalSpy twice(&canvas, &DispA::mouseDoubleClicked0);
        QSignalSpy wheel(&canvas, &DispA::wheelMoved0);
        mouse::doubleClick(&canvas, QPointF(3, 4));
        mouse::wheel(&canvas, QPointF(5, 6), 1);
        QCOMPARE(pressed.size(), 1);
        QCOMPARE(released.size(), 2);
        QCOMPARE(twice.size(), 1);
        QCOMPARE(wheel.size(), 1);
        QCOMPARE(canvas.mouse().current(), QPoint(5, 6));
        QCOMPARE(canvas.mouse().previous(), QPoint(3, 4));
    }
};

TARNWICK_TEST_MAIN(QApplication, TestImageView)
#include "tst_imageview.moc"
