#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <memory>

#include "DeadFile.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"

/// tarnwick as a user starts it: its command line, and its end at any moment.
class TestWindow : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<Phantom> m_phantom;

    /// Not in Latin letters, where the locale has others.
    static QString batchName() {
        const QString name = QString::fromUtf8("鉄.bat");
        return QFile::decodeName(QFile::encodeName(name)) == name ? name : QString("fe.bat");
    }

    void write(const QString& name, const QStringList& lines) {
        put(m_dir.filePath(name), lines.join('\n').toUtf8());
    }

    void start(QProcess* process, const QStringList& arguments) {
        process->setProcessChannelMode(QProcess::MergedChannels);
        process->setWorkingDirectory(m_dir.path());
        process->start(TARNWICK, arguments);
        QVERIFY(process->waitForStarted());
    }

    /// Whether the text comes; what has come is in m_output.
    bool comes(QProcess* process, const QByteArray& text) {
        m_output = process->readAll();
        while (!m_output.contains(text) && process->waitForReadyRead(60000)) {
            m_output += process->readAll();
        }
        return m_output.contains(text);
    }

    void end(QProcess* process, int number) {
        ::kill(static_cast<pid_t>(process->processId()), number);
        QVERIFY(process->waitForFinished(60000));
        m_output += process->readAll();
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        QVERIFY2(!m_output.contains("QThread"), m_output.constData());
        QVERIFY2(!m_output.contains("QObject::connect"), m_output.constData());
    }

  private slots:
    void initTestCase() {
        // A script in the background starts its programs with Ctrl-C ignored; not this one.
        std::signal(SIGINT, SIG_DFL);
        Phantom::Options options;
        options.fractionOfA = [](int x, int) { return x / 11.0; };
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(m_dir.isValid());
        write(batchName(), {":echo \"the batch runs\""});
    }

    void commandLine_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("Japanese") << QStringList{"-b", batchName(), "-x"};
        QTest::newRow("English, after words of the toolkit, before unknown ones") << QStringList{
            "-platform", "offscreen", "-b", batchName(), "-x", "-e", "-dbg", "--what"};
    }

    void commandLine() {
        QFETCH(QStringList, arguments);
        QProcess process;
        start(&process, arguments);
        QVERIFY2(comes(&process, "echo the batch runs"), m_output.constData());
        end(&process, SIGTERM);
    }

    /// Without a display, which the window would need.
    void tellsOfItself() {
        for (const auto& [option, text] :
             {std::pair("--help", "guide/README.md\n"), std::pair("--version", "tarnwick 0.")}) {
            QProcess process;
            start(&process, {"-platform", "none", option});
            QVERIFY(process.waitForFinished(60000));
            m_output = process.readAll();
            QVERIFY2(m_output.contains(text), m_output.constData());
            QCOMPARE(process.exitCode(), 0);
        }
    }

    void endsAtAnyMoment_data() {
        columns<QByteArray, int>("moment", "number");
        QTest::newRow("loading") << QByteArray("energy from file name") << SIGTERM;
        QTest::newRow("fitting, Ctrl-C") << QByteArray("2da 2:") << SIGINT;
        QTest::newRow("between two fits") << QByteArray("2da 3:") << SIGHUP;
    }

    void endsAtAnyMoment() {
        QFETCH(QByteArray, moment);
        QFETCH(int, number);
        QStringList lines = m_phantom->loadAndSetReferences();
        lines << ":for i %i 1 100000"
              << "analyzer_exec_LCF"
              << ":next i";
        write("run.bat", lines);
        QProcess process;
        start(&process, {"-b", "run.bat", "-x"});
        QVERIFY2(comes(&process, moment), m_output.constData());
        end(&process, number);
    }

    void closesWhereAFileDoesNotAnswer_data() {
        QTest::addColumn<QString>("line");
        // The first one tells the size of all.
        QTest::newRow("in the thread of a reader")
            << "load_I1_files NEW " +
                   m_phantom->file(QDir(m_phantom->dir()).entryList({"i1-*.tif"}).first()) +
                   " dead-7105eV.txt";
        for (const char* line : {"calib_load_std dead-7105eV.txt", "calib_load_map dead-7105eV.txt",
                                 "analyzer_set_LCF_std 0 1 0 dead-7105eV.txt",
                                 "fit_spectrum dead-7105eV.txt t.dat", "open_folder ."}) {
            QTest::newRow(line) << QString(line);
        }
    }

    void closesWhereAFileDoesNotAnswer() {
        QFETCH(QString, line);
        write("dead-7105eV.txt", {"II*"});
        const DeadFile dead(m_dir.filePath("dead-7105eV.txt"));
        if (!dead.isDead()) {
            QSKIP("no leases on this file system");
        }
        write("wait.bat", {":echo begun", line});
        QProcess process;
        start(&process, {"-b", "wait.bat", "-x"});
        QVERIFY2(comes(&process, "echo begun"), m_output.constData());
        QTRY_VERIFY_WITH_TIMEOUT(dead.isAwaited(), 30000);
        QVERIFY(!process.waitForFinished(500));
        ::kill(static_cast<pid_t>(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(30000));  // the file is back later
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
    }

  private:
    QByteArray m_output;
};

TARNWICK_TEST_MAIN(QCoreApplication, TestWindow)
#include "tst_window.moc"
