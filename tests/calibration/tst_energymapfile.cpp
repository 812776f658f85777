#include <QBuffer>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>
#include <cmath>

#include <sys/resource.h>

#include "DebugLines.h"
#include "Files.h"
#include "FullDisk.h"
#include "SameBits.h"
#include "TestMain.h"
#include "base/LargeMemory.h"
#include "base/Limits.h"
#include "calibration/EnergyMapFile.h"
#include "calibration/NumberScan.h"
#include "maps/AnalysisGrid.h"
#include "maps/Analyzed2DRes.h"
#include "spectra/Spectrum.h"

namespace {

constexpr double kHc = 12398.424360387684;
constexpr double kPi = 3.1415926535;

double angleOf(double energy, double d) {
    const double x = kHc / energy / (2.0 * d);
    return std::abs(x) > 1.0 ? -1.0 : 180.0 * std::asin(x) / kPi;
}

double shiftOf(double value, double edge, double d) {
    return edge - kHc / (2.0 * d * std::sin((value + angleOf(edge, d)) / 180.0 * kPi));
}

// The lines of a map file one by one, so that a test can leave one out or spoil it.
QStringList goodHeader(int size) {
    return {"###Tarnwick::TWEM",
            "Record Date             : 26/11/21 05:00:00.000",
            "Std Edge Energy [eV]    : 7112.5",
            "Spacing [nm]            : 3.13553",
            QStringLiteral("Width [pix]             : %1").arg(size),
            "Height [pix]            : 77",
            "Bin Half Width [pix]    : 1",
            "Bin Half Height [pix]   : 0",
            "Area X0                 : 0",
            "Area X1                 : 3",
            "Area Y0                 : 1",
            "Area Y1                 : 2",
            "##-----------------"};
}

void fill(Analyzed2DRes* map, int width, int height) {
    map->setGrid(AnalysisGrid::ofArea(width, height, 0, 0, QRectF(0, 0, width, height)));
    map->clear();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            map->setData(x, y, 0, 0, -6.0 + 0.37 * x + 1.003 * y);
        }
    }
}

}  // namespace

