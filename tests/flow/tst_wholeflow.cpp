#include <QApplication>
#include <QFile>
#include <QTextStream>
#include <cmath>
#include <memory>

#include "BatchRun.h"
#include "Phantom.h"
#include "TestMain.h"
#include "imagedata/TiffData.h"

namespace {

/// A table as "saveDataCfg_text_as_vals" and "saveDataCfg_text_as_ssv" write it.
QVector<QVector<double>> readRows(const QString& fileName) {
    QVector<QVector<double>> rows;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return rows;
    }
    QTextStream in(&file);
    while (!in.atEnd()) {
        const QString line = in.readLine();
        if (line.startsWith('#')) {
            continue;
        }
        QVector<double> row;
        for (const QString& item : line.split(' ', Qt::SkipEmptyParts)) {
            row << item.toDouble();
        }
        rows << row;
    }
    return rows;
}

double fractionOfA(int x, int y) {
    return std::min(1.0, 0.05 * x + 0.06 * y);
}

}  // namespace

class TestWholeFlow : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.fractionOfA = fractionOfA;
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(m_phantom->isValid());
    }

    /// The counts are integers of about 20000: mu-t is off by at most 1 / 40000 a point. The
    /// fraction is a least-squares mean over the edge step of 0.8, so its error stays below that
    /// of a single point, 1 / 40000 / 0.8, times the leverage of two similar references (about 5).
    void knownFractionsComeBack_data() {
        QTest::addColumn<int>("mode");
        QTest::newRow("LCF") << 0;
        QTest::newRow("MLCF") << 1;
    }

    void knownFractionsComeBack() {
        QFETCH(int, mode);
        Body body;
        BatchRun batch(body);
        const QString table = m_phantom->file("a.txt");
        QVERIFY(batch.run(m_phantom->loadAndSetReferences() +
                          QStringList{QString("analyzer_set_LCF_mode %1").arg(mode),
                                      "analyzer_exec_LCF", "analyzer_select_image_type 1",
                                      "analyzer_select_image 0", "saveDataCfg_save_as_text",
                                      "saveDataCfg_text_as_ssv", "saveDataCfg_text_as_vals",
                                      "save_data_as_tiff " + table}));
        QCOMPARE(batch.problems(), QStringList());
        QCOMPARE(batch.done(), 14);
        const auto rows = readRows(table);
        QCOMPARE(rows.size(), 8);
        double worst = 0.0;
        for (int y = 0; y < rows.size(); ++y) {
            QCOMPARE(rows[y].size(), 12);
            for (int x = 0; x < rows[y].size(); ++x) {
                worst = std::max(worst, std::abs(rows[y][x] - fractionOfA(x, y)));
            }
        }
        qInfo() << "worst error of a fraction" << worst;
        QVERIFY(worst < 2e-4);
    }

    /// Every command that saves, and the pictures and frames that come of it.
    void resultsAreSaved() {
        Body body;
        BatchRun batch(body);
        const auto out = [this](const char* name) { return m_phantom->file(name); };
        QVERIFY(batch.run(
            m_phantom->loadAndSetReferences() +
            QStringList{"select_region 2 1 8 5", "analyzer_exec_LCF",
                        "analyzer_select_image_type 1", "analyzer_select_image 0",
                        "select_disp_image 3", "save_image " + out("map.png"),
                        "save_all_images " + out("all.png"), "saveDataCfg_tiff_fix_scale 1",
                        "saveDataCfg_tiff_scale_min 0", "saveDataCfg_tiff_scale_max 1",
                        "save_data_as_tiff " + out("map.tif"), "saveDataCfg_tiff_as_analyzed 1",
                        "save_data_as_tiff " + out("area.tif"), "move_position 3 2",
                        "save_spectra " + out("spectrum.dat")}));
        QCOMPARE(batch.problems(), QStringList());
        QCOMPARE(QImage(out("map.png")).size(), QSize(12, 8));
        for (const char* name : {"all-0-0.png", "all-1-0.png", "all-0-1.png", "all-1-1.png"}) {
            QVERIFY2(!QImage(out(name)).isNull(), name);
        }
        TiffData map;
        QVERIFY(map.load(out("map.tif")));
        TiffData area;
        QVERIFY(area.load(out("area.tif")));
        QCOMPARE(QSize(int(area.width), int(area.height)), QSize(6, 4));
        for (int y = 1; y < 5; ++y) {
            for (int x = 2; x < 8; ++x) {
                const double expected = fractionOfA(x, y) * 65535.0;
                QVERIFY(std::abs(map.rows[size_t(y)][x] - expected) < 16.0);
                QCOMPARE(area.rows[size_t(y - 1)][x - 2], map.rows[size_t(y)][x]);
            }
        }
        QCOMPARE(int(map.rows[0][0]), 0);  // outside the area nothing was analysed

        QFile spectrum(out("spectrum.dat"));
        QVERIFY(spectrum.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = spectrum.readAll().split('\n');
        QCOMPARE(lines.size(), 2 + 61 + 1);
        const QList<QByteArray> items = lines[2 + 40].split('\t');  // 7200 eV
        QCOMPARE(items.size(), 5);
        QCOMPARE(items[0].toDouble(), 7200.0);
        QVERIFY(std::abs(items[1].toDouble() - 1.0) < 1e-3);
        QVERIFY(std::abs(items[2].toDouble() - Phantom::muA(7200.0)) < 1e-4);
    }

    /// Whatever is wrong in a batch, it reaches its end and what is right in it is done.
    void aBatchReachesItsEnd_data() {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<int>("problems");
        const QString dir = m_phantom->dir();
        QTest::newRow("analysis without images") << QStringList{"analyzer_exec_LCF"} << 1;
        QTest::newRow("analysis without references")
            << QStringList{"load_I1_files_of_pattern NEW " + dir + " i1-7*.tif",
                           "analyzer_exec_LCF"}
            << 1;
        QTest::newRow("no file matches")
            << QStringList{"load_I0_files_of_pattern NEW " + dir + " *.none",
                           "load_I1_files_of_pattern NEW " + dir + "/none"}
            << 2;
        QTest::newRow("files that are no images")
            << QStringList{"load_I1_files NEW " + m_phantom->file("a.dat") + " " +
                           m_phantom->file("missing.tif") + " " + m_phantom->file("b.dat")}
            << 3;
        QTest::newRow("nothing to load") << QStringList{"load_I1_files", "load_I0_files NEW"} << 0;
        QTest::newRow("unknown words") << QStringList{"what", "", ":next nothing"} << 2;
        QTest::newRow("unbalanced quote")
            << QStringList{"load_I1_files NEW \"" + m_phantom->file("i1-7000_000eV.tif")} << 0;
        QTest::newRow("endless substitution")
            << QStringList{":for i \"\" 1 2", ":echo x",      "set_band_w 1", ":next i",
                           ":for j 1 11 12",  "set_band_w 1", ":next j"}
            << 0;
        QTest::newRow("numbers out of every range")
            << m_phantom->loadAndSetReferences() +
                   QStringList{"set_band_w -3",
                               "set_band_h 2000000000",
                               "select_region -5 -5 2000000000 2000000000",
                               "analyzer_exec_LCF",
                               "move_position 2000000000 -7",
                               "select_disp_image 77",
                               "analyzer_select_image 99",
                               "analyzer_set_LCF_std 9 1 0 x 0",
                               "analyzer_set_LCF_std -1 1 0 x 0"}
            << 3;  // a bin higher than the image has no centre inside it
        QTest::newRow("files that cannot be written")
            << m_phantom->loadAndSetReferences() +
                   QStringList{"analyzer_exec_LCF",
                               "analyzer_select_image 0",
                               "save_data_as_tiff " + m_phantom->file("a.dat/x.tif"),
                               "save_image " + m_phantom->file("a.dat/x.png"),
                               "move_position 1 1",
                               "save_spectra " + m_phantom->file("a.dat/x.dat")}
            << 3;
    }

    void aBatchReachesItsEnd() {
        QFETCH(QStringList, lines);
        QFETCH(int, problems);
        Body body;
        BatchRun batch(body);
        QVERIFY(batch.run(lines));
        QVERIFY2(batch.problems().size() == problems, qPrintable(batch.problems().join('\n')));
    }

    /// Exec. while a load is under way: from then on one line must be under way at a time.
    void aBatchCanBeStartedAnewAtAnyMoment() {
        Body body;
        QStringList order;
        connect(&body, &Body::commandDone, this,
                [&](const CmdLine& cmd, const QStringList&) { order << cmd.command; });
        BatchRun batch(body);
        const QStringList lines = m_phantom->loadAndSetReferences();
        body.batchCtrl()->dispatchLines(lines);
        QTRY_VERIFY(body.findChild<QWidget*>("SelectI1Files") != nullptr);
        QTest::qWait(5);
        order.clear();
        QVERIFY(batch.run(lines));
        QCOMPARE(order.mid(order.size() - 6),
                 (QStringList{"load_I1_files_of_pattern", "load_I0_files_of_pattern", "set_band_w",
                              "set_band_h", "analyzer_set_LCF_std", "analyzer_set_LCF_std"}));
    }

    /// A user's own load ends while a batch runs: it must not answer a line of the batch.
    void aUsersLoadDoesNotStepTheBatch() {
        Body body;
        BatchRun batch(body);
        QStringList order;
        connect(&body, &Body::commandDone, this,
                [&](const CmdLine& cmd, const QStringList&) { order << cmd.text; });
        bool once = false;
        connect(&body, &Body::loadProgress, this, [&](int stack, int done, int) {
            if (stack == 1 && done == 3 && !once) {
                once = true;
                body.readI0Files({m_phantom->file("i0-7000_000eV.tif")}, true);
            }
        });
        const QStringList lines = m_phantom->loadAndSetReferences();
        QVERIFY(batch.run(lines));
        QVERIFY(once);
        QCOMPARE(order, lines);
    }

    /// Closing in the middle of a load must stop every thread and lose no memory.
    void theWindowCanBeClosedInTheMiddleOfALoad() {
        Body body;
        body.batchCtrl()->dispatchLines(m_phantom->loadAndSetReferences());
        QTest::qWait(10);
        body.close();
    }

  private:
    std::unique_ptr<Phantom> m_phantom;
};

TARNWICK_TEST_MAIN(QApplication, TestWholeFlow)
#include "tst_wholeflow.moc"
