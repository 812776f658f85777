#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <cmath>
#include <functional>
#include <memory>

#include "BatchRun.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "maps/Analyzed2DRes.h"
#include "panels/LCFReference.h"

namespace {

double fractionOfA(int x, int y) {
    return std::min(1.0, 0.05 * x + 0.06 * y);
}

}  // namespace

using Act = std::function<void(Body&)>;
Q_DECLARE_METATYPE(Act)

/// Batches on a small measurement: they give what is known of it, and whatever is wrong in them and
/// whatever a user does meanwhile, each line is answered once, in its turn, up to the end.
class TestWholeFlow : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Phantom> m_large;
    QStringList m_lines;

    /// Does something once in the middle of the first analysis.
    void during(Body& body, const Act& action) {
        auto* once = new QObject(&body);
        connect(&body, &Body::analysisProgress, once, [&body, once, action](double percent) {
            if (percent > 0.0 && percent < 100.0) {
                QObject::disconnect(&body, &Body::analysisProgress, once, nullptr);
                action(body);
            }
        });
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.fractionOfA = fractionOfA;
        m_phantom = std::make_unique<Phantom>(options);
        // Enough points for events to come in between.
        options.width = 40;
        options.height = 24;
        m_large = std::make_unique<Phantom>(options);
        m_lines = m_large->loadAndSetReferences() + QStringList{"analyzer_exec_LCF", "set_band_w 0",
                                                                "what", "analyzer_exec_LCF",
                                                                "set_band_h 0"};
    }

    /// Whatever is wrong in a batch, it reaches its end and what is right in it is done.
    void aBatchReachesItsEnd_data() {
        columns<QStringList, int>("lines", "problems");
        const QString dir = m_phantom->dir();
        QTest::newRow("analysis without images") << QStringList{"analyzer_exec_LCF"} << 1;
        QTest::newRow("analysis without references")
            << QStringList{"load_I1_files_of_pattern NEW " + dir + " i1-7*.tif",
                           "analyzer_exec_LCF"}
            << 1;
        QTest::newRow("no file matches")
            << QStringList{"load_I0_files_of_pattern NEW " + dir + " *.none",
                           "load_I1_files_of_pattern NEW " + dir + "/none"}
            << 2;
        QTest::newRow("files that are no images")
            << QStringList{"load_I1_files NEW " + m_phantom->file("a.dat") + " " +
                           m_phantom->file("missing.tif") + " " + m_phantom->file("b.dat")}
            << 4;
        QTest::newRow("nothing to load") << QStringList{"load_I1_files", "load_I0_files NEW"} << 2;
        QTest::newRow("unknown words") << QStringList{"what", "", ":next nothing"} << 2;
        QTest::newRow("unbalanced quote")
            << QStringList{"load_I1_files NEW \"" + m_phantom->file("i1-7000_000eV.tif")} << 1;
        QTest::newRow("endless substitution")
            << QStringList{":for i \"\" 1 2", ":echo x",      "set_band_w 1", ":next i",
                           ":for j 1 11 12",  "set_band_w 1", ":next j"}
            << 2;
        QTest::newRow("numbers out of every range")
            << m_phantom->loadAndSetReferences() +
                   QStringList{"set_band_w -3",
                               "set_band_h 2000000000",
                               "select_region -5 -5 2000000000 2000000000",
                               "analyzer_exec_LCF",
                               "move_position 2000000000 -7",
                               "select_disp_image 77",
                               "analyzer_select_image 99",
                               "analyzer_set_LCF_std 9 1 0 x 0",
                               "analyzer_set_LCF_std -1 1 0 x 0"}
            << 7;  // a bin higher than the image has no centre inside it
        QTest::newRow("files that cannot be written")
            << m_phantom->loadAndSetReferences() +
                   QStringList{"analyzer_exec_LCF",
                               "analyzer_select_image 0",
                               "save_data_as_tiff " + m_phantom->file("a.dat/x.tif"),
                               "save_image " + m_phantom->file("a.dat/x.png"),
                               "move_position 1 1",
                               "save_spectra " + m_phantom->file("a.dat/x.dat")}
            << 3;
    }

    void aBatchReachesItsEnd() {
        QFETCH(QStringList, lines);
        QFETCH(int, problems);
        Body body;
        BatchRun batch(body);
        QVERIFY(batch.run(lines));
        QVERIFY2(batch.problems().size() == problems, qPrintable(batch.problems().join('\n')));
    }

    void whateverHappens_data() {
        // problems: "what" is one
        columns<Act, int>("action", "problems");
        const QString i1 = m_large->file("i1-7000_000eV.tif");
        const QString i0 = m_large->file("i0-7000_000eV.tif");
        const auto row = [](const char* name, int problems, const Act& action) {
            QTest::newRow(name) << action << problems;
        };
        row("nothing", 1, [](Body&) {});
        row("stopped", 2, [](Body& body) { body.stop2DAnalysis(); });
        row("Analyze is pressed again", 2, [](Body& body) { body.startLCF2DAnalysis(); });
        row("stopped twice", 2, [](Body& body) {
            body.stop2DAnalysis();
            body.stop2DAnalysis();
        });
        row("the frames are cleared", 3, [](Body& body) { body.clearI1Files(); });
        row("other frames are loaded", 2, [i1](Body& body) { body.readI1Files({i1}, true); });
        row("I0 frames are loaded", 2, [i0](Body& body) { body.readI0Files({i0}, false); });
        row("a load of nothing", 1, [](Body& body) { body.readI0Files({}, false); });
        row("calibrated, analysed and its map cleared beside it", 1, [](Body& body) {
            body.execCalibration();
            body.startRA2DAnalysis();
            body.clearShiftMap();
        });
        row("the cursor's spectrum is fitted", 1, [](Body& body) {
            analyzerWindow()->show();
            body.showXafsSpectrum(1, 1);
        });
    }

    void whateverHappens() {
        QFETCH(Act, action);
        QFETCH(int, problems);
        Body body;
        BatchRun batch(body);
        QStringList order;
        connect(&body, &Body::commandDone, this,
                [&order](const CmdLine& cmd, const QStringList&) { order << cmd.text; });
        QSignalSpy answers(&body, &Body::finishBatchExec);
        during(body, action);
        QVERIFY(batch.run(m_lines));
        QTest::qWait(20);  // a late answer would come now
        QCOMPARE(order, m_lines);
        // A load of the user's that outlasts the batch is said once more, when no line waits.
        const int more = answers.count() - m_lines.size();
        QVERIFY2(more == 0 || more == 1, qPrintable(QString::number(more)));
        // One more when the second analysis begins before the other frames are there, or with
        // them, which are too few for a fit; one fewer when they come after the first.
        const bool loads = QByteArray(QTest::currentDataTag()).endsWith("are loaded");
        QVERIFY2(batch.problems().size() == problems ||
                     batch.problems().last().contains(QRegularExpression("images|energies")) ||
                     (loads && qAbs(batch.problems().size() - problems) == 1),
                 qPrintable(batch.problems().join('\n')));
        QVERIFY(!analyzerWindow()->isBusy());
    }

    /// A fit that was under way when the run was stopped is neither a point of the map nor what is
    /// shown of the cursor's position.
    void aStoppedRunLeavesNothingBehind() {
        Body body;
        BatchRun batch(body);
        QVERIFY(batch.run(m_large->loadAndSetReferences() +
                          QStringList{"saveDataCfg_save_as_text", "saveDataCfg_text_as_ssv",
                                      "saveDataCfg_text_as_vals", "analyzer_select_image_type 1",
                                      "analyzer_select_image 0", "analyzer_show_window"}));
        auto* analyze = analyzerWindow()->findChild<QPushButton*>("AskAnalyze");
        during(body, [analyze](Body& b) {
            analyze->click();
            b.showXafsSpectrum(4, 3);
        });
        analyze->click();
        QVERIFY(analyzerWindow()->isBusy());
        QTRY_VERIFY(!analyzerWindow()->isBusy());
        const auto* share = analyzerWindow()->findChild<QLineEdit*>("R");
        const auto isThatOfThePosition = [&] {
            return std::abs(share->text().toDouble() - 100.0 * fractionOfA(4, 3)) < 0.1;
        };
        QTRY_VERIFY(isThatOfThePosition());
        QTest::qWait(50);  // a late report would come now
        QVERIFY(isThatOfThePosition());

        const QString stopped = m_large->file("stopped.dat");
        QVERIFY(batch.run({"save_data_as_tiff " + stopped}));
        QCOMPARE(batch.problems().size(), 1);  // a warning
        QVERIFY(batch.problems().first().contains("stopped at "));
        bool reached = true;
        int points = 0;
        int y = 0;
        for (const QVector<double>& values : numbersOf(stopped)) {
            for (int x = 0; x < values.size(); ++x) {
                const double value = values[x];
                const bool right = std::abs(value - fractionOfA(x, y)) < 2e-4;
                reached = reached && right;
                QVERIFY2(right || value == 0.0, qPrintable(QString("%1 %2").arg(x).arg(y)));
                QVERIFY2(reached || value == 0.0, "a point after the last");
                points += reached ? 1 : 0;
            }
            ++y;
        }
        QCOMPARE(y, 24);
        QVERIFY(points < 40 * 24);
    }

    /// Exec. in the middle of an analysis: the line that waited is given up, the rest runs once.
    void startedAnew() {
        Body body;
        QStringList order;
        connect(&body, &Body::commandDone, this,
                [&order](const CmdLine& cmd, const QStringList&) { order << cmd.text; });
        QSignalSpy answers(&body, &Body::finishBatchExec);
        during(body, [this](Body& b) { b.batchCtrl()->dispatchLines(m_lines); });
        BatchRun batch(body);
        QVERIFY(batch.run(m_lines));
        QTRY_COMPARE(order, m_lines.mid(0, 6) + m_lines);
        QTest::qWait(20);
        QCOMPARE(answers.count(), order.size());
    }

    /// Stop in the batch window ends the reading of lines, not the analysis.
    void stoppedInTheBatchWindow() {
        Body body;
        BatchRun batch(body);
        QSignalSpy answers(&body, &Body::finishBatchExec);
        during(body, [](Body& b) { emit b.batchCtrl()->batchStop(); });
        QVERIFY(batch.run(m_lines));
        QCOMPARE(batch.done(), 7);
        QCOMPARE(batch.problems(), QStringList());
        QCOMPARE(answers.count(), 7);
        QVERIFY(batch.run(m_lines));
        QCOMPARE(batch.done(), m_lines.size());
    }

    /// Closing in the middle of a load must stop every thread and lose no memory.
    void theWindowCanBeClosedInTheMiddleOfALoad() {
        Body body;
        body.batchCtrl()->dispatchLines(m_phantom->loadAndSetReferences());
        QTest::qWait(10);
        body.close();
    }
};

TARNWICK_TEST_MAIN(QApplication, TestWholeFlow)
#include "tst_wholeflow.moc"
