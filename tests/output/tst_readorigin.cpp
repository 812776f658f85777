#include <sys/stat.h>

#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "Files.h"
#include "TestMain.h"
#include "files/PictureFile.h"
#include "frames/TiffData.h"
#include "frames/TiffFile.h"
#include "maps/AnalysisGrid.h"
#include "maps/Analyzed2DRes.h"
#include "output/NexusFile.h"
#include "output/ReadOrigin.h"
#include "output/ResultWriter.h"

namespace {

OriginText originOf(int files, const QString& folder = QString::fromUtf8("試料")) {
    OriginText origin;
    origin.entries = {{"reference", folder + "/Gr\u00FC\u00DF \"foil\".dat"},
                      {"odd", "# \\ = : \"\\"},
                      {"nothing", ""}};
    origin.record = QStringList{"set_band_w 1", "# not a comment", "", "load_I1_files NEW \\"};
    for (int i = 0; i < files; ++i) {
        origin.record << QString("\"i1 %1/frame-%2eV.tif\" \\").arg(folder).arg(i);
    }
    origin.record << "\"last\\\"";
    return origin;
}

QVector<quint16> somePixels() {
    QVector<quint16> pixels;
    for (int i = 0; i < 30 * 20; ++i) {
        pixels << quint16(i * 97);
    }
    return pixels;
}

QImage somePicture() {
    QImage picture(30, 20, QImage::Format_RGB32);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 30; ++x) {
            picture.setPixel(x, y, qRgb(x * 8, y * 12, (x * y) % 256));
        }
    }
    return picture;
}

bool writeKind(const QString& kind, const QString& name, const QString& text) {
    if (kind == "tif") {
        return writeTiff(name, 30, 20, somePixels().constData(), text);
    }
    if (kind == "dat") {
        Analyzed2DRes result;
        result.setGrid(AnalysisGrid::ofArea(3, 1, 0, 0, QRectF(0, 0, 3, 1)));
        result.clear();
        result.setData(1, 0, 0, 0, 0.5);
        TableOptions options;
        options.layout = TableOptions::Layout::Rows;
        return writeResultTable(name, result, options, {{"source", "Ratio"}}, text);
    }
    if (kind == "h5") {
        const OriginText origin = OriginText::fromText(text).value_or(OriginText());
        NexusContent content;
        content.parts.push_back({"fit", "", {0, 1, 2, 0, 1, 1, 0, 0}, {2, 1}, {}});
        content.parts.front().maps.push_back({"jump_0", "", "", [](int, int) { return 0.5; }});
        content.origin = OriginText{origin.entries, {}}.toText();
        content.record = origin.record.join('\n');
        return writeNexus(name, content);
    }
    return writePicture(name, somePicture(), text);
}

}  // namespace

