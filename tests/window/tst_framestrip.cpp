#include <QComboBox>
#include <QLineEdit>
#include <QSlider>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <cmath>

#include "BatchRun.h"
#include "Controls.h"
#include "Mouse.h"
#include "Phantom.h"
#include "SameBits.h"
#include "TestMain.h"
#include "display/ColorBar.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "drawing/Letters.h"
#include "drawing/PlotPicture.h"
#include "measurement/Display.h"

/// The strip under the image, with 61 frames from 7000 to 7300 eV.
class TestFrameStrip : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.i0Energies = 21;
        options.fractionOfA = [](int x, int) { return x / 11.0; };
        m_phantom = std::make_unique<Phantom>(options);
    }
    void init() {
        m_body = std::make_unique<Body>();
        m_body->resize(1100, 800);
        m_body->show();
        load();
    }
    void cleanup() { m_body.reset(); }

    void aClickOnThePlotGoesToTheNearestFrame_data() {
        columns<int>("unit");
        for (int unit = 0; unit < 4; ++unit) {
            QTest::addRow("unit %d", unit) << unit;
        }
    }
    void aClickOnThePlotGoesToTheNearestFrame() {
        QFETCH(int, unit);
        BatchRun batch(*m_body);
        QVERIFY(batch.succeeds({"move_position 4 4", "show_frame 7", "select_disp_image 1"}));
        auto* plot = control<XafsView>("Spectrum", m_body.get());
        auto* canvas = control<QWidget>("Canvas", plot);
        control<QComboBox>("Abscissa", plot)->setCurrentIndex(unit);
        plot->show();
        plot->grab();
        const PlotLayout layout(plot->plot(), QRectF(canvas->rect()),
                                plotLettersOf(Letters(canvas->font())));
        const auto at = [&](double e) {
            return QPointF(std::round(layout.coord.r2sX(plot->plot().abscissaOf(e))), 100);
        };
        // I0 has a frame every 15 eV; on display it is the first still.
        QCOMPARE(frame(), 0);
        QCOMPARE(plot->plot().frameEnergy.value(), 7000.0);
        Mouse::click(canvas, at(7148));
        QCOMPARE(frame(), 10);
        QCOMPARE(plot->plot().frameEnergy.value(), 7150.0);
        press("ShowData");
        Mouse::click(canvas, at(7201));
        QCOMPARE(energyShown(), QString("7200.00"));
        Mouse::drag(canvas, at(7050), at(7080) + QPointF(0, 50));
        QCOMPARE(frame(), 40);
        QVERIFY(plot->plot().zoom.has_value());
        Mouse::doubleClick(canvas, QPointF(canvas->width() / 2.0, 100));
        QCOMPARE(frame(), 40);  // the first of both clicks is taken back
        QVERIFY(!plot->plot().zoom.has_value());
        // A map makes room for the frame, and comes back.
        press("ShowShiftMap");
        Mouse::click(canvas, at(7100));
        QVERIFY(measurement().settings().shown == Shown::I1 && frame() == 20);
        press("ShowShiftMap");
        Mouse::doubleClick(canvas, at(7200));
        QVERIFY(measurement().settings().shown == Shown::Map);
    }

    void energiesAreTyped() {
        // Out of order, and an energy twice: the first frame of it counts.
        m_body->readI1Files({m_phantom->file("i1-7000_000eV.tif")}, false);
        QTRY_COMPARE(frame(), 61);
        type("FrameEnergy", "7102.4");
        QCOMPARE(frame(), 20);
        QCOMPARE(energyShown(), QString("7100.00"));
        type("FrameEnergy", "1");
        QCOMPARE(frame(), 0);
        type("FrameEnergy", "seven");
        QCOMPARE(energyShown(), QString("7000.00"));
    }

    void theWheelGoesFrameByFrame() {
        auto* slider = control<QSlider>("SeekBar");
        m_body->sliderMoved(20);
        Mouse::wheel(slider, QPointF(5, 5), 1);
        QCOMPARE(frame(), 21);
        Mouse::wheel(slider, QPointF(5, 5), -3);
        QCOMPARE(frame(), 18);
        QWheelEvent coarse(QPointF(5, 5), slider->mapToGlobal(QPoint(5, 5)), QPoint(),
                           QPoint(0, -120), Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                           false);
        for (const int expected : {8, 0, 0}) {
            QApplication::sendEvent(slider, &coarse);
            QCOMPARE(frame(), expected);
        }
    }

    void colorsAbout0LieAbout0() {
        auto* bar = control<ColorBar>("CBar");
        press("ViewAbsorption");
        QVERIFY(bar->rangeMin() > 0.0);
        MapViews views = measurement().settings().views;
        for (const ColorScale& scale : colorScales()) {
            views.frames.scale = scale.isDiverging ? &scale : views.frames.scale;
        }
        measurement().set(&Settings::views, views);
        const double high = bar->rangeMax();
        QCOMPARE(bar->rangeMin(), -high);
        const BarPicture saved = shownWithBar(measurement());
        QCOMPARE(saved.low, -high);
        QCOMPARE(saved.colors, views.frames.scale);
        QTest::keyClick(bar, Qt::Key_Up);  // both ends
        QCOMPARE(bar->rangeMin(), -bar->rangeMax());
        QVERIFY(bar->rangeMax() > high);
    }

    /// What is shown of a pixel is what the map of that difference has, and what is saved.
    void differencesAreThoseOfTheMap() {
        BatchRun batch(*m_body);
        QVERIFY(batch.succeeds({"move_position 5 5", "show_frame 28",
                                "analyzer_exec_difference 7002.5 7140",
                                "analyzer_select_map difference 0", "select_disp_image 0"}));
        press("ViewDifference");
        type("E1", "7002.5");
        const Result& map = *measurement().find(ResultId::Difference);
        const FrameImage& image = *measurement().frameImage(Measurement::Wait::UntilMade);
        QCOMPARE(image.to, 7140.0);  // the frame on display
        for (int i = 0; i < 96; ++i) {
            QVERIFY(same(image.pixels.at(i % 12, i / 12), map.image.valueAt(i % 12, i / 12)));
        }
        QCOMPARE(control<QLineEdit>("Value")->text(),
                 QString::number(map.image.valueAt(5, 5), 'g', 6));
        type("FrameEnergy", "7050");
        press("TakeE2");
        QCOMPARE(measurement().settings().frameView.to.value(), 7050.0);
        type("E2", "7500");  // no frame there
        QCOMPARE(control<QLineEdit>("E2")->text(), QString("7050.00"));
        // Each view has a range of its own.
        auto* bar = control<ColorBar>("CBar");
        bar->fix(-0.5, 0.5);
        press("ViewAbsorption");
        QVERIFY(bar->isAuto());
        press("ViewDifference");
        QVERIFY(!bar->isAuto() && bar->rangeMax() == 0.5);
        QTemporaryDir dir;
        m_body->saveImage(dir.filePath("a.png"));
        const int level = QImage(dir.filePath("a.png")).pixelColor(5, 5).red();
        const double shown = measurement().frameImage(Measurement::Wait::Blink)->pixels.at(5, 5);
        QCOMPARE(level, static_cast<int>(256 * (shown + 0.5)));
    }

    void framesPlayUntilSomethingElseIsAskedFor() {
        auto* view = control<ImageView>("dispA");
        auto* play = control<QAbstractButton>("Play");
        control<QComboBox>("PlaySpeed")->setCurrentIndex(4);
        m_body->sliderMoved(59);
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(play->isChecked());
        QTRY_VERIFY(frame() > 0 && frame() < 50);  // behind the last comes the first
        QTest::keyClick(control<QSlider>("SeekBar"), Qt::Key_Space);
        QVERIFY(!play->isChecked());
        auto* next = control<QAbstractButton>("Next");
        m_body->sliderMoved(0);
        QTest::mousePress(next, Qt::LeftButton);
        QTRY_VERIFY(frame() > 2);  // held
        QTest::mouseRelease(next, Qt::LeftButton);
        for (const char* other : {"Next", "ViewAbsorption", "ShowI0", "ShowShiftMap"}) {
            play->click();
            QVERIFY(play->isChecked());
            press(other);
            QVERIFY2(!play->isChecked(), other);
        }
        QVERIFY(!play->isEnabled());
        press("ShowData");
        play->click();
        m_body->readI1Files({m_phantom->file("i1-7000_000eV.tif")}, false);
        QVERIFY(!play->isChecked());
        QTRY_COMPARE(frame(), 61);
    }

  private:
    void load() {
        BatchRun batch(*m_body);
        QVERIFY(batch.succeeds(m_phantom->loadAndSetReferences().mid(0, 4)));
    }
    Measurement& measurement() { return m_body->measurement(); }
    int frame() { return measurement().frame(); }
    QString energyShown() { return control<QLineEdit>("FrameEnergy")->text(); }
    void type(const QString& field, const QString& text) {
        auto* edit = control<QLineEdit>(field);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;
};

TARNWICK_TEST_MAIN(QApplication, TestFrameStrip)
#include "tst_framestrip.moc"
