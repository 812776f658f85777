#include "spectra/PointBuffer.h"

#include <algorithm>
#include <limits>
#include <new>

#include "spectra/LiveCounts.h"
#include "spectra/StorageCache.h"

std::size_t PointBuffer::bytesOf(int capacity) {
    return sizeof(Block) + static_cast<std::size_t>(capacity) * sizeof(Spoint);
}

PointBuffer::Block* PointBuffer::make(int capacity) {
    Block* block = new (storagecache::take(bytesOf(capacity))) Block;
    block->capacity = capacity;
    return block;
}

void PointBuffer::drop(Block* block) {
    livecounts::addSpoints(-block->size);
    const std::size_t bytes = bytesOf(block->capacity);
    block->~Block();
    storagecache::give(block, bytes);
}

bool PointBuffer::ownsRoomFor(int n) const {
    // Acquire: whoever shared the points has finished reading them before they are written again.
    return m_block && m_block->capacity >= n && m_block->ref.load(std::memory_order_acquire) == 1;
}

void PointBuffer::reserve(int n) {
    if (n <= size() || ownsRoomFor(n)) {
        return;
    }
    PointBuffer larger;
    larger.m_block = make(n);
    std::copy_n(data(), size(), larger.overwrite(size()));
    std::swap(m_block, larger.m_block);
}

void PointBuffer::append(const Spoint& point) {
    const Spoint added = point;  // may be one of ours
    const int n = size();
    if (!ownsRoomFor(n + 1)) {
        reserve(n < std::numeric_limits<int>::max() / 2 ? std::max(16, 2 * n)
                                                        : std::numeric_limits<int>::max());
    }
    m_block->points()[n] = added;
    m_block->size = n + 1;
    livecounts::addSpoints(1);
}

Spoint* PointBuffer::overwrite(int n) {
    if (!ownsRoomFor(n)) {
        PointBuffer fresh;
        fresh.m_block = make(n);
        std::swap(m_block, fresh.m_block);
    }
    livecounts::addSpoints(n - m_block->size);
    m_block->size = n;
    return m_block->points();
}
