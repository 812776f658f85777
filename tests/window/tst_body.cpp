#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSlider>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <cmath>

#include "BatchRun.h"
#include "Controls.h"
#include "Mouse.h"
#include "Phantom.h"
#include "TestMain.h"
#include "base/Numbers.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/CalibCtrl.h"
#include "panels/LCFReference.h"
#include "window/GuideBrowser.h"
#include "window/GuideWindow.h"
#include "window/Layout.h"

namespace {

QPointF screenOf(const ImageView* view, double x, double y) {
    return QPointF(view->coord().r2sX(x), view->coord().r2sY(y));
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
    }

    void init() {
        m_body = std::make_unique<Body>();
        m_body->resize(1100, 800);
        m_body->show();
    }
    void cleanup() { m_body.reset(); }

    /// The menu opens the user guide; links lead to pages and to places within them.
    void menuOpensTheGuide() {
        control<QAction>("actionGuide", m_body.get())->trigger();
        auto* guide = m_body->findChild<GuideWindow*>();
        QVERIFY(guide != nullptr && guide->isVisible());
        const GuideBrowser* page = guide->pages();
        QVERIFY(!page->toPlainText().isEmpty());
        QVERIFY(!control<QPushButton>("GuideBack", guide)->isEnabled());
        guide->showPage("loading.md#dark-data");
        QVERIFY(page->toPlainText().contains("mu-t"));
        QVERIFY(page->verticalScrollBar()->value() > 0);
        guide->showPage("image-view.md");
        QCOMPARE(page->verticalScrollBar()->value(), 0);
        press("GuideBack", guide);
        QVERIFY(page->source().path().endsWith("/loading.md"));
        press("GuideForward", guide);
        press("GuideContents", guide);
        QVERIFY(page->source().path().endsWith("/README.md"));
    }

    /// The words are found in every chapter in turn and marked where they stand.
    void theGuideIsSearched() {
        GuideWindow guide;
        guide.show();
        auto* words = control<QLineEdit>("GuideSearch", &guide);
        auto* hits = control<QListWidget>("GuideHits", &guide);
        QVERIFY(QTest::qWaitForWindowActive(&guide));
        QTest::keyClick(&guide, Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), "double NORMALIZED");
        QVERIFY(hits->isVisible() && hits->count() > 3);
        QStringList pages;
        for (int i = 0; i < hits->count(); ++i) {
            QTest::keyClick(words, i == 0 ? Qt::Key_Return : Qt::Key_F3);
            const QTextCursor at = guide.pages()->textCursor();
            const QString found =
                guide.pages()->toPlainText().mid(at.position(), words->text().size());
            QCOMPARE(found.toLower(), QString("double normalized"));
            QVERIFY(hits->item(i)->text().contains(found));
            QVERIFY(guide.pages()->viewport()->rect().contains(guide.pages()->cursorRect()));
            QVERIFY(!guide.pages()->extraSelections().isEmpty());
            pages << guide.pages()->source().fileName();
        }
        QVERIFY(pages.removeDuplicates() > 0 && pages.size() > 1);
        QCOMPARE(textOf("GuideCount", &guide), QString("%1 of %1").arg(hits->count()));
        QTest::keyClick(words, Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(hits->currentRow(), hits->count() - 2);
        words->setText("no such words");
        QVERIFY(!hits->isVisible());
        QCOMPARE(textOf("GuideCount", &guide), QString("not found"));
        QTest::keyClick(words, Qt::Key_Escape);
        QVERIFY(words->text().isEmpty() && guide.pages()->extraSelections().isEmpty());
        QTest::keyClick(&guide, Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!guide.isVisible());
    }

