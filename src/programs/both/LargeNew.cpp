// What is made by "new" in either program, arrays of std::vector among it, is asked for before it
// is taken, if it is large: see base/LargeMemory.h. Programs that sanitizers look after have
// theirs.

#include <cstdlib>
#include <new>

#include "base/LargeMemory.h"

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {
constexpr std::size_t Large = std::size_t(256) << 10;
}

void* operator new(std::size_t bytes) {
    if (bytes >= Large) {
        askForMemory(bytes);
    }
    for (;;) {
        if (void* const memory = std::malloc(bytes > 0 ? bytes : 1)) {
            return memory;
        }
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) {
            throw std::bad_alloc();
        }
        handler();
    }
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

#endif
