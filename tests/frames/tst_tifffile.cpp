#include <sys/resource.h>
#include <tiffio.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <climits>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>

#include "Files.h"
#include "FullDisk.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "base/Limits.h"
#include "files/FileStamp.h"
#include "frames/FrameReader.h"
#include "frames/LoadTiff.h"
#include "frames/TiffFile.h"

namespace {

std::vector<quint16> counting(int n) {
    std::vector<quint16> data(static_cast<std::size_t>(n));
    std::iota(data.begin(), data.end(), quint16(1));
    return data;
}

FillFloats from(const std::vector<float>& values) {
    return [&values](quint64 first, std::size_t count, float* to) {
        std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(first), count, to);
    };
}

}  // namespace

/// Layout of a file of 16-bit counts that its pixels follow.
struct Layout {
    bool bigEndian = false;
    quint32 rowsPerStrip = 6;
    quint32 gap = 0;         // bytes before each strip
    bool backwards = false;  // the last strip comes first in the file
    quint32 bits = 16;
    quint32 samples = 1;
    quint32 fillOrder = 1;
    quint32 byteCountOff = 0;  // what the header says too little of each strip
    bool isFloat = false;
};
Q_DECLARE_METATYPE(Layout)

/// How another program writes an image of floats.
struct Foreign {
    const char* mode = "w";
    quint16 bits = 32;
    quint16 samples = 1;
    quint16 format = SAMPLEFORMAT_IEEEFP;
    quint16 compression = COMPRESSION_NONE;
    bool tiled = false;
};
Q_DECLARE_METATYPE(Foreign)

namespace {

constexpr quint32 Columns = 4;
constexpr quint32 Rows = 6;

QByteArray tiffOf(const Layout& layout) {
    QByteArray out(layout.bigEndian ? "MM" : "II");
    const auto put = [&](quint32 v, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            out.append(static_cast<char>(v >> 8 * (layout.bigEndian ? bytes - 1 - i : i)));
        }
    };
    const auto tag = [&](quint32 number, quint32 count, quint32 value) {
        put(number, 2);
        put(4, 2);  // LONG
        put(count, 4);
        put(value, 4);
    };
    const quint32 rowBytes = Columns * layout.samples * layout.bits / 8;
    const quint32 strips = (Rows + layout.rowsPerStrip - 1) / layout.rowsPerStrip;
    const quint32 stripBytes = rowBytes * layout.rowsPerStrip;
    const quint32 tags = layout.isFloat ? 11 : 10;
    const quint32 arrays = 8 + 2 + tags * 12 + 4;
    const quint32 pixels = arrays + 8 * strips + 8;
    const auto offset = [&](quint32 s) {
        const quint32 place = layout.backwards ? strips - 1 - s : s;
        return pixels + place * (stripBytes + layout.gap) + layout.gap;
    };
    put(42, 2);
    put(8, 4);
    put(tags, 2);
    tag(256, 1, Columns);
    tag(257, 1, Rows);
    tag(258, 1, layout.bits);
    tag(259, 1, 1);
    tag(262, 1, 1);
    tag(266, 1, layout.fillOrder);
    tag(273, strips, strips == 1 ? offset(0) : arrays);
    tag(277, 1, layout.samples);
    tag(278, 1, layout.rowsPerStrip);
    const quint32 byteCount = stripBytes - layout.byteCountOff;
    tag(279, strips, strips == 1 ? byteCount : arrays + 4 * strips);
    if (layout.isFloat) {
        tag(339, 1, 3);
    }
    put(0, 4);
    for (quint32 s = 0; s < strips; ++s) {
        put(offset(s), 4);
    }
    for (quint32 s = 0; s < strips; ++s) {
        put(byteCount, 4);
    }
    while (static_cast<quint32>(out.size()) < pixels + strips * (stripBytes + layout.gap)) {
        out.append(static_cast<char>(37 * out.size() % 251));
    }
    return out;
}

