#include <QDir>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "Files.h"
#include "TestMain.h"
#include "spectra/SpectrumFile.h"
#include "spectra/UsableRows.h"

namespace {
using Points = QVector<QPair<double, double>>;

const char Header[] =
    "  9809     SITE   BL1\n Mono :   SI(111)       D=  3.13551 A    Initial angle=  9.2 deg\n"
    "    Offset         0         0   826.150   652.975\n";
}  // namespace

Q_DECLARE_METATYPE(Points)

class TestSpectrumFile : public QObject {
    Q_OBJECT

  private slots:
    void files_data() {
        columns<QByteArray, int, Points>("content", "not9809", "points");
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("two columns")
            << QByteArray("# energy mu\n7000 0.5\n7001\t0.75 9 9\n\n7002\n") << 1
            << Points{{7000, 0.5}, {7001, 0.75}};
        QTest::newRow("comments and words")
            << QByteArray("#1 2\n1 #2\nenergy mu\nx\n") << 1 << Points{{1, 0}, {0, 0}};
        QTest::newRow("carriage returns and no last line feed")
            << QByteArray("7000 1\r\n7001 2") << 1 << Points{{7000, 1}, {7001, 2}};
        QTest::newRow("empty") << QByteArray() << 1 << Points{};
        // 12398.424360387684 / (2 * 3.13551 * sin(10 deg))
        QTest::newRow("9809") << QByteArray(Header) +
                                     "  10.0 10.0 1.0 200 100\n 10.0 10.0 1.0 200 0\n"
                              << 0 << Points{{11385.6566, std::log(2.0)}, {11385.6566, 1.0}};
        QTest::newRow("9809 with two spacings: the last")
            << QByteArray("9809 D= 1.5 A\n") + Header + "10 10 1 200 100\n"
            << 0 << Points{{11385.6566, std::log(2.0)}};
        QTest::newRow("9809 with four columns, end mark and header junk")
            << QByteArray("9809 1 2 3 4 5\n") + Header + " 10 10 1 200\n\x1a\n"
            << 0 << Points{};
        QTest::newRow("9809 without spacing")
            << QByteArray("9809\nOffset\n10 10 1 200 100\n") << 0 << Points{{inf, std::log(2.0)}};
        QTest::newRow("9809 without Offset") << QByteArray("9809\n1 1 1 2 1\n") << 0 << Points{};
        QTest::newRow("98091 is plain only in its fifth sign")
            << QByteArray("98091\n") << 0 << Points{};
    }

    void files() {
        QFETCH(QByteArray, content);
        QFETCH(Points, points);
        QTemporaryDir dir;
        const QString name = dir.filePath("s.dat");
        put(name, content);
        XafsSpectrum s;
        s.append(1, 1);  // whatever was there goes
        QVERIFY(readSpectrumFile(name, &s));
        QTEST(s.not9809(), "not9809");
        QCOMPARE(s.size(), points.size());
        for (int i = 0; i < points.size(); ++i) {
            QVERIFY(s.energy(i) == points[i].first ||
                    std::abs(s.energy(i) - points[i].first) < 1e-4);
            QCOMPARE(s.value(i), points[i].second);
        }
    }

    void aMissingFileIsSaidOnce() {
        XafsSpectrum s;
        QTest::ignoreMessage(QtDebugMsg, "Can not open /no/such/file.dat");
        QVERIFY(!readSpectrumFile("/no/such/file.dat", &s));
        QVERIFY(!s.valid());
    }

    void usableRows_data() {
        columns<QByteArray, int, QString>("content", "leftOut", "whyNot");
        const auto row = [](const char* name, const QByteArray& content, int leftOut = 0,
                            const QString& whyNot = QString()) {
            QTest::newRow(name) << content << leftOut << whyNot;
        };
        const QByteArray blanks("7000.5 0.25\n7001 0.5\n7002 1000\n7003 0.5\n7004 0.5\n");
        const auto with = [blanks](const char* what, const char* by) {
            return QByteArray(blanks).replace(what, by);
        };
        const auto decimalCommas = [blanks](const char* separator) {
            return QByteArray(blanks).replace('.', ',').replace(" ", separator);
        };
        row("blanks", blanks);
        row("tabs and more columns", with(" 0.5", "\t0.5 x 9"));
        row("commas", with(" ", ","));
        row("commas and blanks", with(" ", ", "));
        row("blanks and commas", with(" ", " ,"));
        row("semicolons", with(" ", ";"));
        row("decimal commas and blanks", decimalCommas(" "));
        row("decimal commas and semicolons", decimalCommas(" ; "));
        row("decimal commas, commas and blanks", decimalCommas(", "));
        row("exponents of Fortran", with("1000", "1.0D+3").replace("0.25", "25d-2"));
        row("headings", "# a 1\nenergy mu\neV, -\n\n" + with("7003", "# 9 9\n7003"));
        row("signs that are no UTF-8, returns, an end mark",
            "\xb5t\r\n" + with("\n", "\r\n") + "\x1a\x1a");
        row("returns alone", with("\n", "\r"));
        row("UTF-16", [blanks] {
            const QString text = QChar(QChar::ByteOrderMark) + QString(blanks);
            return QByteArray(reinterpret_cast<const char*>(text.utf16()), 2 * text.size());
        }());
        row("descending", "7004 0.5\n7003 0.5\n7002 1000\n7001 0.5\n7000.5 0.25");
        row("repeated", with("7000.5 0.25", "7000.5 0\n7000.5 0.5").replace("7001 0.5", "7001 1") +
                            "7001 0.5\n7001 0");
        row("no numbers", with("7003", "7002.5 nan\n7002.6 inf\n0 1\n-1 1\n7 x\nend\n7003"), 6);
        row("four energies", "7000 1\n7001 1\n7002 1\n7003 1\n7003 2\n", 0, "4 usable");
        row("commas for thousands", "7,000.5 1\n7,001.5 1\n7,002.5 1\n7,003.5 1\n7,004.5 1", 0,
            "1 usable");
        row("keV", "7.1 1\n7.2 1\n7.3 1\n7.4 1\n7.5 1\n", 0, "7.1 to 7.5 look like keV");
        row("keV of a heavy element", "80 1\n80.1 1\n80.2 1\n80.3 1\n80.4 1\n", 0, "keV");
        row("no text", QByteArray("II*\0", 4) + blanks, 0, "not taken, not a text");
        row("nothing", "", 0, "0 usable");
        const QByteArray rows9809("10 10 1 200 100\n");
        row("9809 of one energy", Header + rows9809 + rows9809, 0, "1 usable");
        row("9809 without spacing", "9809\nOffset\n" + rows9809, 0, "spacing");
        row("9809 without Offset", "9809 D= 3.1\n" + rows9809, 0, "Offset");
    }

