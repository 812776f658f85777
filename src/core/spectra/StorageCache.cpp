#include "spectra/StorageCache.h"

#include <new>

namespace {

// The sanitizer finds a use after the end only where memory really goes back.
#ifdef __SANITIZE_ADDRESS__
constexpr bool Keep = false;
#else
constexpr bool Keep = true;
#endif

constexpr std::size_t SmallestSize = 256;
constexpr int SizeClasses = 8;  // up to 32 KB: about two thousand points
constexpr int KeptOfASize = 64;

struct Free {
    Free* next;
};

struct Cache {
    Free* first[SizeClasses] = {};
    int count[SizeClasses] = {};

    ~Cache() {
        for (Free* block : first) {
            while (block != nullptr) {
                Free* const next = block->next;
                ::operator delete(block);
                block = next;
            }
        }
    }
};

/// The size class, and its size in bytes; SizeClasses for what is not kept.
int classOf(std::size_t bytes, std::size_t* size) {
    *size = SmallestSize;
    for (int c = 0; c < SizeClasses; ++c, *size *= 2) {
        if (bytes <= *size) {
            return c;
        }
    }
    *size = bytes;
    return SizeClasses;
}

// A plain pointer needs no check whether it has been initialised, unlike the cache itself.
thread_local Cache* t_cache = nullptr;
thread_local bool t_ended = false;

struct Owner {
    Cache cache;
    Owner() { t_cache = &cache; }
    ~Owner() {
        t_cache = nullptr;
        t_ended = true;
    }
};

Cache* cacheOfThread() {
    if (t_cache == nullptr && !t_ended && Keep) {
        static thread_local Owner owner;
    }
    return t_cache;
}

}  // namespace

void* storagecache::take(std::size_t bytes) {
    std::size_t size = 0;
    const int c = classOf(bytes, &size);
    if (c < SizeClasses) {
        Cache* const cache = cacheOfThread();
        if (cache != nullptr && cache->first[c] != nullptr) {
            Free* const block = cache->first[c];
            cache->first[c] = block->next;
            --cache->count[c];
            return block;
        }
    }
    return ::operator new(size);
}

void storagecache::give(void* memory, std::size_t bytes) noexcept {
    std::size_t size = 0;
    const int c = classOf(bytes, &size);
    Cache* const cache = c < SizeClasses ? cacheOfThread() : nullptr;
    if (cache != nullptr && cache->count[c] < KeptOfASize) {
        Free* const block = new (memory) Free{cache->first[c]};
        cache->first[c] = block;
        ++cache->count[c];
        return;
    }
    ::operator delete(memory);
}