/// The values 0.5, -1.25, 3, NaN, ... of an image of Columns x Rows.
std::vector<float> someValues() {
    std::vector<float> values;
    for (quint32 i = 0; i < Columns * Rows; ++i) {
        values.push_back(i % 4 == 3 ? std::numeric_limits<float>::quiet_NaN()
                                    : 0.5f - 1.75f * float(i));
    }
    return values;
}

bool areSame(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](float x, float y) {
               return x == y || (std::isnan(x) && std::isnan(y));
           });
}

/// Those values as another program may write them.
void putForeign(const QString& name, const Foreign& how) {
    TIFF* tiff = TIFFOpen(name.toLatin1().constData(), how.mode);
    QVERIFY(tiff != nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, Columns);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, Rows);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, how.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, how.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, how.format);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, how.compression);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    std::vector<float> values = someValues();
    values.resize(16 * 16 * 4);  // enough for a tile, and for pixels of other kinds
    if (how.tiled) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
        TIFFWriteEncodedTile(tiff, 0, values.data(), TIFFTileSize(tiff));
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 2);
        for (quint32 strip = 0; strip < Rows / 2; ++strip) {
            TIFFWriteEncodedStrip(tiff, strip, values.data() + strip * 2 * Columns,
                                  TIFFStripSize(tiff));
        }
    }
    TIFFClose(tiff);
}

/// A file of a directory of entries with one value each, and what follows it.
QByteArray tiffWith(const std::map<quint32, quint32>& tags, const QByteArray& behind) {
    QByteArray out("II\x2a\0\x08\0\0\0", 8);
    const auto put = [&](quint32 v, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            out.append(static_cast<char>(v >> 8 * i));
        }
    };
    put(static_cast<quint32>(tags.size()), 2);
    for (const auto& [number, value] : tags) {
        const bool isArray = value > 0xFFFFFF00;  // below that many entries lie behind, 4096 each
        put(number, 2);
        put(4, 2);
        put(isArray ? 64 : 1, 4);
        put(isArray ? value - 0xFFFFFF00 : value, 4);
    }
    put(0, 4);
    return out + behind;
}

/// A frame of the greatest size, as its header says.
std::map<quint32, quint32> greatest(quint32 compression, quint32 bits = 16) {
    return {{256, 16384}, {257, 16384}, {258, bits}, {259, compression},       {262, 1}, {273, 134},
            {277, 1},     {278, 16384}, {279, 40},   {339, bits == 32 ? 3 : 1}};
}

/// The most that the program has had in memory until now.
qint64 mostResident() {
    rusage use{};
    getrusage(RUSAGE_SELF, &use);
    return qint64(use.ru_maxrss) * 1024;
}

/// The rows as libtiff gives them one by one; those that it can not read are 0.
std::vector<quint16> scanlines(const QString& name) {
    std::vector<quint16> counts;
    if (TIFF* tiff = TIFFOpen(name.toLatin1().constData(), "r")) {
        const auto bytes = static_cast<std::size_t>(TIFFScanlineSize(tiff));
        for (quint32 y = 0; y < Rows; ++y) {
            std::vector<quint16> row(std::max<std::size_t>(Columns, (bytes + 1) / 2));
            if (TIFFReadScanline(tiff, row.data(), y, 0) != 1) {
                row.assign(row.size(), 0);
            }
            counts.insert(counts.end(), row.begin(), row.begin() + Columns);
        }
        TIFFClose(tiff);
    }
    return counts;
}

}  // namespace

