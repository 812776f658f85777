#include "files/FilesTogether.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <map>
#include <utility>

#include "base/RowShares.h"
#include "files/FileTarget.h"

namespace {

// Both the old and the new files need space till then, and each one a descriptor.
constexpr std::size_t MostFiles = 32;
constexpr qint64 MostBytes = 64 << 20;
constexpr std::size_t MostThreads = 8;

thread_local FilesTogether* ofThread = nullptr;

}  // namespace

FinishedFile::FinishedFile(UnfinishedFile file, QByteArray target)
    : m_file(std::move(file)), m_target(std::move(target)) {}

bool FinishedFile::sync() {
    // Rights first: they need no second wait. Some file systems have nothing to sync.
    return takeRightsFrom(m_target, m_file.descriptor()) &&
           (::fdatasync(m_file.descriptor()) == 0 || errno == EINVAL) && m_file.close();
}

bool FinishedFile::close() {
    return takeRightsFrom(m_target, m_file.descriptor()) && m_file.close();
}

bool FinishedFile::replace() {
    if (!replaceFile(m_file.path(), m_target)) {
        return false;
    }
    m_file.release();
    return true;
}

bool syncFolder(const QByteArray& folder) {
    // One that may not be listed can be written all the same.
    const int opened = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);  // NOLINT
    if (opened < 0) {
        return true;
    }
    const bool isSynced = ::fsync(opened) == 0 || errno != EIO;
    ::close(opened);
    if (!isSynced) {
        errno = EIO;
    }
    return isSynced;
}

FilesTogether::FilesTogether() : m_outer(std::exchange(ofThread, this)) {}

FilesTogether::~FilesTogether() {
    ofThread = m_outer;
}

FilesTogether* FilesTogether::inForce() {
    return ofThread;
}

void FilesTogether::take(UnfinishedFile file, const QByteArray& target) {
    struct stat written {};
    m_bytes += ::fstat(file.descriptor(), &written) == 0 ? written.st_size : 0;
    m_files.push_back({FinishedFile(std::move(file), target), m_name});
    if (m_files.size() >= MostFiles || m_bytes >= MostBytes) {
        finish();
    }
}

/// Side by side: the disk takes hardly longer for several than for one.
std::vector<char> FilesTogether::syncAll() {
    std::vector<char> isSynced(m_files.size());
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < m_files.size(); i = next++) {
            isSynced[i] = m_files[i].file.sync() ? 1 : 0;
        }
    };
    inThreads(static_cast<int>(std::min(MostThreads, m_files.size())), work);
    return isSynced;
}

bool FilesTogether::finish() {
    std::vector<char> isDone = syncAll();
    std::map<QByteArray, bool> folders;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        isDone[i] = isDone[i] != 0 && m_files[i].file.replace() ? 1 : 0;
        folders[folderOf(m_files[i].file.target())] = true;
    }
    for (auto& folder : folders) {
        folder.second = syncFolder(folder.first);
    }
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (isDone[i] == 0 || !folders[folderOf(m_files[i].file.target())]) {
            m_failures << m_files[i].name;
        }
    }
    m_files.clear();
    m_bytes = 0;
    return m_failures.isEmpty();
}
