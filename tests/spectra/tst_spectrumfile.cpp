#include <QDir>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "Files.h"
#include "TestMain.h"
#include "spectra/SpectrumFile.h"
#include "spectra/XafsSpectrum.h"

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
