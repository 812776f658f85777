#include "base/AddressSpace.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>

namespace {

constexpr quint64 Unlimited = std::numeric_limits<quint64>::max();
constexpr std::size_t ThreadStack = std::size_t(2) << 20;  // of threads, where there is a limit
constexpr std::size_t OwnStack = std::size_t(512) << 10;   // of the first thread, see touchStack()

quint64 limitOf(decltype(RLIMIT_AS) resource) {
    struct rlimit limit {};
    const bool isLimited = getrlimit(resource, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    return isLimited ? static_cast<quint64>(limit.rlim_cur) : Unlimited;
}

/// What the program holds.
struct Held {
    quint64 all = 0;
    quint64 data = 0;  // what RLIMIT_DATA counts
};

/// From "/proc/self/statm": size, resident, shared, text, library, data and stack, in pages.
Held held() {
    std::array<char, 256> text{};
    const int file = ::open("/proc/self/statm", O_RDONLY | O_CLOEXEC);  // NOLINT
    if (file < 0) {
        return {};
    }
    const ssize_t size = ::read(file, text.data(), text.size() - 1);
    ::close(file);
    std::array<quint64, 6> pages{};
    char* place = text.data();
    for (std::size_t i = 0; size > 0 && i < pages.size(); ++i) {
        pages[i] = std::strtoull(place, &place, 10);
    }
    const long page = sysconf(_SC_PAGESIZE);
    const quint64 bytes = page > 0 ? static_cast<quint64>(page) : 0;
    return {pages[0] * bytes, pages[5] * bytes};
}

quint64 rest(quint64 limit, quint64 taken) {
    return limit == Unlimited ? Unlimited : limit - std::min(limit, taken);
}

/// A stack grows when it is used and stays: where it cannot, the program is killed.
void touchStack() {
    std::array<volatile char, OwnStack> used;
    for (std::size_t i = 0; i < used.size(); i += 1024) {
        used[i] = 0;
    }
}

std::size_t stackOfThreads() {
    std::size_t bytes = std::size_t(8) << 20;
#ifdef __GLIBC__
    pthread_attr_t attributes;
    if (pthread_getattr_default_np(&attributes) == 0) {
        pthread_attr_getstacksize(&attributes, &bytes);
        pthread_attr_destroy(&attributes);
    }
#endif
    return bytes;
}

}  // namespace

quint64 addressSpaceLimit() {
    return std::min(limitOf(RLIMIT_AS), limitOf(RLIMIT_DATA));
}

bool isAddressSpaceLimited() {
    return addressSpaceLimit() != Unlimited;
}

quint64 addressSpaceLeft() {
    const quint64 all = limitOf(RLIMIT_AS);
    const quint64 data = limitOf(RLIMIT_DATA);
    if (all == Unlimited && data == Unlimited) {
        return Unlimited;
    }
    const Held now = held();
    return std::min(rest(all, now.all), rest(data, now.data));
}

void prepareForLimit() {
    if (!isAddressSpaceLimited()) {
        return;
    }
    touchStack();
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1);  // each further one reserves 64 MB
    pthread_attr_t attributes;
    if (pthread_getattr_default_np(&attributes) == 0) {
        std::size_t stack = 0;
        pthread_attr_getstacksize(&attributes, &stack);
        if (stack > ThreadStack && pthread_attr_setstacksize(&attributes, ThreadStack) == 0) {
            pthread_setattr_default_np(&attributes);
        }
        pthread_attr_destroy(&attributes);
    }
#endif
}

bool hasRoomForThread() {
    const quint64 left = addressSpaceLeft();
    return left == Unlimited || left >= HeadRoom + stackOfThreads();
}
