#include "TestMain.h"
#include "base/Limits.h"
#include "batch/BatchDispatcher.h"
#include "batch/BatchPacing.h"
#include "batch/ForLoops.h"

/// Stands for the main window: notes what it is told to execute and answers at once.
class Executor : public QObject {
    Q_OBJECT

  public:
    explicit Executor(BatchDispatcher* dispatcher) {
        connect(dispatcher, &BatchDispatcher::execCmd, this, &Executor::execCmd);
        connect(dispatcher, &BatchDispatcher::log, this,
                [this](const QString& text) { log += text; });
        connect(dispatcher, &BatchDispatcher::started, this, [this] { ++starts; });
        connect(dispatcher, &BatchDispatcher::ended, this, [this] { ++ends; });
        connect(this, &Executor::finishBatchExec, dispatcher, &BatchDispatcher::finishBatchExec);
        connect(this, &Executor::dispatch, dispatcher, &BatchDispatcher::doDispatchCmds);
        connect(this, &Executor::stop, dispatcher, &BatchDispatcher::batchStop);
    }

    QStringList seen;  // "command arg arg", remarks with "(rem) " in front
    QList<CmdLine> cmds;
    QString log;
    int starts = 0;
    int ends = 0;
    bool answering = true;

  signals:
    void finishBatchExec();
    void dispatch(QStringList);
    void stop();

  public slots:
    void execCmd(const CmdLine& cmd, bool inRem) {
        cmds.append(cmd);
        seen.append((inRem ? "(rem) " : "") + (QStringList{cmd.command} + cmd.args).join(' '));
        if (answering) {
            emit finishBatchExec();
        }
    }
};

class TestDispatcher : public QObject {
    Q_OBJECT

  private slots:
    void run_data() {
        // Lines and items seen with a | between them; log: where it says more than what was seen.
        columns<QStringList, QStringList, QString>("lines", "seen", "log");
        const auto row = [](const char* name, const char* lines, const char* seen,
                            const char* log = nullptr) {
            QTest::newRow(name) << QString(lines).split('|') << QString(seen).split('|')
                                << QString(log);
        };
        QTest::newRow("empty batch") << QStringList() << QStringList() << "";
        row("one empty line", "", "", "");
        row("counting up", ":for i %i 1 3|set_band_w %i|:next i",
            ":for i %i 1 3|set_band_w 1|:next i|set_band_w 2|:next i|set_band_w 3|:next i",
            "for i : %i = 1\nset_band_w : 1\nnext i : %i = 2\nset_band_w : 2\nnext i : %i = 3\n"
            "set_band_w : 3\nnext i : %i = 3\n");
        row("counting down", ":FOR i %i 5 3|set_band_w %i|:NEXT i",
            ":FOR i %i 5 3|set_band_w 5|:NEXT i|set_band_w 4|:NEXT i|set_band_w 3|:NEXT i");
        row("equal bounds run once", ":for i %i 2 2|set_band_w %i|:next i",
            ":for i %i 2 2|set_band_w 2|:next i");
        row("bounds that are no numbers count as 0", ":for i %i a 1|set_band_w %i|:next i",
            ":for i %i a 1|set_band_w a|:next i|set_band_w 1|:next i");
        row("a finished loop still fills in", ":for i %i 1 1|:next i|set_band_w %i",
            ":for i %i 1 1|:next i|set_band_w 1");
        row("names are exact", ":for i %i 1 2|:next I", ":for i %i 1 2|:next I",
            "for i : %i = 1\nnext  :  = \n");
        row("a second :for replaces the first and goes to the end",
            ":for a X 1 1|:for b XY 2 2|:for a X 7 7|set_band_w XY",
            ":for a X 1 1|:for b XY 2 2|:for a X 7 7|set_band_w 2",
            "for a : X = 1\nfor b : XY = 2\nfor a : X = 7\nset_band_w : 2\n");
        row("nested", ":for i %i 1 2|:for j %j 1 2|move_position %i %j|:next j|:next i",
            ":for i %i 1 2|:for j %j 1 2|move_position 1 1|:next j|move_position 1 2|:next j|"
            ":next i|:for j %j 1 2|move_position 2 1|:next j|move_position 2 2|:next j|:next i");
        row("continued :for: the body starts after its last line",
            ":for i \\|%i 1 2|set_band_w %i|:next i",
            ":for i %i 1 2|set_band_w 1|:next i|set_band_w 2|:next i");
        row("quoted items of :for are split again", ":for i \"%i 4\" 5|set_band_w %i|:next i",
            ":for i %i 4 5|set_band_w 4|:next i|set_band_w 5|:next i");
        row("neither command words nor control lines are filled in",
            ":for i band 1 1|set_band_w band|:echo band", ":for i band 1 1|set_band_w 1|:echo band",
            "for i : band = 1\nset_band_w : 1\necho band");
        row("unknown words are passed on without filling in and log", ":for i %i 1 1|frobnicate %i",
            ":for i %i 1 1|frobnicate %i", "for i : %i = 1\n");
        row("a placeholder like %1 leaves the log right", ":for i %1 5 5|move_position %1 %2",
            ":for i %1 5 5|move_position 5 %2", "for i : %1 = 5\nmove_position : 5 %2\n");
        row("echo runs on", ":echo \"a b\" c|:echo|clear_I1_files",
            ":echo a b c|:echo|clear_I1_files", "echo a becho clear_I1_files : \n");
        row("remark", ":rem_start|frobnicate|:for i %i 1 2|:REM_START|:rem_end|set_band_w 1",
            "(rem) :rem_start|(rem) frobnicate|(rem) :for i %i 1 2|"
            "(rem) :REM_START|:rem_end|set_band_w 1",
            "set_band_w : 1\n");
        row("a backslash in a remark swallows its end", ":rem_start|note \\|:rem_end|set_band_w 1",
            "(rem) :rem_start|(rem) note :rem_end|(rem) set_band_w 1", "");
        row("continuation", "load_I1_files NEW a.img \\|b.img", "load_I1_files NEW a.img b.img");
        row("continuation joins without a blank, over white space after the backslash",
            "load_I1_files NEW a\\ \t|.img \\|\\|b.img", "load_I1_files NEW a.img b.img",
            "load_I1_files : NEW a.img b.img\n");
        row("continuation into nothing", "set_band_w 1 \\", "set_band_w 1");
        row("empty placeholder replaces nothing", ":for i|set_band_w x|:next i",
            ":for i|set_band_w x|:next i", "for i :  = \nset_band_w : x\nnext i :  = \n");
        row("value holding its placeholder: one pass", ":for i 1 11 12|move_position 1 101",
            ":for i 1 11 12|move_position 11 11011");
        row("filled in from the start again", ":for i ab a 2|set_band_w abbb",
            ":for i ab a 2|set_band_w a");
    }

