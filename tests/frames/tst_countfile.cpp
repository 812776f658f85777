#include <sys/resource.h>
#include <tiffio.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <random>
#include <thread>

#include "DebugLines.h"
#include "Files.h"
#include "FullDisk.h"
#include "TestMain.h"
#include "base/Memory.h"
#include "files/FileState.h"
#include "frames/CountFile.h"
#include "frames/DecodedCounts.h"
#include "frames/FrameHeader.h"
#include "frames/OpenFiles.h"
#include "frames/SpillFile.h"
#include "frames/TiffData.h"

namespace {

constexpr quint32 Width = 53;
constexpr quint32 Height = 41;

/// How the counts lie in a file.
struct Form {
    const char* mode = "wl";
    quint16 compression = COMPRESSION_NONE;
    quint32 rowsPerStrip = Height;
    quint16 fillOrder = FILLORDER_MSB2LSB;
    bool isMixed = false;  // the strips stand in another order, with gaps
};

void putFrame(const QString& name, const Form& form, unsigned seed) {
    std::mt19937 random(seed);
    TIFF* const tiff = TIFFOpen(QFile::encodeName(name).constData(), form.mode);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, Width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, Height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, form.compression);
    TIFFSetField(tiff, TIFFTAG_FILLORDER, form.fillOrder);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip);
    const quint32 strips = (Height + form.rowsPerStrip - 1) / form.rowsPerStrip;
    for (quint32 s = 0; s < strips; ++s) {
        const quint32 strip = form.isMixed ? strips - 1 - s : s;
        const quint32 rows = std::min(form.rowsPerStrip, Height - strip * form.rowsPerStrip);
        std::vector<quint16> counts(Width * rows);
        for (quint16& count : counts) {
            count = static_cast<quint16>(random() % 7 == 0 ? 65535 : random());
        }
        TIFFWriteEncodedStrip(tiff, strip, counts.data(),
                              static_cast<tmsize_t>(counts.size() * sizeof(quint16)));
    }
    TIFFClose(tiff);
}

std::shared_ptr<CountFile> countsOf(const QString& name) {
    const FileState state = stateOfFile(name);
    return countFileOf(name, state, frameHeader(name));
}

/// At most so many files open in the process.
class FewFiles {
  public:
    explicit FewFiles(rlim_t files) {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit few{files, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewFiles() { setrlimit(RLIMIT_NOFILE, &m_before); }
    FewFiles(const FewFiles&) = delete;
    FewFiles& operator=(const FewFiles&) = delete;

  private:
    rlimit m_before{};
};

/// As much memory as that.
class Limit {
  public:
    explicit Limit(quint64 bytes) { setMemoryLimit(bytes); }
    ~Limit() { setMemoryLimit(0); }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;
};

}  // namespace

Q_DECLARE_METATYPE(Form)
using Change = std::function<void(QString)>;
Q_DECLARE_METATYPE(Change)

/// Counts read from where they lie in files.
class TestCountFile : public QObject {
    Q_OBJECT

  private slots:
    void init() { QVERIFY(m_dir.isValid()); }

