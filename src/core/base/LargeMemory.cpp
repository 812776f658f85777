#include "base/LargeMemory.h"

#include <QCoreApplication>
#include <algorithm>
#include <atomic>

#include "base/AddressSpace.h"
#include "base/Memory.h"

namespace {

constexpr quint64 AskedFrom = quint64(64) << 10;  // less than that is part of HeadRoom

std::atomic<quint64> lastNeeded{0};
std::atomic<quint64> lastLeft{0};
std::atomic<int> toRefusal{0};  // requests until one is refused for a test
std::atomic<bool> isRefused{false};

bool isPlanted() noexcept {
    if (toRefusal.load(std::memory_order_relaxed) <= 0 || toRefusal.fetch_sub(1) != 1) {
        return false;
    }
    isRefused = true;
    return true;
}

bool note(quint64 needed, quint64 left) noexcept {
    lastNeeded = needed;
    lastLeft = left;
    return false;
}

/// The greatest number where there is no limit, or nearly.
quint64 freeNow() noexcept {
    const quint64 left = addressSpaceLeft();
    return left - std::min(left, HeadRoom);
}

}  // namespace

bool mayTakeMemory(quint64 bytes) noexcept {
    if (isPlanted()) {
        return note(bytes, addressSpaceLeft());
    }
    if (bytes < AskedFrom || bytes <= freeNow()) {
        return true;
    }
    giveBackFreeMemory();
    const quint64 free = freeNow();
    return bytes <= free || note(bytes, free);
}

void askForMemory(quint64 bytes) {
    if (!mayTakeMemory(bytes)) {
        throw NotEnoughMemory();
    }
}

QString lackOfMemory() {
    const quint64 needed = lastNeeded;
    if (needed == 0) {
        return QCoreApplication::translate("Memory", "memory ran out");
    }
    if (!isAddressSpaceLimited()) {
        return QCoreApplication::translate("Memory", "not enough memory: %1 more are needed")
            .arg(sizeText(needed));
    }
    return QCoreApplication::translate(
               "Memory", "not enough memory: %1 more are needed, %2 are left of the limit of %3")
        .arg(sizeText(needed), sizeText(lastLeft), sizeText(addressSpaceLimit()));
}

void refuseMemory(int nth) {
    isRefused = false;
    toRefusal = nth;
}

bool hasRefusedMemory() {
    return isRefused;
}

QImage newPicture(const QSize& size, QImage::Format format) {
    if (size.isEmpty()) {
        return QImage();
    }
    const int bits = QImage::toPixelFormat(format).bitsPerPixel();
    const quint64 line = (quint64(size.width()) * quint64(bits) + 31) / 32 * 4;
    askForMemory(line * quint64(size.height()));
    return QImage(size, format);
}
