#include "base/CleanEnd.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <mutex>
#include <optional>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::array<int, 3> Signals{SIGINT, SIGTERM, SIGHUP};
constexpr int News = SIGURG;  // from the object itself to its thread
constexpr int SignalBase = 128;

timespec timeTo(Clock::time_point end) {
    constexpr long long Second = 1000000000;
    const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(end - Clock::now());
    const long long ns = std::max<long long>(0, left.count());
    timespec time{};
    time.tv_sec = static_cast<time_t>(ns / Second);
    time.tv_nsec = static_cast<long>(ns % Second);
    return time;
}

/// Where a signal goes that a handler was called for.
struct Route {
    std::atomic<pid_t> thread{0};  ///< that waits for signals; 0: none
    std::atomic<int> pipe{-1};
};
Route route;
static_assert(std::atomic<int>::is_always_lock_free, "read in a signal handler");

/// A handler may call so late that the thread has ended, which the system bears, unlike
/// pthread_kill().
void tellThread(pid_t thread, int number) {
    syscall(SYS_tgkill, getpid(), thread, number);
}

// Of threads that were there before and do not block the signals. A handler may do next to nothing.
extern "C" void noteSignal(int number) {
    const int savedErrno = errno;
    const int fd = route.pipe;
    const pid_t thread = route.thread;
    if (thread != 0) {
        tellThread(thread, number);
    } else if (fd >= 0) {
        const auto byte = static_cast<unsigned char>(number);
        const ssize_t written = write(fd, &byte, 1);
        static_cast<void>(written);  // a full pipe has woken the program already
    }
    errno = savedErrno;
}

/// As if nobody had caught it.
[[noreturn]] void dieBy(int number) {
    std::signal(number, SIG_DFL);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, number);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    std::raise(number);
    _exit(SignalBase + number);
}

}  // namespace

void letWritesFail() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

