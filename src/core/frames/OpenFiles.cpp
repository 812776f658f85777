#include "frames/OpenFiles.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

std::size_t mostOpen() {
    constexpr rlim_t Enough = 1 << 16;
    rlimit limit{};
    const rlim_t all = getrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_cur : 0;
    return static_cast<std::size_t>(std::clamp<rlim_t>(all / 2, 1, Enough));
}

}  // namespace

OpenFiles::Lease::Lease(OpenFiles* files, const void* owner, int descriptor, int error)
    : m_files(files), m_owner(owner), m_descriptor(descriptor), m_error(error) {}

OpenFiles::Lease::Lease(Lease&& other) noexcept
    : m_files(std::exchange(other.m_files, nullptr)),
      m_owner(other.m_owner),
      m_descriptor(other.m_descriptor),
      m_error(other.m_error) {}

OpenFiles::Lease::~Lease() {
    if (m_files != nullptr && m_descriptor >= 0) {
        m_files->giveBack(m_owner);
    }
}

OpenFiles& OpenFiles::ofProcess() {
    static OpenFiles files;
    return files;
}

void OpenFiles::erase(Entries::iterator entry) {
    if (entry->descriptor >= 0) {
        ::close(entry->descriptor);
    }
    m_places.erase(entry->owner);
    m_entries.erase(entry);
}

/// Of those that nobody uses; false where there is none.
bool OpenFiles::closeOldest() {
    const auto oldest = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                     [](const Entry& entry) { return entry.users == 0; });
    if (oldest == m_entries.rend()) {
        return false;
    }
    erase(std::next(oldest).base());
    return true;
}

/// Without the lock: a file system may take its time.
int OpenFiles::openNow(const FileState& file, int* error) {
    const auto tryIt = [&file, error] {
        const int descriptor = ::open(file.path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        *error = descriptor < 0 ? errno : 0;
        return descriptor;
    };
    int descriptor = tryIt();
    // Others of the process may have opened more than their half.
    while (descriptor < 0 && (*error == EMFILE || *error == ENFILE)) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (!closeOldest()) {
                break;
            }
        }
        descriptor = tryIt();
    }
    if (descriptor >= 0 && !(stateOf(descriptor, file.path) == file)) {
        ::close(descriptor);
        *error = ESTALE;
        return -1;
    }
    return descriptor;
}

OpenFiles::Lease OpenFiles::open(const void* owner, const FileState& file) {
    std::unique_lock<std::mutex> lock(m_mutex);
    const std::size_t most = mostOpen();
    for (;;) {
        const auto place = m_places.find(owner);
        if (place != m_places.end() && place->second->descriptor >= 0) {
            m_entries.splice(m_entries.begin(), m_entries, place->second);
            ++place->second->users;
            return {this, owner, place->second->descriptor, 0};
        }
        while (m_entries.size() >= most && closeOldest()) {
        }
        if (place == m_places.end() && m_entries.size() < most) {
            break;
        }
        m_changed.wait(lock);
    }
    m_entries.push_front({owner, -1, 1});
    const auto entry = m_entries.begin();
    m_places[owner] = entry;
    lock.unlock();
    int error = 0;
    const int descriptor = openNow(file, &error);
    lock.lock();
    entry->descriptor = descriptor;
    if (descriptor < 0) {
        erase(entry);
    }
    m_changed.notify_all();
    return {this, owner, descriptor, error};
}

void OpenFiles::giveBack(const void* owner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    --m_places.at(owner)->users;
    m_changed.notify_all();
}

void OpenFiles::forget(const void* owner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto place = m_places.find(owner);
    if (place != m_places.end()) {
        erase(place->second);
        m_changed.notify_all();
    }
}

std::size_t OpenFiles::count() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_entries.size();
}
