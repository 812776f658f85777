#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProcess>

#include "Files.h"
#include "FullDisk.h"
#include "TestMain.h"
#include "calibration/EnergyMapFile.h"
#include "files/Hdf5File.h"
#include "files/PictureFile.h"
#include "frames/TiffFile.h"
#include "maps/Analyzed2DRes.h"
#include "measurement/Measurement.h"
#include "measurement/PartFile.h"
#include "measurement/Writing.h"
#include "output/BinTable.h"
#include "output/ColumnTable.h"
#include "panels/BatchCtrl.h"
#include "spectra/SpectrumFile.h"

using Write = bool (*)(const QString& name);
Q_DECLARE_METATYPE(Write)

namespace {

void fill(Analyzed2DRes* map) {
    map->setGrid(AnalysisGrid::ofArea(6, 4, 1, 0, QRectF(0, 1, 6, 2)));
    map->clear();
    map->setData(1, 1, 1, 0, 0.5);
}

bool writeMap(const QString& name) {
    EMapInfo info;
    info.imageSize = QSize(6, 4);
    info.edgeEnergy = 7112.5;
    info.spacing = 3.1355316;
    Analyzed2DRes map;
    fill(&map);
    return writeEMap(name, map, info);
}

bool writeBins(const QString& name) {
    BinTable table{{3, 7, 2, 5, 3, 2, 3, 1}, {}};
    table.columns.push_back({"R", [](int c, int r) { return c - r; }});
    return writeBinTable(name, table);
}

bool writeHdf5(const QString& name) {
    Hdf5Writer writer;
    writer.group("/entry");
    return writer.save(name);
}

bool writeImage(const QString& name) {
    return writePicture(name, QImage(5, 5, QImage::Format_RGB32));
}

bool saveBatch(const QString& name) {
    BatchCtrl window;
    window.findChild<QPlainTextEdit*>("BatchCmds")->setPlainText(QString(100000, 'x'));
    window.save(name);
    const QString said = window.findChild<QLabel*>("Message")->text();
    if (said.isEmpty() == said.startsWith("cannot be written: ")) {
        qFatal("nothing said");
    }
    return !said.startsWith("cannot be written: ");
}

bool runProgram(const char* option, const QString& name) {
    const QTemporaryDir dir;
    put(dir.filePath("a.bat"), "set_band_w 0\n");
    QProcess process;
    process.start(TARNWICK_BATCH, {option, name, dir.filePath("a.bat")});
    return process.waitForFinished(60000) && process.exitCode() == 0;
}

/// As a user who may not do everything, where it is root who tests.
class OrdinaryUser {
  public:
    OrdinaryUser() : m_isRoot(::geteuid() == 0 && ::seteuid(65534) == 0) {}
    ~OrdinaryUser() {
        if (m_isRoot && ::seteuid(0) != 0) {
            qFatal("no way back");
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    bool m_isRoot;
};

bool makeSocket(const QByteArray& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, name.constData(), sizeof address.sun_path);
    const int opened = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool isMade =
        ::bind(opened, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(opened);
    return isMade;
}

struct stat stateOf(const QString& name) {
    struct stat state {};
    ::lstat(QFile::encodeName(name).constData(), &state);
    return state;
}

}  // namespace

/// Every kind of file, and whatever may stand where it is to be written.
class TestTargets : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_suffix;

    QString path(const char* name) const { return m_dir->filePath(name) + m_suffix; }
    QByteArray local(const char* name) const { return QFile::encodeName(path(name)); }
    void link(const char* to, const char* name) const {
        QCOMPARE(::symlink((to + m_suffix.toLatin1()).constData(), local(name).constData()), 0);
    }
    QStringList strays() const {
        return QDir(m_dir->path()).entryList({"*part*"}, QDir::AllEntries | QDir::Hidden);
    }

    /// What is no file stays what it is.
    void othersStay(Write write) const {
        QCOMPARE(::mkfifo(local("pipe").constData(), 0666), 0);
        QCOMPARE(::mkdir(local("folder").constData(), 0777), 0);
        QVERIFY(makeSocket(local("socket")));
        if (::geteuid() == 0) {
            QCOMPARE(::mknod(local("device").constData(), S_IFCHR | 0666, ::makedev(1, 3)), 0);
        }
        link("pipe", "to-pipe");
        link("turn", "turn");
        for (const char* name : {"pipe", "folder", "socket", "device", "to-pipe", "turn"}) {
            const struct stat before = stateOf(path(name));
            if (before.st_ino != 0) {
                QVERIFY2(!write(path(name)), name);
                QVERIFY2(stateOf(path(name)).st_ino == before.st_ino, name);
                QVERIFY2(stateOf(path(name)).st_mode == before.st_mode, name);
            }
        }
        QVERIFY(!write(path("none/file")));
    }

