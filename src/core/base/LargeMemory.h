#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <QtGlobal>
#include <cstddef>
#include <new>
#include <vector>

// Memory of arrays: of frames, maps, bands of counts, pictures. It is asked for before it is taken,
// and refused where the limit of the system would leave less than HeadRoom beside it: so an action
// that is refused can still say so, and the program goes on.

/// Thrown by what is refused.
class NotEnoughMemory : public std::bad_alloc {
  public:
    const char* what() const noexcept override { return "not enough memory"; }
};

/// False: so many bytes more are refused now. Any thread.
bool mayTakeMemory(quint64 bytes) noexcept;

/// Throws NotEnoughMemory where mayTakeMemory() is false.
void askForMemory(quint64 bytes);

/// What was refused last, or failed without having been asked for: "not enough memory: 34 MB more
/// are needed, 12 MB are left of the limit of 150 MB".
QString lackOfMemory();

/// For tests: the nth request from now on is refused, 1 is the next; 0: none is any more.
void refuseMemory(int nth);
/// Whether that one has come.
bool hasRefusedMemory();

/// An array's elements come from memory that has been asked for.
template <class T>
struct LargeAllocator {
    using value_type = T;
    LargeAllocator() = default;
    template <class U>
    LargeAllocator(const LargeAllocator<U>&) noexcept {}  // NOLINT: as allocators are converted

    T* allocate(std::size_t count) {
        askForMemory(quint64(count) * sizeof(T));
        return std::allocator<T>().allocate(count);
    }
    void deallocate(T* memory, std::size_t count) noexcept {
        std::allocator<T>().deallocate(memory, count);
    }
    template <class U>
    bool operator==(const LargeAllocator<U>&) const noexcept {
        return true;
    }
    template <class U>
    bool operator!=(const LargeAllocator<U>&) const noexcept {
        return false;
    }
};
template <class T>
using LargeVector = std::vector<T, LargeAllocator<T>>;

/// A picture that is not filled; null for an empty size, and for one that is too large. Throws
/// NotEnoughMemory.
QImage newPicture(const QSize& size, QImage::Format format);
