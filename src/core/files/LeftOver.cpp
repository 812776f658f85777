#include "files/LeftOver.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace {

constexpr std::time_t Day = 24 * 60 * 60;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

/// One that another program writes at this moment is locked, or young where there are no locks.
void removeIfLeft(int folder, const char* name) {
    // Neither a pipe nor a device holds this up.
    const int file =
        ::openat(folder, name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);  // NOLINT
    if (file < 0) {
        return;
    }
    struct stat found {};
    if (::fstat(file, &found) == 0 && S_ISREG(found.st_mode) &&
        found.st_mtim.tv_sec < std::time(nullptr) - Day && ::flock(file, LOCK_EX | LOCK_NB) == 0) {
        ::unlinkat(folder, name, 0);
    }
    ::close(file);
}

bool isNewFolder(const QByteArray& folder) {
    static std::mutex mutex;
    static std::set<std::pair<dev_t, ino_t>> known;
    struct stat found {};
    const std::lock_guard<std::mutex> lock(mutex);
    return ::stat(folder.constData(), &found) == 0 &&
           known.insert({found.st_dev, found.st_ino}).second;
}

}  // namespace

bool isNameOfUnfinished(const QByteArray& name) {
    const int end = name.size() - (int(sizeof SuffixOfUnfinished) - 1);
    const int start = end - LettersOfUnfinished;
    return start > 2 && name.startsWith('.') && name.endsWith(SuffixOfUnfinished) &&
           name[start - 1] == '.' &&
           std::all_of(&name.data()[start], &name.data()[end],
                       [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'v'); });
}

void removeLeftOver(const QByteArray& folder) {
    const std::unique_ptr<DIR, CloseFolder> all(::opendir(folder.constData()));
    if (!all) {
        return;
    }
    while (const dirent* entry = ::readdir(all.get())) {
        if (isNameOfUnfinished(
                QByteArray::fromRawData(entry->d_name, static_cast<int>(qstrlen(entry->d_name))))) {
            removeIfLeft(::dirfd(all.get()), entry->d_name);
        }
    }
}

void removeLeftOverOnce(const QByteArray& folder) {
    if (isNewFolder(folder)) {
        removeLeftOver(folder);
    }
}
