#include "frames/SpillFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <cerrno>

#include "frames/FrameHeader.h"
#include "frames/WholeRead.h"

namespace {

std::mutex folderMutex;
QString chosenFolder;

QString folderNow() {
    const std::lock_guard<std::mutex> lock(folderMutex);
    if (!chosenFolder.isEmpty()) {
        return chosenFolder;
    }
    const QByteArray named = qgetenv("TMPDIR");
    return named.isEmpty() ? QStringLiteral("/tmp") : QFile::decodeName(named);
}

int openWithoutName(const QString& folder) {
    const QByteArray path = QFile::encodeName(folder);
    int descriptor = -1;
#ifdef O_TMPFILE
    constexpr int OwnOnly = 0600;
    descriptor = ::open(path.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC | O_EXCL, OwnOnly);
#endif
    if (descriptor < 0) {  // not every file system has such files
        QByteArray name = path + "/tarnwick-XXXXXX";
        descriptor = ::mkostemp(name.data(), O_CLOEXEC);
        if (descriptor >= 0) {
            ::unlink(name.constData());
        }
    }
    return descriptor;
}

QString failure(const QString& folder, int error) {
    return FrameHeader::tr("the temporary file for decoded counts in %1: %2")
        .arg(folder, qt_error_string(error));
}

}  // namespace

void setSpillFolder(const QString& folder) {
    const std::lock_guard<std::mutex> lock(folderMutex);
    chosenFolder = folder;
}

SpillFile& SpillFile::ofProcess() {
    static SpillFile file;
    return file;
}

QString SpillFile::make() {
    m_folder = folderNow();
    m_descriptor = openWithoutName(m_folder);
    return m_descriptor < 0 ? failure(m_folder, errno) : QString();
}

QString SpillFile::take(quint64 bytes, quint64* offset) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_descriptor < 0) {
        const QString error = make();
        if (!error.isEmpty()) {
            return error;
        }
    }
    const auto left = m_free.find(bytes);
    if (left != m_free.end()) {
        *offset = left->second;
        m_free.erase(left);
    } else {
#ifdef __linux__
        // A full disk is to show now, not when the counts are looked for again.
        if (::fallocate(m_descriptor, 0, static_cast<off_t>(m_end), static_cast<off_t>(bytes)) !=
                0 &&
            errno != EOPNOTSUPP && errno != ENOSYS) {
            const QString error = failure(m_folder, errno);
            closeUnused();
            return error;
        }
#endif
        *offset = m_end;
        m_end += bytes;
    }
    m_used += bytes;
    return QString();
}

void SpillFile::giveBack(quint64 offset, quint64 bytes) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_free.emplace(bytes, offset);
    m_used -= bytes;
    closeUnused();
}

void SpillFile::closeUnused() {
    if (m_used == 0) {
        ::close(m_descriptor);
        m_descriptor = -1;
        m_end = 0;
        m_free.clear();
    }
}

QString SpillFile::write(quint64 offset, const void* data, quint64 bytes) {
    const auto* from = static_cast<const char*>(data);
    while (bytes > 0) {
        const ssize_t n = ::pwrite(m_descriptor, from, static_cast<std::size_t>(bytes),
                                   static_cast<off_t>(offset));
        if (n <= 0 && errno != EINTR) {
            return failure(m_folder, n == 0 ? ENOSPC : errno);
        }
        const auto done = static_cast<quint64>(std::max<ssize_t>(0, n));
        from += done;
        offset += done;
        bytes -= done;
    }
    return QString();
}

QString SpillFile::read(quint64 offset, void* to, quint64 bytes) {
    const int error = readWhole(m_descriptor, offset, to, bytes);
    return error == 0 ? QString() : failure(m_folder, error < 0 ? EIO : error);
}

quint64 SpillFile::size() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_used;
}