/// The signals are blocked in all threads, and one thread waits for them: a handler would run in a
/// thread that may hang in the system, where it never begins.
struct CleanEnd::Handlers {
    std::array<int, 2> pipe{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
    void (*lastAct)() noexcept = nullptr;
    sigset_t watched{};
    sigset_t maskBefore{};
    std::array<struct sigaction, Signals.size()> before{};
    pthread_t thread{};
    bool isWatched = false;
    std::atomic<bool> isOver{false};
    std::atomic<int> code{-1};  // to end with; -1: none yet
    std::mutex lastWordsMutex;
    QByteArray lastWords;

    bool openPipe() {
        if (::pipe(pipe.data()) != 0) {
            return false;
        }
        for (const int fd : pipe) {
            fcntl(fd, F_SETFD, FD_CLOEXEC);
            fcntl(fd, F_SETFL, O_NONBLOCK);
        }
        return true;
    }

    /// Of the signals that are not ignored.
    void install() {
        sigemptyset(&watched);
        sigaddset(&watched, News);
        for (std::size_t i = 0; i < Signals.size(); ++i) {
            sigaction(Signals[i], nullptr, &before[i]);
            if (before[i].sa_handler != SIG_IGN) {
                sigaddset(&watched, Signals[i]);
            }
        }
        watch();
        route.pipe = pipe[1];
        struct sigaction action {};
        action.sa_handler = noteSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = static_cast<int>(SA_RESTART | (isWatched ? 0 : SA_RESETHAND));
        for (const int number : Signals) {
            if (sigismember(&watched, number) == 1) {
                sigaction(number, &action, nullptr);
            }
        }
    }

    void watch() {
        constexpr std::size_t Stack = 1 << 18;  // small: it counts against the memory's limit
        pthread_sigmask(SIG_BLOCK, &watched, &maskBefore);
        pthread_attr_t attributes;
        isWatched = pthread_attr_init(&attributes) == 0 &&
                    pthread_attr_setstacksize(&attributes, Stack) == 0 &&
                    pthread_create(&thread, &attributes, run, this) == 0;
        pthread_attr_destroy(&attributes);
        if (!isWatched) {
            pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
        }
    }

    static void* run(void* self) {
        route.thread = static_cast<pid_t>(syscall(SYS_gettid));
        static_cast<Handlers*>(self)->wait();
        return nullptr;
    }

    void wait() {
        std::array<bool, Signals.size()> seen{};
        std::optional<Clock::time_point> end;
        while (!isOver) {
            const timespec left = timeTo(end.value_or(Clock::now()));
            const int number =
                end ? sigtimedwait(&watched, nullptr, &left) : sigwaitinfo(&watched, nullptr);
            if (number < 0 && errno == EAGAIN) {
                endByForce();
            }
            const auto found = std::find(Signals.begin(), Signals.end(), number);
            if (found != Signals.end()) {
                take(number, &seen[static_cast<std::size_t>(found - Signals.begin())]);
            }
            if (!end && code >= 0) {
                end = Clock::now() + Patience;
            }
        }
    }

    void take(int number, bool* wasSeen) {
        if (*wasSeen) {
            actLast();
            dieBy(number);
        }
        *wasSeen = true;
        int none = -1;
        code.compare_exchange_strong(none, SignalBase + number);
        const auto byte = static_cast<unsigned char>(number);
        const ssize_t written = write(pipe[1], &byte, 1);
        static_cast<void>(written);  // a full pipe has woken the program already
    }

    void actLast() const {
        if (lastAct != nullptr) {
            lastAct();
        }
    }

    [[noreturn]] void endByForce() {
        actLast();
        // Neither for the lock nor for the reader of a pipe is there time to wait.
        pollfd out{STDOUT_FILENO, POLLOUT, 0};
        if (lastWordsMutex.try_lock() && ::poll(&out, 1, 0) == 1) {
            const ssize_t written = write(STDOUT_FILENO, lastWords.constData(),
                                          static_cast<std::size_t>(lastWords.size()));
            static_cast<void>(written);
        }
        _exit(code);
    }

    void restore() {
        if (isWatched) {
            isOver = true;
            pthread_kill(thread, News);
            pthread_join(thread, nullptr);
            // What came too late for anybody is not left to end the program now.
            const timespec now{};
            while (sigtimedwait(&watched, nullptr, &now) > 0) {
            }
        }
        route.thread = 0;
        route.pipe = -1;
        for (std::size_t i = 0; i < Signals.size(); ++i) {
            sigaction(Signals[i], &before[i], nullptr);
        }
        if (isWatched) {
            pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
        }
    }

    ~Handlers() {
        if (notifier) {
            restore();
        }
        notifier.reset();
        for (const int fd : pipe) {
            if (fd >= 0) {
                close(fd);
            }
        }
    }
};

CleanEnd::CleanEnd(void (*lastAct)() noexcept, QObject* parent)
    : QObject(parent), m_handlers(std::make_unique<Handlers>()) {
    m_handlers->lastAct = lastAct;
    if (!m_handlers->openPipe()) {
        return;
    }
    const int fd = m_handlers->pipe[0];
    m_handlers->notifier = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    connect(m_handlers->notifier.get(), &QSocketNotifier::activated, this, [this, fd] {
        unsigned char number = 0;
        if (read(fd, &number, 1) == 1) {
            emit requested(number);
        }
    });
    m_handlers->install();
}

void CleanEnd::setLastWords(const QByteArray& text) {
    const std::lock_guard<std::mutex> lock(m_handlers->lastWordsMutex);
    m_handlers->lastWords = text;
}

void CleanEnd::expectEnd(int exitCode) {
    m_handlers->code = exitCode;
    if (m_handlers->isWatched) {
        pthread_kill(m_handlers->thread, News);
    }
}

#else

void letWritesFail() {}
struct CleanEnd::Handlers {};
CleanEnd::CleanEnd(void (*)() noexcept, QObject* parent) : QObject(parent) {}
void CleanEnd::setLastWords(const QByteArray&) {}
void CleanEnd::expectEnd(int) {}

#endif

CleanEnd::~CleanEnd() = default;
