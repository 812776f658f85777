#include <QDirIterator>
#include <QLibraryInfo>
#include <QRegularExpression>
#include <QSet>

#include "Files.h"
#include "TestMain.h"

// Who may include whom, as docs/architecture.md tells it. What is not listed is forbidden; a room
// always sees itself.
namespace {

using Rooms = QStringList;

// The room of a path below src: "core/frames/TiffData.h" is in "frames".
QString roomOf(const QString& path) {
    return path.section('/', 1, 1);
}

// The rooms that the files of a room may include, itself aside; every room stands on base.
const QHash<QString, Rooms>& table() {
    static const Rooms values{"base", "files", "spectra", "frames"};
    static const Rooms work = values + Rooms{"maps", "absorption"};
    static const Rooms measured =
        work + Rooms{"calibration", "fitting", "output", "drawing", "measurement"};
    static const Rooms core = measured + Rooms{"batch"};
    static const QHash<QString, Rooms> rows = {
        {"base", {}},
        {"files", {"base"}},
        {"spectra", {"base", "files"}},
        {"frames", {"base", "files", "spectra"}},
        {"maps", values},
        {"absorption", values + Rooms{"maps"}},
        {"calibration", work},
        {"fitting", work},
        {"output", work},
        {"drawing", work},
        {"measurement", measured},
        {"batch", core},
        {"display", core},
        {"panels", core + Rooms{"display"}},
        {"window", core + Rooms{"display", "panels"}},
        {"translations", {}},
        {"both", {"base"}},
        {"tarnwick", core + Rooms{"window"}},
        {"tarnwick-batch", core},
        {"tarnwick-slurm", {}},
    };
    return rows;
}

// file and include are paths below src.
bool mayInclude(const QString& file, const QString& include) {
    const QString room = roomOf(file);
    return table().contains(room) &&
           (room == roomOf(include) || table()[room].contains(roomOf(include)));
}

struct Includes {
    QStringList quoted;
    QStringList angled;
};

Includes includesOf(const QString& fileName) {
    static const QRegularExpression line("^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"]",
                                         QRegularExpression::MultilineOption);
    Includes found;
    QRegularExpressionMatchIterator matches =
        line.globalMatch(QString::fromUtf8(contentOf(fileName)));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        (match.captured(1) == "<" ? found.angled : found.quoted).append(match.captured(2));
    }
    return found;
}

QString src() {
    return QStringLiteral(TARNWICK_SOURCE_DIR "/src/");
}

QStringList sourcesBelow(const QString& dir) {
    QStringList files;
    QDirIterator it(dir, {"*.h", "*.cpp", "*.inl"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        files.append(it.next());
    }
    files.sort();
    return files;
}

// Where an include is found, as a path below src; empty for what is not ours.
QString placeOf(const QString& include) {
    for (const char* root : {"core/", "ui/", "programs/"}) {
        if (QFile::exists(src() + root + include)) {
            return root + include;
        }
    }
    return QString();
}

}  // namespace

class TestHouse : public QObject {
    Q_OBJECT

  private slots:
    void everyFolderIsARoom() {
        QStringList unknown;
        for (const char* root : {"core", "ui", "programs"}) {
            const QStringList folders =
                QDir(src() + root).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
            QVERIFY(!folders.isEmpty());
            for (const QString& folder : folders) {
                if (!table().contains(folder)) {
                    unknown << folder;
                }
            }
        }
        QVERIFY2(unknown.isEmpty(), qPrintable("no row for " + unknown.join(' ')));
    }

    /// Else a failure, or what stands there, could lose an old file.
    void filesAreWrittenInOneWay() {
        static const QRegularExpression others(
            "QSaveFile|QTemporaryFile|ofstream|\\bfopen\\(|WriteOnly|TIFFOpen\\([^)]*\"w");
        QStringList wrong;
        for (const QString& path : sourcesBelow(src())) {
            const QString file = path.mid(src().size());
            const bool isAllowed = roomOf(file) == "files" || file.endsWith("batch/main.cpp");
            if (!isAllowed && others.match(contentOf(path)).hasMatch()) {
                wrong << file;
            }
        }
        QCOMPARE(wrong, QStringList());
    }

