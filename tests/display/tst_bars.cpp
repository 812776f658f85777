#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "Mouse.h"
#include "TestMain.h"
#include "display/ColorBar.h"
#include "display/CrossSection.h"
#include "display/ImageView.h"

namespace {

const double Infinity = std::numeric_limits<double>::infinity();
const double NotANumber = std::numeric_limits<double>::quiet_NaN();

const QPointF UpperEnd(12, 60);
const QPointF LowerEnd(12, 240);

// A bar for a frame with counts from 100 to 500, 300 pixels high.
struct Bar : ColorBar {
    Bar() {
        resize(96, 300);
        setDataRange(100, 500);
    }
};

// A section beside a view of 400 x 400 that shows an image of n x n pixels.
struct Section : CrossSection {
    explicit Section(int n, Qt::Orientation orientation = Qt::Horizontal)
        : CrossSection(orientation) {
        view.resize(400, 400);
        view.setImageSize(n, n);
        view.grab();
        resize(orientation == Qt::Horizontal ? QSize(400, 110) : QSize(110, 400));
        follow(&view);
    }
    ImageView view;
};

// What a right click offers.
QList<QAction*> menuOf(ColorBar* bar) {
    qDeleteAll(bar->findChildren<QMenu*>());
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(12, 150), QPoint(12, 150));
    QApplication::sendEvent(bar, &event);
    return bar->findChild<QMenu*>()->actions();
}

void chooseIn(ColorBar* bar, const char* name) {
    menuOf(bar);
    bar->findChild<QMenu*>()->findChild<QAction*>(name)->trigger();
}

using Gesture = std::function<void(Bar*)>;

// Number of pixels of a colour's kind in a column of a grab.
int inkIn(const QImage& grab, int x, const QColor& ink) {
    int count = 0;
    for (int y = 0; y < grab.height(); ++y) {
        count += grab.pixelColor(x, y) == ink ? 1 : 0;
    }
    return count;
}

}  // namespace

Q_DECLARE_METATYPE(Gesture)
Q_DECLARE_METATYPE(MapRange::Kind)

// The colour bar and the cross sections beside the image view.
class BarsTest : public QObject {
    Q_OBJECT

  private slots:
    void framesHaveTheirOwnRange() {
        Bar bar;
        QVERIFY(bar.isAuto());
        QCOMPARE(bar.rangeMax(), 500.0);
        bar.setDataRange(7, 9);
        QCOMPARE(bar.rangeMin(), 7.0);
        QSignalSpy changed(&bar, &ColorBar::newBar);
        bar.setAuto(false);  // for all frames from now on
        bar.setDataRange(100, 500);
        QCOMPARE(bar.rangeMin(), 7.0);
        QCOMPARE(bar.rangeMax(), 9.0);
        Mouse::doubleClick(&bar, QPointF(12, 150));
        QVERIFY(bar.isAuto());
        QCOMPARE(bar.rangeMax(), 500.0);
        QCOMPARE(changed.count(), 2);
    }

    void draggingAnEndFixesTheRange() {
        Bar bar;
        QSignalSpy changed(&bar, &ColorBar::newBar);
        Mouse::drag(&bar, UpperEnd, UpperEnd + QPointF(0, 50));
        QVERIFY(!bar.isAuto());
        QVERIFY(changed.count() > 0);
        QCOMPARE(bar.rangeMin(), 100.0);
        QVERIFY(bar.rangeMax() < 480.0 && bar.rangeMax() > 350.0);
        const double high = bar.rangeMax();
        Mouse::drag(&bar, LowerEnd, LowerEnd - QPointF(0, 50));
        QCOMPARE(bar.rangeMax(), high);
        QVERIFY(bar.rangeMin() > 110.0);
        const double low = bar.rangeMin();
        bar.setDataRange(0, 65535);  // the next frame keeps the contrast
        QCOMPARE(bar.rangeMin(), low);
        QCOMPARE(bar.rangeMax(), high);
    }

