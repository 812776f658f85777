#include <QDir>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "Files.h"
#include "FullDisk.h"
#include "TestMain.h"
#include "files/PictureFile.h"
#include "frames/TiffData.h"
#include "frames/TiffFile.h"
#include "maps/AnalysisGrid.h"
#include "maps/Analyzed2DRes.h"
#include "output/FlatDark.h"
#include "output/ResultWriter.h"

namespace {

using Separator = TableOptions::Separator;
using Layout = TableOptions::Layout;

const double kNan = std::numeric_limits<double>::quiet_NaN();

// 6 x 4 pixels, analysed in bins of 3 x 1 over columns 0..5 and rows 1..2: centres at x = 1 and 4.
void fill(Analyzed2DRes* result) {
    result->setGrid(AnalysisGrid::ofArea(6, 4, 1, 0, QRectF(0, 1, 6, 2)));
    result->clear();
    result->setData(1, 1, 1, 0, 0.0);
    result->setData(4, 1, 1, 0, 1.0 / 3.0);
    result->setData(1, 2, 1, 0, 1.0);
    result->setData(4, 2, 1, 0, -50.0);
}

QVector<QVector<int>> countsOf(const QString& name) {
    QVector<QVector<int>> counts;
    TiffData frame;
    if (frame.load(name)) {
        for (const quint16* row : frame.rows) {
            QVector<int> line;
            for (quint32 x = 0; x < quint32(frame.width); ++x) {
                line << row[x];
            }
            counts << line;
        }
    }
    return counts;
}

}  // namespace

Q_DECLARE_METATYPE(TiffOptions)

