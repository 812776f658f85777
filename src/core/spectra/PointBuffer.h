#pragma once

#include <QtGlobal>
#include <atomic>
#include <utility>

/// One point of a curve: energy in eV and value.
struct Spoint {
    double x = 0.0;
    double y = 0.0;
};

/// Points side by side in one allocation, shared by copies until one of them changes, also between
/// threads. No points cost no memory. A buffer's points are counted live once, whoever shares them.
class PointBuffer {
  public:
    PointBuffer() = default;
    PointBuffer(const PointBuffer& other) : m_block(other.m_block) {
        if (m_block) {
            m_block->ref.fetch_add(1, std::memory_order_relaxed);
        }
    }
    PointBuffer& operator=(PointBuffer other) {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~PointBuffer() {
        if (m_block && m_block->ref.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            drop(m_block);
        }
    }

    int size() const { return m_block ? m_block->size : 0; }
    const Spoint* data() const { return m_block ? m_block->points() : nullptr; }

    void clear() { *this = PointBuffer(); }
    void reserve(int n);
    void append(const Spoint& point);
    /// Makes the size n and returns the points to write, whose values are undefined until then.
    /// Storage that nobody shares is used again.
    Spoint* overwrite(int n);

  private:
    struct alignas(16) Block {
        std::atomic<int> ref{1};
        int size = 0;
        int capacity = 0;
        Spoint* points() { return reinterpret_cast<Spoint*>(this + 1); }
    };

    static std::size_t bytesOf(int capacity);
    static Block* make(int capacity);
    static void drop(Block* block);
    bool ownsRoomFor(int n) const;

    Block* m_block = nullptr;
};
