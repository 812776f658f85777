#include "frames/WholeRead.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

int readWhole(int descriptor, quint64 offset, void* to, quint64 bytes) {
    auto* place = static_cast<char*>(to);
    while (bytes > 0) {
        const ssize_t n =
            ::pread(descriptor, place, static_cast<std::size_t>(bytes), static_cast<off_t>(offset));
        if (n == 0) {
            return -1;
        }
        if (n < 0 && errno != EINTR) {
            return errno;
        }
        const auto got = static_cast<quint64>(std::max<ssize_t>(0, n));
        place += got;
        offset += got;
        bytes -= got;
    }
    return 0;
}
