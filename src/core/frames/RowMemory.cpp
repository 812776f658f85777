#include "frames/RowMemory.h"

#ifdef Q_OS_UNIX
#include <sys/mman.h>
#endif

#include <algorithm>
#include <new>

#include "base/LargeMemory.h"

namespace {

constexpr std::size_t LargePage = std::size_t(2) << 20;
constexpr std::size_t ChunkBytes = std::size_t(64) << 20;
constexpr std::size_t SmallFrame = std::size_t(64) << 10;  // not worth a page of its own
constexpr std::size_t CacheLine = 64;

std::size_t roundedUp(std::size_t bytes, std::size_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

/// Address space for several frames of a stack; pages are handed out when a reader fills them.
class Chunk {
  public:
    explicit Chunk(std::size_t bytes)
        : m_bytes(bytes),
          m_memory(mayTakeMemory(bytes + LargePage) ? allocateRow(bytes + LargePage) : nullptr),
          m_start(aligned(m_memory)) {
#ifdef MADV_HUGEPAGE
        // The end that would not fill a large page is left to small ones.
        if (m_start != nullptr && bytes >= LargePage) {
            madvise(m_start, bytes / LargePage * LargePage, MADV_HUGEPAGE);
        }
#endif
    }
    ~Chunk() {
        freeRow(m_memory);
    }
    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

    /// Null when it does not fit.
    char* take(std::size_t bytes) {
        if (m_start == nullptr || m_bytes - m_used < bytes) {
            return nullptr;
        }
        char* const place = m_start + m_used;
        m_used += bytes;
        return place;
    }

  private:
    /// The first large page in the memory, which holds one more than was asked for.
    static char* aligned(void* memory) {
        std::size_t space = 2 * LargePage;
        return static_cast<char*>(std::align(LargePage, LargePage, memory, space));
    }

    std::size_t m_bytes;
    std::size_t m_used = 0;
    void* m_memory;
    char* m_start;
};

std::shared_ptr<quint16> small(std::size_t bytes) {
    auto* memory = mayTakeMemory(bytes) ? static_cast<quint16*>(allocateRow(bytes)) : nullptr;
    return memory != nullptr ? std::shared_ptr<quint16>(memory, freeRow) : nullptr;
}

}  // namespace

std::shared_ptr<quint16> allocateFrame(std::size_t bytes) {
    if (bytes < SmallFrame) {
        return small(bytes);
    }
    // Only frames own a chunk: it goes with the last of them.
    thread_local std::weak_ptr<Chunk> current;
    bytes = roundedUp(bytes, CacheLine);
    std::shared_ptr<Chunk> chunk = current.lock();
    char* place = chunk ? chunk->take(bytes) : nullptr;
    for (std::size_t frames = std::max<std::size_t>(1, ChunkBytes / bytes);
         place == nullptr && frames > 0; frames /= 2) {
        chunk = std::make_shared<Chunk>(frames * bytes);
        place = chunk->take(bytes);
        current = chunk;
    }
    return place != nullptr ? std::shared_ptr<quint16>(chunk, reinterpret_cast<quint16*>(place))
                            : nullptr;
}