class TestResultWriter : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }

  private slots:
    void pictures_data() {
        columns<QString, bool>("name", "written");
        QTest::newRow("png") << "a.png" << true;
        QTest::newRow("capitals") << "a.PNG" << true;
        QTest::newRow("bmp") << "a.bmp" << true;
        QTest::newRow("last suffix") << "a.txt.png" << true;
        QTest::newRow("no suffix") << "a" << false;
        QTest::newRow("no picture") << "a.xyz" << false;
        QTest::newRow("no directory") << "none/a.png" << false;
    }

    void pictures() {
        QFETCH(QString, name);
        QFETCH(bool, written);
        QImage picture(3, 2, QImage::Format_RGB888);
        picture.fill(QColor(10, 200, 30));
        picture.setPixelColor(2, 1, QColor(255, 0, 1));
        const QString file = m_dir.filePath(name);
        QCOMPARE(writePicture(file, picture), written);
        QCOMPARE(QFile::exists(file), written);
        if (written) {
            QCOMPARE(QImage(file).convertToFormat(QImage::Format_RGB888), picture);
            QVERIFY(!writePicture(file, QImage()));
            QCOMPARE(QImage(file).size(), picture.size());
        }
    }

    void tiffOfTheWholeImage() {
        Analyzed2DRes result;
        fill(&result);
        const QString name = path("whole.tif");
        QVERIFY(writeResultTiff(name, result, TiffOptions()));
        // -50..1 become 0..65535; pixels that were not analysed hold 0.0.
        const int zero = int(50.0 / 51.0 * 65535.0);
        const int third = int((50.0 + 1.0 / 3.0) / 51.0 * 65535.0);
        const QVector<int> empty(6, zero);
        QCOMPARE(countsOf(name), (QVector<QVector<int>>{empty,
                                                        {zero, zero, zero, third, third, third},
                                                        {65535, 65535, 65535, 0, 0, 0},
                                                        empty}));
        TiffOptions fixed;
        fixed.fixedScale = true;
        fixed.scaleMin = -50.0;
        fixed.scaleMax = 50.0;
        QVERIFY(writeResultTiff(name, result, fixed));
        QCOMPARE(countsOf(name).value(0), QVector<int>(6, 32767));
    }

    void tiffAsAnalyzed() {
        Analyzed2DRes result;
        fill(&result);
        TiffOptions options;
        options.asAnalyzed = true;
        options.fixedScale = true;
        const QString name = path("points.tif");
        QVERIFY(writeResultTiff(name, result, options));
        // 0..1 with the value far below cut off, not wrapped.
        QCOMPARE(countsOf(name), (QVector<QVector<int>>{{0, 21845}, {65535, 0}}));
    }

    void floats_data() {
        columns<int, int, bool>("width", "height", "asAnalyzed");
        QTest::newRow("wide") << 60 << 8 << false;
        QTest::newRow("tall") << 6 << 200 << false;
        QTest::newRow("bins of a tall area") << 9 << 40 << true;
    }
    /// The very values, each at its place, whatever the shape; no scale acts.
    void floats() {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(bool, asAnalyzed);
        const double inf = std::numeric_limits<double>::infinity();
        const double odd[] = {kNan, inf, -1e300, 1e-60, 1.0 / 3.0};
        Analyzed2DRes result;
        result.setGrid(AnalysisGrid::ofArea(width, height, 1, 0, QRectF(0, 1, width, height - 2)));
        result.clear();
        int n = 0;
        forEachPoint(result.grid(), [&](int x, int y) {
            result.setData(x, y, 1, 0, n % 7 < 5 ? odd[n % 7] : -5.25 * n);
            ++n;
        });
        result.setFixedScale(true);
        const QString name = path("floats.tif");
        QVERIFY(writeResultFloat(name, result, asAnalyzed, "Tarnwick origin 1\n"));
        FloatTiff image;
        QCOMPARE(readFloatTiff(name, &image), QString());
        QCOMPARE(image.size, asAnalyzed ? QSize(width / 3, height - 2) : QSize(width, height));
        QCOMPARE(image.description, QString("Tarnwick origin 1\n"));
        for (int y = 0; y < image.size.height(); ++y) {
            for (int x = 0; x < image.size.width(); ++x) {
                const double value =
                    asAnalyzed ? result.valueAt(1 + 3 * x, 1 + y) : result.valueAt(x, y);
                const float read = image.values[std::size_t(y * image.size.width() + x)];
                const float nearest = value == -1e300 ? -std::numeric_limits<float>::infinity()
                                                      : static_cast<float>(value);
                QVERIFY(read == nearest || (std::isnan(read) && std::isnan(value)));
            }
        }
    }

    void steps_data() {
        columns<QVector<double>, TiffOptions, int>("values", "options", "steps");
        QVector<double> even;
        for (int i = 0; i <= 99; ++i) {
            even << i / 99.0;
        }
        QVector<double> wild = even;
        wild[7] = 1000.0;
        wild[8] = kNan;
        wild[9] = std::numeric_limits<double>::infinity();
        QVector<double> few(100, 2.0);
        few[3] = 900.0;
        QVector<double> close;
        for (int i = 0; i < 160000; ++i) {
            close << 1.0 + i * 1e-9;  // more than are put in order at once
        }
        const TiffOptions own;
        const TiffOptions fixed{true, 0.0, 1000.0, false};
        const TiffOptions above{true, 0.5, 1.5, true};
        QTest::newRow("their own range") << even << own << 58915;  // 89 of 99
        QTest::newRow("many close together") << close << own << 58981;
        QTest::newRow("a wild one") << wild << own << 60;
        QTest::newRow("a wide scale") << even << fixed << 58;
        QTest::newRow("a scale without width") << even << TiffOptions{true, 1.0, 1.0, false} << 0;
        QTest::newRow("cut to a scale") << even << above << 29457;
        QTest::newRow("all below a scale") << even << TiffOptions{true, 3.0, 4.0, true} << 0;
        QTest::newRow("all one value") << QVector<double>(100, 2.0) << own << -1;
        QTest::newRow("all but one") << few << own << -1;
        QTest::newRow("two values") << QVector<double>{1.0, 2.0} << own << 65535;
        QTest::newRow("no number") << QVector<double>(100, kNan) << own << -1;
    }
    /// Of the bins: the pixels around them, here of 0, do not count.
    void steps() {
        QFETCH(QVector<double>, values);
        QFETCH(TiffOptions, options);
        QFETCH(int, steps);
        Analyzed2DRes result;
        const int n = values.size();
        result.setGrid(AnalysisGrid::ofArea(n, 9, 0, 0, QRectF(0, 4, n, 1)));
        result.clear();
        for (int x = 0; x < n; ++x) {
            result.setData(x, 4, 0, 0, values.at(x));
        }
        QCOMPARE(stepsInTiff(result, options).value_or(-1), steps);
    }

    void tables_data() {
        columns<bool, bool, bool>("comma", "points", "asAnalyzed");
        for (int i = 0; i < 8; ++i) {
            QTest::addRow("%s %s %s", i & 1 ? "comma" : "blank", i & 2 ? "points" : "rows",
                          i & 4 ? "as analyzed" : "whole image")
                << bool(i & 1) << bool(i & 2) << bool(i & 4);
        }
    }

    void tables() {
        QFETCH(bool, comma);
        QFETCH(bool, points);
        QFETCH(bool, asAnalyzed);
        Analyzed2DRes result;
        fill(&result);
        TableOptions options;
        options.separator = comma ? Separator::Comma : Separator::Blank;
        options.layout = points ? Layout::Points : Layout::Rows;
        options.asAnalyzed = asAnalyzed;
        const QString name = path("table.dat");
        QVERIFY(writeResultTable(name, result, options,
                                 {{"source", "Ratio"}, {"reference file", "/d/標準\nfoil.dat"}}));
        QStringList header;
        for (const QByteArray& line : contentOf(name).split('\n')) {
            header << (line.startsWith('#') ? QStringList(QString::fromUtf8(line)) : QStringList());
        }
        QCOMPARE(header, (QStringList{"# source = Ratio", "# reference file = /d/標準 foil.dat",
                                      "# width = 6", "# height = 4", "# bin half width = 1",
                                      "# bin half height = 0", "# x0 = 0", "# x1 = 6", "# y0 = 1",
                                      "# y1 = 3", "# value range = -50 1"}));

        QVector<QVector<double>> expected;
        const QVector<int> columns =
            asAnalyzed ? QVector<int>{1, 4} : QVector<int>{0, 1, 2, 3, 4, 5};
        const QVector<int> rows = asAnalyzed ? QVector<int>{1, 2} : QVector<int>{0, 1, 2, 3};
        for (const int y : rows) {
            QVector<double> line;
            for (const int x : columns) {
                const double value = y == 1 && x > 2 ? 0.333333333 : result.valueAt(x, y);
                if (points) {
                    expected << QVector<double>{double(x), double(y), value};
                }
                line << value;
            }
            if (!points) {
                expected << line;
            }
        }
        QCOMPARE(numbersOf(name, comma ? ',' : ' '), expected);
    }

    void noNumbersAreNan() {
        Analyzed2DRes result;
        result.setGrid(AnalysisGrid::ofArea(3, 1, 0, 0, QRectF(0, 0, 3, 1)));
        result.clear();
        result.setData(0, 0, 0, 0, kNan);
        result.setData(1, 0, 0, 0, -std::numeric_limits<double>::infinity());
        result.setData(2, 0, 0, 0, 1.5e-7);
        TableOptions options;
        options.layout = Layout::Rows;
        const QString name = path("nan.dat");
        QVERIFY(writeResultTable(name, result, options, {}));
        QVERIFY(contentOf(name).endsWith("\n# value range = 1.5e-07 1.5e-07\nnan,-inf,1.5e-07\n"));
        // Nothing but NaN has no range.
        result.clear();
        result.setData(0, 0, 0, 0, kNan);
        QVERIFY(writeResultTable(name, result, options, {}));
        QVERIFY(contentOf(name).endsWith("\n# value range = nan nan\nnan,0,0\n"));
    }

    void processedValuesAreSavedWhileTheyShow() {
        Analyzed2DRes result;
        result.setGrid(AnalysisGrid::ofArea(3, 3, 0, 0, QRectF(0, 0, 3, 3)));
        result.clear();
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 3; ++x) {
                result.setData(x, y, 0, 0, x == 1 && y == 1 ? 900.0 : double(y));
            }
        }
        result.deglitch2(40.0);  // the middle becomes the mean of its neighbours, 1
        TableOptions options;
        options.layout = Layout::Rows;
        const QString name = path("proc.dat");
        const QString tiff = path("proc.tif");
        QVERIFY(writeResultTable(name, result, options, {}));
        QVERIFY(contentOf(name).endsWith("# value range = 0 900\n0,0,0\n1,900,1\n2,2,2\n"));
        result.selectProcImg(true);
        QVERIFY(writeResultTable(name, result, options, {}));
        QVERIFY(contentOf(name).endsWith("# value range = 0 2\n0,0,0\n1,1,1\n2,2,2\n"));
        QVERIFY(writeResultTiff(tiff, result, TiffOptions()));
        QCOMPARE(countsOf(tiff).value(1), QVector<int>(3, 32767));
        QVERIFY(writeResultFloat(tiff, result, false));
        FloatTiff image;
        QVERIFY(readFloatTiff(tiff, &image).isEmpty());
        QCOMPARE(image.values, (std::vector<float>{0, 0, 0, 1, 1, 1, 2, 2, 2}));
    }

    void failedSavesLeaveTheOldFile() {
        const QString name = path("old.dat");
        put(name, "the old one");
        Analyzed2DRes nothing;
        QVERIFY(!writeResultTable(name, nothing, TableOptions(), {}));
        QVERIFY(!writeResultTiff(name, nothing, TiffOptions()));
        QVERIFY(!writeResultFloat(name, nothing, false));
        QCOMPARE(contentOf(name), QByteArray("the old one"));

        Analyzed2DRes result;
        fill(&result);
        const QString below = name + "/below";
        QVERIFY(!writeResultTable(below + ".dat", result, TableOptions(), {}));
        QVERIFY(!writeResultTiff(below + ".tif", result, TiffOptions()));
        QVERIFY(!writePicture(below + ".png", QImage(2, 2, QImage::Format_RGB32)));
        QCOMPARE(contentOf(name), QByteArray("the old one"));

        // A disk that fills up half way.
        const QString tiff = path("old.tif");
        const QString picture = path("old.bmp");
        put(tiff, "the old one");
        put(picture, "the old one");
        const QString drawing = path("old.pdf");
        put(drawing, "the old one");
        bool any = true;
        {
            const FullDisk full(40);
            any = writeResultTable(name, result, TableOptions(), {}) ||
                  writeResultTiff(tiff, result, TiffOptions()) ||
                  writePicture(picture, QImage(50, 50, QImage::Format_RGB32)) ||
                  writeDrawing(drawing, QSize(50, 50), [](QPainter&) {});
        }
        QVERIFY(!any);
        for (const QString& file : {name, tiff, picture, drawing}) {
            QCOMPARE(contentOf(file), QByteArray("the old one"));
        }
    }

    /// The same drawing is the same file at any time.
    void aDrawingTellsNoTime() {
        const QString name = path("line.pdf");
        const auto line = [](QPainter& painter) { painter.drawLine(0, 0, 40, 30); };
        QVERIFY(writeDrawing(name, QSize(50, 50), line));
        const QByteArray pdf = contentOf(name);
        QVERIFY(pdf.contains("/Creator (") && !pdf.contains("/CreationDate"));
        const int xref = pdf.mid(pdf.lastIndexOf("startxref") + 9).trimmed().split('\n')[0].toInt();
        QCOMPARE(pdf.mid(xref, 4), QByteArray("xref"));
    }

    void flatAndDarkWithoutPixels() {
        QVERIFY(QDir::setCurrent(m_dir.path()));
        put("flat.dat", QByteArray(300, 'x'));
        for (const FlatDark& file : FlatDarkFiles) {
            QVERIFY(!writeFlatDark(file, -1, 0));
        }
        QVERIFY(!contentOf("flat.dat").contains('x') && QFile::exists("dark.dat"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestResultWriter)
#include "tst_resultwriter.moc"
