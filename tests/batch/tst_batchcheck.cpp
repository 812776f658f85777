#include <QDir>
#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "batch/BatchCheck.h"

/// The check before a run: what it says beyond how the lines end, and that it comes to its end.
class TestBatchCheck : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    static QStringList shown(const QVector<Finding>& findings) {
        QStringList texts;
        for (const Finding& f : findings) {
            const char kind = "EWN"[static_cast<int>(f.kind)];
            texts.append(QString("%1%2 %3").arg(kind).arg(f.line).arg(f.text));
        }
        return texts;
    }

  private slots:
    void initTestCase() {
        QVERIFY(QDir::setCurrent(m_dir.path()));
        QDir().mkdir("in");
        QDir().mkdir("out");
        QVERIFY(!writeTinyStack("in", "a", 6, 4, {7000, 7050, 7100, 7110, 7120, 7200, 7300},
                                [](int, int, int) { return quint16(1); })
                     .isEmpty());
        QFile::copy("in/a-7000_000eV.tif", "in/b.tif");
        putCurve("ref.dat", QVector<double>{6990, 7000, 7020, 7100, 7120, 7130, 7200, 7310},
                 [](double e) { return e > 7110 ? 1.0 : 0.1; });
    }

    void findings_data() {
        // Lines, and beginnings of what is found, with a | between them.
        columns<QStringList, QStringList>("lines", "found");
        const auto row = [](const char* name, const QString& lines, const char* found = "") {
            QTest::newRow(name) << lines.split('|')
                                << QString(found).split('|', Qt::SkipEmptyParts);
        };
        const QString load =
            "load_I1_files_of_pattern NEW in a*.tif|load_I0_files_of_pattern "
            "NEW in a*.tif|set_band_w 0|set_band_h 0|";
        QTest::newRow("empty") << QStringList() << QStringList();
        row("words", "load_I1_file NEW a.tif|# note||:fro i %i 1 2|qwertyuiop",
            "E1 unknown command (did you mean load_I1_files?)|E2 '#' does not start a comment|"
            "E4 unknown command (did you mean :for?)|E5 unknown command");
        row("a word that is longer in lower case", "load_I1_filesZ|" + QString(20, QChar(0x130)),
            "E1 unknown command (did you mean load_I1_files?)|E2 unknown command");
        row("files that would be there",
            load +
                "move_position 2 2|save_spectra out/s.dat|"
                "analyzer_set_LCF_std 0 1 0 out/s.dat 0|analyzer_set_LCF_std 1 1 0 ref.dat 0|"
                "analyzer_set_LCF_std 2 1 0 out/t.dat 0|save_flat_dark|load_I0_files NEW flat.dat",
            "W8 no edge: ref.dat|E9 cannot be read: out/t.dat|W11 I0: no energy");
        row("files that would be of another kind",
            load +
                "select_disp_image 0|save_image out/a.png|calib_load_map out/a.png|"
                "calib_load_std out/a.png",
            "E7 |E8 ");
        row("a map of an oblong image",
            load +
                "calib_load_std ref.dat|calib_exec|calib_save_map out/m.emp|"
                "calib_load_map out/m.emp",
            "W5 no edge: ref.dat|W7 only maps of square images load|E8 only maps of square images "
            "load");
        row("a file in a loop", ":for i %i 1 20|calib_load_std s%i.dat|:next i",
            "E2 |E2 |E2 |E2 |E2 |E2 and more of this kind");
        row("zeros in front", ":for i %i 001 003|set_band_w %i|:next i",
            "W1 zeros in front are kept in the first round only: 001, then 2");
        row("a placeholder in another",
            ":for i %i 1 2|:for j %ii 1 2|set_band_w %ii|:next j|:next i",
            "W1 '%i' is replaced inside the placeholder '%ii' of line 2, too|E3 |E3 ");
        row("endless substitution", ":for i 1 9 12|set_band_w 1|:next i",
            "W2 endless substitution of a loop variable");
    }

    void findings() {
        QFETCH(QStringList, lines);
        QFETCH(QStringList, found);
        const QStringList texts = shown(checkBatch(lines));
        QVERIFY2(texts.size() == found.size(), qPrintable(texts.join('\n')));
        for (int i = 0; i < found.size(); ++i) {
            QVERIFY2(texts.at(i).startsWith(found.at(i)), qPrintable(texts.join('\n')));
        }
        QVERIFY(QDir("out").isEmpty() && !QFile::exists("flat.dat"));
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
        const QVector<Finding> findings = checkBatch(lines, QString(), DefaultCheckEffort / 20);
        QVERIFY(!findings.isEmpty());
        QCOMPARE(findings.last().line, lines.size());  // the end is checked all the same
        QVERIFY(findings.last().kind == Finding::Kind::Error);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestBatchCheck)
#include "tst_batchcheck.moc"