    /// Any rows, in any order, from many threads, with far fewer files open than there are, equal
    /// those of TiffData::load().
    void equalsLoad_data() {
        columns<Form, bool, int>("form", "isPlain", "inMemory");
        const int all = 40;
        QTest::newRow("plain") << Form() << true << 0;
        QTest::newRow("big endian, strips") << Form{"wb", COMPRESSION_NONE, 5} << true << 0;
        QTest::newRow("strips backwards")
            << Form{"wl", COMPRESSION_NONE, 4, FILLORDER_MSB2LSB, true} << true << 0;
        QTest::newRow("bits backwards")
            << Form{"wb", COMPRESSION_NONE, 7, FILLORDER_LSB2MSB} << false << all;
        QTest::newRow("LZW in memory") << Form{"wl", COMPRESSION_LZW, 6} << false << all;
        QTest::newRow("some in memory") << Form{"wb", COMPRESSION_LZW, 6} << false << 9;
        QTest::newRow("none in memory")
            << Form{"wl", COMPRESSION_ADOBE_DEFLATE, Height} << false << 0;
    }
    void equalsLoad() {
        QFETCH(Form, form);
        QFETCH(bool, isPlain);
        QFETCH(int, inMemory);
        constexpr int Frames = 40;
        constexpr quint64 Bytes = Width * Height * 2;
        const QDir work(m_dir.filePath("work"));
        QVERIFY(work.mkpath("."));
        setSpillFolder(work.path());
        const Limit limit(8 * (Bytes * quint64(inMemory) + 1));
        const FewFiles few(32);
        std::vector<std::unique_ptr<TiffData>> loaded;
        std::vector<std::shared_ptr<CountFile>> files;
        for (int i = 0; i < Frames; ++i) {
            const QString name = m_dir.filePath(QString("%1.tif").arg(i));
            putFrame(name, form, static_cast<unsigned>(i));
            loaded.push_back(std::make_unique<TiffData>());
            QVERIFY(loaded.back()->load(name));
            QCOMPARE(loaded.back()->refusal, QString());
            files.push_back(countsOf(name));
        }
        std::atomic<int> wrong{0};
        std::atomic<std::size_t> mostOpen{0};
        const auto readSome = [&](unsigned seed) {
            std::mt19937 random(seed);
            std::vector<quint16> counts(Width * Height);
            for (int n = 0; n < 1500; ++n) {
                const std::size_t i = random() % Frames;
                const auto first = static_cast<quint32>(random() % Height);
                const auto rows = static_cast<quint32>(1 + random() % (Height - first));
                files[i]->willRead(first, rows);
                wrong += files[i]->read(first, rows, counts.data()).isEmpty() ? 0 : 1;
                for (quint32 y = 0; y < rows; ++y) {
                    const quint16* const row = loaded[i]->rows[first + y];
                    wrong += std::equal(row, row + Width, counts.data() + y * Width) ? 0 : 1;
                }
                mostOpen = std::max(mostOpen.load(), OpenFiles::ofProcess().count());
            }
        };
        std::vector<std::thread> threads;
        for (unsigned t = 0; t < 6; ++t) {
            threads.emplace_back(readSome, t);
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QCOMPARE(wrong.load(), 0);
        QVERIFY(mostOpen <= 16);
        QCOMPARE(mostOpen > 0, isPlain);
        QCOMPARE(SpillFile::ofProcess().size(), isPlain ? 0 : Bytes * quint64(Frames - inMemory));
        QCOMPARE(memoryToDecode(), quint64(0));
        QVERIFY(work.isEmpty());  // the file there has no name
        for (const auto& file : files) {
            QCOMPARE(file->change(), QString());
        }
        files.clear();
        QCOMPARE(SpillFile::ofProcess().size(), quint64(0));
        QCOMPARE(OpenFiles::ofProcess().count(), std::size_t(0));
    }

    /// What has become of a file since it was loaded is found, before its first rows are read and
    /// behind, and told with its name; rows that can still be read are those of before.
    void changed_data() {
        columns<Form, Change, bool>("form", "change", "isRead");
        const Form forms[] = {Form(), {"wl", COMPRESSION_LZW, 6}};
        const char* const names[] = {"plain", "compressed"};
        const std::pair<const char*, Change> changes[] = {
            {"cut", [](const QString& name) { QVERIFY(QFile::resize(name, 300)); }},
            {"emptied", [](const QString& name) { put(name, ""); }},
            {"written anew",
             [](const QString& name) {
                 const QByteArray content = contentOf(name);
                 const QDateTime time = QFileInfo(name).lastModified().addMSecs(1);
                 put(name, content);
                 QFile file(name);
                 QVERIFY(file.open(QIODevice::ReadWrite) &&
                         file.setFileTime(time, QFileDevice::FileModificationTime));
             }},
            {"replaced",
             [](const QString& name) {
                 QVERIFY(QFile::copy(name, name + ".new") && QFile::remove(name) &&
                         QFile::rename(name + ".new", name));
             }},
            {"removed", [](const QString& name) { QVERIFY(QFile::remove(name)); }}};
        for (const int i : {0, 1}) {
            for (const auto& [what, change] : changes) {
                for (const bool isRead : {false, true}) {
                    QTest::addRow("%s, %s%s", names[i], what,
                                  isRead ? " behind its first rows" : "")
                        << forms[i] << change << isRead;
                }
            }
        }
    }
    void changed() {
        QFETCH(Form, form);
        QFETCH(Change, change);
        QFETCH(bool, isRead);
        const QString name = m_dir.filePath("i1-7112eV.tif");
        putFrame(name, form, 1);
        TiffData before;
        QVERIFY(before.load(name));
        const auto file = countsOf(name);
        std::vector<quint16> counts(Width * Height);
        if (isRead) {
            QCOMPARE(file->read(0, 1, counts.data()), QString());
        }
        change(name);
        const QString problem = file->read(0, Height, counts.data());
        QVERIFY(isRead || !problem.isEmpty());
        QVERIFY(problem.isEmpty() || problem.startsWith(name + ": "));
        QVERIFY2(file->change().startsWith(name + ": has "), qPrintable(file->change()));
        for (quint32 y = 0; problem.isEmpty() && y < Height; ++y) {
            QVERIFY(std::equal(before.rows[y], before.rows[y] + Width, &counts[y * Width]));
        }
    }

    /// Read as a whole: it is whole or refused, whatever becomes of the file.
    void cutWhileItIsLoaded() {
        const DebugLines unseen;
        const QString name = m_dir.filePath("i1-7112eV.tif");
        putFrame(name, {"wl", COMPRESSION_LZW, 6}, 1);
        const QByteArray content = contentOf(name);
        TiffData whole(0);
        QVERIFY(whole.load(name) && whole.refusal.isEmpty());
        std::atomic<bool> isOver{false};
        QFile file(name);
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        std::thread cutter([&] {
            while (!isOver) {
                const bool isCut = file.resize(100) && file.seek(0);
                if (!isCut || file.write(content) != content.size()) {
                    isOver = true;
                }
            }
        });
        int taken = 0;
        bool isSame = true;
        for (int i = 0; i < 2000 && !isOver; ++i) {
            TiffData frame(0);
            if (frame.load(name) && frame.refusal.isEmpty()) {
                ++taken;
                for (std::size_t y = 0; y < Height; ++y) {
                    isSame =
                        isSame && std::equal(frame.rows[y], frame.rows[y] + Width, whole.rows[y]);
                }
            }
        }
        isOver = true;
        cutter.join();
        QVERIFY(taken > 0 && isSame);
    }

    /// Counts that cannot be decoded, or put anywhere, and rows that there are not.
    void failures() {
        const QString name = m_dir.filePath("i1-7112eV.tif");
        std::vector<quint16> counts(Width * Height);
        putFrame(name, {"wl", COMPRESSION_LZW, 6}, 1);
        put(name, contentOf(name).replace(2000, 60, QByteArray(60, '\0')));
        QCOMPARE(frameHeader(name).refusal, QString());
        const QString damaged = countsOf(name)->read(0, 1, counts.data());
        QVERIFY2(damaged.startsWith(name + ": damaged: "), qPrintable(damaged));

        putFrame(name, {"wl", COMPRESSION_LZW, 6}, 1);
        const Limit limit(8);
        const auto file = countsOf(name);
        setSpillFolder(m_dir.filePath("none"));
        const QString noFolder = file->read(0, 1, counts.data());
        QVERIFY2(noFolder.startsWith(name + ": ") && noFolder.contains(m_dir.filePath("none")),
                 qPrintable(noFolder));
        setSpillFolder(m_dir.path());
        {
            const FullDisk full(1000);
            const QString problem = file->read(0, 1, counts.data());
            QVERIFY2(problem.startsWith(name + ": "), qPrintable(problem));
        }
        QCOMPARE(SpillFile::ofProcess().size(), quint64(0));
        QCOMPARE(file->read(0, Height, counts.data()), QString());  // the disk has room again

        putFrame(name, Form(), 1);
        for (const auto& [first, rows] : {std::pair{Height, 1u}, {0u, Height + 1}, {~0u, 2u}}) {
            QVERIFY(!countsOf(name)->read(first, rows, counts.data()).isEmpty());
            QVERIFY(!file->read(first, rows, counts.data()).isEmpty());
        }
    }

  private:
    QTemporaryDir m_dir;
};

TARNWICK_TEST_MAIN(QCoreApplication, TestCountFile)
#include "tst_countfile.moc"
