#include <QTemporaryDir>
#include <cmath>

#include "BatchRun.h"
#include "Edges.h"
#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"

namespace {

constexpr int Size = 3;
constexpr double Jump = 0.8;
constexpr double Bump = 0.3;
constexpr double Late = 2.0;  // eV by which the standard's edge lies above that of the sample

/// mu-t before the edge: positive everywhere, lowest in the first column.
double levelAt(int x) {
    return 0.2 * (1 + x);
}

}  // namespace

/// A table of each kind of result: what it says of its source, and its values.
class TestSaved : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString file(const QString& name) const { return m_dir.filePath(name); }

    void writeSpectrum(const QString& name, double bump, double late) {
        putCurve(file(name), edges::energies(),
                 [=](double e) { return edges::step(e - late, bump); });
    }

  private slots:
    void initTestCase() {
        const QVector<double> list = edges::energies();
        const std::vector<double> energies(list.begin(), list.end());
        const auto counts = [&](int frame, int x, int) {
            const double e = energies[static_cast<std::size_t>(frame)];
            return static_cast<quint16>(
                std::lround(60000.0 * std::exp(-levelAt(x) - Jump * edges::step(e, Bump))));
        };
        QVERIFY(!writeTinyStack(m_dir.path(), "i1", Size, Size, energies, counts).isEmpty());
        QVERIFY(!writeTinyStack(m_dir.path(), "i0", Size, Size, {7000.0}, [](int, int, int) {
                     return quint16(60000);
                 }).isEmpty());
        writeSpectrum("a.dat", Bump, 0.0);
        writeSpectrum("b.dat", -0.2, 0.0);
        writeSpectrum("late.dat", Bump, Late);
        Body body;
        BatchRun batch(body);
        QVERIFY(batch.succeeds({"load_I1_files_of_pattern NEW " + m_dir.path() + " i1-*.tif",
                                "load_I0_files_of_pattern NEW " + m_dir.path() + " i0-*.tif",
                                "set_band_w 0",
                                "set_band_h 0",
                                "saveDataCfg_save_as_text",
                                "saveDataCfg_text_as_ssv",
                                "saveDataCfg_text_as_vals",
                                "calib_load_std " + file("late.dat"),
                                "calib_exec",
                                "select_disp_image 2",
                                "save_data_as_tiff " + file("E-shift"),
                                "calib_clear_map",
                                "analyzer_set_LCF_std 0 1 0 " + file("a.dat") + " 0",
                                "analyzer_set_LCF_std 1 1 0 " + file("b.dat") + " 0",
                                "analyzer_exec_LCF",
                                "analyzer_set_ra_energy 7050",
                                "analyzer_set_ra_factor 0.125",
                                "analyzer_exec_ra",
                                "analyzer_select_image_type 0",
                                "analyzer_select_image 0",
                                "save_data_as_tiff " + file("DMut"),
                                "analyzer_select_image_type 1",
                                "analyzer_select_image 1",
                                "save_data_as_tiff " + file("Ratio"),
                                "analyzer_select_image 2",
                                "save_data_as_tiff " + file("dmut-ra"),
                                "analyzer_select_image 3",
                                "save_data_as_tiff " + file("rest-ra"),
                                "analyzer_select_image 4",
                                "save_data_as_tiff " + file("ratio-ra")}));
    }

    void tables_data() {
        columns<QString, QString, QVector<double>>("source", "reference", "row");
        using Row = QVector<double>;
        QTest::newRow("E-shift") << "E-shift" << QString() << Row(Size, -Late);
        QTest::newRow("DMut") << "DMut" << QStringLiteral("a.dat") << Row(Size, Jump);
        QTest::newRow("Ratio") << "Ratio" << QStringLiteral("b.dat") << Row(Size, 0.0);
        QTest::newRow("dmut-ra") << "dmut" << QString() << Row(Size, Jump);
        // The level before the edge less an eighth of the jump.
        QTest::newRow("rest-ra") << "rest" << QString() << Row{0.1, 0.3, 0.5};
        // What lies above the lowest rest of the image, as a share.
        QTest::newRow("ratio-ra") << "ratio" << QString() << Row{0.0, 0.2 / 1.0, 0.4 / 1.2};
    }

    void tables() {
        QFETCH(QString, source);
        QFETCH(QString, reference);
        QFETCH(QVector<double>, row);
        const QString name = file(QTest::currentDataTag());
        const QString text = QString::fromUtf8(contentOf(name));
        QVERIFY2(text.contains("# source = " + source + '\n'), qPrintable(text));
        QCOMPARE(text.count("# reference file = "), reference.isEmpty() ? 0 : 1);
        QVERIFY2(text.contains("# reference file = " + reference) || reference.isEmpty(),
                 qPrintable(text));
        const QVector<QVector<double>> table = numbersOf(name);
        QCOMPARE(table.size(), Size);
        for (const QVector<double>& values : table) {
            QCOMPARE(values.size(), Size);
            for (int x = 0; x < Size; ++x) {
                QVERIFY2(std::abs(values[x] - row[x]) < 1e-3, qPrintable(text));
            }
        }
    }
};

TARNWICK_TEST_MAIN(QApplication, TestSaved)
#include "tst_saved.moc"