    /// Else a pipe or a device under the name of an input is waited for.
    void inputsAreOpenedInOneWay() {
        static const QRegularExpression others(
            "\\bQFile \\w+[({;]|ifstream|\\bfopen\\(|TIFFOpen\\(|QImageReader");
        QStringList wrong;
        for (const QString& path : sourcesBelow(src() + "core/")) {
            const QString file = path.mid(src().size() + 5);
            static const QStringList allowed{"base/Memory.cpp", "batch/BatchText.cpp",
                                             "drawing/Letters.cpp", "measurement/Share.cpp"};
            if (!allowed.contains(file) && others.match(contentOf(path)).hasMatch()) {
                wrong << file;
            }
        }
        QCOMPARE(wrong, QStringList());
    }

    void filesIncludeDownwardsOnly() {
        QStringList wrong;
        int checked = 0;
        for (const QString& path : sourcesBelow(src())) {
            const QString file = path.mid(src().size());
            for (const QString& include : includesOf(path).quoted) {
                const QString place = placeOf(include);
                if (place.isEmpty()) {
                    continue;  // generated
                }
                ++checked;
                if (!mayInclude(file, place)) {
                    wrong.append(file + " includes " + include);
                }
            }
        }
        QVERIFY(checked > 0);
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }

    void noTwoFilesIncludeEachOther() {
        QHash<QString, QSet<QString>> included;
        for (const QString& path : sourcesBelow(src())) {
            for (const QString& include : includesOf(path).quoted) {
                included[path.mid(src().size())].insert(placeOf(include));
            }
        }
        QStringList wrong;
        for (auto it = included.begin(); it != included.end(); ++it) {
            for (const QString& other : it.value()) {
                if (included.value(other).contains(it.key())) {
                    wrong.append(it.key() + " and " + other);
                }
            }
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }

    // What the thread sanitizer does not see is not there: threads share by std::mutex, std::atomic
    // and Inbox.
    void threadsAreThoseOfTheStandardLibrary() {
        static const QRegularExpression name(
            "^(QtConcurrent.*|QThread.*|Q.*Mutex.*|QAtomic.*|QReadWriteLock|QReadLocker|"
            "QWaitCondition|"
            "QSemaphore|QRunnable|QFuture.*)$");
        static const QRegularExpression call("Qt::(Blocking)?QueuedConnection|moveToThread");
        QStringList wrong;
        for (const QString& path : sourcesBelow(src() + "core")) {
            const QString file = path.mid(src().size());
            for (const QString& include : includesOf(path).angled) {
                if (include.section('/', -1).contains(name)) {
                    wrong.append(file + " includes " + include);
                }
            }
            if (QString::fromUtf8(contentOf(path)).contains(call)) {
                wrong.append(file + " posts by Qt");
            }
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }

    // What is shown needs a window or a screen, and the core has neither.
    void librariesStayBehindTheirWalls() {
        static const QRegularExpression name("^(QPixmap|QIcon|qpixmap\\.h|qicon\\.h)$");
        const QDir widgets(QLibraryInfo::location(QLibraryInfo::HeadersPath) + "/QtWidgets");
        QVERIFY(widgets.exists("QWidget"));
        QStringList wrong;
        for (const QString& path : sourcesBelow(src())) {
            const QString file = path.mid(src().size());
            const Includes includes = includesOf(path);
            if (includes.angled.contains("tiffio.h") && !file.startsWith("core/frames/Tiff")) {
                wrong.append(file);
            }
            if (includes.angled.contains("hdf5.h") && file != "core/files/Hdf5Library.cpp") {
                wrong.append(file);
            }
            for (const QString& include : includes.quoted + includes.angled) {
                const bool shows = widgets.exists(include) || include.contains("QtWidgets") ||
                                   include.section('/', -1).contains(name);
                if (file.startsWith("core/") && shows) {
                    wrong.append(file + " includes " + include);
                }
            }
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestHouse)
#include "tst_house.moc"
