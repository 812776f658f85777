#include <QBuffer>
#include <QImage>
#include <QTemporaryDir>
#include <climits>

#include "Files.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "frames/EnergyFromName.h"
#include "frames/FrameReader.h"
#include "frames/ImgFile.h"
#include "spectra/Units.h"

class TestFrames : public QObject {
    Q_OBJECT

  private slots:
    void boxSum() {
        const auto frame = tinyFrame(10, 10, 0, [](int, int) { return quint16(1); });
        QCOMPARE(frame->boxSum(0, 0, 1, 1), 4.0);
        QCOMPARE(frame->boxSum(5, 5, 1, 2), 15.0);
        QCOMPARE(frame->boxSum(5, 5, -1, -2), 15.0);  // by magnitude
        QCOMPARE(frame->boxSum(20, 5, 1, 1), 0.0);
        QCOMPARE(frame->boxSum(-1, 4, 1, 0), 1.0);  // reaches in
        QCOMPARE(frame->boxSum(5, 5, INT_MAX, INT_MIN), 100.0);
        QCOMPARE(frame->boxSum(INT_MIN, INT_MAX, 3, 3), 0.0);
    }

    void pictureIsTheLookUpOfEveryCount_data() {
        // width: rows of 5 pixels are not a multiple of 4 bytes
        columns<int, int>("format", "width");
        QTest::newRow("grey, looked up one by one") << 24 << 5;
        QTest::newRow("grey, through a table") << 24 << 401;
        QTest::newRow("colour, looked up one by one") << 13 << 5;
        QTest::newRow("colour, through a table") << 13 << 401;
    }
    void pictureIsTheLookUpOfEveryCount() {
        QFETCH(int, format);
        QFETCH(int, width);
        const auto frame = tinyFrame(width, 7, 0, [](int x, int y) {
            return static_cast<quint16>(311 + (x * 7919 + y * 104729) % 1999);
        });
        frame->format = format;
        frame->picture();
        QVERIFY(frame->image != nullptr);
        QCOMPARE(frame->image->size(), QSize(width, 7));
        const double low = frame->min;
        const double span = static_cast<double>(frame->max) - low;
        for (int y = 0; y < 7; ++y) {
            for (int x = 0; x < width; ++x) {
                const double v = (frame->rows[static_cast<std::size_t>(y)][x] - low) / span;
                const uchar* c = format == 13 ? colorOf(v) : greyOf(v);
                const QRgb expected =
                    format == 13 ? qRgb(c[0], c[1], c[2]) : qRgb(c[0], c[0], c[0]);
                QCOMPARE(frame->image->pixel(x, y), expected);
            }
        }
    }

    void extremesOutOfDateDoNoHarm() {
        const auto frame = tinyFrame(300, 3, 0, [](int x, int) { return quint16(x); });
        frame->min = 100;
        frame->max = 150;
        frame->picture();
        QCOMPARE(frame->image->pixel(50, 0), qRgb(0, 0, 0));
        QCOMPARE(frame->image->pixel(299, 2), qRgb(255, 255, 255));
        const auto flat = tinyFrame(9, 3, 0, [](int, int) { return quint16(4); });
        QCOMPARE(flat->rows[2][8], quint16(4));
        flat->clearRows();
        flat->picture();
        QCOMPARE(flat->image->pixel(8, 2), qRgb(0, 0, 0));
    }

    void valueAtAnEnergy() {
        const auto tenTimes = [](int i, int, int) { return static_cast<quint16>(10 * (i + 1)); };
        const auto value = [](const FrameSet& set, double e) {
            return setValueAt(set, e, 1, 1, 0, 0);
        };
        QCOMPARE(value(FrameSet(), 5), 1.0);
        QCOMPARE(value(tinyStack(3, 3, {7}, tenTimes), 5), 10.0);
        QCOMPARE(value(tinyStack(3, 3, {7, 7}, tenTimes), 5), 15.0);
        const FrameSet set = tinyStack(3, 3, {100, 110, 140, 160}, tenTimes);
        QCOMPARE(value(set, 95), 5.0);
        QCOMPARE(value(set, 100), 10.0);
        QCOMPARE(value(set, 125), 25.0);
        QCOMPARE(value(set, 160), 40.0);
        QCOMPARE(value(set, 180), 50.0);
        QVERIFY(set.at(-1) == nullptr && set.at(4) == nullptr);
    }