    /// Help on a panel is the chapter on it.
    void helpIsThatOfThePanel() {
        const char* const chapters[][2] = {{"OpenCalibCtrl", "calibration.md"},
                                           {"ShowXafsView", "spectra.md"},
                                           {"BatchCtrlB", "batch.md"}};
        for (const auto& chapter : chapters) {
            m_body->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(m_body.get()));
            press(chapter[0]);
            QWidget* focus = QApplication::focusWidget();  // in the panel that has just opened
            QVERIFY(focus != nullptr && focus->window() == m_body.get());
            QTest::keyClick(focus, Qt::Key_F1);
            auto* guide = m_body->findChild<GuideWindow*>();
            QVERIFY(guide != nullptr);
            QCOMPARE(guide->pages()->source().fileName(), QString(chapter[1]));
        }
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
        QStringList twice;
        const auto menus = m_body->menuBar()->findChildren<QMenu*>();
        for (const QMenu* menu : menus) {
            QMap<QString, QString> letters;
            for (const QAction* entry : menu->actions()) {
                const QString letter = QKeySequence::mnemonic(entry->text()).toString();
                if (letters.contains(letter)) {
                    twice << letters[letter] + " and " + entry->text();
                } else if (!letter.isEmpty()) {
                    letters[letter] = entry->text();
                }
            }
        }
        QVERIFY2(twice.isEmpty(), qPrintable(twice.join('\n')));
        control<QAction>("actionQuit", m_body.get())->trigger();
        QVERIFY(!m_body->isVisible());
    }

    void framesAreSteppedAndChosen() {
        load();
        auto* bar = control<QSlider>("SeekBar", m_body.get());
        QCOMPARE(bar->maximum(), 60);
        QCOMPARE(bar->value(), 60);  // the newest frame
        press("Prev");
        QCOMPARE(bar->value(), 59);
        press("Next");
        press("Next");
        QCOMPARE(bar->value(), 60);
        m_body->sliderMoved(0);
        press("Prev");
        QVERIFY(textOf("State").contains("7000.00 eV"));
        press("ShowI0");
        QCOMPARE(bar->maximum(), 20);
        m_body->sliderMoved(7);
        QCOMPARE(bar->value(), 7);
        // More I1 frames must not blank the I0 frame on display.
        m_body->readI1Files({m_phantom->file("i1-7000_000eV.tif")}, false);
        QTRY_COMPARE(panelCount("SelectI1Files"), QString("62"));
        QCOMPARE(bar->value(), 7);
        press("ShowData");
        QCOMPARE(bar->maximum(), 61);
    }

    void theCursorReadsPositionValueAndShift() {
        load();
        auto* view = control<ImageView>("dispA", m_body.get());
        Mouse::move(view, screenOf(view, 4.5, 3.5));
        QCOMPARE(textOf("Position"), QString("(   4,    3)"));
        QCOMPARE(textOf("EShiftOnTbl"), QString(" 0.00"));
        QCOMPARE(textOf("EShiftFromStd"), QString(" 0.00"));
        const double mu = 4 / 11.0 * Phantom::muA(7300) + 7 / 11.0 * Phantom::muB(7300);
        const double counts = control<QLineEdit>("Value", m_body.get())->text().toDouble();
        QVERIFY(std::abs(counts - 60000 * std::exp(-mu)) < 1.0);
        QCOMPARE(m_body->measurement().imageSize().width(), 12);
        QVERIFY(control<QPushButton>("SaveXAFSSpectra", m_body.get())->isEnabled());
        m_body->measurement().setPosition(-5, 3);  // beside the image
        QVERIFY(!control<QPushButton>("SaveXAFSSpectra", m_body.get())->isEnabled());
    }

    /// The two lines are always there; what is not known is a dash, a map of another run says no
    /// more.
    void theCursorReadsErrorAndGoodness() {
        BatchRun batch(*m_body);
        Measurement& measurement = m_body->measurement();
        const QString none = "\u00b1 - | R  -\n\u03c7\u00b2 red.  -";
        const auto lines = [] {
            return textOf("ValueWithError") + " | " + textOf("GoodnessOfFit");
        };
        QCOMPARE(lines(), none);
        QVERIFY(batch.run(m_phantom->loadAndSetReferences()));
        QVERIFY(batch.succeeds({"analyzer_set_error_maps 1", "analyzer_exec_LCF"}));
        auto* view = control<ImageView>("dispA", m_body.get());
        Mouse::move(view, screenOf(view, 4.5, 3.5));
        const auto at = [&](ResultId id, int reference) {
            return measurement.find(id, reference)->image.valueAt(4, 3);
        };
        const auto number = [&](ResultId id) { return QString::number(at(id, -1), 'g', 3); };
        const auto expected = [&](ResultId value, ResultId error, int reference) {
            return QString("%1 | R  %2\n\u03c7\u00b2 red.  %3")
                .arg(roundedPair(at(value, reference), at(error, reference)).text(),
                     number(ResultId::R), number(ResultId::Chi2Reduced));
        };
        QVERIFY(at(ResultId::RatioError, 1) > 0.0);
        for (const ResultId shown : {ResultId::Ratio, ResultId::RatioError}) {
            QVERIFY(!measurement.choose(shown, 1).failed());
            QCOMPARE(lines(), expected(ResultId::Ratio, ResultId::RatioError, 1));
        }
        QVERIFY(!measurement.choose(ResultId::R, -1).failed());
        QVERIFY(lines().startsWith("\u00b1 - | R  " + number(ResultId::R)));
        QVERIFY(
            textOf("Message", analyzerWindow()).startsWith("Fitted 96 bins with 2 references in "));
        QVERIFY(textOf("Notice").startsWith("Fitted 96 bins with 2 references in "));
        measurement.set(&Settings::shown, Shown::I1);
        QCOMPARE(lines(), none);
    }

    /// What goes wrong is said where it was started and in the main window, and kept with file and
    /// line of the batch until somebody looks at it.
    void whatGoesWrongIsKept() {
        auto* count = control<QPushButton>("ShowMessages", m_body.get());
        auto* list = control<QTreeView>("MessageList");
        const auto row = [list](int n) {
            QStringList cells;
            for (int column = 1; column < list->model()->columnCount(); ++column) {
                cells << list->model()->index(n, column).data().toString();
            }
            return cells.join('|');
        };
        QVERIFY(!count->isVisible());
        m_body->readI1Files({m_phantom->file("a.dat"), m_phantom->file("missing.tif"),
                             m_phantom->file("i1-7000_000eV.tif")},
                            true);
        QTRY_COMPARE(textOf("Notice"), QString("I1: 2 files were not taken, see Messages"));
        QCOMPARE(panelCount("SelectI1Files"), QString("1"));
        QCOMPARE(count->text(), QString("2 messages"));
        QVERIFY(row(1).startsWith("failed|||") && row(1).contains("missing.tif"));
        QVERIFY(textOf("State").contains("7000.00 eV"));

        const auto* calibration = topLevel<CalibCtrl>();
        press("LoadMap");
        answer({m_phantom->file("none.emp")});
        for (const QString& said : {textOf("Message", calibration), textOf("Notice"), row(2)}) {
            QVERIFY2(said.contains("none.emp"), qPrintable(said));
        }
        QVERIFY(row(2).startsWith("failed||none.emp|"));

        QWidget* batch = m_body->batchCtrl();
        control<QPlainTextEdit>("BatchCmds", batch)
            ->setPlainText(
                "set_band_w 0\n\ncalib_load_map \\\nnone.emp\n:rem_start\nabc\n"
                ":rem_end\nsave_image " +
                m_phantom->file("saved.png"));
        press("Exec", batch);
        QTRY_COMPARE(textOf("Message", batch), QString("2 done, 0 with a warning, 1 failed"));
        QVERIFY2(row(3).startsWith("failed|3|none.emp|"), qPrintable(row(3)));
        QCOMPARE(list->model()->rowCount(), 4);
        QCOMPARE(textOf("Notice"),
                 "Saved saved.png in " + QFileInfo(m_phantom->file("saved.png")).path());

        QCOMPARE(count->text(), QString("4 messages"));
        count->click();
        QVERIFY(list->window()->isVisible() && !count->isVisible());
        press("CopyMessages");
        QCOMPARE(QApplication::clipboard()->text().count('\n'), 4);
        press("ClearMessages");
        QCOMPARE(list->model()->rowCount(), 0);
        auto* notice = control<QLabel>("Notice", m_body.get());
        notice->setText(QString(5000, 'x'));
        QCoreApplication::processEvents();
        QVERIFY(m_body->width() < 3000);
    }

    /// The mouse over the image while an analysis runs must not be recorded as one of its points.
    void theMouseDoesNotDisturbAnAnalysis() {
        BatchRun batch(*m_body);
        auto* view = control<ImageView>("dispA", m_body.get());
        int moves = 0;
        QStringList lines = m_phantom->loadAndSetReferences();
        lines.insert(0, "analyzer_show_window");
        QVERIFY(batch.run(lines));
        Analyzer* analyzer = analyzerWindow();
        connect(m_body.get(), &Body::analysisProgress, view,
                [&] { Mouse::move(view, screenOf(view, 1.0 + (moves++ % 9), 2.5)); });
        Mouse::move(view, screenOf(view, 2.5, 2.5));  // a fit that is under way at the start
        QVERIFY(batch.succeeds({"analyzer_exec_LCF"}));
        QVERIFY(moves > 1);
        Analyzed2DRes* ratio = analyzer->references().at(0)->result(LCFReference::Ratio);
        for (int y = 0; y < 8; ++y) {
            for (int x = 0; x < 12; ++x) {
                QVERIFY(std::abs(ratio->valueAt(x, y) - x / 11.0) < 2e-4);
            }
        }
    }

    /// The spectrum at the cursor is fitted while the analyzer is open, also behind a tab.
    void fitsGoOnBehindATab() {
        m_body->layoutOfWindows()->start();
        BatchRun batch(*m_body);
        QVERIFY(batch.succeeds(m_phantom->loadAndSetReferences()));
        topLevel<CalibCtrl>()->show();
        Analyzer* analyzer = analyzerWindow();
        QTRY_VERIFY(analyzer->visibleRegion().isEmpty());
        QSignalSpy fitted(analyzer, &Analyzer::finished);
        m_body->measurement().setPosition(4.5, 3.5);
        QTRY_VERIFY(!fitted.isEmpty());
        QTRY_COMPARE(analyzer->fitsOut(), 0);
        const int fits = fitted.count();
        control<QDockWidget>("AnalyzerDock", m_body.get())->close();
        m_body->measurement().setPosition(5.5, 3.5);
        QTest::qWait(50);
        QCOMPARE(fitted.count(), fits);
    }

    void withoutImagesNothingIsDone() {
        load();
        press("Clear", control<QWidget>("SelectI1Files"));
        QVERIFY(control<ImageView>("dispA", m_body.get())->area().isEmpty());
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
        auto* stop = control<QToolButton>("StopLoading", m_body.get());
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
        auto* bar = control<QSlider>("SeekBar", m_body.get());
        QCOMPARE(bar->maximum(), kept - 1);
        QVERIFY(
            control<QPushButton>("LoadNewFiles", control<QWidget>("SelectI1Files"))->isEnabled());
        // Further files follow those that stayed.
        m_body->readI1Files({m_phantom->file("i1-7000_000eV.tif")}, false);
        QTRY_COMPARE(bar->maximum(), kept);
        QCOMPARE(panelCount("SelectI1Files").toInt(), kept + 1);
    }

    /// The page works on the map on display, follows another choice of map, and is dead without
    /// one.
    void theDeglitchPageFollowsTheMap() {
        auto* page = control<QPushButton>("ShowProcImg", m_body.get());
        auto* factor = control<QLineEdit>("DeGlitchFactor", m_body.get());
        QVERIFY(!page->isEnabled());
        BatchRun batch(*m_body);
        QVERIFY(batch.run(m_phantom->loadAndSetReferences() +
                          QStringList{"analyzer_select_image 0", "select_disp_image 3"}));
        QVERIFY(!page->isEnabled());  // selected, but nothing has been analysed
        QVERIFY(!control<QPushButton>("DeGlitch")->isEnabled());
        QVERIFY(batch.run({"analyzer_exec_LCF"}));
        QVERIFY(!page->isEnabled());  // nothing has been deglitched

        Analyzed2DRes* result = analyzerWindow()->selectedResult();
        result->setData(5, 4, 0, 0, 9.0);  // a spike
        factor->setText("nonsense");
        press("DeGlitch");
        QCOMPARE(factor->text(), QString("2.0"));
        QVERIFY(QRegularExpression("^Deglitched: [1-9]\\d* of \\d+ bins replaced$")
                    .match(textOf("Notice"))
                    .hasMatch());
        QVERIFY(page->isChecked() && result->showsProc());
        QVERIFY(std::abs(result->shownValueAt(5, 4) - result->valueAt(5, 5)) < 0.5);
        QCOMPARE(result->valueAt(5, 4), 9.0);

        auto* view = control<ImageView>("dispA", m_body.get());
        QCOMPARE(view->band(), QString());
        QVERIFY(batch.run({"set_band_w 1"}));
        QCOMPARE(view->band(), QString("with other bins"));
        QVERIFY(textOf("State").endsWith(view->band()));
        QVERIFY(textOf("ResultState").endsWith(view->band()));
        QVERIFY(batch.run({"analyzer_select_image 1", "set_band_w 0"}));
        QCOMPARE(view->band(), QString());
        QVERIFY(!page->isEnabled() && !page->isChecked());
        QVERIFY(batch.run({"analyzer_select_image 0"}));
        QVERIFY(page->isEnabled() && page->isChecked());
        page->click();
        QVERIFY(!result->showsProc());
        QVERIFY(!control<QPushButton>("NormalizeEShift")->isEnabled());  // there is no shift map
    }

  private:
    void load() {
        BatchRun batch(*m_body);
        QVERIFY(batch.succeeds(m_phantom->loadAndSetReferences().mid(0, 4)));
    }

    QString panelCount(const char* panel) { return textOf("Count", control<QWidget>(panel)); }

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;
};

TARNWICK_TEST_MAIN(QApplication, TestBody)
#include "tst_body.moc"
