#include <sys/resource.h>

#include <QDir>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <map>
#include <memory>

#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "base/AddressSpace.h"
#include "base/LargeMemory.h"
#include "base/RowShares.h"
#include "batch/BatchRunner.h"

namespace {

constexpr char Batch[] =
    "load_I1_files_of_pattern NEW . i1-*.tif\n"
    "load_I0_files_of_pattern NEW . i0-*.tif\n"
    "set_band_w 0\n"
    "set_band_h 0\n"
    "calib_load_std a.dat\n"
    "calib_exec\n"
    "calib_save_map out/shift.tif\n"
    "analyzer_set_LCF_std 0 1 0 a.dat 0\n"
    "analyzer_set_LCF_std 1 1 0 b.dat 0\n"
    "analyzer_set_error_maps 1\n"
    "analyzer_exec_LCF\n"
    "analyzer_select_image 1\n"
    "save_image out/fit.png\n"
    "save_data_as_tiff out/fit.tif\n"
    "save_results out/fit.nxs\n"
    "analyzer_set_ra_energy 7150\n"
    "analyzer_exec_ra\n"
    "save_image out/ra.png\n";

using Files = std::map<QString, QByteArray>;

Files filesIn(const QString& folder) {
    Files files;
    for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden)) {
        files[name] = contentOf(folder + '/' + name);
    }
    return files;
}

struct Ended {
    bool hasEnded = false;
    int lines = 0;
    int code = -1;
    QStringList failures;
    QStringList before;  // files that were there when the first line failed
};

Ended inThisProgram(bool readsWhenNeeded) {
    Ended run;
    Measurement measurement;
    if (readsWhenNeeded) {
        measurement.readCountsWhenNeeded();
    }
    BatchRunner runner(measurement);
    QEventLoop loop;
    QObject::connect(&runner, &BatchRunner::commandDone, &loop,
                     [&](const CmdLine&, const Outcome& outcome) {
                         ++run.lines;
                         if (run.failures.isEmpty()) {
                             run.before = QDir("out").entryList(QDir::Files);
                         }
                         run.failures += outcome.failures;
                     });
    QObject::connect(runner.dispatcher(), &BatchDispatcher::ended, &loop, [&] {
        run.hasEnded = true;
        loop.quit();
    });
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    runner.start(QString(Batch).split('\n', Qt::SkipEmptyParts));
    loop.exec();
    return run;
}

