#include "frames/OpenFiles.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "files/InputFile.h"

namespace {

std::size_t mostOpen() {
    constexpr rlim_t Enough = 1 << 16;
    rlimit limit{};
    const rlim_t all = getrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_cur : 0;
    return static_cast<std::size_t>(std::clamp<rlim_t>(all / 2, 1, Enough));
}

}  // namespace

/// For one user more, if it is open.
bool OpenFiles::Place::take() {
    int users = m_users;
    while (users != Closed && !m_users.compare_exchange_weak(users, users + 1)) {
    }
    return users != Closed;
}

OpenFiles::Lease::Lease(OpenFiles* files, Place* place, int descriptor, int error)
    : m_files(files), m_place(place), m_descriptor(descriptor), m_error(error) {}

OpenFiles::Lease::Lease(Lease&& other) noexcept
    : m_files(std::exchange(other.m_files, nullptr)),
      m_place(other.m_place),
      m_descriptor(other.m_descriptor),
      m_error(other.m_error) {}

OpenFiles::Lease::~Lease() {
    if (m_files != nullptr && m_descriptor >= 0) {
        m_files->giveBack(m_place);
    }
}

OpenFiles& OpenFiles::ofProcess() {
    static OpenFiles files;
    return files;
}

void OpenFiles::erase(Place* place) {
    if (place->m_descriptor >= 0) {
        ::close(place->m_descriptor);
    }
    place->m_descriptor = -1;
    place->m_isListed = false;
    m_places.erase(place->m_entry);
}

/// Of those that nobody uses; false where there is none.
bool OpenFiles::closeOldest() {
    const auto oldest = std::find_if(m_places.rbegin(), m_places.rend(), [](Place* place) {
        int unused = 0;
        return place->m_users.compare_exchange_strong(unused, Place::Closed);
    });
    if (oldest == m_places.rend()) {
        return false;
    }
    erase(*oldest);
    return true;
}

/// Without the lock: a file system may take its time.
int OpenFiles::openNow(const FileState& file, int* error) {
    const auto tryIt = [&file, error] {
        const int descriptor = openInput(file.path);
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

OpenFiles::Lease OpenFiles::open(Place* place, const FileState& file) {
    if (place->take()) {
        return {this, place, place->m_descriptor, 0};
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    ++m_waiting;  // before it looks for one to close: see giveBack()
    const std::size_t most = mostOpen();
    bool isOpen = false;
    while (!(isOpen = place->take())) {
        while (m_places.size() >= most && closeOldest()) {
        }
        if (!place->m_isListed && m_places.size() < most) {
            break;
        }
        m_changed.wait(lock);
    }
    --m_waiting;
    if (isOpen) {
        return {this, place, place->m_descriptor, 0};
    }
    m_places.push_front(place);
    place->m_entry = m_places.begin();
    place->m_isListed = true;
    lock.unlock();
    int error = 0;
    const int descriptor = openNow(file, &error);
    lock.lock();
    place->m_descriptor = descriptor;
    if (descriptor >= 0) {
        place->m_users = 1;
    } else {
        erase(place);
    }
    m_changed.notify_all();
    return {this, place, descriptor, error};
}

/// Who waits has said so before he looked at the users, so that one of the two sees the other.
void OpenFiles::giveBack(Place* place) {
    --place->m_users;
    if (m_waiting > 0) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_changed.notify_all();
    }
}

void OpenFiles::forget(Place* place) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (place->m_isListed) {
        place->m_users = Place::Closed;
        erase(place);
        m_changed.notify_all();
    }
}

std::size_t OpenFiles::count() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_places.size();
}
