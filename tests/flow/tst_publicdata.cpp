#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <cmath>

#include "BatchRun.h"
#include "TestMain.h"

/// Public measurements, end to end. They lie beside the checkout; without them nothing is tested.
class TestPublicData : public QObject {
    Q_OBJECT

    static QString data(const QString& name) { return QStringLiteral(PUBLIC_DATA "/") + name; }

    struct Row {
        double x, y, value;
    };
    static QVector<Row> readTable(const QString& name) {
        QVector<Row> rows;
        QFile file(name);
        file.open(QIODevice::ReadOnly | QIODevice::Text);
        QTextStream in(&file);
        while (!in.atEnd()) {
            const QString line = in.readLine();
            if (!line.startsWith('#')) {
                const QStringList items = line.split(' ', Qt::SkipEmptyParts);
                rows.append({items.value(0).toDouble(), items.value(1).toDouble(),
                             items.value(2).toDouble()});
            }
        }
        return rows;
    }

    static double valueAt(const QVector<Row>& rows, int x, int y) {
        for (const Row& row : rows) {
            if (row.x == x && row.y == y) {
                return row.value;
            }
        }
        return std::nan("");
    }

  private slots:
    void initTestCase() {
        if (!QFileInfo(data("fe-l-edge")).isDir()) {
            QSKIP("the public measurements are not here: " PUBLIC_DATA);
        }
    }

    /// Iron in 125 x 125 pixels and 123 energies, in bins of 5 x 5 pixels. The expected fractions
    /// were worked out apart from this program with centred sums and Cramer's rule.
    ///
    /// The scan begins 8 eV below the edge, so that no point lies 10 eV below it: the pre-edge line
    /// is 0, and the post-edge line runs through the second edge. The fractions add up to about
    /// 0.97 all the same, since sample and references are treated alike; no middle of the edge is
    /// found, and the edge jump, the post-edge line at 0 eV, means nothing.
    void ironFractions() {
        QTemporaryDir out;
        const auto table = [&](int reference) {
            return out.filePath(QString("fraction%1.dat").arg(reference));
        };
        const QString dir = data("fe-l-edge");
        Body body;
        BatchRun batch(body);
        QVERIFY(batch.run({"load_I1_files_of_pattern NEW " + dir + " I1-*.tif",
                           "load_I0_files_of_pattern NEW " + dir + " I0-*.tif", "set_band_w 2",
                           "set_band_h 2", "select_region 30 20 100 105",
                           "analyzer_set_LCF_std 0 1 0.0 " + dir + "/oxidized.dat 0",
                           "analyzer_set_LCF_std 1 1 0.0 " + dir + "/reduced.dat 0",
                           "analyzer_exec_LCF", "saveDataCfg_save_as_text",
                           "saveDataCfg_text_as_ssv", "saveDataCfg_text_as_xyz",
                           "saveDataCfg_tiff_as_analyzed 1", "analyzer_select_image_type 1",
                           "analyzer_select_image 0", "save_data_as_tiff " + table(0),
                           "analyzer_select_image 1", "save_data_as_tiff " + table(1)}));
        QCOMPARE(batch.problems(), QStringList());

        const QVector<Row> oxidized = readTable(table(0));
        const QVector<Row> reduced = readTable(table(1));
        QCOMPARE(oxidized.size(), 14 * 17);
        QCOMPARE(reduced.size(), 14 * 17);
        const struct {
            int x, y;
            double oxidized, reduced;
        } expected[] = {

            {32, 22, -0.076671422, 1.040132442}, {52, 22, 0.391979161, 0.580487528},
            {72, 22, 0.756238291, 0.226643037},  {62, 52, -0.083236268, 1.050981454},
            {77, 77, -0.133287666, 1.093050276}, {97, 102, -0.090967219, 1.060023115},
        };
        for (const auto& e : expected) {
            QVERIFY2(std::abs(valueAt(oxidized, e.x, e.y) - e.oxidized) < 1e-7,
                     qPrintable(QString("%1 %2").arg(e.x).arg(e.y)));
            QVERIFY(std::abs(valueAt(reduced, e.x, e.y) - e.reduced) < 1e-7);
        }
        double sumOxidized = 0.0;
        double sumReduced = 0.0;
        for (int i = 0; i < oxidized.size(); ++i) {
            sumOxidized += oxidized[i].value;
            sumReduced += reduced[i].value;
        }
        QVERIFY(std::abs(sumOxidized / oxidized.size() - -0.004986730) < 1e-7);
        QVERIFY(std::abs(sumReduced / reduced.size() - 0.967927918) < 1e-7);
    }
};

TARNWICK_TEST_MAIN(QApplication, TestPublicData)
#include "tst_publicdata.moc"
