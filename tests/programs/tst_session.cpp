#include <QBuffer>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "TestMain.h"
#include "files/OriginText.h"
#include "files/PictureFile.h"
#include "tarnwick-batch/BatchSession.h"
#include "tarnwick-batch/Console.h"
#include "tarnwick-batch/RunnerOptions.h"
#include "tarnwick-batch/SavedOrigin.h"

namespace {

CmdLine command(const QString& text) {
    return CmdLine::parse(text);
}

}  // namespace

class TestSession : public QObject {
    Q_OBJECT

    QBuffer m_out;
    QBuffer m_err;

  private slots:
    void init() {
        for (QBuffer* buffer : {&m_out, &m_err}) {
            buffer->close();
            buffer->setData(QByteArray());
            buffer->open(QIODevice::WriteOnly);
        }
    }

    void verdict_data() {
        QTest::addColumn<QStringList>("commands");  // "index command", "!index command" fails
        QTest::addColumn<QString>("verdict");
        QTest::addColumn<int>("code");
        using L = QStringList;
        QTest::newRow("nothing") << L{} << "0 lines" << 0;
        QTest::newRow("one") << L{"0 a"} << "1 line done, 0 failed" << 0;
        QTest::newRow("all done") << L{"0 a", "2 b"} << "2 lines done, 0 failed" << 0;
        QTest::newRow("named by the line in the file where they start")
            << L{"0 a", "!2 b", "!3 c"} << "1 line done, 2 failed: line 3 (b), line 6 (c)" << 1;
        QTest::newRow("remarks do not count")
            << L{"0 :rem_start", "0 a", "0 :rem_end", "0 b"} << "1 line done, 0 failed" << 0;
        QTest::newRow("repeated in a loop") << L{"!0 a", "!0 a", "3 c", "!0 a"}
                                            << "1 line done, 3 failed: line 2 (a, 3 times)" << 1;
    }

    void verdict() {
        QFETCH(QStringList, commands);
        Console console(&m_out, &m_err, false, false);
        int index = -1;
        const BatchText text = BatchText::fromLines({"", "a", "b \\", "rest", " ", "c"});
        BatchSession session(&console, text, [&index] { return index; });
        QSignalSpy finished(&session, &BatchSession::finished);
        for (QString item : commands) {
            const bool fails = item.startsWith('!');
            const CmdLine cmd = command(item.mid(fails ? 1 : 0));
            index = cmd.command.toInt();
            session.commandDone(command(cmd.arg(0)), fails ? QStringList{"why"} : QStringList{});
        }
        session.end();
        QTEST(QString::fromUtf8(m_out.data()).trimmed(), "verdict");
        QCOMPARE(finished.count(), 1);
        QTEST(finished.at(0).at(0).toInt(), "code");
        session.end();  // only once
        session.commandDone(command("x"), {"late"});
        session.log("late");
        QCOMPARE(finished.count(), 1);
        QVERIFY(!m_out.data().contains("late"));
    }

    void problemsAreSaidWithTheirLine() {
        Console console(&m_out, &m_err, false, false);
        BatchSession session(&console, BatchText::fromLines({"", "calib_load_std x"}),
                             [] { return 0; });
        session.log("calib_load_std : x\n");
        session.commandDone(command("calib_load_std x"), {"cannot read x", "%1"});
        QCOMPARE(m_err.data(), QByteArray("line 2: calib_load_std: cannot read x\n"
                                          "line 2: calib_load_std: %1\n"));
        QCOMPARE(m_out.data(), QByteArray("calib_load_std : x\n"));
    }