    void linksAreFollowed(Write write) const {
        link("second", "first");
        link("file", "second");
        QVERIFY(write(path("first")));  // what it points to is to come
        const QByteArray content = contentOf(path("file"));
        QVERIFY(!content.isEmpty());
        put(path("file"), "old");
        QCOMPARE(::chmod(local("file").constData(), 0640), 0);
        QCOMPARE(::link(local("file").constData(), local("other").constData()), 0);
        QVERIFY(write(path("first")));
        QCOMPARE(contentOf(path("other")), QByteArray("old"));
        QVERIFY(contentOf(path("file")).size() > 3);
        QCOMPARE(int(stateOf(path("file")).st_mode), int(S_IFREG | 0640));
        QVERIFY(S_ISLNK(stateOf(path("first")).st_mode) &&
                S_ISLNK(stateOf(path("second")).st_mode));
    }

    void failuresLeaveTheOldFile(Write write) const {
        put(path("old"), "old");
        {
            const FullDisk full(2);
            QVERIFY(!write(path("old")));
        }
        const OrdinaryUser user;
        QCOMPARE(::mkdir(local("closed").constData(), 0755), 0);
        put(path("closed") + "/old" + m_suffix, "old");
        QCOMPARE(::chmod(local("closed").constData(), 0555), 0);
        QVERIFY(!write(path("closed") + "/old" + m_suffix));
        QCOMPARE(contentOf(path("closed") + "/old" + m_suffix), QByteArray("old"));
        put(path("locked"), "old");
        QCOMPARE(::chmod(local("locked").constData(), 0444), 0);
        QVERIFY(!write(path("locked")));
        QCOMPARE(contentOf(path("locked")), QByteArray("old"));
        QCOMPARE(contentOf(path("old")), QByteArray("old"));
        QCOMPARE(::chmod(local("closed").constData(), 0755), 0);
    }

  private slots:
    void targets_data() {
        columns<QString, Write>("suffix", "write");
        const auto add = [](const char* suffix, const char* name, Write write) {
            QTest::newRow(name) << suffix << write;
        };
        add(".tif", "counts", [](const QString& name) { return writeOnesTiff(name, 3, 2); });
        add(".tif", "floats", [](const QString& name) {
            return writeFloatTiff(name, QSize(3, 2), [](quint64, std::size_t n, float* to) {
                std::fill_n(to, n, 1.0F);
            });
        });
        add(".dat", "table", [](const QString& name) {
            Analyzed2DRes map;
            fill(&map);
            return writeResultTable(name, map, TableOptions(), {});
        });
        add(".dat", "columns", [](const QString& name) {
            return writeColumnTable(name, {{}, {"a", "b"}, {{1.0}, {2.0}}});
        });
        add(".csv", "bins", writeBins);
        add(".h5", "results", writeHdf5);
        add(".dat", "spectrum",
            [](const QString& name) { return writeSpectrumFile(name, XafsSpectrum(), false); });
        add(".emp", "energy map", writeMap);
        for (const char* format : {"png", "bmp", "jpg", "tif"}) {
            const QString suffix = QString(".") + format;
            if (isPictureName("a" + suffix)) {
                QTest::newRow(format) << suffix << Write(writeImage);
            }
        }
        add(".pdf", "drawing",
            [](const QString& name) { return writeDrawing(name, QSize(5, 5), [](QPainter&) {}); });
        add(".rows", "part", [](const QString& name) {
            return Part({QByteArray(32, 'k'), {0, 0}, 1, 1}).write(name).isEmpty();
        });
        add(".bat", "batch", saveBatch);
        add(".json", "report", [](const QString& name) { return runProgram("--report", name); });
        add(".csv", "summary", [](const QString& name) { return runProgram("--summary", name); });
    }

    void targets() {
        QFETCH(Write, write);
        m_suffix = *static_cast<QString*>(QTest::qData("suffix", QMetaType::QString));
        m_dir = std::make_unique<QTemporaryDir>();
        QCOMPARE(::chmod(QFile::encodeName(m_dir->path()).constData(), 0777), 0);
        othersStay(write);
        linksAreFollowed(write);
        failuresLeaveTheOldFile(write);
        QCOMPARE(strays(), QStringList());
    }

    /// The files of a line: what fails at the end is a failure of its own.
    void filesOfALine() {
        m_suffix.clear();
        m_dir = std::make_unique<QTemporaryDir>();
        const Measurement measurement;
        put(path("a"), "old");
        const Outcome outcome = writeTogether([&] {
            Outcome all;
            for (const char* name : {"a", "b", "c"}) {
                all += writeFile(measurement, path(name), [&] {
                    return writeColumnTable(path(name), {{}, {"x"}, {{1.0}}}) &&
                           (*name != 'b' || ::mkfifo(local("b").constData(), 0600) == 0);
                });
            }
            return contentOf(path("a")) == "old" ? all : Outcome();
        });
        QCOMPARE(outcome.failures, QStringList("cannot be written: " + path("b")));
        QCOMPARE(outcome.notes, (QStringList{"Saved a", "Saved c"}));
        QCOMPARE(outcome.files, (QStringList{path("a"), path("c")}));
        QVERIFY(contentOf(path("a")).size() > 3 && contentOf(path("a")) == contentOf(path("c")));
        QVERIFY(S_ISFIFO(stateOf(path("b")).st_mode));
        QCOMPARE(strays(), QStringList());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestTargets)
#include "tst_targets.moc"
