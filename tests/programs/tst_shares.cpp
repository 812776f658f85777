#include <QDirIterator>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"

namespace {

const QStringList Fit = {"analyzer_set_error_maps 1", "analyzer_exec_LCF"};

struct Run {
    int code = -1;
    QString verdict;  // the last line of the log
    QString problems;
};

}  // namespace

/// One batch, made by several runs of tarnwick-batch through a work folder.
class TestShares : public QObject {
    Q_OBJECT

    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<QTemporaryDir> m_dir;

    QString file(const QString& name) const { return m_dir->filePath(name); }

    std::unique_ptr<QProcess> start(const QString& folder, const QStringList& arguments) {
        auto process = std::make_unique<QProcess>();
        process->setWorkingDirectory(file(folder));
        process->start(TARNWICK_BATCH, arguments + QStringList{file("b.bat")});
        return process;
    }

    static Run endOf(QProcess* process) {
        Run run;
        if (process->waitForFinished(120000) && process->exitStatus() == QProcess::NormalExit) {
            run.code = process->exitCode();
        }
        run.verdict =
            QString::fromUtf8(process->readAllStandardOutput()).trimmed().section('\n', -1);
        run.problems = QString::fromUtf8(process->readAllStandardError());
        return run;
    }

    Run run(const QString& folder, const QStringList& arguments) {
        return endOf(start(folder, arguments).get());
    }

    Run share(int number, int of) {
        return run("split",
                   {"--work", file("work"), "--part", QString("%1/%2").arg(number).arg(of)});
    }

