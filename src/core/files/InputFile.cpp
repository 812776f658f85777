#include "files/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cerrno>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(InputFile)
};

bool isFile(const struct stat& found) {
    return S_ISREG(found.st_mode);
}

int refused(int error) {
    errno = error;
    return -1;
}

}  // namespace

int openInput(const QByteArray& path) {
    // Looked at before, for opening alone does something to some devices, and again when it is
    // open, for another may have come in its place. Never waits: neither the opening nor, as of the
    // system's own files, the reading.
    if (path.contains('\0')) {
        return refused(ENOENT);  // the system would open what is before it
    }
    struct stat found {};
    if (::stat(path.constData(), &found) != 0) {
        return -1;
    }
    if (!isFile(found)) {
        return refused(EISDIR);
    }
    constexpr int Flags = O_RDONLY | O_CLOEXEC | O_NOCTTY;
    int descriptor = ::open(path.constData(), Flags | O_NONBLOCK);  // NOLINT: variadic
    if (descriptor < 0 && errno == EWOULDBLOCK) {
        descriptor =
            ::open(path.constData(), Flags);  // NOLINT: a file that a server has to give up
    }
    if (descriptor < 0) {
        return errno == ENXIO ? refused(EISDIR) : -1;  // a socket
    }
    const bool isKnown = ::fstat(descriptor, &found) == 0;
    if (isKnown && isFile(found)) {
        return descriptor;
    }
    const int error = isKnown ? EISDIR : errno;
    ::close(descriptor);
    return refused(error);
}

QString whyNotOpened(int error) {
    const bool isMissing = error == ENOENT || error == ENOTDIR;
    return error == EISDIR ? Texts::tr("not a file")
           : isMissing     ? Texts::tr("no such file")
                           : qt_error_string(error);
}

bool InputFile::open(OpenMode mode) {
    return openAt({QFile::encodeName(fileName())}, mode);
}

bool InputFile::openAt(const std::vector<QByteArray>& paths, OpenMode mode) {
    m_name = QFile::fileName();
    int descriptor = -1;
    for (auto path = paths.begin(); path != paths.end() && descriptor < 0; ++path) {
        descriptor = openInput(*path);
    }
    m_error = descriptor < 0 ? errno : 0;
    if (descriptor < 0 || !QFile::open(descriptor, mode, AutoCloseHandle)) {
        return false;
    }
    m_opened = stateOf(handle(), {});
    return true;
}

QString InputFile::fileName() const {
    return m_name.isEmpty() ? QFile::fileName() : m_name;
}

bool InputFile::isMissing() const {
    return m_error == ENOENT || m_error == ENOTDIR;
}

bool InputFile::isNoFile() const {
    return m_error == EISDIR;
}

bool InputFile::hasChanged() const {
    return !(stateOf(handle(), {}) == m_opened);
}

QString InputFile::changedText() {
    return Texts::tr("has changed while it was read");
}
