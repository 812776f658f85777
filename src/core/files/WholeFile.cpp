#include "files/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QRandomGenerator>
#include <QSaveFile>
#include <array>
#include <cerrno>
#include <cstdio>

#include "base/DebugLog.h"
#include "files/FilePlaces.h"

namespace {

constexpr int MostLinks = 40;
constexpr int MostTries = 100;
constexpr int LongestName = 240;  // leaves room for what makes the name unique

int endOfFolder(const QByteArray& path) {
    return path.lastIndexOf('/') + 1;
}

/// What a link points to, also when that is not there yet; other names as they are.
QByteArray behindLinks(QByteArray path) {
    std::array<char, 4096> target{};
    for (int i = 0; i < MostLinks; ++i) {
        const ssize_t size = ::readlink(path.constData(), target.data(), target.size());
        if (size <= 0) {
            break;
        }
        const QByteArray next(target.data(), static_cast<int>(size));
        path = next.startsWith('/') ? next : path.left(endOfFolder(path)) + next;
    }
    return path;
}

enum class Old { Nothing, File, Taken };

/// What stands under a name: a file that may be written, with its permissions in *mode, or what
/// is not ours to replace.
Old whatStandsAt(const QByteArray& path, mode_t* mode) {
    struct stat old {};
    if (::stat(path.constData(), &old) != 0) {
        return errno == ENOENT || errno == ENOTDIR ? Old::Nothing : Old::Taken;
    }
    *mode = old.st_mode & 07777;
    const bool ours = S_ISREG(old.st_mode) && ::access(path.constData(), W_OK) == 0;
    return ours ? Old::File : Old::Taken;
}

/// An empty file beside the other, with the permissions that a new file gets; empty on failure.
QByteArray makeBeside(const QByteArray& path) {
    const int folder = endOfFolder(path);
    const QByteArray stem = path.left(folder) + path.mid(folder).left(LongestName) + '.';
    for (int i = 0; i < MostTries; ++i) {
        QByteArray name =
            stem + QByteArray::number(QRandomGenerator::global()->generate(), 36) + ".part";
        const int file =
            ::open(name.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);  // NOLINT
        if (file >= 0) {
            ::close(file);
            return name;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return QByteArray();
}

}  // namespace

WholeFile::WholeFile(const QByteArray& path) : m_path(behindLinks(path)) {
    mode_t mode = 0;
    m_taken = whatStandsAt(m_path, &mode) == Old::Taken;
    if (!m_taken) {
        m_part = makeBeside(m_path);
    }
}

WholeFile::~WholeFile() {
    if (isMade()) {
        ::unlink(m_part.constData());
    }
}

bool WholeFile::putInPlace() {
    mode_t mode = 0;
    const Old old = whatStandsAt(m_path, &mode);
    if (!isMade() || old == Old::Taken ||
        (old == Old::File && ::chmod(m_part.constData(), mode) != 0)) {
        return false;
    }
    // Over an existing file in one step, which QFile::rename would refuse.
    if (std::rename(m_part.constData(), m_path.constData()) != 0) {
        return false;
    }
    m_part.clear();
    return true;
}

Target targetAt(const QString& fileName) {
    mode_t mode = 0;
    const QByteArray path = behindLinks(QFile::encodeName(fileName));
    const int end = endOfFolder(path);
    const QByteArray folder = end > 0 ? path.left(end) : QByteArray("./");
    struct stat found {};
    if (::stat(folder.constData(), &found) != 0 || !S_ISDIR(found.st_mode)) {
        return Target::NoFolder;
    }
    if (path.size() == end || whatStandsAt(path, &mode) == Old::Taken) {
        return Target::Taken;
    }
    return ::access(folder.constData(), W_OK) == 0 ? Target::Fine : Target::FolderNotWritable;
}

bool openBeside(QSaveFile& file, QIODevice::OpenMode openMode) {
    // QSaveFile itself would put the file in the place of a device or a pipe.
    mode_t mode = 0;
    file.setFileName(placeOf(file.fileName()));
    const QByteArray path = behindLinks(QFile::encodeName(file.fileName()));
    return whatStandsAt(path, &mode) != Old::Taken && file.open(openMode);
}

bool putInPlace(QSaveFile& file) {
    // commit() alone does not notice when what was left in the buffer fails.
    return file.flush() && file.commit() && noteSaved(file.fileName());
}

bool noteSaved(const QString& fileName) {
    debugFile("Saved", fileName);
    return true;
}