    void endsNeverMeet() {
        Bar bar;
        for (int i = 0; i < 50; ++i) {
            Mouse::drag(&bar, UpperEnd, UpperEnd + QPointF(0, 5000));
            Mouse::drag(&bar, LowerEnd, LowerEnd - QPointF(0, 5000));
            QVERIFY(bar.rangeMax() > bar.rangeMin());
        }
        for (int i = 0; i < 400; ++i) {
            Mouse::drag(&bar, UpperEnd, UpperEnd - QPointF(0, 1e6));
        }
        QVERIFY(std::isfinite(bar.rangeMax()));
    }

    void wheelWidensAndNarrows() {
        Bar bar;
        Mouse::wheel(&bar, QPointF(12, 150), 1);
        QVERIFY(qFuzzyCompare(bar.rangeMax() - bar.rangeMin(), 400 / 1.1));
        QVERIFY(qFuzzyCompare(bar.rangeMax() + bar.rangeMin(), 600.0));
        Mouse::wheel(&bar, QPointF(12, 150), -1);
        QVERIFY(qFuzzyCompare(bar.rangeMax(), 500.0));
    }

    void typingAnEndFixesTheRange_data() {
        columns<bool, QString, double, double, bool>("upper", "typed", "low", "high", "fixed");
        QTest::newRow("upper") << true << "450.5" << 100.0 << 450.5 << true;
        QTest::newRow("lower") << false << "-3e2" << -300.0 << 500.0 << true;
        QTest::newRow("blanks") << false << " 120 " << 120.0 << 500.0 << true;
        QTest::newRow("as it was") << true << "500" << 100.0 << 500.0 << false;
        QTest::newRow("nonsense") << true << "many" << 100.0 << 500.0 << false;
        QTest::newRow("below the other end") << true << "99" << 100.0 << 500.0 << false;
        QTest::newRow("no number") << true << "nan" << 100.0 << 500.0 << false;
        QTest::newRow("without end") << true << "inf" << 100.0 << 500.0 << false;
    }

    void typingAnEndFixesTheRange() {
        QFETCH(bool, upper);
        QFETCH(QString, typed);
        QFETCH(bool, fixed);
        Bar bar;
        bar.show();
        Mouse::click(&bar, QPointF(12, upper ? 5 : 275));
        auto* editor = bar.findChild<QLineEdit*>();
        QVERIFY(editor != nullptr && editor->isVisible());
        QCOMPARE(editor->text(), QString(upper ? "500" : "100"));
        QSignalSpy changed(&bar, &ColorBar::newBar);
        editor->setText(typed);
        QTest::keyClick(editor, Qt::Key_Return);
        QVERIFY(!editor->isVisible());
        QTEST(bar.rangeMin(), "low");
        QTEST(bar.rangeMax(), "high");
        QCOMPARE(bar.isAuto(), !fixed);
        QCOMPARE(changed.count(), fixed ? 1 : 0);
    }

    void menuFixesTheRange() {
        Bar bar;
        QSignalSpy percentiles(&bar, &ColorBar::percentilesAsked);
        QCOMPARE(menuOf(&bar)[3]->isSeparator(), true);
        menuOf(&bar)[0]->trigger();
        QCOMPARE(percentiles.count(), 1);
        menuOf(&bar)[1]->trigger();  // the whole range of this frame
        QVERIFY(!bar.isAuto());
        bar.setDataRange(0, 65535);
        QCOMPARE(bar.rangeMax(), 500.0);
        QVERIFY(!menuOf(&bar)[2]->isChecked());
        menuOf(&bar)[2]->trigger();
        QVERIFY(bar.isAuto());
    }

