#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>

#include "TestMain.h"

/// The headless program as a user starts it: without a display, from a script.
class TestRunner : public QObject {
    Q_OBJECT

    struct Run {
        int code = -1;
        QString out;
        QString err;
        QString verdict() const { return out.trimmed().section('\n', -1); }
    };

    QTemporaryDir m_dir;

    static QProcessEnvironment bareEnvironment() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "LANG"}) {
            environment.remove(name);
        }
        environment.insert("LC_ALL", "C");
        return environment;
    }

    Run run(const QStringList& args) {
        QProcess process;
        process.setProcessEnvironment(bareEnvironment());
        process.setWorkingDirectory(m_dir.path());
        process.start(TARNWICK_BATCH, args);
        Run result;
        if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit) {
            result.code = process.exitCode();
        }
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.err = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    void write(const QString& name, const QByteArray& text) {
        QFile file(m_dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

  private slots:
    void initTestCase() {
        // A script in the background starts its programs with Ctrl-C ignored; not this one.
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
    }

    void usage_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        using L = QStringList;
        QTest::newRow("no file") << L{} << 2 << ""
                                 << "No batch file given";
        QTest::newRow("unknown option") << L{"--frobnicate", "a"} << 2 << ""
                                        << "frobnicate";
        QTest::newRow("missing file") << L{"missing.bat"} << 2 << ""
                                      << "cannot open missing.bat";
        QTest::newRow("directory") << L{"."} << 2 << ""
                                   << "cannot open .";
        QTest::newRow("check of a missing file") << L{"--check", "missing.bat"} << 2 << ""
                                                 << "cannot open missing.bat";
        QTest::newRow("version") << L{"--version"} << 0 << "tarnwick-batch "
                                 << "";
        QTest::newRow("help") << L{"--help"} << 0 << "--check"
                              << "";
    }

    void usage() {
        QFETCH(QStringList, args);
        QFETCH(QString, out);
        QFETCH(QString, err);
        const Run result = run(args);
        QTEST(result.code, "code");
        QVERIFY2(result.out.contains(out) && out.isEmpty() == result.out.isEmpty(),
                 qPrintable(result.out));
        QVERIFY2(result.err.contains(err) && result.err.count('\n') == (err.isEmpty() ? 0 : 1),
                 qPrintable(result.err));
    }

    void batches_data() {
        QTest::addColumn<QByteArray>("batch");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("out");
        using B = QByteArray;
        QTest::newRow("empty") << B("") << 0 << "0 lines\n";
        QTest::newRow("blank lines only") << B("\n  \n\n") << 0 << "0 lines\n";
        QTest::newRow("remark only") << B(":rem_start\nfrobnicate\n:rem_end\n") << 0 << "0 lines\n";
        QTest::newRow("no line feed at the end")
            << B("set_band_w 2") << 0 << "set_band_w : 2\n1 line done, 0 failed\n";
        QTest::newRow("a loop")
            << B(":for i %i 1 2\r\nset_band_w %i\r\n:next i\r\n") << 0
            << "for i : %i = 1\nset_band_w : 1\nnext i : %i = 2\nset_band_w : 2\n"
               "next i : %i = 2\n5 lines done, 0 failed\n";
        QTest::newRow("an unknown command does not stop it")
            << B("\n# note\nset_band_h \\\n 3\n") << 1
            << "Err: # noteset_band_h : 3\n1 line done, 1 failed: line 2 (#)\n";
        QTest::newRow("a file that cannot be read")
            << B("calib_load_std \xE9\x89\x84.dat\n") << 1
            << QString::fromUtf8(
                   "calib_load_std : \xE9\x89\x84.dat\n"
                   "0 lines done, 1 failed: line 1 (calib_load_std)\n");
    }

    void batches() {
        QFETCH(QByteArray, batch);
        write("b.bat", batch);
        const Run result = run({"b.bat"});
        QTEST(result.out, "out");
        QTEST(result.code, "code");
    }

    void check() {
        write("good.bat", "set_band_w 1\n");
        write("bad.bat", "set_band_w 1\n\nset_band_x 1\nset_band_w 1.0\n");
        QCOMPARE(run({"--check", "good.bat"}).code, 0);
        const Run bad = run({"--check", "bad.bat"});
        QCOMPARE(bad.code, 1);
        QCOMPARE(bad.out, QString("bad.bat:3: error: unknown command 'set_band_x' (did you mean "
                                  "set_band_w?)\n"
                                  "bad.bat:4: warning: '1.0' is not an integer and counts as 0\n"
                                  "bad.bat: 1 error, 1 warning\n"));
    }

    void endsInGoodOrder_data() {
        QTest::addColumn<int>("number");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("terminate") << SIGTERM;
    }

    void endsInGoodOrder() {
        QFETCH(int, number);
        write("long.bat", ":for i %i 1 100000000\nset_band_w %i\n:next i\n");
        QProcess process;
        process.setProcessEnvironment(bareEnvironment());
        process.setWorkingDirectory(m_dir.path());
        process.start(TARNWICK_BATCH, {"long.bat"});
        QVERIFY(process.waitForReadyRead(60000));  // the batch is under way
        ::kill(static_cast<pid_t>(process.processId()), number);
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 128 + number);
        const QByteArray out = process.readAllStandardOutput();
        QVERIFY2(out.contains("Interrupted at line "), out.right(200).constData());
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestRunner)
#include "tst_runner.moc"