    void run() {
        QFETCH(QStringList, lines);
        BatchDispatcher dispatcher;
        Executor body(&dispatcher);
        emit body.dispatch(lines);
        QTEST(body.seen, "seen");
        QFETCH(QString, log);
        if (!log.isNull()) {
            QCOMPARE(body.log, log);
        }
        QCOMPARE(body.starts, 1);
        QVERIFY(body.ends >= 1);
    }

    void growingSubstitutionIsBounded() {
        BatchDispatcher dispatcher;
        Executor body(&dispatcher);
        emit body.dispatch({":for i ab bbaa 3", "save_image abb"});
        QCOMPARE(body.cmds.size(), 2);
        QVERIFY(body.cmds.at(1).arg(0).size() <= 3 + 2 * Limits::MostReplacements);
    }

    void handsOutOneLineAtATime() {
        BatchDispatcher dispatcher;
        Executor body(&dispatcher);
        body.answering = false;
        QCOMPARE(dispatcher.lineInWork(), -1);
        emit body.dispatch({"set_band_w 1 \\", "", "set_band_h 2"});
        QCOMPARE(body.seen, QStringList{"set_band_w 1"});
        QCOMPARE(body.cmds.at(0).text, QString("set_band_w 1 "));
        QCOMPARE(dispatcher.lineInWork(), 1);
        QCOMPARE(body.ends, 0);
        emit body.finishBatchExec();
        QCOMPARE(body.seen.last(), QString("set_band_h 2"));
        QCOMPARE(dispatcher.lineInWork(), 2);
        QCOMPARE(body.ends, 0);
        emit body.finishBatchExec();
        QCOMPARE(body.ends, 1);
        QCOMPARE(body.seen.size(), 2);
    }

    void stopLetsNoFurtherLineOut() {
        BatchDispatcher dispatcher;
        Executor body(&dispatcher);
        body.answering = false;
        emit body.dispatch({":rem_start", "set_band_w 1", "set_band_w 2"});
        emit body.stop();
        emit body.finishBatchExec();
        QCOMPARE(body.seen, QStringList{"(rem) :rem_start"});
        QCOMPARE(body.ends, 1);
        // The remark ended with the stop.
        emit body.dispatch({"set_band_w 3"});
        QCOMPARE(body.seen.last(), QString("set_band_w 3"));
    }

    void restartsFromTheFirstLineWithoutLoops() {
        BatchDispatcher dispatcher;
        Executor body(&dispatcher);
        body.answering = false;
        emit body.dispatch({":for i %i 4 5", "set_band_w %i"});
        emit body.dispatch({"set_band_w %i", "set_band_h 1"});
        QCOMPARE(body.seen.last(), QString("set_band_w %i"));
        emit body.finishBatchExec();
        QCOMPARE(body.seen.last(), QString("set_band_h 1"));
        QCOMPARE(body.starts, 2);
    }

    /// The window's side: a line waits for its own work, and lines of a batch that was started anew
    /// meanwhile, or its end, are not taken for those of the new one.
    void onlyTheAwaitedWorkAnswersABatch() {
        BatchPacing pacing;
        pacing.batchRequested();
        QVERIFY(pacing.isActive() && !pacing.acceptsLines());
        pacing.batchEnded();  // of the batch before
        QVERIFY(pacing.isActive());
        pacing.batchStarted();
        QVERIFY(pacing.acceptsLines());
        pacing.wait(CmdLine::parse("load_I1_files NEW a"), Work::LoadI1);
        QVERIFY(pacing.isWaitingFor(Work::LoadI1) && !pacing.isWaitingFor(Work::LoadI0));
        pacing.batchRequested();  // Exec. during the load
        QVERIFY(!pacing.isWaitingFor(Work::LoadI1));
        pacing.batchStarted();
        pacing.batchEnded();
        QVERIFY(!pacing.isActive());
    }

    void aRemarkOutlivesTheBatch() {
        BatchDispatcher dispatcher;
        Executor body(&dispatcher);
        emit body.dispatch({":rem_start"});
        emit body.dispatch({"set_band_w 1"});
        QCOMPARE(body.seen.last(), QString("(rem) set_band_w 1"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestDispatcher)
#include "tst_dispatcher.moc"