    void usableRows() {
        QFETCH(QByteArray, content);
        QFETCH(int, leftOut);
        QFETCH(QString, whyNot);
        QTemporaryDir dir;
        const QString name = dir.filePath("s.dat");
        put(name, content);
        const TakenSpectrum taken = takeSpectrumFile(name);
        QVERIFY2(whyNot.isEmpty() == taken.whyNot.isEmpty() && taken.whyNot.contains(whyNot),
                 qPrintable(taken.whyNot));
        const Points points{{7000.5, 0.25}, {7001, 0.5}, {7002, 1000}, {7003, 0.5}, {7004, 0.5}};
        QCOMPARE(taken.spectrum.size(), whyNot.isEmpty() ? points.size() : 0);
        for (int i = 0; i < taken.spectrum.size(); ++i) {
            QCOMPARE(taken.spectrum.energy(i), points[i].first);
            QCOMPARE(taken.spectrum.value(i), points[i].second);
        }
        QCOMPARE(taken.warnings.size(), leftOut > 0 ? 1 : 0);
        QVERIFY(leftOut == 0 || taken.warnings[0].startsWith(QString("%1 row").arg(leftOut)));
    }

    /// What is usable of a 9809 file, to the bit as it is read.
    void usableRowsOf9809() {
        QTemporaryDir dir;
        const QString name = dir.filePath("s.dat");
        QByteArray rows;
        for (int i = 0; i < 9; ++i) {
            rows.prepend(" 9 " + QByteArray::number(12.0 + 0.01 * i) + " 1 200 1" + char('0' + i) +
                         "\n");
        }
        put(name, Header + rows);
        XafsSpectrum read;
        QVERIFY(readSpectrumFile(name, &read));
        put(name, Header + rows + "9 11 1 200 0\n9 11 1 -200 -100\n");
        const TakenSpectrum taken = takeSpectrumFile(name);
        QCOMPARE(taken.spectrum.not9809(), 0);
        QCOMPARE(taken.spectrum.size(), 9);
        for (int i = 0; i < 9; ++i) {
            QVERIFY(taken.spectrum.energy(i) == read.energy(i));
            QVERIFY(taken.spectrum.value(i) == read.value(i));
        }
        QVERIFY(taken.warnings.value(0).startsWith("2 row"));
    }

    void aSpectrumIsWrittenLineByLine() {
        Spectrum data;
        for (int i = 0; i < 200; ++i) {
            const double e = 7000.0 + i + 0.0374;
            data.append(e, e < 7100 ? 0.25 : 1.25);
        }
        const XafsSpectrum s(data, XafsSpectrum::Simple, 1.5);
        QTemporaryDir dir;
        const QString name = dir.filePath("out.dat");
        QVERIFY(writeSpectrumFile(name, s, true));
        const QList<QByteArray> lines = contentOf(name).split('\n');
        QCOMPARE(lines.size(), 2 + 200 + 1);
        QCOMPARE(lines[0], QByteArray("###Tarnwick::XafsSpectrum"));
        QCOMPARE(lines[1], QByteArray("# x  double-normalized-pre-base y pre post"));
        QList<QByteArray> items = lines[2].split('\t');
        QCOMPARE(items.size(), 5);
        QCOMPARE(items[0], QByteArray("6998.54"));  // six digits
        QCOMPARE(items[2], QByteArray("0.25"));
        QCOMPARE(items[3], QByteArray("0.25"));
        QVERIFY(std::abs(items[4].toDouble() - 1.25) < 1e-6);
        QVERIFY(writeSpectrumFile(name, s, false));
        QVERIFY(contentOf(name).contains("\n7000.04\t"));
        // A name below a file cannot be written; what is there stays whole.
        QVERIFY(!writeSpectrumFile(name + "/x.dat", s, true));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 1);
    }

    void missingCurvesAreWrittenAsZero() {
        Spectrum data;
        data.append(1.0, 2.0);
        QTemporaryDir dir;
        QVERIFY(writeSpectrumFile(dir.filePath("p"), XafsSpectrum(data, 0, 0.0), false));
        QVERIFY(contentOf(dir.filePath("p")).endsWith("\n1\tinf\t2\t0\t0\n"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestSpectrumFile)
#include "tst_spectrumfile.moc"