class TestTiffFile : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() { silenceTiffMessages(); }

    /// Where both names are there, a change of the one that is read is seen.
    void stampOfTheNameThatIsRead() {
        QTemporaryDir dir;
        const QString name = dir.filePath(QString::fromUtf8("é.tif"));
        const auto data = counting(30 * 10);
        QVERIFY(writeTiff(dir.filePath("small.tif"), 3, 1, data.data()));
        QVERIFY(QFile::copy(dir.filePath("small.tif"), name));
        QVERIFY(writeTiff(name, 30, 10, data.data()));
        TiffData frame;
        QVERIFY(frame.load(name));
        QCOMPARE(frame.width, 30u);
        QVERIFY(fileStamp(name).size >= 600);
    }

    void whatIsWrittenIsRead_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << "a.tif";
        QTest::newRow("beyond Latin-1") << QString::fromUtf8("鉄-7112eV.tif");
        QTest::newRow("in a folder within Latin-1") << QString::fromUtf8("é/é-7112eV.tif");
    }
    void whatIsWrittenIsRead() {
        QFETCH(QString, name);
        QTemporaryDir dir;
        const auto data = counting(30 * 10);
        const QDir folder = QFileInfo(dir.filePath(name)).dir();
        QVERIFY(folder.mkpath("."));
        for (int again = 0; again < 2; ++again) {  // also over an old file
            QVERIFY(writeTiff(dir.filePath(name), 30, 10, data.data()));
        }
        QCOMPARE(folder.entryList(QDir::Files).size(), 1);
        TiffData frame;
        for (int again = 0; again < 2; ++again) {  // also into a frame used before
            QVERIFY(frame.load(dir.filePath(name)));
            QVERIFY(frame.loaded);
            QCOMPARE(frame.fileName, dir.filePath(name));
            QCOMPARE(frame.rows.size(), std::size_t(10));
            QCOMPARE(frame.width, 30u);
            QCOMPARE(frame.height, 10u);
            QCOMPARE(frame.min, 1u);
            QCOMPARE(frame.max, 300u);
            QCOMPARE(frame.scanlineSize, 60);
            for (std::size_t y = 0; y < 10; ++y) {
                QVERIFY(std::equal(frame.rows[y], frame.rows[y] + 30, &data[30 * y]));
            }
        }
    }

    /// Strips of `width` rows, each taken from twice as far on as the one before it.
    void tallImagesKeepTheirStrips() {
        QTemporaryDir dir;
        const auto data = counting(10 * 30);
        QVERIFY(writeTiff(dir.filePath("tall.tif"), 10, 30, data.data()));
        TiffData frame;
        QVERIFY(frame.load(dir.filePath("tall.tif")));
        QCOMPARE(frame.rows[0][0], quint16(1));
        QCOMPARE(frame.rows[9][9], quint16(100));
        QCOMPARE(frame.rows[10][0], quint16(201));
        QCOMPARE(frame.rows[19][9], quint16(300));
        QCOMPARE(frame.rows[20][0], quint16(0));
        QCOMPARE(frame.rows[29][9], quint16(0));

        QVERIFY(writeOnesTiff(dir.filePath("ones.dat"), 10, 35));
        QVERIFY(frame.load(dir.filePath("ones.dat")));
        QCOMPARE(frame.boxSum(0, 0, 99, 99), 350.0);
        QVERIFY(writeZerosTiff(dir.filePath("zeros.dat"), 10, 35));
        QVERIFY(frame.load(dir.filePath("zeros.dat")));
        QCOMPARE(frame.max, 0u);
    }

    void withoutPixelsThereIsAFileAllTheSame() {
        QTemporaryDir dir;
        const quint16 nothing = 0;
        QVERIFY(!writeOnesTiff(dir.filePath("a"), 0, 0));
        QVERIFY(!writeOnesTiff(dir.filePath("b"), 10, 0));
        QVERIFY(!writeOnesTiff(dir.filePath("c"), 0, 10));
        QVERIFY(!writeTiff(dir.filePath("d"), 10, -1, &nothing));
        QVERIFY(!writeTiff(dir.filePath("e"), 10, INT_MIN, &nothing));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList({"a", "b", "c", "d", "e"}));
        TiffData frame;
        QVERIFY(!frame.load(dir.filePath("a")) || frame.rows.empty());
    }

    void namesInUtf8() {
        QTemporaryDir dir;
        const QString name = dir.filePath(QString::fromUtf8("é.tif"));
        QVERIFY(writeConstTiff(dir.filePath("a.tif"), 4, 4, 2));
        QVERIFY(QFile::copy(dir.filePath("a.tif"), name));
        TiffData frame;
        QVERIFY(frame.load(name));
        QCOMPARE(frame.max, quint32(2));
    }

    void failedWritesLeaveTheOldFile() {
        QTemporaryDir dir;
        QVERIFY(!writeOnesTiff(dir.filePath("missing/a.tif"), 4, 4));
        QVERIFY(QDir(dir.path()).mkdir("folder"));
        QVERIFY(!writeOnesTiff(dir.filePath("folder"), 4, 4));
        QVERIFY(QDir(dir.path()).entryList(QDir::Files).isEmpty());
        const QString name = dir.filePath("a.tif");
        QVERIFY(writeOnesTiff(name, 50, 50));
        const QByteArray old = contentOf(name);
        for (const rlim_t bytes :
             {rlim_t(1000), rlim_t(5010)}) {  // within the pixels, within the directory
            bool written = true;
            {
                const FullDisk full(bytes);
                written = writeZerosTiff(name, 50, 50);
            }
            QVERIFY(!written);
        }
        QCOMPARE(contentOf(name), old);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList("a.tif"));
    }

    void damagedFilesAreReadAsFarAsTheyGo() {
        QTemporaryDir dir;
        const QString name = dir.filePath("a.tif");
        TiffData frame;

        put(name, rawTiff(4, 2, 8, "abcdABCD"));  // half of each row
        QVERIFY(frame.load(name));
        QCOMPARE(frame.rows[0][1], quint16('c' + 256 * 'd'));
        QCOMPARE(frame.rows[1][0], quint16('A' + 256 * 'B'));
        QCOMPARE(frame.rows[1][2], quint16(0));
        QCOMPARE(frame.rows[1][3], quint16(0));

        const auto data = counting(40 * 40);
        QVERIFY(writeTiff(name, 40, 40, data.data()));
        const QByteArray whole = rawTiff(
            40, 40, 16, QByteArray(reinterpret_cast<const char*>(data.data()), 40 * 40 * 2));
        put(name, whole.left(whole.size() - 1600));
        QVERIFY(frame.load(name));
        QCOMPARE(frame.rows.size(), std::size_t(40));
        QCOMPARE(frame.rows[39][39], quint16(0));

        for (const QSize size : {QSize(2000000000, 2000000000), QSize(INT_MAX, 1),
                                 QSize(1, INT_MAX), QSize(1, 1 << 28)}) {
            put(name, rawTiff(static_cast<quint32>(size.width()),
                              static_cast<quint32>(size.height()), 16, "ab"));
            QVERIFY(!frame.load(name));
            QVERIFY(frame.rows.empty());
            QCOMPARE(frame.boxSum(0, 0, 5, 5), 0.0);
        }
    }

    /// What a header claims takes no memory that its file does not prove.
    void claimsAreHeldAgainstTheFile_data() {
        columns<QByteArray, QString>("file", "refusal");
        const QByteArray few(40, '\x01');
        const auto claim = [&](quint32 compression) {
            return tiffWith(greatest(compression), few);
        };
        const auto truncated = [](int rows) {
            return QStringLiteral("truncated: %1 of 16384 rows").arg(rows);
        };
        QTest::newRow("plain") << claim(COMPRESSION_NONE) << truncated(0);
        QTest::newRow("deflate") << claim(COMPRESSION_ADOBE_DEFLATE) << truncated(1);
        QTest::newRow("LZW") << claim(COMPRESSION_LZW) << truncated(1);
        QTest::newRow("PackBits") << claim(COMPRESSION_PACKBITS) << truncated(0);
        QTest::newRow("by its own strips")
            << claim(COMPRESSION_LZMA) << "damaged: 0 of 16384 rows can be decoded";
        QTest::newRow("8 bits") << tiffWith(greatest(COMPRESSION_NONE, 8), few)
                                << "8 bits a sample, not 16";
        QTest::newRow("floats, of unbounded compression")
            << tiffWith(greatest(COMPRESSION_LZMA, 32), few) << "32-bit float, not 16-bit counts";
        auto tiled = greatest(COMPRESSION_NONE);
        tiled.insert({{322, 16384}, {323, 16384}, {324, 134}, {325, 40}});
        QTest::newRow("tiled") << tiffWith(tiled, few) << "tiled, not in rows";
        auto wide = greatest(COMPRESSION_NONE);
        wide[256] = quint32(Limits::LongestSide) + 1;
        wide[257] = 1;
        QTest::newRow("too wide") << tiffWith(wide, few) << "too large an image";
        // 64 strips, each in the same place: a sound one of 8 MB.
        auto shared = greatest(COMPRESSION_ADOBE_DEFLATE);
        shared[273] = 0xFFFFFF00 + 134;
        shared[278] = 256;
        shared[279] = 0xFFFFFF00 + 134;
        const QByteArray strip = qCompress(QByteArray(16384 * 256 * 2, 0), 9).mid(4);
        QByteArray place;  // as far behind as it is long
        for (int i = 0; i < 4; ++i) {
            place += static_cast<char>(strip.size() >> 8 * i);
        }
        const QByteArray places = place.repeated(64);
        QTest::newRow("strips over each other")
            << tiffWith(shared, places + QByteArray(strip.size() - 134 - places.size(), 0) + strip)
            << "its strips lie over each other";
    }
    void claimsAreHeldAgainstTheFile() {
        QFETCH(QByteArray, file);
        QFETCH(QString, refusal);
        QTemporaryDir dir;
        const QString name = dir.filePath("a.tif");
        put(name, file);
        const qint64 before = mostResident();
        TiffData frame;
        QVERIFY(!frame.load(name));
        QVERIFY(frame.rows.empty());
        QVERIFY(frame.refusal.isEmpty() || frame.refusal == refusal);
        QBuffer device(&file);
        QVERIFY(device.open(QIODevice::ReadOnly));
        QVERIFY(!readFrame(device, &frame).isEmpty());
        FloatTiff image;
        QVERIFY(!readFloatTiff(name, &image).isEmpty());
        // One that shows as it is decoded only is taken by its header.
        const QString byHeader = frameHeader(name).refusal;
        QVERIFY2(byHeader == refusal || refusal.startsWith("damaged"), qPrintable(byHeader));
        const qint64 taken = mostResident() - before;
        QVERIFY2(taken < 3 * qint64(Limits::SmallImage), QByteArray::number(taken));
    }

    /// The densest that there is of each kind is no claim: a large frame of zeros.
    void denseFramesLoad_data() {
        columns<int>("compression");
        QTest::newRow("deflate") << COMPRESSION_ADOBE_DEFLATE;
        QTest::newRow("LZW") << COMPRESSION_LZW;
        QTest::newRow("PackBits") << COMPRESSION_PACKBITS;
    }
    void denseFramesLoad() {
        QFETCH(int, compression);
        QTemporaryDir dir;
        const QString name = dir.filePath("a.tif");
        constexpr quint32 Width = 8192;
        const quint32 height = quint32(Limits::SmallImage / Width / 2 + 100);
        TIFF* tiff = TIFFOpen(name.toLatin1().constData(), "w");
        QVERIFY(tiff != nullptr);
        for (const auto& [tag, value] : std::map<quint32, quint32>{{TIFFTAG_IMAGEWIDTH, Width},
                                                                   {TIFFTAG_IMAGELENGTH, height},
                                                                   {TIFFTAG_ROWSPERSTRIP, height},
                                                                   {TIFFTAG_BITSPERSAMPLE, 16}}) {
            TIFFSetField(tiff, tag, value);
        }
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        std::vector<quint16> row(Width);
        for (quint32 y = 0; y < height; ++y) {
            QCOMPARE(TIFFWriteScanline(tiff, row.data(), y, 0), 1);
        }
        TIFFClose(tiff);
        TiffData frame;
        QVERIFY2(frame.load(name), qPrintable(frame.refusal));
        QCOMPARE(frame.refusal, QString());
        QCOMPARE(frameHeader(name).refusal, QString());
        QCOMPARE(frame.max, 0u);
    }

    void rowsAreThoseOfLibtiff_data() {
        QTest::addColumn<Layout>("layout");
        const auto row = [](const char* name, auto change) {
            Layout layout;
            change(&layout);
            QTest::newRow(name) << layout;
        };
        row("one strip", [](Layout*) {});
        row("two strips", [](Layout* l) { l->rowsPerStrip = 3; });
        row("uneven strips", [](Layout* l) { l->rowsPerStrip = 4; });
        row("strips of a row, apart", [](Layout* l) { l->rowsPerStrip = 1, l->gap = 3; });
        row("backwards", [](Layout* l) { l->rowsPerStrip = 2, l->backwards = true; });
        row("big-endian", [](Layout* l) { l->bigEndian = true, l->rowsPerStrip = 2; });
        row("8 bits", [](Layout* l) { l->bits = 8; });
        row("32 bits", [](Layout* l) { l->bits = 32, l->bigEndian = true; });
        row("three samples", [](Layout* l) { l->samples = 3; });
        row("bits backwards", [](Layout* l) { l->fillOrder = 2; });
        row("byte counts too small", [](Layout* l) { l->rowsPerStrip = 3, l->byteCountOff = 10; });
    }
    /// Whole, and cut at every byte.
    void rowsAreThoseOfLibtiff() {
        QFETCH(Layout, layout);
        QTemporaryDir dir;
        const QString name = dir.filePath("a.tif");
        const QByteArray whole = tiffOf(layout);
        int read = 0;
        for (int size = whole.size(); size > 150; --size) {
            put(name, whole.left(size));
            const std::vector<quint16> expected = scanlines(name);
            TiffData frame;
            QCOMPARE(frame.load(name), !expected.empty());
            QBuffer device;
            device.setData(whole.left(size));
            QVERIFY(device.open(QIODevice::ReadOnly));
            TiffData fromDevice;
            QCOMPARE(readFrame(device, &fromDevice).isEmpty(), !expected.empty());
            QCOMPARE(fromDevice.loaded, !expected.empty());
            for (const TiffData* one : {&frame, &fromDevice}) {
                std::vector<quint16> counts;
                for (const quint16* row : one->rows) {
                    counts.insert(counts.end(), row, row + Columns);
                }
                QCOMPARE(counts, expected);
            }
            if (!expected.empty()) {
                ++read;
                const auto ends = std::minmax_element(expected.begin(), expected.end());
                QCOMPARE(frame.min, quint32(*ends.first));
                QCOMPARE(frame.max, quint32(*ends.second));
            }
        }
        QVERIFY(read > 0);
    }

    void floatsComeBack_data() {
        QTest::addColumn<QSize>("size");
        QTest::newRow("a pixel") << QSize(1, 1);
        QTest::newRow("wide") << QSize(300, 7);
        QTest::newRow("tall, of several strips") << QSize(90, 1500);
    }
    void floatsComeBack() {
        QFETCH(QSize, size);
        QTemporaryDir dir;
        const QString name = dir.filePath(QString::fromUtf8("値.tif"));
        std::vector<float> values;
        for (int i = 0; i < size.width() * size.height(); ++i) {
            values.push_back(i % 5 == 4 ? std::numeric_limits<float>::quiet_NaN()
                                        : 1.0f / float(i + 3));
        }
        const QString text = QString::fromUtf8("Tarnwick origin 1\nreference = 標準.dat\n");
        QVERIFY(writeFloatTiff(name, size, from(values), text));
        FloatTiff image;
        QCOMPARE(readFloatTiff(name, &image), QString());
        QCOMPARE(image.size, size);
        QCOMPARE(image.description, text);
        QVERIFY(areSame(image.values, values));
        QVERIFY(contentOf(name).startsWith("II"));
        TiffData frame;
        QVERIFY(frame.load(name));
        QCOMPARE(frame.refusal, QString("32-bit float, not 16-bit counts"));

        const QByteArray old = contentOf(name);
        bool written = true;
        {
            const FullDisk full(100);
            written = writeFloatTiff(name, size, [](quint64, std::size_t count, float* to) {
                std::fill_n(to, count, 0.0f);
            });
        }
        QVERIFY(!written && contentOf(name) == old);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 1);
    }

    void floatsOfOthers_data() {
        QTest::addColumn<Foreign>("how");
        QTest::addColumn<QString>("whyNot");
        const auto row = [](const char* name, const char* whyNot, auto change) {
            Foreign how;
            change(&how);
            QTest::newRow(name) << how << whyNot;
        };
        row("plain", "", [](Foreign*) {});
        row("big-endian", "", [](Foreign* f) { f->mode = "wb"; });
        row("compressed", "", [](Foreign* f) { f->compression = COMPRESSION_LZW; });
        row("doubles", "64-bit float, not 32-bit float", [](Foreign* f) { f->bits = 64; });
        row("counts", "16-bit integers, not 32-bit float",
            [](Foreign* f) { f->bits = 16, f->format = SAMPLEFORMAT_UINT; });
        row("three samples", "3 samples a pixel, not 1", [](Foreign* f) { f->samples = 3; });
        row("tiled", "tiled, not in rows", [](Foreign* f) { f->tiled = true; });
    }
    /// Whole, and cut at every byte: the values or why there are none.
    void floatsOfOthers() {
        QFETCH(Foreign, how);
        QFETCH(QString, whyNot);
        QTemporaryDir dir;
        const QString name = dir.filePath("a.tif");
        putForeign(name, how);
        FloatTiff image;
        QCOMPARE(readFloatTiff(name, &image), whyNot);
        QCOMPARE(areSame(image.values, someValues()), whyNot.isEmpty());
        const QByteArray whole = contentOf(name);
        for (int size = whole.size() - 1; size >= 0; --size) {
            put(name, whole.left(size));
            FloatTiff cut;
            if (readFloatTiff(name, &cut).isEmpty()) {  // what was cut off says nothing
                QVERIFY2(areSame(cut.values, someValues()), qPrintable(QString::number(size)));
            } else {
                QVERIFY(cut.values.empty());
            }
        }
        QVERIFY(QFile::remove(name));
        QVERIFY(!readFloatTiff(name, &image).isEmpty());
    }

    /// With the directory before the pixels, as other programs write it.
    void cutFloatsAreNone() {
        QTemporaryDir dir;
        const QString name = dir.filePath("a.tif");
        Layout layout;
        layout.bits = 32;
        layout.isFloat = true;
        layout.rowsPerStrip = 2;
        const QByteArray whole = tiffOf(layout);
        put(name, whole);
        FloatTiff image;
        QCOMPARE(readFloatTiff(name, &image), QString());
        put(name, whole.left(whole.size() - 1));
        QCOMPARE(readFloatTiff(name, &image), QString("truncated: 5 of 6 rows"));
        for (int size = whole.size() - 1; size >= 0; --size) {
            put(name, whole.left(size));
            QVERIFY(!readFloatTiff(name, &image).isEmpty());
        }
    }

    /// Memory of rows that are side by side: a frame must not end another's.
    void framesOfAStackLiveAndDieAlone() {
        QTemporaryDir dir;
        const QString name = dir.filePath("a.tif");
        std::vector<std::unique_ptr<TiffData>> frames;
        for (quint16 i = 0; i < 6; ++i) {
            const quint32 width = i == 3 ? 1500 : 300;  // one of another size between them
            QVERIFY(writeConstTiff(name, width, 200, i));
            frames.push_back(std::make_unique<TiffData>());
            QVERIFY(frames.back()->load(name));
            if (i % 2 == 1) {
                frames[i - 1u].reset();
            }
        }
        for (quint16 i = 1; i < 6; i = static_cast<quint16>(i + 2)) {
            QCOMPARE(frames[i]->boxSum(0, 0, 2000, 200), i * 200.0 * frames[i]->width);
        }
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestTiffFile)
#include "tst_tifffile.moc"
