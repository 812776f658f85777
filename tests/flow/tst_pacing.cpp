#include <QApplication>
#include <functional>
#include <memory>

#include "BatchRun.h"
#include "Phantom.h"
#include "TestMain.h"
#include "analysis/Analyzer.h"

using Action = std::function<void(Body&)>;
Q_DECLARE_METATYPE(Action)

/// Whatever a user does while a line of a batch waits for its analysis, each line is answered once,
/// in its turn, and the batch reaches its end.
class TestPacing : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    QStringList m_lines;

    /// Does something once in the middle of the first analysis.
    void during(Body& body, const Action& action) {
        auto* once = new QObject(&body);
        connect(&body, &Body::analysisProgress, once, [&body, once, action](double percent) {
            if (percent > 0.0 && percent < 100.0) {
                QObject::disconnect(&body, &Body::analysisProgress, once, nullptr);
                QMetaObject::invokeMethod(
                    &body, [&body, action] { action(body); }, Qt::QueuedConnection);
            }
        });
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.fractionOfA = [](int x, int) { return x / 11.0; };
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(m_phantom->isValid());
        m_lines = m_phantom->loadAndSetReferences() +
                  QStringList{"analyzer_exec_LCF", "set_band_w 0", "what", "analyzer_exec_LCF",
                              "set_band_h 0"};
    }

    void whateverHappens_data() {
        QTest::addColumn<Action>("action");
        QTest::addColumn<int>("problems");  // "what" is one
        const QString i1 = m_phantom->file("i1-7000_000eV.tif");
        const QString i0 = m_phantom->file("i0-7000_000eV.tif");
        const auto row = [](const char* name, int problems, const Action& action) {
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
        row("I0 frames are loaded", 1, [i0](Body& body) { body.readI0Files({i0}, false); });
        row("a load of nothing", 1, [](Body& body) { body.readI0Files({}, false); });
        row("calibrated, analysed and cleared beside it", 1, [](Body& body) {
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
        QFETCH(Action, action);
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
        QCOMPARE(answers.count(), m_lines.size());
        QVERIFY2(batch.problems().size() == problems, qPrintable(batch.problems().join('\n')));
        QVERIFY(!analyzerWindow()->isBusy());
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
};

TARNWICK_TEST_MAIN(QApplication, TestPacing)
#include "tst_pacing.moc"