/// With so many KiB of addresses; 0: without a limit.
Ended inAnother(const QStringList& arguments, qint64 kib) {
    QProcess process;
    const QString limit = kib > 0 ? QString("ulimit -v %1 && ").arg(kib) : QString();
    process.start("sh",
                  QStringList{"-c", limit + "exec \"$0\" \"$@\"", TARNWICK_BATCH} + arguments);
    Ended run;
    run.hasEnded = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit;
    run.code = process.exitCode();
    run.failures =
        QString::fromUtf8(process.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    if (run.code == 0) {
        run.failures.clear();  // warnings
    }
    if (!run.hasEnded) {
        process.kill();
        process.waitForFinished();
    }
    return run;
}

/// The least with which the program starts.
qint64 leastKib() {
    qint64 low = 1 << 10;
    qint64 high = 2 << 20;
    while (low < high) {
        const qint64 middle = (low + high) / 2;
        const Ended run = inAnother({"--version"}, middle);
        if (run.hasEnded && run.code == 0) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

}  // namespace

/// Memory that is not there: a line fails, or the program ends with a message; files are whole.
class TestMemory : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    Files m_whole;
    qint64 m_least = 0;

    static void emptyFolder() {
        QDir("out").removeRecursively();
        QVERIFY(QDir().mkpath("out"));
    }

    /// Nothing is left over, and what was written before the first line failed is as it is without
    /// a limit; lines behind it have other results to save.
    void judgeFiles(const Ended& run) {
        const Files found = filesIn("out");
        for (const auto& [name, content] : found) {
            const auto whole = m_whole.find(name);
            QVERIFY2(whole != m_whole.end(), qPrintable(name));
            QVERIFY2(!content.isEmpty(), qPrintable(name));
            QVERIFY2(content == whole->second || !run.before.contains(name), qPrintable(name));
        }
        QVERIFY(!run.failures.isEmpty() || found == m_whole);
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.energies = 16;
        options.i0Energies = 3;
        options.fractionOfA = [](int x, int y) { return 0.1 + 0.05 * x + 0.02 * y; };
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(QDir::setCurrent(m_phantom->dir()));
        put("job.bat", Batch);
        emptyFolder();
        const Ended run = inThisProgram(true);
        QVERIFY(run.hasEnded);
        QVERIFY2(run.failures.isEmpty(), qPrintable(run.failures.join('\n')));
        m_whole = filesIn("out");
        QCOMPARE(m_whole.size(), std::size_t(5));
    }

    void anyRequestMayBeRefused_data() {
        columns<bool>("readsWhenNeeded");
        QTest::newRow("frames in their files") << true;
        QTest::newRow("frames in memory") << false;
    }
    void anyRequestMayBeRefused() {
        QFETCH(bool, readsWhenNeeded);
        const int lines = QString(Batch).count('\n');
        int nth = 1;
        for (;; ++nth) {
            emptyFolder();
            refuseMemory(nth);
            const Ended run = inThisProgram(readsWhenNeeded);
            const bool isRefused = hasRefusedMemory();
            refuseMemory(0);
            QVERIFY2(run.hasEnded, qPrintable(QString("request %1").arg(nth)));
            QCOMPARE(run.lines, lines);
            judgeFiles(run);
            if (QTest::currentTestFailed()) {
                QFAIL(qPrintable(QString("request %1: ").arg(nth) + run.failures.join('\n')));
            }
            if (!isRefused) {
                QVERIFY2(run.failures.isEmpty(), qPrintable(run.failures.join('\n')));
                break;
            }
            QVERIFY2(
                run.failures.isEmpty() || run.failures.join('\n').contains("not enough memory: "),
                qPrintable(QString("request %1: %2").arg(nth).arg(run.failures.join('\n'))));
        }
        QVERIFY2(nth > 20, qPrintable(QString::number(nth)));
    }

    void anyLimitEndsInOrder_data() {
        columns<int>("above");  // MiB above what the program needs to start
        for (const int above : {0, 4, 12, 20, 24, 28, 32, 40, 56, 80, 128, 512}) {
            QTest::addRow("%d MiB more", above) << above;
        }
    }
    void anyLimitEndsInOrder() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("sanitizers need address space without bound");
#endif
        QFETCH(int, above);
        m_least = m_least > 0 ? m_least : leastKib();
        emptyFolder();
        const Ended run = inAnother({"--threads", "4", "job.bat"}, m_least + above * 1024);
        const QString said = run.failures.join('\n');
        QVERIFY2(run.hasEnded, qPrintable(said));
        QVERIFY2(run.code == 0 || run.code == 1, qPrintable(said));
        QVERIFY2(run.code == 0 || (said.contains("memory") && said.contains(" MB")),
                 qPrintable(said));
        judgeFiles(run);
        QVERIFY(above < 128 || run.code == 0);
    }

    void whereNoThreadCanBeMadeTheCallerWorks() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("sanitizers need address space without bound");
#endif
        struct rlimit old {};
        QCOMPARE(getrlimit(RLIMIT_AS, &old), 0);
        const struct rlimit tight { 1, old.rlim_max };
        std::atomic<int> calls{0};
        const std::function<void()> work = [&] { ++calls; };
        QCOMPARE(setrlimit(RLIMIT_AS, &tight), 0);
        const bool hasRoom = hasRoomForThread();
        const bool mayTake = mayTakeMemory(1 << 20);
        inThreads(8, work);
        QCOMPARE(setrlimit(RLIMIT_AS, &old), 0);
        QVERIFY(!hasRoom && !mayTake);
        QCOMPARE(calls.load(), 1);
        QVERIFY(mayTakeMemory(1 << 20));
    }
};

TARNWICK_TEST_MAIN(QGuiApplication, TestMemory)
#include "tst_memory.moc"
