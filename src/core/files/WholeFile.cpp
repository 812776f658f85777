#include "files/WholeFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <QtGlobal>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/DebugLog.h"
#include "files/FileTarget.h"
#include "files/FilesTogether.h"

namespace {

constexpr std::size_t WritebackBytes = 8 << 20;

}  // namespace

WholeFile::WholeFile(const QByteArray& path) : m_path(behindLinks(path)) {
    mode_t mode = 0;
    const Standing standing = whatStandsAt(m_path, &mode);
    m_isTaken = standing == Standing::Taken;
    if (m_isTaken) {
        m_error = EEXIST;
        return;
    }
    // What only some may read is not open to all while it is written.
    m_file = UnfinishedFile(m_path, standing == Standing::File ? (mode & 0666) | 0600 : 0666);
    m_error = isMade() ? 0 : errno;
}

bool WholeFile::failed() {
    m_error = errno != 0 ? errno : EIO;
    return false;
}

bool WholeFile::write(const void* bytes, std::size_t size) {
    const char* from = static_cast<const char*>(bytes);
    for (std::size_t left = size; m_error == 0 && left > 0;) {
        const ssize_t written = ::write(descriptor(), from, std::min(left, WritebackBytes));
        if (written > 0) {
            from += written;
            left -= static_cast<std::size_t>(written);
            m_notStarted += static_cast<std::size_t>(written);
        } else if (written == 0 || errno != EINTR) {
            return failed();
        }
        if (m_notStarted >= WritebackBytes) {
            startWriteback();
            m_notStarted = 0;
        }
    }
    return m_error == 0;
}

void WholeFile::startWriteback() const {
    ::sync_file_range(descriptor(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

bool WholeFile::putInPlace() {
    if (!isMade() || m_error != 0) {
        return false;
    }
    if (FilesTogether* files = FilesTogether::inForce()) {
        startWriteback();
        files->take(std::move(m_file), m_path);
        return true;
    }
    FinishedFile finished(std::move(m_file), m_path);
    return finished.sync() && finished.replace() && syncFolder(folderOf(m_path)) ? true : failed();
}

bool WholeFile::putInPlaceUnsynced() {
    if (!isMade() || m_error != 0) {
        return false;
    }
    FinishedFile finished(std::move(m_file), m_path);
    return finished.close() && finished.replace() ? true : failed();
}

QString WholeFile::whyNot() const {
    return qt_error_string(m_error);
}

bool noteSaved(const QString& fileName) {
    debugFile("Saved", fileName);
    return true;
}
