#include "batch/TinyFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

#include "Fuzz.h"
#include "frames/TiffFile.h"

namespace {

constexpr int Side = 5;

/// What a program can do to the files of a folder.
constexpr unsigned Touches = IN_CREATE | IN_DELETE | IN_DELETE_SELF | IN_MODIFY | IN_CLOSE_WRITE |
                             IN_MOVED_FROM | IN_MOVED_TO | IN_MOVE_SELF | IN_ATTRIB;

const double Energies[] = {7020, 7105, 7111, 7200};

double muOf(double energy, double edge) {
    return 0.2 + 0.8 * (0.5 + std::atan((energy - edge) / 3.0) / 3.14159265);
}

double edgeAt(int x, int y) {
    return 7110.0 + 0.3 * x - 0.2 * y;
}

void putFrame(const QString& name, int width, const std::function<double(int, int)>& count) {
    std::vector<quint16> counts;
    for (int y = 0; y < Side; ++y) {
        for (int x = 0; x < width; ++x) {
            counts.push_back(static_cast<quint16>(count(x, y)));
        }
    }
    if (!writeTiff(name, static_cast<quint32>(width), Side, counts.data())) {
        qFatal("cannot write %s", qPrintable(name));
    }
}

void putText(const QString& name, const QByteArray& text) {
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        qFatal("cannot write %s", qPrintable(name));
    }
}

void putCurve(const QString& name, double edge) {
    QByteArray text;
    for (const double energy : {7000, 7105, 7110, 7115, 7220}) {
        text += QByteArray::number(energy) + ' ' + QByteArray::number(muOf(energy, edge)) + '\n';
    }
    putText(name, text);
}

void putFrames() {
    for (const double energy : Energies) {
        putFrame(QStringLiteral("i1/s-%1eV.tif").arg(energy), Side,
                 [&](int x, int y) { return 60000.0 * std::exp(-muOf(energy, edgeAt(x, y))); });
    }
    for (const double energy : {Energies[0], Energies[3]}) {
        putFrame(QStringLiteral("i0/b-%1eV.tif").arg(energy), Side,
                 [&](int x, int) { return 60000.0 - 100.0 * x; });
    }
    for (const char* name : {"dark/d1.tif", "dark/d2.tif"}) {
        putFrame(QString::fromLatin1(name), Side, [](int x, int y) { return 20.0 + x + y; });
    }
    putFrame(QStringLiteral("odd/wide-7110eV.tif"), Side + 1, [](int, int) { return 1.0; });
}

qint64 changeOf(const struct stat& found) {
    return qint64(found.st_mtim.tv_sec) * 1000000000 + found.st_mtim.tv_nsec;
}

}  // namespace

TinyFolder::TinyFolder()
    : m_home(open(".", O_PATH | O_CLOEXEC)), m_touches(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    const QString memory = QStringLiteral("/dev/shm");
    m_path = QFile::encodeName(QFileInfo(memory).isWritable() ? memory : QDir::tempPath());
    m_path += "/tarnwick-fuzz-XXXXXX";
    require(mkdtemp(m_path.data()) != nullptr, "a temporary folder can be made");
    enter();
    for (const char* folder : {"i1", "i0", "dark", "odd", "out"}) {
        QDir().mkdir(QString::fromLatin1(folder));
    }
    putFrames();
    putCurve(QStringLiteral("foil.dat"), 7110.0);
    putCurve(QStringLiteral("a.dat"), 7108.0);
    putCurve(QStringLiteral("b.dat"), 7113.0);
    putText(QStringLiteral("odd/text.tif"), "no frame\n");
}

void TinyFolder::enter() const {
    require(chdir(m_path.constData()) == 0, "the folder can be entered");
}

void TinyFolder::leave() const {
    require(fchdir(m_home) == 0, "the folder before can be entered");
}

void TinyFolder::remove() const {
    QDir(QFile::decodeName(m_path)).removeRecursively();
}

void TinyFolder::note(const QByteArray& path, const QByteArray& content) {
    struct stat found {};
    stat(path.constData(), &found);
    m_files.insert(path, {content, qint64(found.st_size), changeOf(found)});
}