    // Maps by the same gestures, which leave the range of the frames as it is.
    void mapsHaveTheirOwnRange_data() {
        columns<Gesture, MapRange::Kind, double, double>("gesture", "kind", "low", "high");
        const auto key = [](Qt::Key pressed, Qt::KeyboardModifiers held = {}) {
            return [=](Bar* bar) { QTest::keyClick(bar, pressed, held); };
        };
        const auto chosen = [](const char* name) { return [=](Bar* bar) { chooseIn(bar, name); }; };
        using Kind = MapRange::Kind;
        const auto wheel = [](Bar* bar) { Mouse::wheel(bar, UpperEnd, 1); };
        QTest::newRow("wheel") << Gesture(wheel) << Kind::Fixed << 0.5 - 1 / 1.1 << 0.5 + 1 / 1.1;
        QTest::newRow("double click")
            << Gesture([](Bar* bar) { Mouse::doubleClick(bar, QPointF(12, 150)); }) << Kind::Robust
            << -0.5 << 1.5;
        QTest::newRow("arrow") << Gesture(key(Qt::Key_Up)) << Kind::Fixed << -0.5 << 1.52;
        QTest::newRow("large step")
            << Gesture(key(Qt::Key_Down, Qt::ShiftModifier)) << Kind::Fixed << -0.5 << 1.3;
        QTest::newRow("lower end") << Gesture([](Bar* bar) {
            QTest::keyClick(bar, Qt::Key_Tab);
            QTest::keyClick(bar, Qt::Key_PageUp);
        }) << Kind::Fixed << -0.3 << 1.5;
        QTest::newRow("Home") << Gesture(key(Qt::Key_Home)) << Kind::Robust << -0.5 << 1.5;
        QTest::newRow("typed") << Gesture([](Bar* bar) {
            QTest::keyClick(bar, Qt::Key_Space);
            QTest::keyClick(bar, Qt::Key_Return);
            bar->findChild<QLineEdit*>()->setText("0.25");
            QTest::keyClick(bar->findChild<QLineEdit*>(), Qt::Key_Return);
        }) << Kind::Fixed << 0.25
                               << 1.5;
        QTest::newRow("full") << Gesture(chosen("range1")) << Kind::Full << -0.5 << 1.5;
        QTest::newRow("these limits") << Gesture(chosen("range3")) << Kind::Fixed << -0.5 << 1.5;
        QTest::newRow("stated") << Gesture(chosen("range0")) << Kind::Stated << -0.5 << 1.5;
    }

    void mapsHaveTheirOwnRange() {
        QFETCH(Gesture, gesture);
        Bar bar;
        bar.show();
        bar.setAuto(false);
        bar.showMap({}, {&resultColors(), -0.5, 1.5, true});
        QApplication::setActiveWindow(&bar);
        bar.setFocus(Qt::TabFocusReason);
        QSignalSpy ofFrames(&bar, &ColorBar::newBar);
        MapRange range{MapRange::Kind::Stated, 7.0, 8.0};
        connect(&bar, &ColorBar::rangeChosen, [&range](const MapRange& r) { range = r; });
        gesture(&bar);
        QTEST(range.kind, "kind");
        QFETCH(double, low);
        QFETCH(double, high);
        QVERIFY(std::abs(bar.rangeMin() - low) < 1e-12 && std::abs(bar.rangeMax() - high) < 1e-12);
        if (range.kind == MapRange::Kind::Fixed) {
            QCOMPARE(range.low, bar.rangeMin());
            QCOMPARE(range.high, bar.rangeMax());
        }
        QCOMPARE(ofFrames.count(), 0);
        bar.showFrames();
        QCOMPARE(bar.rangeMin(), 100.0);
        QCOMPARE(bar.rangeMax(), 500.0);
    }

    void rangeAbout0StaysSo() {
        Bar bar;
        MapView view;
        view.colors.scale = colorScaleOf("vik");
        bar.showMap(view, {view.colors.scale, -2.0, 2.0, true});
        for (int i = 0; i < 30; ++i) {
            Mouse::drag(&bar, UpperEnd, UpperEnd + QPointF(0, i < 20 ? 5000 : -40));
            QVERIFY(bar.rangeMax() > 0.0);
            QCOMPARE(bar.rangeMin(), -bar.rangeMax());
        }
    }

    void menuChoosesColours() {
        for (const bool ofMap : {true, false}) {
            Bar bar;
            if (ofMap) {
                bar.showMap({}, {&resultColors(), 0.0, 1.0, true});
            }
            ViewColors colors;
            connect(&bar, &ColorBar::colorsChosen, [&colors](const ViewColors& c) { colors = c; });
            chooseIn(&bar, "cividis");
            chooseIn(&bar, "reversed");
            QVERIFY((colors == ViewColors{colorScaleOf("cividis"), true}));
            chooseIn(&bar, ofMap ? "heat" : "grey");
            QVERIFY((colors == ViewColors{nullptr, true}));
        }
    }