    /// What lies in a folder, by name.
    QMap<QString, QByteArray> filesIn(const QString& folder) const {
        QMap<QString, QByteArray> files;
        const QDir dir(file(folder));
        QDirIterator it(dir.path(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString name = it.next();
            files.insert(dir.relativeFilePath(name), contentOf(name));
        }
        return files;
    }

    void put(const QStringList& lines) {
        ::put(file("b.bat"), (m_phantom->loadAndSetReferences() + lines).join('\n').toUtf8());
    }

    /// Names of the files of parts that there are.
    QStringList parts() const {
        QStringList names;
        for (const QString& name : filesIn("work").keys()) {
            if (name.endsWith(".rows")) {
                names << file("work/" + name);
            }
        }
        return names;
    }

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.fractionOfA = [](int x, int y) { return std::min(1.0, 0.05 * x + 0.06 * y); };
        options.energyShift = [](int x, int y) { return 0.2 * x - 0.1 * y; };
        options.i0Energies = 7;
        m_phantom = std::make_unique<Phantom>(options);
    }

    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        for (const char* folder : {"split", "work"}) {
            QVERIFY(QDir(m_dir->path()).mkdir(folder));
        }
    }

    void asOneRun_data() {
        columns<QStringList, int>("lines", "stages");
        const QString standard = "calib_load_std " + m_phantom->file("a.dat");
        const QString i1 = "load_I1_files_of_pattern NEW " + m_phantom->dir() + " i1-*.tif";
        const QString use = "analyzer_set_LCF_std 1 1 0.0 %1 0";
        QTest::newRow("fit, mask and everything that is saved of it")
            << Fit + QStringList{"set_mask 2",          "saveDataCfg_masked 1",
                                 "save_all_maps m.tif", "save_results r.nxs",
                                 "save_table t.csv",    "save_statistics s.csv",
                                 "select_disp_image 3", "save_image_with_bar p.png",
                                 "save_record made.bat"}
            << 1;
        QTest::newRow("the energy map of a calibration, worked on")
            << QStringList{standard,
                           "set_band_w 1",
                           "calib_exec",
                           "select_disp_image 2",
                           "deglitch 1 0.1",
                           "calib_smooth_map",
                           i1} +
                   Fit + QStringList{"save_all_maps m.tif"}
            << 2;
        QTest::newRow("mean E0, an area of no rectangle, residual absorption")
            << QStringList{"set_E0 mean", "select_ellipse 1 1 10 7"} + Fit +
                   QStringList{"select_threshold fraction 0.1 0.9 0", "analyzer_set_ra_energy 7110",
                               "analyzer_exec_ra", "saveDataCfg_save_as_float",
                               "save_all_maps m.tif"}
            << 4;
        QTest::newRow("a map, spectra and a table that are read again")
            << QStringList{standard,
                           "calib_exec",
                           "calib_save_map map.tif",
                           "calib_clear_map",
                           "calib_load_map map.tif",
                           "save_area_spectrum area.dat",
                           use.arg("area.dat"),
                           "analyzer_exec_LCF",
                           "move_position 3 3",
                           "save_spectra at.dat",
                           "fit_spectrum at.dat fitted.dat",
                           use.arg("./fitted.dat"),
                           "analyzer_exec_LCF",
                           "save_all_maps m.tif",
                           "save_all_images p.png"}
            << 3;
        QTest::newRow("frames, dark frames and names written anew in a loop")
            << QStringList{"save_flat_dark",
                           "load_dark_files dark.dat",
                           "set_energy_pattern I1 (\\d{4})eV eV",
                           ":for i %i 1 3",
                           "analyzer_exec_difference 705%i 7150",
                           "analyzer_select_map difference",
                           "save_data_as_tiff f708%ieV.tif",
                           "save_data_as_tiff last.tif",
                           ":next i",
                           "clear_I0_files",
                           "load_I1_files_of_pattern NEW . f*.tif",
                           "load_I1_files ADD f7082eV.tif",
                           "analyzer_exec_difference 7081 7083",
                           "save_all_maps m.tif"}
            << 4;
    }

    void asOneRun() {
        QFETCH(QStringList, lines);
        QFETCH(int, stages);
        put(lines);
        const Run plain = run("split", {});
        const auto wanted = filesIn("split");
        QVERIFY(!wanted.isEmpty());
        const Run told = run("split", {"--stages"});
        QVERIFY2(told.code != 0 || told.verdict == QString::number(stages),
                 qPrintable(told.verdict + told.problems));
        for (const int of : {1, 3, 5}) {
            for (const char* folder : {"work", "split"}) {
                QVERIFY(QDir(file(folder)).removeRecursively() && QDir().mkdir(file(folder)));
            }
            for (int stage = 0; stage < stages; ++stage) {
                std::vector<int> order;
                for (int i = 1; i <= of; ++i) {
                    order.push_back(i);
                }
                std::shuffle(order.begin(), order.end(), *QRandomGenerator::global());
                std::vector<std::unique_ptr<QProcess>> atOnce;
                for (const int i : order) {
                    if (of == 3) {
                        atOnce.push_back(start(
                            "split", {"--work", file("work"), "--part", QString("%1/3").arg(i)}));
                        continue;
                    }
                    const Run one = share(i, of);
                    QVERIFY2(one.code == 0 &&
                                 one.verdict.startsWith(QString("part %1/%2").arg(i).arg(of)),
                             qPrintable(one.verdict + one.problems));
                }
                for (const auto& process : atOnce) {
                    const Run one = endOf(process.get());
                    QVERIFY2(one.code == 0, qPrintable(one.verdict + one.problems));
                }
            }
            QVERIFY(share(1, of).verdict.contains("nothing left to do"));
            QCOMPARE(filesIn("split").keys(), QStringList());
            const auto before = parts();
            const Run closing = run("split", {"--work", file("work")});
            QCOMPARE(closing.verdict, plain.verdict);
            QCOMPARE(closing.code, plain.code);
            QCOMPARE(parts(), before);  // it has worked out none
            const auto made = filesIn("split");
            QCOMPARE(made.keys(), wanted.keys());
            for (const QString& name : wanted.keys()) {
                QVERIFY2(made.value(name) == wanted.value(name), qPrintable(name));
            }
        }
    }

    void exitCodes() {
        put(Fit + QStringList{"save_all_maps m.tif"});
        QCOMPARE(share(1, 2).code, 0);
        const Run again = share(1, 2);
        QCOMPARE(again.code, 75);
        QVERIFY2(again.verdict.contains("other shares must come first"), qPrintable(again.verdict));
        // A part that is damaged is made again.
        const QString part = parts().first();
        const QByteArray whole = contentOf(part);
        for (const QByteArray& bad : {whole.left(100), QByteArray(), whole + 'x'}) {
            ::put(part, bad);
            const Run mended = share(1, 2);
            QCOMPARE(mended.code, 0);
            QVERIFY2(mended.verdict.contains("1 part made"), qPrintable(mended.verdict));
            QCOMPARE(contentOf(part), whole);
        }
        const Run idle = share(1, 30);  // of fewer parts
        QCOMPARE(idle.code, 0);
        QVERIFY2(idle.verdict.contains("0 parts made"), qPrintable(idle.verdict));
        QCOMPARE(share(2, 2).code, 0);
        QVERIFY(share(2, 2).verdict.contains("nothing left to do"));
        QCOMPARE(filesIn("split").size(), 0);
    }

    void whatFails_data() {
        columns<QStringList, QString>("lines", "said");
        QTest::newRow("a line before")
            << QStringList{"load_dark_files none.tif"} + Fit << "part 1/2 of line";
        QTest::newRow("the analysis itself")
            << QStringList{"set_band_w 300", "analyzer_set_ra_energy 7110", "analyzer_exec_ra"}
            << "nothing left to do";
        QTest::newRow("a file that cannot be written")
            << QStringList{"save_record none/r.bat"} << "nothing left to do";
    }

    /// As in one run, with exit code 1 for every share.
    void whatFails() {
        QFETCH(QStringList, lines);
        QFETCH(QString, said);
        put(lines);
        for (int i = 1; i <= 2; ++i) {
            const Run one = share(i, 2);
            QCOMPARE(one.code, 1);
            QVERIFY2(one.verdict.contains(QString(said).replace("1/2", QString("%1/2").arg(i))),
                     qPrintable(one.verdict));
        }
        const Run ended =
            run("split", {"--work", file("work"), "--part", "1/2", "--stop-on-error"});
        QCOMPARE(ended.code, 1);
        QVERIFY2(ended.verdict.startsWith("part 1/2: ended at line"), qPrintable(ended.verdict));
    }

    void inputsThatChange() {
        put(Fit + QStringList{"analyzer_set_ra_energy 7110", "analyzer_exec_ra"});
        QCOMPARE(share(1, 2).code, 0);
        const QString frame = QDir(m_phantom->dir()).entryInfoList({"i1-*.tif"}).at(5).filePath();
        const QByteArray counts = contentOf(frame);
        ::put(frame, counts + 'x');
        const int before = parts().size();
        const Run later = share(2, 2);
        ::put(frame, counts);
        QCOMPARE(later.code, 1);
        QVERIFY2(later.problems.contains(frame), qPrintable(later.problems));
        QVERIFY2(later.verdict.contains("part 2/2 of line"), qPrintable(later.verdict));
        QCOMPARE(parts().size(), before);  // of no later line, either
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestShares)
#include "tst_shares.moc"
