#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <cmath>

#include "BatchRun.h"
#include "Phantom.h"
#include "TestMain.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "window/GuideWindow.h"

namespace {

template <typename Widget>
Widget* child(QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QString::fromLatin1(name));
    Q_ASSERT(found != nullptr);
    return found;
}

/// A real mouse move, which QTest's is not.
void moveMouse(QWidget* widget, const QPoint& to) {
    QMouseEvent event(QEvent::MouseMove, to, widget->mapToGlobal(to), widget->mapToGlobal(to),
                      Qt::NoButton, Qt::NoButton, Qt::NoModifier, Qt::MouseEventNotSynthesized);
    QApplication::sendEvent(widget, &event);
}

QPoint screenOf(const ImageView* view, double x, double y) {
    return QPointF(view->coord().r2sX(x), view->coord().r2sY(y)).toPoint();
}

}  // namespace

class TestBody : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.i0Energies = 21;
        options.fractionOfA = [](int x, int) { return x / 11.0; };
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(m_phantom->isValid());
    }

    void init() {
        m_body = std::make_unique<Body>();
        m_body->resize(1100, 800);
        m_body->show();
    }
    void cleanup() { m_body.reset(); }

    /// The menu opens the user guide; links lead to pages and to places within them.
    void menuOpensTheGuide() {
        child<QAction>(*m_body, "actionGuide")->trigger();
        auto* guide = m_body->findChild<GuideWindow*>();
        QVERIFY(guide != nullptr && guide->isVisible());
        const QUrl first = guide->source();
        QVERIFY(!guide->toPlainText().isEmpty());
        guide->setSource(first.resolved(QUrl("loading.md#dark-data")));
        QVERIFY(guide->toPlainText().contains("mu-t"));
        QVERIFY(guide->verticalScrollBar()->value() > 0);
        guide->setSource(first.resolved(QUrl("image-view.md")));
        QCOMPARE(guide->verticalScrollBar()->value(), 0);
    }

    void noTwoEntriesOfTheMenuShareKeys() {
        QStringList keys;
        const auto actions = m_body->menuBar()->findChildren<QAction*>();
        for (const QAction* action : actions) {
            if (!action->shortcut().isEmpty()) {
                keys << action->shortcut().toString();
            }
        }
        QVERIFY(keys.size() > 10);
        QCOMPARE(keys.removeDuplicates(), 0);
        child<QAction>(*m_body, "actionQuit")->trigger();
        QVERIFY(!m_body->isVisible());
    }

    void framesAreSteppedAndChosen() {
        load();
        auto* bar = child<QSlider>(*m_body, "SeekBar");
        QCOMPARE(bar->maximum(), 60);
        QCOMPARE(bar->value(), 60);  // the newest frame
        child<QPushButton>(*m_body, "Prev")->click();
        QCOMPARE(bar->value(), 59);
        child<QPushButton>(*m_body, "Next")->click();
        child<QPushButton>(*m_body, "Next")->click();
        QCOMPARE(bar->value(), 60);
        m_body->sliderMoved(0);
        child<QPushButton>(*m_body, "Prev")->click();
        QVERIFY(child<QLabel>(*m_body, "State")->text().contains("7000.00 eV"));
        child<QPushButton>(*m_body, "ShowI0")->click();
        QCOMPARE(bar->maximum(), 20);
        m_body->sliderMoved(7);
        QCOMPARE(bar->value(), 7);
        // More I1 frames must not blank the I0 frame on display.
        m_body->readI1Files({m_phantom->file("i1-7000_000eV.tif")}, false);
        QTRY_COMPARE(panelCount("SelectI1Files"), QString("62"));
        QCOMPARE(bar->value(), 7);
        child<QPushButton>(*m_body, "ShowData")->click();
        QCOMPARE(bar->maximum(), 61);
    }

    void theCursorReadsPositionValueAndShift() {
        load();
        auto* view = child<ImageView>(*m_body, "dispA");
        moveMouse(view, screenOf(view, 4.5, 3.5));
        QCOMPARE(child<QLabel>(*m_body, "Position")->text(), QString("(   4,    3)"));
        QCOMPARE(child<QLabel>(*m_body, "EShiftOnTbl")->text(), QString(" 0.00"));
        QCOMPARE(child<QLabel>(*m_body, "EShiftFromStd")->text(), QString(" 0.00"));
        const double mu = 4 / 11.0 * Phantom::muA(7300) + 7 / 11.0 * Phantom::muB(7300);
        const double counts = child<QLineEdit>(*m_body, "Value")->text().toDouble();
        QVERIFY(std::abs(counts - 60000 * std::exp(-mu)) < 1.0);
        QCOMPARE(m_body->measurement().imageSize().width(), 12);
    }

    /// What went wrong stays readable although the window shows other things meanwhile.
    void noticesAreKept() {
        m_body->readI1Files({m_phantom->file("a.dat"), m_phantom->file("missing.tif"),
                             m_phantom->file("i1-7000_000eV.tif")},
                            true);
        QTRY_COMPARE(m_body->statusBar()->currentMessage(),
                     QString("2 file(s) could not be read: a.dat"));
        QCOMPARE(panelCount("SelectI1Files"), QString("1"));
        QTemporaryDir dir;
        m_body->loadEMap(dir.filePath("none.emp"));
        QVERIFY(m_body->statusBar()->currentMessage().contains("none.emp"));
        auto* state = child<QLabel>(*m_body, "State");
        QVERIFY(state->text().contains("7000.00 eV"));
        m_body->statusBar()->clearMessage();
        state->setText(QString(5000, 'x'));
        QCoreApplication::processEvents();
        QVERIFY(m_body->width() < 3000);
    }

    /// The mouse over the image while an analysis runs must not be recorded as one of its points.
    void theMouseDoesNotDisturbAnAnalysis() {
        BatchRun batch(*m_body);
        auto* view = child<ImageView>(*m_body, "dispA");
        int moves = 0;
        QStringList lines = m_phantom->loadAndSetReferences();
        lines.insert(0, "analyzer_show_window");
        QVERIFY(batch.run(lines));
        Analyzer* analyzer = analyzerWindow();
        connect(m_body.get(), &Body::analysisProgress, view,
                [&] { moveMouse(view, screenOf(view, 1.0 + (moves++ % 9), 2.5)); });
        moveMouse(view, screenOf(view, 2.5, 2.5));  // a fit that is under way at the start
        QVERIFY(batch.run({"analyzer_exec_LCF"}));
        QVERIFY(batch.problems().isEmpty());
        QVERIFY(moves > 1);
        Analyzed2DRes* ratio = analyzer->references().at(0)->result(LCFReference::Ratio);
        for (int y = 0; y < 8; ++y) {
            for (int x = 0; x < 12; ++x) {
                QVERIFY(std::abs(ratio->valueAt(x, y) - x / 11.0) < 2e-4);
            }
        }
    }

    /// The cursor's spectrum is fitted as soon as the analyzer is open, and shown with its share.
    void theCursorsSpectrumIsFitted() {
        load();
        Analyzer* analyzer = analyzerWindow();
        analyzer->show();
        BatchRun batch(*m_body);
        QVERIFY(batch.run(m_phantom->loadAndSetReferences().mid(2)));
        auto* view = child<ImageView>(*m_body, "dispA");
        moveMouse(view, screenOf(view, 11.5, 3.5));
        LCFReference* a = analyzer->references().at(0);
        // what is left of the rounding of the counts
        QTRY_VERIFY(std::abs(child<QLineEdit>(*a, "R")->text().toDouble() - 100.0) < 0.05);
        QVERIFY(std::abs(child<QLineEdit>(*a, "T")->text().toDouble() - 0.8) < 1e-3);
    }

    void clearingEmptiesListAndStack() {
        load();
        auto* panel = child<QWidget>(*m_body, "SelectI1Files");
        child<QPushButton>(*panel, "Clear")->click();
        QCOMPARE(panelCount("SelectI1Files"), QString("0"));
        QCOMPARE(m_body->measurement().imageSize().height(), -1);
        auto* view = child<ImageView>(*m_body, "dispA");
        QVERIFY(view->area().isEmpty());
        m_body->startRA2DAnalysis();
        m_body->execCalibration();
        m_body->deglitch();
        m_body->normalizeEShift();
        m_body->saveImage(m_phantom->file("never.png"));
        QVERIFY(!QFile::exists(m_phantom->file("never.png")));
    }

    void aLoadCanBeStopped_data() {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("the button") << false;
        QTest::newRow("Esc") << true;
    }
    /// What has been read stays, list and stack agree, and a batch goes on with a failed line.
    void aLoadCanBeStopped() {
        QFETCH(bool, byKey);
        QVERIFY(QTest::qWaitForWindowActive(m_body.get()));
        auto* stop = child<QToolButton>(*m_body, "StopLoading");
        QVERIFY(!stop->isVisible());
        QObject context;
        connect(m_body.get(), &Body::loadProgress, &context, [&](int stack, int done, int total) {
            if (stack == 1 && done == 3 && total == 61) {
                QTimer::singleShot(0, stop, [=] {
                    QVERIFY(stop->isVisible());
                    if (byKey) {
                        QTest::keyClick(m_body.get(), Qt::Key_Escape);
                    } else {
                        QTest::mouseClick(stop, Qt::LeftButton);
                    }
                });
            }
        });
        BatchRun batch(*m_body);
        const QStringList loads = m_phantom->loadAndSetReferences().mid(0, 2);
        QVERIFY(batch.run(loads));
        QCOMPARE(batch.done(), 2);
        QCOMPARE(batch.problems().size(), 1);
        QVERIFY(batch.problems().first().startsWith(loads.first()));
        QVERIFY(!stop->isVisible());
        const int kept = panelCount("SelectI1Files").toInt();
        QVERIFY(kept >= 3 && kept < 61);
        QCOMPARE(panelCount("SelectI0Files"), QString("21"));
        auto* bar = child<QSlider>(*m_body, "SeekBar");
        QCOMPARE(bar->maximum(), kept - 1);
        QVERIFY(child<QPushButton>(*child<QWidget>(*m_body, "SelectI1Files"), "LoadNewFiles")
                    ->isEnabled());
        // Further files follow those that stayed.
        m_body->readI1Files({m_phantom->file("i1-7000_000eV.tif")}, false);
        QTRY_COMPARE(bar->maximum(), kept);
        QCOMPARE(panelCount("SelectI1Files").toInt(), kept + 1);
    }

    /// The page works on the map on display, follows another choice of map, and is dead without
    /// one.
    void theDeglitchPageFollowsTheMap() {
        auto* page = child<QPushButton>(*m_body, "ShowProcImg");
        auto* factor = child<QLineEdit>(*m_body, "DeGlitchFactor");
        QVERIFY(!page->isEnabled());
        BatchRun batch(*m_body);
        QVERIFY(batch.run(m_phantom->loadAndSetReferences() +
                          QStringList{"analyzer_select_image 0", "select_disp_image 3"}));
        QVERIFY(!page->isEnabled());  // selected, but nothing has been analysed
        child<QPushButton>(*m_body, "DeGlitch")->click();
        QVERIFY(!page->isChecked());
        QVERIFY(batch.run({"analyzer_exec_LCF"}));
        QVERIFY(page->isEnabled());

        Analyzed2DRes* result = analyzerWindow()->selectedResult();
        result->setData(5, 4, 0, 0, 9.0);  // a spike
        factor->setText("nonsense");
        child<QPushButton>(*m_body, "DeGlitch")->click();
        QCOMPARE(factor->text(), QString("2.0"));
        QVERIFY(page->isChecked() && result->showsProc());
        QVERIFY(std::abs(result->shownValueAt(5, 4) - result->valueAt(5, 5)) < 0.5);
        QCOMPARE(result->valueAt(5, 4), 9.0);

        QVERIFY(batch.run({"analyzer_select_image 1"}));
        QVERIFY(page->isEnabled() && !page->isChecked());
        QVERIFY(batch.run({"analyzer_select_image 0"}));
        QVERIFY(page->isChecked());
        page->click();
        QVERIFY(!result->showsProc());
        child<QPushButton>(*m_body, "NormalizeEShift")->click();  // there is no shift map
        QCOMPARE(result->valueAt(5, 4), 9.0);
    }

    void flatAndDarkFramesAreWritten() {
        QTemporaryDir dir;
        const QString before = QDir::currentPath();
        QDir::setCurrent(dir.path());
        m_body->saveFlatDark();  // before any image: without pixels
        QVERIFY(QFile::exists("flat.dat") && QFile::exists("dark.dat"));
        load();
        m_body->saveFlatDark();
        TiffData flat;
        QVERIFY(flat.load("flat.dat"));
        QCOMPARE(QSize(int(flat.width), int(flat.height)), QSize(12, 8));
        QCOMPARE(int(flat.min), 1);
        QCOMPARE(int(flat.max), 1);
        TiffData dark;
        QVERIFY(dark.load("dark.dat"));
        QCOMPARE(int(dark.max), 0);
        QDir::setCurrent(before);
    }

  private:
    void load() {
        BatchRun batch(*m_body);
        QVERIFY(batch.run(m_phantom->loadAndSetReferences().mid(0, 4)));
        QVERIFY(batch.problems().isEmpty());
    }

    QString panelCount(const char* panel) {
        return child<QLabel>(*child<QWidget>(*m_body, panel), "Count")->text();
    }

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;
};

TARNWICK_TEST_MAIN(QApplication, TestBody)
#include "tst_body.moc"