    void coloursBeyondTheEndsStandOut() {
        const auto distance = [](const ColorScale::Rgb& a, const ColorScale::Rgb& b) {
            return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
        };
        for (const ColorScale& scale : colorScales()) {
            const auto standsOut = [&](const ColorScale::Rgb& rgb, double least) {
                return std::all_of(scale.table, scale.table + scale.last + 1,
                                   [&](const auto& own) { return distance(own, rgb) > least; });
            };
            QVERIFY2(standsOut(scale.blank, 70), scale.id);
            QVERIFY2(standsOut(scale.below, 120) && standsOut(scale.above, 120), scale.id);
            QVERIFY(distance(scale.below, scale.above) > 120);
            QVERIFY(distance(scale.below, scale.blank) > 90);
            QVERIFY(distance(scale.above, scale.blank) > 120);
            const ColorScale& turned = reversed(scale);
            QVERIFY(std::equal(scale.table, scale.table + scale.last + 1,
                               std::make_reverse_iterator(turned.table + scale.last + 1)));
        }
    }

    void barShowsTheColours() {
        Bar bar;
        const auto at = [&](int y) { return bar.grab().toImage().pixelColor(15, y); };
        QVERIFY(at(40).red() > 200 && at(40).red() == at(40).blue());
        QVERIFY(at(225).red() < 50);
        bar.showMap({}, {&resultColors(), 0.0, 1.0, false});
        QVERIFY(at(40).red() == 255 && at(40).blue() > 100);
        QVERIFY(at(140).red() == 255 && at(140).blue() == 0);
        QVERIFY(at(225).red() < 150 && at(225).green() == 0);
    }

    void barsWithoutARange() {
        const QVector<QPair<double, double>> ranges{
            {5.0, 5.0}, {1e300, -1e300}, {NotANumber, NotANumber}, {-Infinity, Infinity}};
        for (const auto& [low, high] : ranges) {
            for (const ColorScale& colors : colorScales()) {
                Bar bar;
                MapView view;
                view.colors.scale = &colors;
                bar.showMap(view, {&colors, low, high, true});
                const QImage grab = bar.grab().toImage();
                if (!(high > low)) {
                    const auto& [red, green, blue] = colors.table[0];
                    QCOMPARE(grab.pixelColor(15, 60), QColor(red, green, blue));
                    QCOMPARE(grab.pixelColor(15, 220), QColor(red, green, blue));
                }
                bar.setDataRange(low, high);
                bar.showFrames(view.colors);
                Mouse::drag(&bar, UpperEnd, LowerEnd);
                Mouse::wheel(&bar, UpperEnd, 1);
                QVERIFY(bar.isAuto());
            }
        }
    }

    void sectionsShareTheViewsAxis() {
        // The frames around both differ, so that their origins do.
        QWidget window;
        window.resize(600, 600);
        ImageView view(&window);
        view.setGeometry(20, 10, 400, 400);
        view.setImageSize(40, 40);
        CrossSection across(Qt::Horizontal, &window);
        across.setGeometry(23, 420, 400, 110);
        CrossSection along(Qt::Vertical, &window);
        along.setGeometry(430, 4, 110, 400);
        for (CrossSection* section : {&across, &along}) {
            section->follow(&view);
            section->setProfile(QVector<double>(40, 1.0), 0);
        }
        window.grab();
        for (int zoom = 0; zoom < 2; ++zoom) {
            for (double pixel : {3.0, 12.5}) {
                QCOMPARE(across.coord().r2sX(pixel) + 23, view.coord().r2sX(pixel) + 20);
                QCOMPARE(along.coord().r2sY(pixel) + 4, view.coord().r2sY(pixel) + 10);
            }
            Mouse::wheel(&view, QPointF(100, 100), 3);
            window.grab();
        }
    }

    void sectionsReadOut() {
        for (bool across : {true, false}) {
            Section section(4, across ? Qt::Horizontal : Qt::Vertical);
            section.setProfile({10, 20.25, NotANumber, 40}, 0);
            QCOMPARE(section.readOut(), QString());
            const auto readAt = [&](int along) {
                Mouse::move(&section, across ? QPointF(along, 50) : QPointF(50, along));
                return section.readOut();
            };
            QCOMPARE(readAt(150), QString("(1, 20.25)"));
            QCOMPARE(readAt(250), QString("(2, nan)"));
            QCOMPARE(readAt(399), QString("(3, 40)"));  // the last pixel
            QCOMPARE(readAt(401), QString());
            QCOMPARE(readAt(50), QString("(0, 10)"));
            section.setProfile({}, 0);
            QCOMPARE(section.readOut(), QString());
            section.setProfile({7}, 0);
            QEvent leave(QEvent::Leave);
            QApplication::sendEvent(&section, &leave);
            QCOMPARE(section.readOut(), QString());
        }
    }

