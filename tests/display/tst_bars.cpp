#include <QLineEdit>
#include <QPainter>
#include <QSignalSpy>
#include <cmath>
#include <limits>

#include "Mouse.h"
#include "TestMain.h"
#include "display/ColorBar.h"
#include "display/CrossSection.h"
#include "display/ImageView.h"

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();

bool isProfile(const QColor& color) {  // the profile's line
    return color.blue() > 200 && color.red() < 100 && color.green() < 100;
}

bool hasProfile(const QImage& grab, const QRect& where) {
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x) {
            if (isProfile(grab.pixelColor(x, y))) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

class TestBars : public QObject {
    Q_OBJECT

  private:
    struct Bar {
        Bar() {
            bar.resize(90, 400);
            bar.show();
            bar.setDataRange(100, 500);
            bar.grab();
        }
        QPointF high() const { return QPointF(16, bar.coord().r2sY(bar.rangeMax()) + 3); }
        QPointF low() const { return QPointF(16, bar.coord().r2sY(bar.rangeMin()) - 3); }
        /// Screen pixels of a difference of values.
        double pixels(double values) const { return -bar.coord().r2sLengthY(values); }
        ColorBar bar;
    };

  private slots:
    void eachFrameHasItsOwnRangeUntilAnEndIsDragged() {
        Bar f;
        QSignalSpy changed(&f.bar, &ColorBar::newBar);
        QVERIFY(f.bar.isAuto());
        f.bar.setDataRange(200, 600);
        QCOMPARE(f.bar.rangeMin(), 200.0);
        QCOMPARE(f.bar.rangeMax(), 600.0);
        QCOMPARE(changed.size(), 0);
        f.bar.grab();
        mouse::drag(&f.bar, f.high(), f.high() + QPointF(0, f.pixels(100)));
        QVERIFY(!f.bar.isAuto());
        QVERIFY(std::abs(f.bar.rangeMax() - 500) < 2.0);
        QCOMPARE(f.bar.rangeMin(), 200.0);
        QVERIFY(changed.size() >= 1);
        f.bar.grab();
        mouse::drag(&f.bar, f.low(), f.low() - QPointF(0, f.pixels(50)));
        QVERIFY(std::abs(f.bar.rangeMin() - 250) < 2.0);
        f.bar.setDataRange(0, 9);  // the next frame
        QVERIFY(f.bar.rangeMin() > 200.0);
        mouse::doubleClick(&f.bar, QPointF(16, 200));
        QVERIFY(f.bar.isAuto());
        QCOMPARE(f.bar.rangeMax(), 9.0);
        QCOMPARE(changed.size(), 5);
    }

    void theEndsNeverPassEachOther() {
        Bar f;
        mouse::drag(&f.bar, f.high(), QPointF(16, 5000));
        QVERIFY(f.bar.rangeMax() >= f.bar.rangeMin());
        f.bar.setAuto(true);
        f.bar.grab();
        mouse::drag(&f.bar, f.low(), QPointF(16, -5000));
        QVERIFY(f.bar.rangeMax() >= f.bar.rangeMin());
        f.bar.grab();
        mouse::wheel(&f.bar, QPointF(16, 200), 1);
        QVERIFY(f.bar.rangeMax() >= f.bar.rangeMin());
    }

    void anEndCanBeTyped() {
        Bar f;
        QSignalSpy changed(&f.bar, &ColorBar::newBar);
        mouse::click(&f.bar, QPointF(16, 4));
        auto* field = f.bar.findChild<QLineEdit*>();
        QVERIFY(field != nullptr && field->isVisible());
        QCOMPARE(field->text(), QString("500"));
        QTest::keyClicks(field, "450.5");
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(!field->isVisible());
        QCOMPARE(f.bar.rangeMax(), 450.5);
        QCOMPARE(f.bar.rangeMin(), 100.0);
        QCOMPARE(changed.size(), 1);
        mouse::click(&f.bar, QPointF(16, 396));
        QCOMPARE(field->text(), QString("100"));
        QTest::keyClicks(field, "no number");
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(f.bar.rangeMin(), 100.0);
        mouse::click(&f.bar, QPointF(16, 396));
        QTest::keyClicks(field, "120");
        QTest::keyClick(field, Qt::Key_Escape);
        QCOMPARE(f.bar.rangeMin(), 100.0);
        mouse::click(&f.bar, QPointF(16, 396));
        QTest::keyClicks(field, "600");  // above the other end, which gives way
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(f.bar.rangeMin() <= f.bar.rangeMax());
        QCOMPARE(changed.size(), 2);
    }

    void theRangeOfAResultIsItsOwn() {
        Bar f;
        f.bar.setAuto(false);
        f.bar.setTable(ColorBar::False);
        f.bar.setRange(-0.2, 1.3);
        f.bar.grab();
        QSignalSpy changed(&f.bar, &ColorBar::newBar);
        mouse::drag(&f.bar, f.high(), QPointF(16, 200));
        mouse::wheel(&f.bar, QPointF(16, 200), 1);
        mouse::doubleClick(&f.bar, QPointF(16, 200));
        mouse::click(&f.bar, QPointF(16, 4));
        QCOMPARE(changed.size(), 0);
        QCOMPARE(f.bar.rangeMin(), -0.2);
        QCOMPARE(f.bar.rangeMax(), 1.3);
        f.bar.setTable(ColorBar::Grey);
        QVERIFY(!f.bar.isAuto());  // the frames' own choice is as it was
    }

    void theBarShowsItsTable() {
        Bar f;
        f.bar.setTable(ColorBar::False);
        f.bar.setRange(0, 1);
        QImage grab = f.bar.grab().toImage();
        const int top = static_cast<int>(f.bar.coord().r2sY(1.0));
        const int bottom = static_cast<int>(f.bar.coord().r2sY(0.0));
        QVERIFY(grab.pixelColor(16, top + 2).blue() > 240);
        const QColor middle = grab.pixelColor(16, (top + bottom) / 2);
        QVERIFY(middle.red() == 255 && std::abs(middle.green() - 128) < 4 && middle.blue() == 0);
        QVERIFY(grab.pixelColor(16, bottom - 2).red() < 10);
        f.bar.setTable(ColorBar::Grey);
        grab = f.bar.grab().toImage();
        QVERIFY(std::abs(grab.pixelColor(16, (top + bottom) / 2).green() - 128) < 4);
    }

    void rangesThatAreNoneDoNoHarm() {
        Bar f;
        const double inf = std::numeric_limits<double>::infinity();
        for (const auto& range :
             {qMakePair(5.0, 5.0), qMakePair(1e300, -1e300), qMakePair(NaN, NaN),
              qMakePair(-inf, inf), qMakePair(-1.5e308, 1.5e308)}) {
            f.bar.setDataRange(range.first, range.second);
            f.bar.grab();
            mouse::drag(&f.bar, QPointF(16, 30), QPointF(16, 100));
            mouse::wheel(&f.bar, QPointF(16, 100), 1);
            f.bar.grab();
            f.bar.setAuto(true);
        }
        f.bar.resize(4, 3);
        f.bar.grab();
    }

    void sectionsShareTheAxisOfTheView() {
        ImageView view;
        view.resize(400, 300);
        view.show();
        view.setImageSize(10, 10);  // 30 screen pixels a pixel, from 50 on
        CrossSection across(Qt::Horizontal);
        across.resize(400, 100);
        across.follow(&view);
        across.setProfile({1, 1, NaN, 1, 2, 2, 2, 2, 2, 2}, 0);
        const QImage grab = across.grab().toImage();
        QVERIFY(!hasProfile(grab, QRect(0, 0, 48, 100)));
        QVERIFY(hasProfile(grab, QRect(60, 50, 40, 50)));
        QVERIFY(!hasProfile(grab, QRect(112, 0, 26, 100)));  // what is no number breaks the line
        QVERIFY(hasProfile(grab, QRect(175, 0, 170, 50)));
        QVERIFY(!hasProfile(grab, QRect(175, 50, 170, 50)));
        QVERIFY(!hasProfile(grab, QRect(352, 0, 48, 100)));

        // Magnified, only the part that is seen counts: it is flat and lies in the middle.
        view.setImageSize(100, 100);
        for (int i = 0; i < 9; ++i) {
            mouse::wheel(&view, QPointF(350, 150), 1);
        }
        QVERIFY(view.visibleRect().left() > 60);
        QVector<double> step(100, 2.0);
        std::fill(step.begin(), step.begin() + 50, 1.0);
        across.setProfile(step, 0);
        QVERIFY(hasProfile(across.grab().toImage(), QRect(60, 45, 280, 10)));

        CrossSection down(Qt::Vertical);
        down.resize(100, 300);
        down.follow(&view);
        down.setProfile(step, 0);
        down.setMarker(80);
        QVERIFY(hasProfile(down.grab().toImage(), QRect(0, 10, 100, 280)));
    }

    void theValueUnderTheMouseIsRead() {
        ImageView view;
        view.resize(400, 300);
        view.show();
        view.setImageSize(10, 10);
        CrossSection across(Qt::Horizontal);
        across.resize(400, 100);
        across.show();
        across.follow(&view);
        across.setProfile({0.5, 1, NaN, 1, 2, 2, 2, 2, 2, 7.25}, 0);
        across.grab();
        QCOMPARE(across.readOut(), QString());
        mouse::move(&across, QPointF(51, 20));
        QCOMPARE(across.readOut(), QString("(0, 0.5)"));
        mouse::move(&across, QPointF(348, 20));
        QCOMPARE(across.readOut(), QString("(9, 7.25)"));
        mouse::move(&across, QPointF(352, 20));
        QCOMPARE(across.readOut(), QString());
        mouse::move(&across, QPointF(125, 20));
        QCOMPARE(across.readOut(), QString("(2, nan)"));
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(&across, &leave);
        QCOMPARE(across.readOut(), QString());
    }

    void profilesWithoutNumbersDoNoHarm() {
        const double inf = std::numeric_limits<double>::infinity();
        auto view = std::make_unique<ImageView>();
        view->resize(400, 300);
        CrossSection across(Qt::Horizontal);
        across.resize(400, 100);
        across.grab();  // follows nothing yet
        across.follow(view.get());
        for (const auto& profile :
             {QVector<double>{}, QVector<double>{NaN, NaN}, QVector<double>{inf, 1, -inf},
              QVector<double>{5, 5}, QVector<double>{0, 0}, QVector<double>{-1e308, 1e308}}) {
            across.setProfile(profile, 0);
            across.setMarker(NaN);
            across.grab();
        }
        view.reset();  // a section may outlive its view
        across.setProfile({1, 2}, 0);
        across.grab();
    }
};

TARNWICK_TEST_MAIN(QApplication, TestBars)
#include "tst_bars.moc"
