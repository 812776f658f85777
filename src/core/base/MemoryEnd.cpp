#include "base/MemoryEnd.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>

#include "base/AddressSpace.h"

namespace {

constexpr std::size_t ReserveBytes = std::size_t(256) << 10;
constexpr quint64 Megabyte = quint64(1) << 20;

const char* programName = "tarnwick";
std::atomic<void*> reserve{nullptr};
std::atomic<void (*)() noexcept> firstAction{nullptr};
std::atomic<quint64> needed{0};
std::atomic<bool> isEnding{false};

/// A line that is put together without memory of the heap.
class Line {
  public:
    void add(const char* text) {
        while (*text != 0 && m_size < sizeof m_text) {
            m_text[m_size++] = *text++;
        }
    }
    void addMegabytes(quint64 bytes) {
        char digits[24] = {};
        std::size_t place = sizeof digits - 1;
        quint64 value = (bytes + Megabyte - 1) / Megabyte;
        do {
            digits[--place] = static_cast<char>('0' + value % 10);
            value /= 10;
        } while (value > 0);
        add(digits + place);
        add(" MB");
    }
    void write() {
        add("\n");
        const ssize_t written = ::write(STDERR_FILENO, m_text, m_size);
        static_cast<void>(written);  // nothing more can be done
    }

  private:
    char m_text[256];
    std::size_t m_size = 0;
};

void freeReserve() noexcept {
    std::free(reserve.exchange(nullptr));
}

/// The first time it lets what was asked for have the reserve: most requests are small, and who
/// asks for the next array is refused. Then whoever can deal with it learns of it.
void onNoMemory() {
    if (reserve == nullptr) {
        throw std::bad_alloc();
    }
    freeReserve();
}

bool isAboutMemory() noexcept {
    const std::exception_ptr current = std::current_exception();
    if (!current) {
        return false;
    }
    try {
        std::rethrow_exception(current);
    } catch (const std::bad_alloc&) {
        return true;
    } catch (const std::length_error&) {
        return true;
    } catch (...) {
        return false;
    }
}

void onTerminate() {
    if (isAboutMemory()) {
        endWithoutMemory();
    }
    std::abort();
}

/// Libraries that get no memory for what they cannot do without end the program by themselves.
void onAbort(int) {
    if (addressSpaceLeft() < HeadRoom) {
        endWithoutMemory();
    }
    std::signal(SIGABRT, SIG_DFL);
}

}  // namespace

void endInOrderWithoutMemory(const char* program) {
    programName = program;
    reserve = std::malloc(ReserveBytes);
    std::set_new_handler(onNoMemory);
    std::set_terminate(onTerminate);
    std::signal(SIGABRT, onAbort);
}

void beforeEndWithoutMemory(void (*action)() noexcept) {
    firstAction = action;
}

void endWithoutMemory() noexcept {
    while (isEnding.exchange(true)) {
        pause();  // another thread says it
    }
    if (void (*const action)() noexcept = firstAction) {
        action();
    }
    Line line;
    line.add(programName);
    line.add(": out of memory: ");
    const quint64 limit = addressSpaceLimit();
    if (!isAddressSpaceLimited()) {
        line.add("the system gives no more");
    } else {
        line.add(needed > 0 ? "" : "more than ");
        line.addMegabytes(needed > 0 ? needed.load() : addressSpaceLeft());
        line.add(needed > 0 ? " more are needed, " : " more were asked for, ");
        line.addMegabytes(limit - addressSpaceLeft());
        line.add(" are taken, the limit is ");
        line.addMegabytes(limit);
    }
    line.write();
    _exit(1);
}

void needAddressSpace(quint64 bytes) noexcept {
    if (addressSpaceLeft() < bytes) {
        needed = bytes;
        endWithoutMemory();
    }
}
