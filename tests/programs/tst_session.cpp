#include <QBuffer>
#include <QImage>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "TestMain.h"
#include "files/OriginText.h"
#include "files/PictureFile.h"
#include "tarnwick-batch/BatchSession.h"
#include "tarnwick-batch/Console.h"
#include "tarnwick-batch/Progress.h"
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
        // commands: "index command", "!index command" fails, "?index command" warns; exit codes
        // without and with --strict
        columns<QStringList, QString, int, int>("commands", "verdict", "code", "strict");
        using L = QStringList;
        QTest::newRow("nothing") << L{} << "0 lines" << 0 << 0;
        QTest::newRow("one") << L{"0 a"} << "1 line done, 0 with a warning, 0 failed" << 0 << 0;
        QTest::newRow("all done") << L{"0 a", "2 b"} << "2 lines done, 0 with a warning, 0 failed"
                                  << 0 << 0;
        QTest::newRow("named by the line in the file where they start")
            << L{"0 a", "!2 b", "!3 c"}
            << "1 line done, 0 with a warning, 2 failed: line 3 (b), line 6 (c)" << 1 << 1;
        QTest::newRow("remarks do not count")
            << L{"0 :rem_start", "0 a", "0 :rem_end", "0 b"}
            << "1 line done, 0 with a warning, 0 failed" << 0 << 0;
        QTest::newRow("a blank line, and one that ends the text in a backslash")
            << L{"0 a", "4", "?4"} << "2 lines done, 1 with a warning, 0 failed" << 0 << 1;
        QTest::newRow("a remark that never ends")
            << L{"!0 :rem_start", "!2 b"}
            << "0 lines done, 0 with a warning, 1 failed: line 2 (:rem_start)" << 1 << 1;
        QTest::newRow("repeated in a loop")
            << L{"!0 a", "!0 a", "3 c", "!0 a"}
            << "1 line done, 0 with a warning, 3 failed: line 2 (a, 3 times)" << 1 << 1;
    }

    void verdict() {
        QFETCH(QStringList, commands);
        Console console(&m_out, &m_err, false, false);
        const BatchText text = BatchText::fromLines({"", "a", "b \\", "rest", " ", "c"});
        for (const bool isStrict : {false, true}) {
            m_out.buffer().clear();
            m_out.seek(0);
            BatchSession session(&console, text, {isStrict, false, nullptr});
            QSignalSpy finished(&session, &BatchSession::finished);
            for (QString item : commands) {
                const Outcome outcome = item.startsWith('!')   ? Outcome::failure("why")
                                        : item.startsWith('?') ? Outcome::warning("why")
                                                               : Outcome();
                item.remove(QRegularExpression("^[!?]"));
                CmdLine cmd = command(item.section(' ', 1));
                cmd.line = item.section(' ', 0, 0).toInt();
                session.commandDone(cmd, outcome);
            }
            session.end();
            QTEST(QString::fromUtf8(m_out.data()).trimmed(), "verdict");
            QCOMPARE(finished.count(), 1);
            QTEST(finished.at(0).at(0).toInt(), isStrict ? "strict" : "code");
            session.end();  // only once
            session.commandDone(command("x"), Outcome::failure("late"));
            session.log("late");
            QCOMPARE(finished.count(), 1);
            QVERIFY(!m_out.data().contains("late"));
        }
    }

    void barOnlyOnATerminal() {
        {
            Console file(&m_out, &m_err, false, false);
            Progress progress(&file, 60.0);
            progress.begin({{}, BatchText(), [] { return -1; }, {}});
            progress.work(Work::LoadI1, 1, 2);
            progress.work(Work::Fit, 50.0, 100.0);
            QCOMPARE(m_err.data() + m_out.data(), QByteArray());
        }
        Console console(&m_out, &m_err, false, true);
        Progress progress(&console, 0.01);
        const BatchText text = BatchText::fromLines({"", "fit \\", " 1", "x"});
        progress.begin({{}, BatchText(), [] { return -1; }, {}});
        progress.work(Work::LoadI0, 0, 0);  // nothing to show
        QCOMPARE(m_err.data(), QByteArray());
        progress.work(Work::LoadI0, 45, 90);
        progress.work(Work::LoadI0, 45, 90);  // unchanged: not drawn again
        QCOMPARE(m_err.data(), QByteArray("I0 [###############...............] 45/90"));
        progress.work(Work::Fit, std::numeric_limits<double>::quiet_NaN(), 100.0);
        QVERIFY(m_err.data().endsWith("\r\033[Kfit [..............................] 0 %"));
        progress.work(Work::Calibrate, 1e300, 1e300);
        QVERIFY(
            m_err.data().endsWith("\r\033[Kcalibration [##############################] 100 %"));
        console.note("debug");
        QVERIFY(m_err.data().endsWith("100 %\r\033[Kdebug\n"));
        int columns = 90;
        console.setColumns([&columns] { return columns; });
        progress.begin({"folder 2 of 3", text, [] { return 1; }, [] { return qMakePair(5, 10); }});
        progress.work(Work::LoadDark, 3, 12);
        QVERIFY(m_err.data().endsWith(
            "folder 2 of 3, line 2 (fit): dark frames [#######.......................] 3/12"));
        for (columns = 60; columns > 25; columns -= 7) {
            progress.work(Work::Deglitch, 50.0, 100.0 + columns);
            const QByteArray bar = m_err.data().mid(m_err.data().lastIndexOf("\033[K") + 3);
            QVERIFY2(bar.size() < columns && bar.endsWith("%, row 5 of 10"), bar.constData());
        }
        progress.end();
        const int before = m_err.data().size();
        progress.work(Work::Fit, 1.0, 100.0);
        QCOMPARE(m_err.data().size(), before);
        QTest::qWait(50);
        QCOMPARE(m_out.data(), QByteArray());  // no lines where there is a bar
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
        console.tellTimes();
        console.log("y");
        console.logLine("end");
        const QString said =
            QString::fromUtf8(terminal.data()).remove(QLatin1Char('\r')).remove(QChar(033));
        QVERIFY2(QRegularExpression("^echo a\nI1 \\[\\.{30}\\] 0/2\\[Kx\necho b\ndebug\n"
                                    "\\d\\d:\\d\\d:\\d\\d\\.\\d{3} y\nend\n$")
                     .match(said)
                     .hasMatch(),
                 qPrintable(said));

        QBuffer log;  // as after "> log 2>&1"
        log.open(QIODevice::WriteOnly);
        Console file(&log, &log, false, false);
        file.shareLines();
        file.log("echo a");
        file.note("failure");
        QCOMPARE(log.data(), QByteArray("echo a\nfailure\n"));
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