    void sectionsScaleToWhatIsSeen() {
        Section section(100);
        QVector<double> values(100);
        for (int i = 0; i < 100; ++i) {
            values[i] = i;
        }
        section.setProfile(values, 0);
        section.grab();
        QCOMPARE(section.coord().ry0, 0.0);
        QCOMPARE(section.coord().ry1, 99.0);
        for (int i = 0; i < 5; ++i) {
            Mouse::wheel(&section.view, QPointF(0, 200), 1);
        }
        section.grab();
        QCOMPARE(section.coord().ry0, 0.0);
        QVERIFY(section.coord().ry1 < 35.0);
    }

    void wildValuesDoNotFlatten() {
        Section section(100);
        QVector<double> values(100);
        for (int i = 0; i < 100; ++i) {
            values[i] = 0.01 * (i % 11);
        }
        values[50] = 2.0;  // a grain
        section.setProfile(values, 0);
        section.grab();
        QCOMPARE(section.coord().ry1, 2.0);
        values[50] = -5000.0;
        values[70] = 4000.0;
        section.setProfile(values, 0);
        section.grab();
        QVERIFY(section.coord().ry0 > -1.0 && section.coord().ry1 < 1.0);
        QVERIFY(section.coord().ry0 < 0.0 && section.coord().ry1 > 0.1);
        section.setValueRange(-0.5, 1.5);  // that of the colour bar
        section.grab();
        QCOMPARE(section.coord().ry0, -0.5);
        QCOMPARE(section.coord().ry1, 1.5);
    }

    void gapsBreakTheLine() {
        Section section(4);
        QPalette light;
        light.setColor(QPalette::Base, Qt::white);
        section.setPalette(light);
        section.setProfile({1, 2, NotANumber, 2}, 0);
        const QImage grab = section.grab().toImage();
        QVERIFY(inkIn(grab, 50, getColor(2)) > 0);
        QVERIFY(inkIn(grab, 150, getColor(2)) > 0);
        QCOMPARE(inkIn(grab, 250, getColor(2)), 0);
        QVERIFY(inkIn(grab, 302, getColor(2)) > 0 &&
                inkIn(grab, 397, getColor(2)) > 0);  // the last
    }

    void sectionsOfAnyValues_data() {
        QTest::addColumn<QVector<double>>("values");
        QTest::newRow("none") << QVector<double>{};
        QTest::newRow("gaps only") << QVector<double>{NotANumber, NotANumber, Infinity, -Infinity};
        QTest::newRow("noughts") << QVector<double>{0, 0, 0, 0};
        QTest::newRow("equal") << QVector<double>{-7, -7, -7, -7};
        QTest::newRow("tiny") << QVector<double>{5e-324, 0, 1e-320, 0};
        QTest::newRow("huge") << QVector<double>{-1.7e308, 1.7e308, 0, 1e301};
        QTest::newRow("last digit") << QVector<double>{1e15, 1e15 + 0.125, 1e15, 1e15};
    }

    void sectionsOfAnyValues() {
        QFETCH(QVector<double>, values);
        for (Qt::Orientation orientation : {Qt::Horizontal, Qt::Vertical}) {
            Section section(4, orientation);
            section.setProfile(values, 0);
            section.setMarker(1e18);
            Mouse::move(&section, QPointF(50, 50));
            QVERIFY(!section.grab().isNull());
            const ChCoord& c = section.coord();
            const bool across = orientation == Qt::Horizontal;
            QVERIFY(across ? c.ry1 > c.ry0 : c.rx1 > c.rx0);
            QVERIFY(std::isfinite(across ? c.r2sY(0.5) : c.r2sX(0.5)));
        }
    }
};

TARNWICK_TEST_MAIN(QApplication, BarsTest)
#include "tst_bars.moc"
