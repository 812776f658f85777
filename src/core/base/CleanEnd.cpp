#include "base/CleanEnd.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

namespace {

constexpr std::array<int, 3> Signals{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> wakeUp{-1};  // write end of the pipe
static_assert(std::atomic<int>::is_always_lock_free, "read in a signal handler");

// A handler may do next to nothing: it sends the number of the signal down a pipe.
extern "C" void noteSignal(int number) {
    const int savedErrno = errno;
    const int fd = wakeUp.load();
    if (fd >= 0) {
        const auto byte = static_cast<unsigned char>(number);
        const ssize_t written = write(fd, &byte, 1);
        static_cast<void>(written);  // a full pipe has woken the program already
    }
    errno = savedErrno;
}

}  // namespace

struct CleanEnd::Handlers {
    std::array<int, 2> pipe{-1, -1};
    std::array<struct sigaction, Signals.size()> before{};
    std::unique_ptr<QSocketNotifier> notifier;

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

    void install() {
        wakeUp = pipe[1];
        struct sigaction action {};
        action.sa_handler = noteSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        for (std::size_t i = 0; i < Signals.size(); ++i) {
            sigaction(Signals[i], nullptr, &before[i]);
            if (before[i].sa_handler != SIG_IGN) {
                sigaction(Signals[i], &action, nullptr);
            }
        }
    }

    ~Handlers() {
        if (notifier) {
            for (std::size_t i = 0; i < Signals.size(); ++i) {
                sigaction(Signals[i], &before[i], nullptr);
            }
            wakeUp = -1;
            notifier.reset();
        }
        for (const int fd : pipe) {
            if (fd >= 0) {
                close(fd);
            }
        }
    }
};

CleanEnd::CleanEnd(QObject* parent) : QObject(parent), m_handlers(std::make_unique<Handlers>()) {
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

#else

struct CleanEnd::Handlers {};
CleanEnd::CleanEnd(QObject* parent) : QObject(parent) {}

#endif

CleanEnd::~CleanEnd() = default;
