#include <sys/resource.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <cmath>
#include <csignal>
#include <memory>

#include "DeadFile.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "frames/TiffData.h"

namespace {

using Table = QVector<QVector<double>>;

template <typename Value>
double worstError(const Table& table, Value value) {
    double worst = 0.0;
    for (int y = 0; y < table.size(); ++y) {
        for (int x = 0; x < table[y].size(); ++x) {
            worst = std::max(worst, std::abs(table[y][x] - value(x, y)));
        }
    }
    return worst;
}

const QStringList SaveNumbers = {"saveDataCfg_save_as_text", "saveDataCfg_text_as_ssv",
                                 "saveDataCfg_text_as_vals"};

}  // namespace

/// tarnwick-batch as a script starts it, without a display, at real work on known samples.
class TestProgram : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<Phantom> m_phantom;

    QString file(const QString& name) const { return m_dir.filePath(name); }

    /// As a script does it: without a display and a locale.
    void start(QProcess* process, const QStringList& arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "LANG"}) {
            environment.remove(name);
        }
        environment.insert("LC_ALL", "C");
        process->setProcessEnvironment(environment);
        process->setWorkingDirectory(m_dir.path());
        process->start(TARNWICK_BATCH, arguments);
    }

    QString batchOf(const QStringList& lines) {
        put(file("b.bat"), lines.join('\n').toUtf8());
        return "b.bat";
    }

    struct Run {
        int code = -1;
        QString out;
        QString verdict;  // its last line
        QString problems;
    };
    Run runWith(const QStringList& arguments) {
        QProcess process;
        start(&process, arguments);
        Run result;
        if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit) {
            result.code = process.exitCode();
        }
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.verdict = result.out.trimmed().section('\n', -1);
        result.problems = QString::fromUtf8(process.readAllStandardError());
        return result;
    }
    Run run(const QStringList& lines) { return runWith({batchOf(lines)}); }

    static double fractionOfA(int x, int y) { return std::min(1.0, 0.05 * x + 0.06 * y); }

  private slots:
    void initTestCase() {
        // A script in the background starts its programs with Ctrl-C ignored; not this one.
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        Phantom::Options options;
        options.fractionOfA = fractionOfA;
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(m_dir.isValid());
    }

    void usage_data() {
        columns<QStringList, int, QString>("arguments", "code", "said");
        const auto row = [](const QStringList& arguments, int code, const char* said) {
            QTest::newRow(qPrintable(arguments.join(' '))) << arguments << code << said;
        };
        row({}, 2, "No file given");
        row({"missing.bat"}, 2, "cannot open missing.bat");
        row({"."}, 2, "cannot open .");
        row({"missing.bat", "--check"}, 2, "cannot open missing.bat");
        row({"--", "-b"}, 2, "cannot open -b");
        row({"--check"}, 2, "No file given");
        row({"a.bat", "b.bat"}, 2, "");
        row({"--strict", "--check", "b.bat"}, 2, "--strict does not go with --check");
        row({"--check", "--record", "b.bat"}, 2, "Only one of --check and --record");
        row({"-C", ".", "--origin", "b.bat"}, 2, "-C does not go with --origin");
        row({"--work", "w", "--check", "b.bat"}, 2, "--work does not go with --check");
        row({"--work", "", "b.bat"}, 2, "needs a folder");
        row({"--work", "b.bat", "b.bat"}, 2, "is a file");
        row({"--report", "./b.bat", "b.bat"}, 2, "would replace the batch file");
        row({"--report", "r.json", "none.bat"}, 2, "none.bat");
        row({"--report", "nowhere/r.json", "b.bat"}, 2, "cannot write");
        row({"-x", "a.bat"}, 2, "");
        for (const char* part : {"0/3", "4/3", "1/0", "-1/3", "1", "1/2/3", "a/b", "1/3x", ""}) {
            row({"--work", "w", "--part", part, "b.bat"}, 2, "--part: it needs two numbers");
        }
        row({"--part", "1/2", "b.bat"}, 2, "--part needs --work");
        row({"--part", "1/2", "--work", "w", "--from", "1", "b.bat"}, 2, "neither with --from");
        row({"--part", "1/2", "--work", "w", "b.bat", "-C", ".", ".."}, 2, "one folder only");
        row({"--stages", "--check", "b.bat"}, 2, "Only one of --check and --stages");
        row({"--stages", "--work", "w", "b.bat"}, 2, "--work does not go with --stages");
        row({"--stages", "nothing.bat"}, 2, "cannot open");
        row({"-C", "nowhere", "b.bat"}, 2, "cannot enter nowhere");
        row({"b.bat", "-C", "."}, 0, "0 lines");
        row({"-C", ".", "b.bat", "--check"}, 0, "0 errors");
        row({"-C", "."}, 2, "No file given");
        row({"-C", "", "b.bat"}, 2, "-C: it needs a folder");
        row({"--set", "AB=1", "b.bat"}, 2, "--set: no %AB% in b.bat");
        row({"--set", "AB=1", "--set", "AB=2", "b.bat"}, 2, "AB is given twice");
        row({"--set", "a=1", "b.bat"}, 2, "--set: needs NAME=TEXT");
        row({"--from", "1", "b.bat"}, 2, "no command from line 1 of b.bat on");
        row({"--from", "0", "b.bat"}, 2, "--from: it needs");
        row({"--progress", "nan", "b.bat"}, 2, "--progress: it needs");
        row({"--summary", "b.bat", "b.bat"}, 2, "would replace the batch file");
        row({"--summary", "r", "--report", "./r", "b.bat"}, 2, "cannot be one file");
        row({"--summary", "nowhere/s.csv", "b.bat"}, 2, "cannot write");
        row({"--origin", "nothing.tif"}, 1, "nothing.tif: there is no such file");
        row({"--record", "b.bat"}, 1, "b.bat: no origin in it");
        row({"--version"}, 0, "tarnwick-batch ");
        row({"--help"}, 0, "--check");
    }

    void usage() {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QString, said);
        batchOf({});
        const Run result = runWith(arguments);
        QCOMPARE(result.code, code);
        QVERIFY2((code == 0 ? result.out : result.problems).contains(said),
                 qPrintable(result.out + result.problems));
        QVERIFY(code == 0 ? result.problems.isEmpty()
                          : result.out.isEmpty() && result.problems.count('\n') == 1);
    }

    void runsInAFolder() {
        QVERIFY(QDir(m_dir.path()).mkdir("in here"));
        put(file("in here/foil.dat"),
            "7010 0\n7020 0\n7030 0\n7100 0\n7110 1\n7120 1\n7130 1\n7140 1\n");
        const Run result = runWith({"-C", "in here", batchOf({"calib_load_std foil.dat"})});
        QCOMPARE(result.verdict, QString("1 line done, 0 with a warning, 0 failed"));
        QCOMPARE(result.code, 0);
    }

    /// Each on its own: one fails, one cannot be entered, and the others are done.
    void runsInSeveralFolders() {
        QStringList lines = m_phantom->loadAndSetReferences();
        lines += {"analyzer_exec_LCF", "analyzer_select_image_type 1", "analyzer_select_image 0",
                  "calib_load_std %FOIL%.dat", "save_data_as_tiff m.tif"};
        const QString failed = QString("scan_2: line %1: calib_load_std: ").arg(lines.size() - 1);
        for (const char* folder : {"scan_1", "scan_2", "scan,3"}) {
            QVERIFY(QDir(m_dir.path()).mkdir(folder));
            if (folder != QString("scan_2")) {
                QVERIFY(QFile::copy(m_phantom->file("a.dat"), file(folder) + "/f.dat"));
            }
        }
        const QString batch = batchOf(lines);
        const QStringList folders{"-C", "scan_1", "nowhere", "scan_2", "-C", "scan,3"};
        const QStringList rest{"--set", "FOIL=f", "--report", "r.json"};
        const Run result = runWith(QStringList{batch} + folders + rest);
        QCOMPARE(result.code, 1);
        QCOMPARE(result.verdict,
                 QString("2 of 4 folders done, 0 with a warning, 2 failed: nowhere, scan_2"));
        QVERIFY2(
            result.problems.contains("cannot enter nowhere\n") && result.problems.contains(failed),
            qPrintable(result.problems));
        QCOMPARE(result.out.count(QRegularExpression("folder \\d of 4: (scan|nowhere)")), 4);
        QVERIFY(QFile::exists(file("scan_1/m.tif")) && QFile::exists(file("scan,3/m.tif")));

        QMap<QString, int> entries;
        const QJsonArray told = QJsonDocument::fromJson(contentOf(file("r.json"))).array();
        for (const QJsonValue& entry : told) {
            ++entries[entry.toObject().value("folder").toString()];
        }
        const int each = lines.size() + 1;
        QCOMPARE(
            entries,
            (QMap<QString, int>{
                {"scan_1", each}, {"scan_2", each}, {"scan,3", each}, {"nowhere", 1}, {"", 1}}));

        const Run same = runWith(QStringList{"--summary", "s.csv", "--strict", "--set", "FOIL=f"} +
                                 folders + QStringList{"--", batch});
        QCOMPARE(same.verdict, result.verdict);
        const QByteArray table = contentOf(file("s.csv"));
        QVERIFY(!same.out.contains("scan,outcome"));
        double mean = 0.0;
        for (int i = 0; i < 96; ++i) {
            mean += fractionOfA(i % 12, i / 12) / 96.0;
        }
        const QStringList rows = QString::fromUtf8(table).trimmed().split('\n');
        QCOMPARE(rows.size(), 5);
        QCOMPARE(rows.at(0), QString("scan,outcome,bins,seconds,mean_fraction_1,mean_fraction_2"));
        QVERIFY2(rows.at(1).startsWith("scan_1,done,96,"), table);
        QCOMPARE(rows.at(2), QString("nowhere,failed,,0.00,,"));
        QVERIFY2(rows.at(3).startsWith("scan_2,failed,96,"), table);
        QVERIFY2(rows.at(4).startsWith("\"scan,3\",done,96,"), table);
        for (const int at : {1, 3, 4}) {
            const QStringList items = rows.at(at).split(',');
            QVERIFY(std::abs(items.at(items.size() - 2).toDouble() - mean) < 2e-4);
            QVERIFY(std::abs(items.last().toDouble() - (1.0 - mean)) < 2e-4);
        }
        QVERIFY(result.out.contains("scan,outcome,bins,seconds,mean_fraction_1,mean_fraction_2\n"));

        // A summary of one folder names it, too, and spares what one of the folders has read.
        const Run one = runWith(
            {"-C", "scan_1", batchOf({"calib_load_std f.dat"}), "--summary", "scan_1/f.dat"});
        QCOMPARE(one.code, 1);
        QVERIFY2(one.problems.contains("was read from this file"), qPrintable(one.problems));
        QCOMPARE(contentOf(file("scan_1/f.dat")), contentOf(m_phantom->file("a.dat")));
    }

    void ctrlCEndsAllFolders() {
        QProcess process;
        start(&process, {batchOf({":for i %i 1 100000000", "set_band_w %i", ":next i"}), "-C", ".",
                         ".", ".", "--summary", "ended.csv"});
        QVERIFY(process.waitForReadyRead(60000));
        ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 128 + SIGINT);
        const QByteArray out = process.readAllStandardOutput();
        QVERIFY(out.contains("folder 1 of 3: .\n") && !out.contains("folder 2 of 3"));
        QVERIFY(out.endsWith("\n0 of 3 folders done, 0 with a warning, 1 failed: .\n"));
        QVERIFY(contentOf(file("ended.csv")).contains("\n.,failed,,"));
    }

    /// A name for which there is no text is no name of a file, but of one that is there.
    void namesThatAreLeftOver() {
        put(file("%E9%89.dat"), contentOf(m_phantom->file("a.dat")));
        const QString batch = batchOf({":echo %AB%", "calib_load_std %E9%89.dat", "set_band_w %NN%",
                                       ":for i %NN% 3 3", ":echo %NN%", "set_band_w %NN%",
                                       "calib_save_map %OUT%%NN%.emp", ":next i"});
        for (const QStringList& arguments : {QStringList{batch}, QStringList{"--check", batch}}) {
            const Run result = runWith(arguments);
            QCOMPARE(result.code, 1);
            const QString said = result.out + result.problems;
            QCOMPARE(said.count("stands for nothing"), 3);
            for (const char* line : {"1:", "3:", "7:"}) {
                QVERIFY2(said.contains(QRegularExpression(
                             QString("^(line |b\\.bat:)%1.*stands for nothing").arg(line),
                             QRegularExpression::MultilineOption)),
                         qPrintable(said));
            }
        }
    }

    /// Ended at a failure, mended, and gone on with: what was saved before is left alone, what is
    /// saved after is what one run saves.
    void goesOnAfterAFailure() {
        QStringList lines = m_phantom->loadAndSetReferences();
        lines += {"analyzer_exec_LCF",         "analyzer_select_image 0",
                  "saveDataCfg_save_as_float", "save_data_as_tiff before.tif",
                  "calib_load_std mended.dat", "save_data_as_tiff after.tif",
                  "save_record after.bat"};
        const int at = lines.indexOf("calib_load_std mended.dat") + 1;
        const QString number = QString::number(at);
        const Run ended = runWith({"--stop-on-error", batchOf(lines)});
        QCOMPARE(ended.code, 1);
        QVERIFY2(ended.verdict.endsWith("1 failed: line " + number + " (calib_load_std)"),
                 qPrintable(ended.out));
        QVERIFY2(ended.out.contains("go on with --from " + number + "\n"), qPrintable(ended.out));
        QVERIFY(QFile::exists(file("before.tif")) && !QFile::exists(file("after.tif")));
        put(file("before.tif"), "kept");
        QCOMPARE(runWith({"--check", "--from", number, "b.bat"}).code, 1);
        QVERIFY(QFile::copy(m_phantom->file("a.dat"), file("mended.dat")));
        QCOMPARE(runWith({"--check", "--from", number, "b.bat"}).code, 0);
        const Run mended = runWith({"--from", number, "b.bat"});
        QCOMPARE(mended.code, 0);
        QCOMPARE(mended.out.count("note: left out"), 1);
        QCOMPARE(contentOf(file("before.tif")), QByteArray("kept"));
        const QByteArray after = contentOf(file("after.tif"));
        const QByteArray record = contentOf(file("after.bat"));
        QCOMPARE(run(lines).code, 0);
        QCOMPARE(contentOf(file("after.tif")), after);
        QCOMPARE(contentOf(file("after.bat")), record);
    }

    /// Where there is no terminal, lines of their own tell how far it is; none in a short batch.
    /// However long it takes until it has told something.
    void tellsHowFarItIs() {
        const auto batch = [this](int rounds) {
            return batchOf(m_phantom->loadAndSetReferences() +
                           QStringList{QString(":for i %i 1 %1").arg(rounds),
                                       ":echo \"half a line\"", "analyzer_exec_LCF", ":next i"});
        };
        QProcess process;
        start(&process, {"--progress", "0.01", batch(1000000)});
        QByteArray out;
        while (out.count("\nprogress") < 3 || out.count("\nnext i :") < 3) {
            QVERIFY2(process.waitForReadyRead(60000), out.right(1000).constData());
            out += process.readAllStandardOutput();
        }
        ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 128 + SIGINT);
        out += process.readAllStandardOutput();
        const QRegularExpression shape("^progress: line \\d+ \\([\\w:]+\\)(: \\S.*)?$");
        QString others;
        for (const QString& line : QString::fromUtf8(out).split('\n')) {
            if (line.contains("progress")) {
                QVERIFY2(shape.match(line).hasMatch(), qPrintable(line));
            } else {
                others += line;
            }
        }
        const int rounds = std::min(100, out.count("\nnext i :"));
        batch(rounds + 1);
        const QString quiet = runWith({"b.bat"}).out;
        QCOMPARE(runWith({"--progress", "0", "b.bat"}).out, quiet);
        QVERIFY(!quiet.contains("progress"));
        // But for the ends of the lines that were broken for them the log is the same.
        const QString same = quiet.section("\nnext i :", 0, rounds - 1).remove('\n');
        QCOMPARE(others.left(same.size()), same);
    }

    /// A module that is damaged is not one that was left out.
    void whyThereIsNoHdf5() {
        const QString program = file("bin/tarnwick-batch");
        QVERIFY(QDir(m_dir.path()).mkpath("bin") && QFile::copy(TARNWICK_BATCH, program));
        put(file("r.nxs"), "\x89HDF\r\n\x1a\n");
        const auto told = [&] {
            QProcess process;
            process.start(program, {"--origin", file("r.nxs")});
            return process.waitForFinished(60000) ? QString(process.readAllStandardError())
                                                  : QString();
        };
        const QString without = told();
        QVERIFY2(without.contains("without its module"), qPrintable(without));
        QVERIFY(QDir(m_dir.path()).mkpath("modules"));
        put(file("modules/tarnwick_hdf5.so"), "no library");
        const QString damaged = told();
        QVERIFY2(damaged.contains("cannot be loaded: ") && damaged.contains("tarnwick_hdf5.so"),
                 qPrintable(damaged));
    }

    void whatIsSaidToTheLetter() {
        const Run result =
            run({"", "# note", "set_band_h \\", " 3", QString::fromUtf8("calib_load_std 鉄.dat")});
        QCOMPARE(result.out,
                 QString::fromUtf8("Err: # noteset_band_h : 3\ncalib_load_std : 鉄.dat\n"
                                   "1 line done, 0 with a warning, 2 failed: line 2 (#), line 5 "
                                   "(calib_load_std)\n"));
        QCOMPARE(result.code, 1);
    }

    /// The report tells each line that counts, and the totals; it spares what was read.
    void report() {
        QVERIFY(QDir(m_dir.path()).mkdir("elsewhere"));
        const QStringList lines =
            m_phantom->loadAndSetReferences() + QStringList{":rem_start",
                                                            "no line",
                                                            ":rem_end",
                                                            "set_band_w 1 2",
                                                            "move_position 2 2",
                                                            "save_spectra a.dat",
                                                            "",
                                                            "set_band_h",
                                                            ":echo \"a b\""};
        const Run result =
            runWith({"--report", "r.json", "-C", "elsewhere", "--times", batchOf(lines)});
        QVERIFY2(QRegularExpression("^\\d\\d:\\d\\d:\\d\\d\\.\\d{3} echo a b$",
                                    QRegularExpression::MultilineOption)
                     .match(result.out)
                     .hasMatch(),
                 qPrintable(result.out));
        QVERIFY2(
            QRegularExpression("set_band_h\\); \\d+\\.\\d\\d s$").match(result.verdict).hasMatch(),
            qPrintable(result.verdict));
        const QByteArray text = contentOf(file("r.json"));
        const QJsonArray told = QJsonDocument::fromJson(text).array();
        QCOMPARE(text.count('\n'), told.size() + 2);  // one object a line of text
        const int first = lines.indexOf("set_band_w 1 2") - 3;
        QCOMPARE(told.size(), first + 6);
        const auto entry = [&told](int i) { return told.at(i).toObject(); };
        QCOMPARE(entry(first).value("outcome").toString(), QString("warning"));
        QCOMPARE(entry(first).value("line").toInt(), first + 4);
        QCOMPARE(entry(first).value("arguments").toArray(), QJsonArray({"1", "2"}));
        QCOMPARE(entry(first + 2).value("files").toArray(), QJsonArray({"a.dat"}));
        QCOMPARE(entry(first + 3).value("reasons").toArray(),
                 QJsonArray({"too few arguments: set_band_h n"}));
        const QJsonObject totals = entry(first + 5).value("totals").toObject();
        QCOMPARE(totals.value("done").toInt(), first + 3);
        QCOMPARE(totals.value("warning").toInt() + 10 * totals.value("failed").toInt(), 11);
        QCOMPARE(totals.value("exit").toInt(), 1);

        const QString standard = file("std.dat");
        QVERIFY(QFile::copy(m_phantom->file("a.dat"), standard));
        const Run spared = runWith({"--report", "std.dat", batchOf({"calib_load_std std.dat"})});
        QCOMPARE(spared.code, 1);
        QVERIFY2(spared.problems.contains("was read from this file"), qPrintable(spared.problems));
        QCOMPARE(contentOf(standard), contentOf(m_phantom->file("a.dat")));
    }

    void theBatchThatRunsIsSpared() {
        QVERIFY(QDir(m_dir.path()).mkdir("away"));
        const QString batch = batchOf({"save_record ../b.bat"});
        const QByteArray before = contentOf(file("b.bat"));
        for (const QStringList& arguments :
             {QStringList{"-C", "away", batch}, QStringList{"--check", "-C", "away", batch}}) {
            const Run result = runWith(arguments);
            QVERIFY2((result.out + result.problems).contains("the batch that runs was read from"),
                     qPrintable(result.out));
            QCOMPARE(result.code, 1);
        }
        QCOMPARE(contentOf(file("b.bat")), before);
    }

    void check() {
        QCOMPARE(runWith({"--check", batchOf({"set_band_w 1"})}).code, 0);
        const Run bad =
            runWith({"--check", batchOf({"set_band_w 1", "", "set_band_x 1", "set_band_w 1.0"})});
        QCOMPARE(bad.code, 1);
        QCOMPARE(bad.out, QString("b.bat:3: error: unknown command (did you mean "
                                  "set_band_w?)\n"
                                  "b.bat:4: error: '1.0' is not an integer\n"
                                  "b.bat: 2 errors, 0 warnings\n"));
    }

    /// What fails is named by its line in the file, and the rest is done.
    void aBatchWithFaults() {
        QStringList lines = m_phantom->loadAndSetReferences();
        lines.insert(2, "");
        lines.insert(3, "load_I1_files ADD missing.tif");
        lines += SaveNumbers;
        lines += {"calib_load_std missing.dat",
                  "analyzer_exec_LCF",
                  "analyzer_select_image_type 1",
                  "analyzer_select_image 1",
                  ":for i %i 0 2",
                  "save_data_as_tiff nowhere/b%i.dat",
                  ":next i",
                  "save_data_as_tiff b.dat"};
        const Run result = run(lines);
        QCOMPARE(result.code, 1);
        QCOMPARE(result.verdict,
                 QString("17 lines done, 0 with a warning, 5 failed: line 4 (load_I1_files), "
                         "line 12 (calib_load_std), line 17 (save_data_as_tiff, 3 times)"));
        QVERIFY2(result.problems.contains("line 4: load_I1_files: ") &&
                     result.problems.contains("missing.tif"),
                 qPrintable(result.problems));
        const Table fractions = numbersOf(file("b.dat"));
        QCOMPARE(fractions.size(), 8);
        QVERIFY(worstError(fractions, [](int x, int y) { return 1.0 - fractionOfA(x, y); }) < 2e-4);
    }

    /// What is written at the end of a run that does not come.
    void killed() {
        put(file("killed.json"), "old");
        QProcess process;
        start(&process, {"--report", file("killed.json"), "--summary", file("killed.csv"),
                         batchOf(QStringList{":for i %i 1 1000000", "set_band_w %i", ":next i"})});
        QByteArray out;
        while (out.count("next i") < 3) {
            QVERIFY2(process.waitForReadyRead(60000), out.constData());
            out += process.readAllStandardOutput();
        }
        process.kill();
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(contentOf(file("killed.json")), QByteArray("old"));
        QVERIFY(!QFile::exists(file("killed.csv")));
        for (const QString& left :
             QDir(m_dir.path()).entryList({"*part"}, QDir::Files | QDir::Hidden)) {
            QVERIFY(left.startsWith(".killed.json.") && QFile::remove(file(left)));
        }
    }

    void interrupted_data() {
        columns<int, QString>("number", "line");
        QTest::newRow("while it loads")
            << SIGINT << "load_I1_files_of_pattern NEW " + m_phantom->dir() + " i1-*.tif";
        QTest::newRow("while it fits") << SIGTERM << "analyzer_exec_LCF";
        QTest::newRow("while it calibrates") << SIGINT << "calib_exec";
        QTest::newRow("while it saves") << SIGINT << "save_data_as_tiff whole.tif";
    }

    void interrupted() {
        QFETCH(int, number);
        QFETCH(QString, line);
        QProcess process;
        start(&process, {batchOf(m_phantom->loadAndSetReferences() +
                                 QStringList{"calib_load_std " + m_phantom->file("a.dat"),
                                             "analyzer_exec_LCF", "analyzer_select_image 0",
                                             ":for i %i 1 1000000", line, ":next i"})});
        QByteArray out;
        while (out.count("next i") < 3) {
            QVERIFY2(process.waitForReadyRead(60000), out.constData());
            out += process.readAllStandardOutput();
        }
        ::kill(static_cast<pid_t>(process.processId()), number);
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 128 + number);
        const QByteArray verdict =
            (out + process.readAllStandardOutput()).trimmed().split('\n').last();
        QVERIFY2(verdict.startsWith("Interrupted at line ") && verdict.endsWith(", 0 failed"),
                 verdict.constData());
        QCOMPARE(QDir(m_dir.path()).entryList({"*part"}, QDir::Files | QDir::Hidden),
                 QStringList());
        if (line.contains("whole.tif")) {
            TiffData saved;
            QVERIFY(saved.load(file("whole.tif")));
            QCOMPARE(int(saved.rows.size()), 8);
        }
    }

    void takesItsBatchFromAPipe() {
        for (const char* name : {"-", "/dev/stdin"}) {
            QProcess process;
            start(&process, {name});
            process.write(":echo begun\nset_band_w 1\nset_band_w x\n");
            process.closeWriteChannel();
            QVERIFY(process.waitForFinished(60000));
            QCOMPARE(process.exitCode(), 1);
            QVERIFY(process.readAllStandardOutput().endsWith(
                "2 lines done, 0 with a warning, 1 failed: line 3 (set_band_w)\n"));
        }
        QCOMPARE(runWith({"/dev/zero"}).code, 2);
    }

    void interruptedWhereAFileDoesNotAnswer_data() {
        columns<QString>("line");
        QTest::newRow("in the thread of a reader") << "load_I1_files NEW dead";
        QTest::newRow("in the thread of the measurement") << "calib_load_std dead";
    }

    void interruptedWhereAFileDoesNotAnswer() {
        QFETCH(QString, line);
        put(file("dead"), "II*");
        const DeadFile dead(file("dead"));
        if (!dead.isDead()) {
            QSKIP("no leases on this file system");
        }
        QProcess process;
        start(&process, {batchOf({":echo begun", line, ":echo \"not reached\""})});
        QByteArray out;
        while (!out.contains("dead")) {
            QVERIFY2(process.waitForReadyRead(60000), out.constData());
            out += process.readAllStandardOutput();
        }
        QVERIFY(!process.waitForFinished(500));
        ::kill(static_cast<pid_t>(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(30000));  // the file is back later
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 128 + SIGTERM);
        out += process.readAllStandardOutput();
        QVERIFY2(out.endsWith("\nInterrupted at line 2: 1 line done, 0 with a warning, 0 failed\n"),
                 out.constData());
    }

    /// The system's signal for a file that grows too large would end the program.
    void aLimitOfTheFilesFailsTheLine() {
        class : public QProcess {
            void setupChildProcess() override {
                const rlimit small{200, 200};
                setrlimit(RLIMIT_FSIZE, &small);
                std::signal(SIGXFSZ, SIG_DFL);
            }
        } process;
        put(file("old.tif"), "old");
        start(&process, {batchOf(m_phantom->loadAndSetReferences() +
                                 QStringList{"save_data_as_tiff old.tif", "save_record old.bat"})});
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 1);
        const QByteArray said = process.readAllStandardError();
        QVERIFY2(said.contains("save_data_as_tiff: ") && said.contains("save_record: "),
                 said.constData());
        QCOMPARE(contentOf(file("old.tif")), QByteArray("old"));
        QCOMPARE(QDir(m_dir.path()).entryList({"*.part", "old.bat"}), QStringList());
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestProgram)
#include "tst_program.moc"
