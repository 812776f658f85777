#include <QDir>
#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "batch/BatchCheck.h"

class TestBatchCheck : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    static QStringList shown(const QVector<Finding>& findings) {
        QStringList texts;
        for (const Finding& f : findings) {
            texts.append(QString("%1%2 %3").arg(f.warning ? "W" : "E").arg(f.line).arg(f.text));
        }
        return texts;
    }

  private slots:
    void initTestCase() {
        QVERIFY(QDir::setCurrent(m_dir.path()));
        QDir().mkdir("in");
        QDir().mkdir("out");
        QDir().mkdir("bad_7100eV");
        for (const char* name : {"in/a-7100eV.tif", "in/b-7200eV.tif", "ref.dat", "std.dat",
                                 "bad_7100eV/a.tif", "bad_7100eV/a-7100eV.tif", "a_7100eV.dat"}) {
            put(name, {});
        }
    }

    void findings_data() {
        // Lines, and beginnings of what is found, with a | between them.
        columns<QStringList, QStringList>("lines", "found");
        const auto row = [](const char* name, const char* lines, const char* found = "") {
            QTest::newRow(name) << QString(lines).split('|')
                                << QString(found).split('|', Qt::SkipEmptyParts);
        };
        QTest::newRow("empty") << QStringList() << QStringList();
        row("a good batch",
            "load_I1_files_of_pattern NEW in *.tif|"
            "load_I0_files NEW in/a-7100eV.tif in/b-7200eV.tif|set_band_w 1||"
            "analyzer_set_LCF_std 0 1 0.0 ref.dat 0|analyzer_set_LCF_std 1 1 -0.25 \\|"
            "std.dat 0|:rem_start|anything \" goes|:rem_end|analyzer_exec_LCF|:for i %i 0 1|"
            "analyzer_select_image %i|save_data_as_tiff out/%i.tif|:next i|:echo \"all done\"");
        row("words", "load_I1_file NEW in/a-7100eV.tif|# note||:fro i %i 1 2|qwertyuiop",
            "E1 unknown command 'load_I1_file' (did you mean load_I1_files?)|"
            "E2 '#' does not start a comment|E4 unknown command ':fro' (did you mean :for?)|"
            "E5 unknown command 'qwertyuiop'");
        row("number of arguments",
            "set_band_w|move_position 3|clear_I1_files now|load_I1_files NEW",
            "E1 too few arguments: set_band_w n|E2 too few arguments: move_position n n|"
            "W3 'now' is ignored|E4 too few arguments: load_I1_files mode file ...");
        row("kinds of arguments",
            "set_band_w 3.0|analyzer_set_ra_energy 7,1|analyzer_set_ra_factor nan|"
            "select_disp_image 4|analyzer_select_image_type 2|select_region 5 0 5 9|"
            "select_region 0 0 0 0",
            "W1 '3.0' is not an integer and counts as 0|W2 '7,1' is not a number|"
            "W3 'nan' is not a finite number|W4 4 is out of range|W5 2 is out of range|"
            "W6 the region is empty");
        row("the mode",
            "load_I1_files in/a-7100eV.tif in/b-7200eV.tif|load_I1_files NWE in/a-7100eV.tif|"
            "load_I1_files add in/a-7100eV.tif",
            "E1 'in/a-7100eV.tif' is taken as the mode|W2 mode 'NWE' is not NEW");
        row("files",
            "calib_load_std none.dat|calib_load_map in|save_image none/a.png|save_image out/a|"
            "load_I1_files_of_pattern NEW nodir *.tif|load_I0_files_of_pattern NEW in *.img",
            "E1 no such file: none.dat|E2 is a directory, not a file: in|"
            "E3 no such directory to write to: |E4 no picture format|"
            "E5 no such directory: nodir|E6 no file matches *.img in in");
        row("files written by the batch are there",
            "calib_save_map out/m.emp|calib_load_map out/../out/m.emp|calib_load_map out/n.emp",
            "E3 no such file: out/n.emp");
        row("energies in frame names",
            "load_I1_files NEW bad_7100eV/a.tif bad_7100eV/a-7100eV.tif in/b-7200eV.tif|"
            "load_I0_files_of_pattern NEW bad_7100eV|load_I0_files ADD ref.dat a_7100eV.dat",
            "W1 the energy is read from the directory's name: bad_7100eV/a.tif|"
            "W1 the energy is read from the directory's name: bad_7100eV/a-|"
            "W2 the energy is read from the directory's name|"
            "W3 no energy such as 7112_5eV in the name|W3 the energy reads as 0.71: ");
        row("energies by a pattern of one's own",
            "set_energy_pattern I0 re[f] keV|load_I1_files NEW in/b-7200eV.tif|"
            "load_I0_files NEW ref.dat in/b-7200eV.tif|set_energy_pattern I1 [ eV",
            "W3 the energy reads as 0: |W3 no energy that re[f] finds in the name|"
            "E4 '[' is not a regular expression");
        row("a file in a loop", ":for i %i 1 20|calib_load_std s%i.dat|:next i",
            "E2 no such file: s1.dat|E2 no such file: s2.dat|E2 no such file: s3.dat|"
            "E2 no such file: s4.dat|E2 no such file: s5.dat|E2 and more of this kind");
        row("loops", ":for i %i 1 3|:next I|:for j %j 1|:next j|:for k %k a 3|:next k|:next k",
            "E1 loop 'i' is never closed|E2 :next without :for of the name 'I'|"
            "E3 :for needs four arguments|E5 'a' is not an integer|"
            "E7 :next without :for of the name 'k'");
        row("crossing and replaced loops",
            ":for i %i 1 2|:for j %j 1 2|:next i|:next j|:for k %k 1 2|:for k %k 1 3|:next k",
            "W3 loop 'i' ends before loop 'j' inside it|"
            "E5 loop 'k' is not closed before another :for starts it anew");
        row("endless substitution",
            ":for i 1 9 12|move_position 1 1|:next i||:for j ab bbaa 0|calib_set_edge_eV abb|"
            ":next j",
            "E1 endless substitution: the value 10 holds the placeholder '1'|"
            "E1 endless substitution: the value 11|E1 endless substitution: the value 12|"
            "E5 'bbaa' is not an integer");
        row("growing substitution", ":for j ab bbaa 0|calib_set_edge_eV abb|:next j",
            "E1 'bbaa' is not an integer|E2 endless substitution");
        row("quotes", "calib_set_edge_eV \"7112|calib_set_edge_eV 7112\"|:echo \"a\"\"b\"",
            "W1 a quote is opened but not closed|W2 a quote inside an item|"
            "W3 only 'a' is echoed");
        row("continuation into nothing", "set_band_w 1 \\|", "W1 a backslash continues this line");
        row("continuation into a command", ":echo done\\|set_band_w 1",
            "W1 only 'doneset_band_w' is echoed|W2 the backslash at the end of the line");
        row("remarks",
            ":rem_end|:rem_start|:rem_start|:rem_end|:rem_start|note \\|:rem_end|set_band_w",
            "W1 :rem_end without :rem_start|W3 remarks do not nest|"
            "E5 this remark is never closed|E7 the backslash at the end of the line");
        row("analyses need data",
            "analyzer_exec_LCF|load_I1_files_of_pattern NEW in *.tif|"
            "load_I0_files NEW in/a-7100eV.tif in/b-7200eV.tif|"
            "analyzer_set_LCF_std 0 1 0 ref.dat 0|analyzer_set_LCF_std 1 0 0 ref.dat 0|"
            "analyzer_exec_LCF|calib_exec|analyzer_exec_ra|clear_I0_files|analyzer_exec_ra",
            "E1 the analysis cannot start: no I1 files are loaded, no I0 files are loaded, two "
            "references are needed (analyzer_set_LCF_std), not 0|"
            "W6 only 1 of the references is in use (analyzer_set_LCF_std)|"
            "E7 the analysis cannot start: no standard|E10 the analysis cannot start: no I0");
        row("references",
            "analyzer_set_LCF_std 1 1 0.0 ref.dat 0|analyzer_set_LCF_std 0 1 0.0 ref.dat|"
            "analyzer_set_LCF_std 1 1 0.0 ref.dat vic|analyzer_set_LCF_std 0 1 0 ref.dat 2|"
            "analyzer_set_LCF_std 0 0 0 ref.dat|analyzer_set_LCF_std 0 1 0 ref.dat no",
            "E1 there is no reference 1: the next new one is 0|"
            "W2 reference 0 is normalised with Victreen|W3 reference 1 is normalised|"
            "W4 reference 0 is normalised");
    }

    void findings() {
        QFETCH(QStringList, lines);
        QFETCH(QStringList, found);
        const QStringList texts = shown(checkBatch(lines));
        QVERIFY2(texts.size() == found.size(), qPrintable(texts.join('\n')));
        for (int i = 0; i < found.size(); ++i) {
            QVERIFY2(texts.at(i).startsWith(found.at(i)), qPrintable(texts.at(i)));
        }
    }

    // Loops that would run for years, and texts that would grow without bound.
    void neverHangs_data() {
        QTest::addColumn<QStringList>("lines");
        const auto row = [](const char* name, const QString& lines) {
            QTest::newRow(name) << (lines + "|set_band_h x").split('|');
        };
        row("long loop", ":for i %i 1 2000000000|set_band_w %i|:next i");
        row("long empty loop", ":for i %i 2000000000 -2000000000|:next i|x y");
        row("nested",
            ":for i %i 1 100000|:for j %j 1 100000|:for k %k 1 100000|move_position %i %k|"
            ":next k|:next j|:next i");
        const QString many = QString("1").repeated(20000);
        row("long value", ":for i 1 " + many + " 1000000|save_image 1" + many + "|:next i");
        row("growing", ":for j ab bbaabb 0|:for i %i 1 100000|calib_set_edge_eV abb|:next i");
    }

    void neverHangs() {
        QFETCH(QStringList, lines);
        const QVector<Finding> findings = checkBatch(lines);
        QVERIFY(!findings.isEmpty());
        QCOMPARE(findings.last().line, lines.size());  // the end is checked all the same
        QCOMPARE(findings.last().text, QString("'x' is not an integer and counts as 0"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestBatchCheck)
#include "tst_batchcheck.moc"