class TestEnergyMapFile : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }

    QString written(const QStringList& lines, const QString& data) const {
        put(path("in.emp"), (lines.join('\n') + '\n' + data).toUtf8());
        return path("in.emp");
    }

  private slots:
    void headerNeedsItsLines_data() {
        columns<int, QString, bool>("line", "instead", "ok");
        const QString none;
        QTest::newRow("whole") << 1 << none << true;
        QTest::newRow("short tag") << 0 << "###TWEM" << true;
        QTest::newRow("tag in small letters") << 0 << "###twem" << false;
        QTest::newRow("other tag") << 0 << "###Tarnwick::XafsSpectrum" << false;
        QTest::newRow("tag after a blank") << 0 << " ###TWEM" << false;
        QTest::newRow("no edge energy") << 2 << none << false;
        QTest::newRow("no spacing") << 3 << none << false;
        QTest::newRow("no width") << 4 << none << false;
        QTest::newRow("label cut short") << 4 << "Width [pix] : 3" << false;
        QTest::newRow("no height") << 5 << none << true;
        QTest::newRow("no end") << 12 << none << true;
    }

    void headerNeedsItsLines() {
        QFETCH(int, line);
        QFETCH(QString, instead);
        QFETCH(bool, ok);
        QStringList lines = goodHeader(3);
        lines[line] = instead;
        QString text = lines.join(QLatin1Char('\n'));
        QTextStream stream(&text);
        const DebugLines debug;
        QCOMPARE(readEMapHeader(stream).ok, ok);
        QCOMPARE(debug.countOf("Not a emp file."), !ok && line == 0 ? 1 : 0);
    }

    void damagedFilesLeaveTheMap_data() {
        columns<QStringList, QString>("lines", "said");
        const QString invalid = "Invalid Energy Map Data File : ";
        const QString mismatch = QStringLiteral(
            "Loading Energy Map size : %1 x %1 : is not matched to the current image size : 3 x 3");
        const auto sized = [](const QString& width) {
            QStringList lines = goodHeader(3);
            lines[4] = "Width [pix]             : " + width;
            return lines;
        };
        QTest::newRow("empty") << QStringList() << invalid;
        QTest::newRow("foreign") << QStringList{"II*", "xyz"} << invalid;
        QTest::newRow("cut in the header") << QStringList(goodHeader(3).mid(0, 3)) << invalid;
        QTest::newRow("negative") << sized("-3") << invalid;
        QTest::newRow("huge") << sized("2147483647") << invalid;
        QTest::newRow("just too large") << sized("16385") << invalid;
        QTest::newRow("larger than the image") << goodHeader(4) << mismatch.arg(4);
        QTest::newRow("no number") << sized("3.0") << mismatch.arg(0);
        const auto with = [](int line, const char* text) {
            QStringList lines = goodHeader(3);
            lines[line] += text;
            return lines;
        };
        QTest::newRow("spacing of 0") << with(3, "e-999") << invalid;
        QTest::newRow("spacing in nm") << with(3, "e-1") << invalid;
        QTest::newRow("absurd spacing") << with(3, "e9") << invalid;
        QTest::newRow("spacing that is no number") << with(3, "x") << invalid;
        QTest::newRow("edge energy in keV") << with(2, "e-3") << invalid;
        QStringList hugeEdge = goodHeader(3);
        hugeEdge[2] = "Std Edge Energy [eV]    : 89e79";
        hugeEdge[3] = "Spacing [nm]            : 3.13553";
        QTest::newRow("edge that rounds away") << hugeEdge << invalid;
        QTest::newRow("endless shift") << with(12, "\n0 nan 0") << invalid;
        QTest::newRow("shift of 1100 eV") << with(12, "\n0 0 3") << invalid;
    }

    void damagedFilesLeaveTheMap() {
        QFETCH(QStringList, lines);
        QFETCH(QString, said);
        const QString name = written(lines, "0 0 0 \n");
        Analyzed2DRes map;
        fill(&map, 3, 3);
        const double before = map.valueAt(2, 1);
        QSize imageSize(3, 3);
        const DebugLines debug;
        QVERIFY(readEMap(name, 0.0, &imageSize, &map).refusal != EMapRefusal::None);
        QCOMPARE(debug.countOf(said), 1);
        QCOMPARE(map.valueAt(2, 1), before);
        QCOMPARE(map.grid().width, 3);
        QCOMPARE(imageSize, QSize(3, 3));
    }

    void lackOfMemoryLeavesTheMap() {
        const QString name = written(goodHeader(3), "0 0 0 \n");
        Analyzed2DRes map;
        fill(&map, 3, 3);
        const double before = map.valueAt(2, 1);
        QSize imageSize(3, 3);
        refuseMemory(1);
        const EMapReading reading = readEMap(name, 0.0, &imageSize, &map);
        refuseMemory(0);
        QVERIFY(reading.refusal == EMapRefusal::NoFile);
        QVERIFY2(reading.why.contains("not enough memory"), qPrintable(reading.why));
        QCOMPARE(map.valueAt(2, 1), before);
    }

    void aMissingFileIsSaidOnce() {
        Analyzed2DRes map;
        QSize imageSize(-1, -1);
        const DebugLines debug;
        QVERIFY(readEMap(path("none.emp"), 0.0, &imageSize, &map).refusal == EMapRefusal::NoFile);
        QCOMPARE(debug.all(), QStringList("Can not open " + path("none.emp")));
    }

    void onlySquareImagesTakeAMap() {
        const QString name = written(goodHeader(3), "0 0 0\n0 0 0\n");
        Analyzed2DRes map;
        const DebugLines debug;
        QSize wide(3, 2);
        QVERIFY(readEMap(name, 0.0, &wide, &map).refusal == EMapRefusal::OtherSize);
        QCOMPARE(debug.countOf("Loading Energy Map size : 3 x 3"), 1);
        // Without an image the map brings its size along.
        QSize none(-1, -1);
        readEMap(name, 0.0, &none, &map);
        QCOMPARE(none, QSize(3, 3));
        QCOMPARE(map.grid().width, 3);
    }

    void anglesBecomeShifts_data() {
        columns<double, double>("panelEdge", "usedEdge");
        QTest::newRow("edge of the file") << 0.0 << 7112.5;
        QTest::newRow("edge of the panel") << 8979.0 << 8979.0;
        QTest::newRow("negative panel edge") << -1.0 << 7112.5;
    }

    void anglesBecomeShifts() {
        QFETCH(double, panelEdge);
        QFETCH(double, usedEdge);
        QStringList lines = goodHeader(3);
        lines.insert(4, "Shift Map Width         : 0 99");  // no label of the map's size
        lines.replaceInStrings(QRegularExpression("$"), "\r");
        // The rest of a row may stand anywhere, only blanks and line ends count.
        const QString name = written(lines, "0.001 -0.002 0 \n1e-3 x\n -1 0 0 0.005 7");
        Analyzed2DRes map;
        QSize imageSize(3, 3);
        const EMapReading reading = readEMap(name, panelEdge, &imageSize, &map);
        QVERIFY(reading.refusal == EMapRefusal::None && reading.goesOn);
        QCOMPARE(reading.noNumbers, 1);
        const double d = 3.13553;
        QCOMPARE(map.valueAt(0, 0), shiftOf(0.001, usedEdge, d));
        QCOMPARE(map.valueAt(1, 0), shiftOf(-0.002, usedEdge, d));
        QCOMPARE(map.valueAt(0, 1), shiftOf(0.001, usedEdge, d));
        QCOMPARE(map.valueAt(1, 1), shiftOf(0.0, usedEdge, d));  // "x" is no number
        QCOMPARE(map.valueAt(2, 1), shiftOf(-1.0, usedEdge, d));
        QCOMPARE(map.valueAt(2, 2), shiftOf(0.005, usedEdge, d));
        QCOMPARE(map.grid().halfW, 1);
        QCOMPARE(map.grid().halfH, 0);
        QCOMPARE(map.grid().x1, 3);
        QCOMPARE(map.grid().y0, 1);
        QCOMPARE(map.grid().y1, 2);
        QCOMPARE(map.dataMin(), shiftOf(-1.0, usedEdge, d));
        QCOMPARE(map.dataMax(), shiftOf(0.005, usedEdge, d));
    }

    void missingValuesRunOut_data() {
        columns<QString, int>("data", "missing");
        QTest::newRow("none") << ".1 .2 .3 \n.4 .5 .6 \n.7 .8 .9 \n" << 0;
        QTest::newRow("no end of line") << ".1 .2 .3 .4 .5 .6 .7 .8 .9" << 0;
        QTest::newRow("last") << "1 1 1 \n1 1 1 \n1 1 \n" << 1;
        QTest::newRow("last without end of line") << "1 1 1 \n1 1 1 \n1 1" << 1;
        QTest::newRow("last row") << "1 1 1 \n1 1 1 \n" << 3;
        QTest::newRow("all") << "" << 9;
    }

    void missingValuesRunOut() {
        QFETCH(QString, data);
        QFETCH(int, missing);
        Analyzed2DRes map;
        QSize imageSize(3, 3);
        const DebugLines debug;
        QCOMPARE(readEMap(written(goodHeader(3), data), 0.0, &imageSize, &map).missing, missing);
        QCOMPARE(debug.countOf("run out!"), missing > 0 ? 1 : 0);
        if (missing > 0) {
            QVERIFY(std::abs(map.valueAt(2, 2)) < 1e-9);
        } else {
            QCOMPARE(map.valueAt(2, 2), shiftOf(0.9, 7112.5, 3.13553));
        }
    }

    /// Not one array of its size beside the map, and one line for all that is missing.
    void aShortMapTakesTheMemoryOfItsPixels() {
        const auto mostResident = [] {
            rusage use{};
            getrusage(RUSAGE_SELF, &use);
            return qint64(use.ru_maxrss) * 1024;
        };
        constexpr int Size = 4096;
        const qint64 pixels = qint64(Size) * Size;
        const QString name = written(goodHeader(Size), "0.001 0");
        Analyzed2DRes map;
        QSize none(-1, -1);
        const DebugLines debug;
        const qint64 before = mostResident();
        const EMapReading reading = readEMap(name, 0.0, &none, &map);
        const qint64 taken = mostResident() - before;
        QVERIFY2(taken < pixels * 3 / 2 * qint64(sizeof(double)), QByteArray::number(taken));
        QVERIFY(reading.refusal == EMapRefusal::None);
        QCOMPARE(reading.missing, pixels - 2);
        QCOMPARE(debug.all().filter("run out!"),
                 QStringList(QStringLiteral("run out! %1").arg(pixels - 2)));
        QCOMPARE(map.valueAt(0, 0), shiftOf(0.001, 7112.5, 3.13553));
        QCOMPARE(map.valueAt(Size - 1, Size - 1), shiftOf(0.0, 7112.5, 3.13553));
        QCOMPARE(map.dataMin(), std::min(map.valueAt(0, 0), map.valueAt(1, 0)));
    }

    void numbersAreThoseOfQt() {
        QStringList texts = {"inf",
                             "-inf",
                             "+inf",
                             "nan",
                             "NaN",
                             "-nan",
                             "infinity",
                             "1e5",
                             "1E5",
                             "0x10",
                             "+1",
                             "-0",
                             "+-1",
                             "1,5",
                             "1.",
                             ".5",
                             ".",
                             "-.",
                             "e5",
                             "1e",
                             "1e+",
                             "1e400",
                             "-1e400",
                             "1e-400",
                             "4.9e-324",
                             "2e-324",
                             "1e-310",
                             "0e999",
                             "1d5",
                             "1_0",
                             "1f",
                             "",
                             "0.1",
                             "00017",
                             "1e0005",
                             "1.7e308",
                             "9007199254740993",
                             "123456789012345678901234567890.5",
                             QString::fromUtf8("１"),
                             QString::fromUtf8("−1"),
                             "1\u00e9"};
        texts << QString(3000, '7') << "0." + QString(5000, '0') + "1" << QString("1") + QChar(0);
        QRandomGenerator random(1);
        const QString letters("0123456789012345678901234567890123456789....--++eEeE,xnaif");
        for (int i = 0; i < 60000; ++i) {
            QString text;
            for (int n = 1 + random.bounded(i % 2 == 0 ? 6 : 40); n > 0; --n) {
                text += letters[random.bounded(letters.size())];
            }
            texts << text << QString::number(random.generateDouble() - 0.5, 'g', i % 20);
        }
        for (const QString& text : texts) {
            bool expectedIs = false;
            const double expected = text.toDouble(&expectedIs);
            bool is = !expectedIs;
            const double found = numberIn(text, &is);
            QVERIFY2(is == expectedIs && same(found, expected), qPrintable(text));
        }
    }

    /// The same texts as the stream's own, wherever its pieces end.
    void textsAreThoseOfTheStream_data() {
        columns<QByteArray>("start");
        QTest::newRow("plain") << QByteArray();
        QTest::newRow("marked") << QByteArray("\xef\xbb\xbf");
        QTest::newRow("not of UTF-8") << QByteArray("\xff\xc3 1 \xe2\x80 2 ");
        QTest::newRow("blanks of all kinds") << QByteArray(
            "1\r\n2\t3\v4\f5\xc2\xa0"
            "6\xe2\x80\x83"
            "7\xe3\x80\x80 8\xe2\x80\xa8");
        QTest::newRow("of two bytes") << QByteArray("\xff\xfe");
    }
    void textsAreThoseOfTheStream() {
        QFETCH(QByteArray, start);
        QByteArray text = start;
        for (int i = 0; text.size() < 200000; ++i) {
            text += QByteArray::number(1.0 / (i + 1), 'g', i % 17) + QByteArray(1 + i % 3, ' ');
        }
        const auto read = [&](auto all) {
            QBuffer buffer(&text);
            buffer.open(QIODevice::ReadOnly);
            QTextStream stream(&buffer);
            stream.setCodec("UTF-8");
            return all(stream);
        };
        const auto expected = read([](QTextStream& stream) {
            std::vector<double> values;
            for (stream.skipWhiteSpace(); !stream.atEnd(); stream.skipWhiteSpace()) {
                QString item;
                stream >> item;
                values.push_back(item.toDouble());
            }
            return values;
        });
        const auto found = read([](QTextStream& stream) {
            std::vector<double> values;
            bool is = false;
            for (NumberScan scan(stream); !scan.isAtEnd();) {
                values.push_back(scan.next(&is));
            }
            return values;
        });
        QVERIFY(!found.empty() && found == expected);
    }

    void aTextWithoutEndIsNoNumber() {
        QByteArray text(Limits::LongestNumber, '0');
        text += " " + text + "0 7";
        QTextStream stream(text);
        NumberScan scan(stream);
        for (const bool expected : {true, false, true}) {
            bool is = !expected;
            const double value = scan.next(&is);
            QCOMPARE(value, scan.isAtEnd() ? 7.0 : 0.0);
            QCOMPARE(is, expected);
        }
    }

    void hostileAreasAreHarmless() {
        QStringList lines = goodHeader(3);
        lines[6] = "Bin Half Width [pix]    : -2147483648";
        lines[8] = "Area X0                 : -2147483648";
        lines[9] = "Area X1                 : 2147483647";
        Analyzed2DRes map;
        QSize imageSize(3, 3);
        QVERIFY(readEMap(written(lines, "1 1 1 1 1 1 1 1 1"), 0.0, &imageSize, &map).missing == 0);
        QVERIFY(map.grid().halfW >= 0 && map.grid().stepX >= 1);
        QVERIFY(map.grid().x0 >= 0 && map.grid().x1 <= 3);
        map.deglitch2(40.0);
    }

    void fileToTheLetter() {
        Analyzed2DRes map;
        map.setGrid(AnalysisGrid::ofArea(2, 1, 0, 1, QRectF(1, 0, 1, 1)));
        map.clear();
        map.setData(0, 0, 0, 0, 7112.5 - 1000.0);  // below any reflection: -1 stands for its angle
        map.setData(1, 0, 0, 0, 2.5);
        EMapInfo info;
        info.imageSize = QSize(3, 2);  // larger than the map
        info.edgeEnergy = 7112.537;
        info.spacing = 3.1355316;
        info.standardFileName = "標準 foil.dat";
        const QString name = path("out.emp");
        QVERIFY(writeEMap(name, map, info));

        const QString text = QString::fromUtf8(contentOf(name));
        QStringList lines = text.split(QLatin1Char('\n'));
        QVERIFY(QRegularExpression("^Record Date             : "
                                   "\\d\\d/\\d\\d/\\d\\d "
                                   "\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d$")
                    .match(lines.value(1))
                    .hasMatch());
        lines.removeAt(1);
        const double a0 = angleOf(7112.537, 3.1355316);
        const QString none = QString::number(-1.0 - a0);
        const QString some = QString::number(angleOf(7112.537 - 2.5, 3.1355316) - a0);
        QCOMPARE(lines, (QStringList{"###Tarnwick::TWEM", "Std Edge Energy [eV]    : 7112.54",
                                     "Spacing [nm]            : 3.13553",
                                     "Width [pix]             : 3", "Height [pix]            : 2",
                                     "Bin Half Width [pix]    : 0", "Bin Half Height [pix]   : 1",
                                     "Area X0                 : 1", "Area X1                 : 2",
                                     "Area Y0                 : 0", "Area Y1                 : 1",
                                     "Std File Name           : 標準 foil.dat",
                                     "Shift Map Height        : 1", "Shift Map Width         : 0 2",
                                     "##-----------------", none + QLatin1Char(' ') + some + " 0 ",
                                     "0 0 0 ", QString()}));
    }

    void theEdgeOfTheStandardComesFirst() {
        Spectrum standard;
        standard.append(7100.0, 0.0);
        standard.append(7110.0, 1.0);
        QCOMPARE(edgeEnergyForMap(&standard, 9000.0), 7105.0);
        QCOMPARE(edgeEnergyForMap(nullptr, 9000.0), 9000.0);
        QCOMPARE(edgeEnergyForMap(nullptr, 0.0), 0.0);
        const Spectrum empty;
        QCOMPARE(edgeEnergyForMap(&empty, 9000.0), 9000.0);
        QCOMPARE(edgeEnergyForMap(&empty, -5.0), 0.0);
    }

    void failedSavesLeaveTheOldFile() {
        Analyzed2DRes map;
        fill(&map, 40, 40);
        EMapInfo info;
        info.edgeEnergy = 7112.5;
        info.spacing = 3.1355316;
        const QString name = path("old.emp");
        put(name, "the old map");
        QVERIFY(!writeEMap(name, map, info));  // no image, nothing to write
        QCOMPARE(contentOf(name), QByteArray("the old map"));

        info.imageSize = QSize(40, 40);
        const DebugLines debug;
        const QString impossible = name + "/below.emp";
        QVERIFY(!writeEMap(impossible, map, info));
        QCOMPARE(debug.all(), QStringList("Can not open " + impossible));

        // A disk that fills up half way.
        {
            const FullDisk full(1000);
            QVERIFY(!writeEMap(name, map, info));
        }
        QCOMPARE(debug.countOf("Error on writing"), 1);
        QCOMPARE(contentOf(name), QByteArray("the old map"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestEnergyMapFile)
#include "tst_energymapfile.moc"