    void interrupted() {
        Console console(&m_out, &m_err, false, false);
        BatchSession session(&console, BatchText::fromLines({"a", "b"}), [] { return 1; });
        QSignalSpy finished(&session, &BatchSession::finished);
        session.commandDone(command("a"), {});
        session.interrupt(2);
        session.end();
        QCOMPARE(m_out.data(), QByteArray("Interrupted at line 2: 1 line done, 0 failed\n"));
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.at(0).at(0).toInt(), 130);
    }

    void logIsKeptToTheLetter() {
        Console console(&m_out, &m_err, false, false);
        BatchSession session(&console, BatchText(), [] { return -1; });
        session.log("echo a");
        session.log(QString::fromUtf8("Err: \xE9\x89\x84"));
        session.loadProgress(1, 1, 2);
        session.analysisProgress(50.0);
        session.end();
        QCOMPARE(m_out.data(), QByteArray("echo aErr: \xE9\x89\x84\n0 lines\n"));
        QCOMPARE(m_err.data(), QByteArray());
    }

    void barOnlyOnATerminal() {
        Console console(&m_out, &m_err, false, true);
        BatchSession session(&console, BatchText(), [] { return -1; });
        session.loadProgress(0, 0, 0);  // nothing to show
        QCOMPARE(m_err.data(), QByteArray());
        session.loadProgress(0, 45, 90);
        session.loadProgress(0, 45, 90);  // unchanged: not drawn again
        QCOMPARE(m_err.data(), QByteArray("I0 [###############...............] 45/90"));
        session.analysisProgress(std::numeric_limits<double>::quiet_NaN());
        QVERIFY(m_err.data().endsWith("\r\033[KAnalysis [..............................] 0 %"));
        session.analysisProgress(1e300);
        QVERIFY(m_err.data().endsWith("\r\033[KAnalysis [##############################] 100 %"));
        console.note("debug");
        QVERIFY(m_err.data().endsWith("100 %\r\033[Kdebug\n"));
        QCOMPARE(m_out.data(), QByteArray());
    }

    void barAndLogOnOneTerminal() {
        QBuffer terminal;
        terminal.open(QIODevice::WriteOnly);
        Console console(&terminal, &terminal, true, true);
        console.log("echo a");
        console.showBar("I1", 0.0, "0/2");
        console.log("x\n");
        console.log("echo b");
        console.note("debug");
        console.logLine("end");
        QCOMPARE(terminal.data(),
                 QByteArray("echo a\nI1 [..............................] 0/2\r\033[Kx\n"
                            "echo b\ndebug\nend\n"));
    }

    void options_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("file");
        using A = RunnerOptions::Action;
        using L = QStringList;
        QTest::newRow("run") << L{"a.bat"} << int(A::Run) << "a.bat";
        QTest::newRow("check") << L{"--check", "a.bat"} << int(A::Check) << "a.bat";
        QTest::newRow("check after") << L{"a.bat", "--check"} << int(A::Check) << "a.bat";
        QTest::newRow("dashed name") << L{"--", "-b"} << int(A::Run) << "-b";
        QTest::newRow("help") << L{"--help"} << int(A::Help) << "";
        QTest::newRow("version") << L{"--version"} << int(A::Version) << "";
        QTest::newRow("nothing") << L{} << int(A::BadUsage) << "";
        QTest::newRow("two files") << L{"a", "b"} << int(A::BadUsage) << "";
        QTest::newRow("unknown option") << L{"-x", "a"} << int(A::BadUsage) << "";
        QTest::newRow("check of nothing") << L{"--check"} << int(A::BadUsage) << "";
        QTest::newRow("origin") << L{"--origin", "a.tif"} << int(A::Origin) << "a.tif";
        QTest::newRow("record") << L{"--record", "a.tif"} << int(A::Record) << "a.tif";
        QTest::newRow("folder") << L{"-C", "d", "a.bat"} << int(A::Run) << "a.bat";
        const QVector<L> bad = {{"--threads", "0", "a.bat"},
                                {"--threads", "1025", "a.bat"},
                                {"--threads", "two", "a.bat"},
                                {"--threads", "a.bat"},
                                {"--origin"},
                                {"--origin", "--record", "a.tif"},
                                {"--check", "--record", "a"},
                                {"-C", "a.bat"},
                                {"-C", "", "a.bat"},
                                {"-C", "d", "--origin", "a.tif"}};
        for (const L& args : bad) {
            QTest::newRow(qPrintable(args.join(' '))) << args << int(A::BadUsage) << "";
        }
    }

    void options() {
        QFETCH(QStringList, args);
        const RunnerOptions options = RunnerOptions::parse(QStringList{"tarnwick-batch"} + args);
        QTEST(int(options.action), "action");
        if (options.action != RunnerOptions::Action::BadUsage) {
            QTEST(options.file, "file");
            QCOMPARE(options.folder, args.contains("-C") ? QString("d") : QString());
        } else {
            QVERIFY(!options.text.isEmpty());
            QVERIFY(!options.text.contains('\n'));
        }
    }

    void savedFilesTell() {
        QTemporaryDir dir;
        OriginText origin;
        origin.entries = {{"source", "Ratio"}, {"saved by", "save_image"}};
        origin.record = QStringList{"load \\", "a.tif"};
        const auto save = [&](const QString& name) {
            const QString file = dir.filePath(name);
            return writePicture(file, QImage(2, 2, QImage::Format_RGB32), origin.toText()) ? file
                                                                                           : "";
        };
        QString why;
        QString file = save("a map.png");
        QCOMPARE(originLines(file, &why).value(),
                 QString("source = Ratio\nsaved by = save_image\n"));
        QCOMPARE(recordedBatch(file, &why).value(),
                 "load \\\na.tif\nsave_image \"" + file + "\"\n");
        QVERIFY(!recordedBatch(save("a \"map\".png"), &why));
        QVERIFY2(why.contains("name"), qPrintable(why));
        origin.entries.removeLast();
        QVERIFY(!recordedBatch(save("a.png"), &why));
        QVERIFY2(why.contains("what saved it"), qPrintable(why));
        origin.record.clear();
        origin.entries += qMakePair(QString("record"), QString("stopped"));
        QVERIFY(!recordedBatch(save("a.png"), &why));
        QCOMPARE(why, QString("no record in it: stopped"));
        QVERIFY(!originLines(dir.filePath("none"), &why));
        QCOMPARE(why, QString("there is no such file"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestSession)
#include "tst_session.moc"