class TestReadOrigin : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString& name) const { return m_dir.filePath(name); }

    static void eachKind(const QStringList& kinds = {"tif", "png", "dat", "h5"}) {
        QTest::addColumn<QString>("kind");
        for (const QString& kind : kinds) {
            QTest::newRow(qPrintable(kind)) << kind;
        }
    }

  private slots:
    void initTestCase() { silenceTiffMessages(); }

    void roundTrip_data() { eachKind(); }
    void roundTrip() {
        QFETCH(QString, kind);
        // In a PNG file a text of Latin letters only is packed, any other stays plain.
        for (const OriginText& origin : {originOf(0), originOf(20000), originOf(20000, "a")}) {
            // A name in Latin-1 letters is another file for libtiff, one in Japanese is not.
            for (const char* base : {"鉄-1.", "\xC3\xA4.", "a."}) {
                const QString name = path(QString::fromUtf8(base) + kind);
                QVERIFY(writeKind(kind, name, origin.toText()));
                QString why;
                const auto read = readOrigin(name, &why);
                QVERIFY2(read, qPrintable(why));
                QCOMPARE(read->entries, origin.entries);
                QVERIFY(read->record == origin.record);
            }
        }
    }

    void valuesStay_data() { eachKind({"tif", "png", "dat"}); }
    void valuesStay() {
        QFETCH(QString, kind);
        const QString plain = path("plain." + kind);
        const QString told = path("told." + kind);
        const QString text = originOf(3).toText();
        QVERIFY(writeKind(kind, plain, {}));
        QVERIFY(writeKind(kind, told, text));
        QString why;
        QVERIFY(!readOrigin(plain, &why));
        QCOMPARE(why, QString("no origin in it"));
        const QByteArray before = contentOf(plain);
        QByteArray after = contentOf(told);
        QVERIFY(before != after);
        if (kind == "dat") {
            const int head = before.lastIndexOf('#');
            const int data = before.indexOf('\n', head) + 1;
            QVERIFY(after.startsWith(before.left(data) + "# Tarnwick origin 1\n# reference = "));
            QVERIFY(after.contains("\n#\n# set_band_w 1\n# # not a comment\n#\n# load_I1_files"));
            QVERIFY(after.endsWith("\n# \"last\\\"\n" + before.mid(data)));
        } else if (kind == "png") {
            QCOMPARE(QImage(told), somePicture());
        } else {
            TiffData frame;
            QVERIFY(frame.load(told));
            const QVector<quint16> pixels = somePixels();
            for (int y = 0; y < 20; ++y) {
                QVERIFY(std::equal(frame.rows[std::size_t(y)], frame.rows[std::size_t(y)] + 30,
                                   pixels.begin() + y * 30));
            }
        }
    }

    void otherFiles() {
        QVERIFY(writePicture(path("a.bmp"), somePicture()));
        QVERIFY(writePicture(path("b.bmp"), somePicture(), originOf(1).toText()));
        QCOMPARE(contentOf(path("b.bmp")), contentOf(path("a.bmp")));
        const auto why = [this](const QString& name) {
            QString said;
            const auto origin = readOrigin(path(name), &said);
            return origin ? QString("read") : said;
        };
        put(path("empty"), "");
        put(path("text"), "Tarnwick origin 1\n");
        put(path("late.dat"), "# x = 1\n1,2\n# Tarnwick origin 1\n");
        put(path("newer.dat"), "# x = 1\n# Tarnwick origin 7\n1,2\n");
        put(path("endless.dat"), "#" + QByteArray(40 << 20, 'x'));
        QVERIFY(QDir(m_dir.path()).mkdir("folder"));
        QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
        for (const char* name : {"empty", "text", "late.dat", "endless.dat"}) {
            QCOMPARE(why(name), QString("no origin in it"));
        }
        QVERIFY(why("newer.dat").contains("newer version"));
        QCOMPARE(why("none"), QString("there is no such file"));
        QCOMPARE(why("folder"), QString("not a file"));
        QCOMPARE(why("pipe"), QString("not a file"));
    }

    void damagedFiles_data() { eachKind(); }
    void damagedFiles() {
        QFETCH(QString, kind);
        const OriginText origin = originOf(40);
        const QString name = path("whole." + kind);
        QVERIFY(writeKind(kind, name, origin.toText()));
        const QByteArray whole = contentOf(name);
        QRandomGenerator random(9);
        const QString damaged = path("damaged." + kind);
        int refused = 0;
        for (int i = 0; i < 300; ++i) {
            QByteArray bytes = whole;
            const int at = random.bounded(whole.size());
            if (i % 2 == 0) {
                bytes.truncate(at);
            } else {
                for (int k = 0; k < 4; ++k) {
                    bytes[random.bounded(i % 4 == 1 ? 64 : whole.size())] =
                        char(random.bounded(256));
                }
            }
            QFile::remove(damaged);  // faster than writing over it
            put(damaged, bytes);
            QString why;
            const auto read = readOrigin(damaged, &why);
            refused += read ? 0 : 1;
            QCOMPARE(why.isEmpty(), bool(read));
            // What was cut off is whole or not there.
            QVERIFY(i % 2 != 0 || !read || read->toText() == origin.toText());
        }
        QVERIFY(refused > 0);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestReadOrigin)
#include "tst_readorigin.moc"
