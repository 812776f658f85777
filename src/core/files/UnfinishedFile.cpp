#include "files/UnfinishedFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QRandomGenerator>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

#include "files/FileTarget.h"
#include "files/LeftOver.h"

namespace {

constexpr int MostTries = 100;
constexpr int LongestName = 220;  // leaves room for what makes the name unique

// Paths in hand, where a signal handler finds them. A slot that it takes is never used again.
enum class Slot { Free, Filling, InHand, Taken };

struct InHand {
    std::atomic<Slot> slot{Slot::Free};
    std::array<char, PATH_MAX> path{};
};

std::array<InHand, 64> inHand;
std::atomic<bool> isEnding{false};
static_assert(std::atomic<Slot>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "used in a signal handler");

/// Without a free slot a file is made all the same: -1.
int putInHand(const QByteArray& path) {
    if (path.size() >= PATH_MAX) {
        return -1;
    }
    for (std::size_t i = 0; i < inHand.size(); ++i) {
        Slot free = Slot::Free;
        if (inHand[i].slot.compare_exchange_strong(free, Slot::Filling)) {
            std::memcpy(inHand[i].path.data(), path.constData(),
                        static_cast<std::size_t>(path.size()) + 1);
            inHand[i].slot = Slot::InHand;
            return static_cast<int>(i);
        }
    }
    return -1;
}

void takeOutOfHand(int slot) {
    if (slot >= 0) {
        Slot expected = Slot::InHand;
        inHand[static_cast<std::size_t>(slot)].slot.compare_exchange_strong(expected, Slot::Free);
    }
}

QByteArray randomName(const QByteArray& target) {
    const QByteArray folder = folderOf(target);
    QByteArray name = target.mid(folder.size());
    if (name.size() > LongestName) {
        int size = LongestName;
        while (size > 0 && (name[size] & 0xC0) == 0x80) {  // amid a letter of UTF-8
            --size;
        }
        name.truncate(size);
    }
    QByteArray letters;
    for (int i = 0; i < LettersOfUnfinished; ++i) {
        letters += "0123456789abcdefghijklmnopqrstuv"[QRandomGenerator::global()->bounded(32)];
    }
    return folder + '.' + name + '.' + letters + SuffixOfUnfinished;
}

}  // namespace

void removeUnfinishedFiles() noexcept {
    const int savedErrno = errno;
    isEnding = true;
    for (InHand& file : inHand) {
        Slot expected = Slot::InHand;
        if (file.slot.compare_exchange_strong(expected, Slot::Taken)) {
            ::unlink(file.path.data());
        }
    }
    errno = savedErrno;
}

UnfinishedFile::UnfinishedFile(const QByteArray& target, mode_t mode) {
    for (int i = 0; i < MostTries && !isMade(); ++i) {
        const QByteArray path = randomName(target);
        const int slot = putInHand(path);
        if (isEnding) {
            errno = EINTR;
        } else {
            m_descriptor = ::open(path.constData(),  // NOLINT
                                  O_CREAT | O_EXCL | O_NOFOLLOW | O_RDWR | O_CLOEXEC, mode);
        }
        if (m_descriptor >= 0) {
            m_path = path;
            m_slot = slot;
            ::flock(m_descriptor, LOCK_EX | LOCK_NB);
            removeLeftOverOnce(folderOf(path));
            return;
        }
        const int why = errno;
        takeOutOfHand(slot);
        errno = why;
        if (why != EEXIST) {
            return;
        }
    }
}

UnfinishedFile::UnfinishedFile(UnfinishedFile&& other) noexcept {
    *this = std::move(other);
}

UnfinishedFile& UnfinishedFile::operator=(UnfinishedFile&& other) noexcept {
    m_path.swap(other.m_path);
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_slot, other.m_slot);
    return *this;
}

UnfinishedFile::~UnfinishedFile() {
    close();
    if (isMade()) {
        ::unlink(m_path.constData());
        release();
    }
}

bool UnfinishedFile::close() {
    const int descriptor = std::exchange(m_descriptor, -1);
    return descriptor < 0 || ::close(descriptor) == 0;
}

void UnfinishedFile::release() {
    takeOutOfHand(std::exchange(m_slot, -1));
    m_path.clear();
}