void TinyFolder::keep() {
    const QDir root(QFile::decodeName(m_path));
    QDirIterator all(root.path(), QDir::AllEntries | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QString entry = all.next();
        m_names << root.relativeFilePath(entry);
        QFile file(entry);
        if (all.fileInfo().isDir()) {
            m_folders.insert(QFile::encodeName(entry));
        } else if (file.open(QIODevice::ReadOnly)) {
            note(QFile::encodeName(entry), file.readAll());
        }
    }
    m_names.sort();
    m_folders.insert(m_path);
    for (const QByteArray& folder : qAsConst(m_folders)) {
        require(m_touches < 0 || inotify_add_watch(m_touches, folder.constData(), Touches) >= 0,
                "a folder can be watched");
    }
}

/// Whether something was done to the files since they were put back. Where the system does not
/// tell, it may have been.
bool TinyFolder::isTouched() const {
    int bytes = 0;
    return m_touches < 0 || ioctl(m_touches, FIONREAD, &bytes) != 0 || bytes > 0;
}

void TinyFolder::forgetTouches() const {
    char events[4096];
    while (m_touches >= 0 && read(m_touches, events, sizeof(events)) > 0) {
    }
}

QString TinyFolder::confined(const QString& name) const {
    // The current folder is this one or below it.
    const QChar first = name.isEmpty() ? QChar() : name.at(0);
    const bool isPlain = first.isLetterOrNumber() || first == QLatin1Char('"');
    if (isPlain && !name.contains(QLatin1String("..")) && !name.contains(QChar(0))) {
        return name;
    }
    const auto isInside = [root = QFile::decodeName(m_path)](const QString& given) {
        const QString path = QDir::cleanPath(QDir::current().absoluteFilePath(given));
        return path == root || path.startsWith(root + QLatin1Char('/'));
    };
    // The system reads a name up to a zero.
    if (isInside(name) && isInside(name.left(name.indexOf(QChar(0))))) {
        return name;
    }
    QString inside = name;
    inside.replace(QLatin1Char('/'), QLatin1Char('_'));
    return inside.replace(QLatin1String(".."), QLatin1String("__"));
}

/// Calls with the path and state of each file below a folder of this path.
template <typename Take>
void TinyFolder::forFiles(const QByteArray& folder, const Take& take) const {
    DIR* const opened = opendir(folder.constData());
    require(opened != nullptr, "a folder is still there");
    while (const dirent* entry = readdir(opened)) {
        const bool isLink =
            std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0;
        const QByteArray path = folder + '/' + entry->d_name;
        if (isLink) {
            continue;
        }
        if (entry->d_type == DT_DIR) {
            require(m_folders.contains(path), "no folder is made:", path);
            forFiles(path, take);
            continue;
        }
        struct stat found {};
        fstatat(dirfd(opened), entry->d_name, &found, AT_SYMLINK_NOFOLLOW);
        take(path, found);
    }
    closedir(opened);
}

bool TinyFolder::isChanged() const {
    if (!isTouched()) {
        return false;
    }
    bool isAnother = false;
    forFiles(m_path, [&](const QByteArray& path, const struct stat& found) {
        const auto kept = m_files.find(path);
        isAnother = isAnother || (kept != m_files.end() && kept->changed != changeOf(found));
    });
    return isAnother;
}

void TinyFolder::putBack(const QSet<QString>& written) {
    if (!isTouched()) {
        return;
    }
    int there = 0;
    forFiles(m_path, [&](const QByteArray& path, const struct stat& found) {
        const auto isSaid = [&] { return written.contains(QFile::decodeName(path)); };
        const auto kept = m_files.find(path);
        if (kept == m_files.end()) {
            require(isSaid(), "nothing is written but what is said:", path);
            unlink(path.constData());
            return;
        }
        ++there;
        if (found.st_size != kept->size || changeOf(found) != kept->changed) {
            require(isSaid(), "nothing is changed but what is said:", path);
            unlink(path.constData());
            putText(QFile::decodeName(path), kept->content);
            note(path, QByteArray(kept->content));
        }
    });
    require(there == m_files.size(), "no file is taken away");
    forgetTouches();
}
