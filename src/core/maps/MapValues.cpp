#include "maps/MapValues.h"

#ifdef Q_OS_UNIX
#include <sys/mman.h>
#endif

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "base/LargeMemory.h"

namespace {

void freeZeros(double* memory) {
    std::free(memory);
}

#ifdef Q_OS_UNIX
constexpr std::size_t LargePage = std::size_t(2) << 20;

/// The heap zeroes what it has used before; the system hands out pages of zeros when they are
/// touched, large ones a hundred times as fast as small ones.
std::shared_ptr<double> largeZeros(std::size_t bytes) {
    void* const memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
#ifdef MADV_HUGEPAGE
    if (bytes >= 2 * LargePage) {
        madvise(memory, bytes, MADV_HUGEPAGE);
    }
#endif
    return {static_cast<double*>(memory), [bytes](double* start) { munmap(start, bytes); }};
}
#endif

std::shared_ptr<double> allocateZeros(int size) {
    const std::size_t bytes = sizeof(double) * static_cast<std::size_t>(size);
    askForMemory(bytes);
#ifdef Q_OS_UNIX
    constexpr std::size_t WorthPages = std::size_t(1) << 18;
    if (bytes >= WorthPages) {
        return largeZeros(bytes);
    }
#endif
    auto* memory = static_cast<double*>(std::calloc(bytes, 1));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return {memory, freeZeros};
}

}  // namespace

MapValues MapValues::zeros(int size) {
    MapValues values;
    if (size > 0) {
        values.m_memory = allocateZeros(size);
        values.m_size = size;
    }
    return values;
}

double* MapValues::data() {
    if (m_memory.use_count() > 1) {
        std::shared_ptr<double> own = allocateZeros(m_size);
        std::copy_n(m_memory.get(), m_size, own.get());
        m_memory = std::move(own);
    }
    // A copy that another thread has just let go of was read before.
#if defined(__SANITIZE_THREAD__)
    const std::shared_ptr<double> counted = m_memory;  // the sanitizer knows no fences, but counts
#else
    std::atomic_thread_fence(std::memory_order_acquire);
#endif
    return m_memory.get();
}