    void otherFilesAreRefused_data() {
        columns<QByteArray, QByteArray>("content", "message");
        QTest::newRow("empty") << QByteArray() << QByteArray("Error on reading file (1)");
        QTest::newRow("one byte") << QByteArray("I") << QByteArray("Error on reading file (1)");
        QTest::newRow("text") << QByteArray("hello, world") << QByteArray();
        QTest::newRow("not much of a TIFF") << QByteArray("II*") << QByteArray();
        QTest::newRow("short IMG") << QByteArray("IM\1\0abcd", 8) << QByteArray("Error on reading");
        QTest::newRow("IMG") << QByteArray("IM\0\0", 4) + QByteArray(80, 0)
                             << QByteArray("Can not open");
    }
    void otherFilesAreRefused() {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, message);
        QTemporaryDir dir;
        const QString name = dir.filePath("file");
        put(name, content);
        if (!message.isEmpty()) {
            QTest::ignoreMessage(QtDebugMsg, message + ' ' + name.toUtf8());
        }
        TiffData frame;
        QVERIFY(!frame.load(name));
        QVERIFY(!frame.loaded);
        QVERIFY(frame.rows.empty());
        const QString missing = dir.filePath("missing");
        QTest::ignoreMessage(QtDebugMsg, "Can not open (1) " + missing.toUtf8());
        QVERIFY(!frame.load(missing));
    }

    void imgComment_data() {
        columns<QByteArray, int, bool, quint32, quint32>("text", "length", "whole", "width",
                                                         "height");
        const auto row = [](const char* tag, const QByteArray& text, quint32 w, quint32 h) {
            QTest::newRow(tag) << text << text.size() << true << w << h;
        };
        row("both", "a=1,Prop_ImageWidth=640,Prop_ImageHeight=480,", 640, 480);
        row("no last comma", "Prop_ImageWidth=640,Prop_ImageHeight=480", 640, 0);
        row("first word", "Prop_ImageWidth= 640 x,", 640, 0);
        row("no number", "Prop_ImageWidth=wide,Prop_ImageHeight=-5,", 0, 0);
        row("too large", "Prop_ImageWidth=99999999999999999999,", 0, 0);
        row("inside an item", "x Prop_ImageWidth=640,", 0, 0);
        QTest::newRow("ends early")
            << QByteArray("Prop_ImageWidth=640,") << 50 << false << 640u << 0u;
    }
    void imgComment() {
        QFETCH(QByteArray, text);
        QFETCH(int, length);
        QFETCH(bool, whole);
        QBuffer in(&text);
        QVERIFY(in.open(QIODevice::ReadOnly));
        TiffData frame;
        QCOMPARE(readImgComment(in, length, &frame), whole);
        QTEST(frame.width, "width");
        QTEST(frame.height, "height");
    }

    /// An IMG file is refused by its name alone.
    void imgFromADevice() {
        QByteArray whole("IM\0\0", 4);
        whole += QByteArray(60, 0) + "Prop_ImageWidth=3,,Prop_ImageHeight=2,v=1.0,";
        whole[2] = static_cast<char>(whole.size() - 64);
        whole += QByteArray("\1\0\2\0\3\0\4\0\5\0\0\2", 12);
        for (int size = whole.size(); size >= 0; --size) {
            QByteArray part = whole.left(size);
            QBuffer in(&part);
            QVERIFY(in.open(QIODevice::ReadOnly));
            TiffData frame;
            QCOMPARE(readFrame(in, &frame).isEmpty(), size == whole.size());
            QCOMPARE(frame.loaded, size == whole.size());
            QCOMPARE(frame.rows.size(), std::size_t(frame.loaded ? 2 : 0));
            if (frame.loaded) {
                QCOMPARE(frame.boxSum(1, 0, 1, 0), 6.0);
                QCOMPARE(frame.rows[1][2], quint16(512));
                QCOMPARE(frame.max, 512u);
            }
        }
        QCOMPARE(frameNameFilters("%1 (%2)"), QStringList({"Tiff (*.tif *.tiff)", "IMG (*.img)"}));
    }

    void energyInAName() {
        const auto number = [](const char* path, const char* pattern = "[\\d_]+eV") {
            return numberFromName(path, QRegularExpression(pattern)).value_or(-1.0);
        };
        QCOMPARE(number("/d/Fe-7112_5eV.img"), 7112.5);
        QCOMPARE(number("Fe_7112_5eV.img"), 0.0);  // the underscore before it
        QCOMPARE(number("/50eV_run/Fe-7112eV.tif"), 50.0);
        QCOMPARE(number("Fe-7_1125keV.tif", "[\\d_]+keV"), 7.1125);
        QCOMPARE(number("Fe-7112eV.tif", ""), 0.0);
        QCOMPARE(number("Fe.tif"), -1.0);
        QCOMPARE(number("Fe-7112eV.tif", "["), -1.0);
        QCOMPARE(number("Fe-nan.tif", "nan"), 0.0);  // frames are put in order of their energies
        QCOMPARE(number("Fe-1e999eV.tif", "[\\de]+"), 0.0);
    }

    void units() {
        const double d = CrystalTable[0].spacing;
        QCOMPARE(braggAngle(1970, d), -1.0);
        QVERIFY(braggAngle(1980, d) > 80);
        QVERIFY(std::abs(energyOfAngle(braggAngle(7112.5, d), d) - 7112.5) < 1e-8);
        QVERIFY(std::abs(wavelengthOf(12398.424360387684) - 1.0) < 1e-15);
        QCOMPARE(QString::asprintf(UnitTable[0].format, 9000.0), QString(" 9000.00"));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestFrames)
#include "tst_frames.moc"
