#include <unistd.h>

#include <QSignalSpy>
#include <atomic>
#include <csignal>
#include <thread>

#include "TestMain.h"
#include "base/CleanEnd.h"

namespace {

/// As another program does it.
void ask(int number) {
    kill(getpid(), number);
}

}  // namespace

class TestCleanEnd : public QObject {
    Q_OBJECT

  private slots:
    void signalsArriveInTheEventLoop() {
        CleanEnd end;
        QSignalSpy spy(&end, &CleanEnd::requested);
        ask(SIGTERM);
        QCOMPARE(spy.count(), 0);
        QTRY_COMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toInt(), SIGTERM);
        ask(SIGINT);
        QTRY_COMPARE(spy.count(), 2);
        QCOMPARE(spy.at(1).at(0).toInt(), SIGINT);
    }

    void alsoInThreadsThatWereThereBefore() {
        std::atomic<bool> isOver{false};
        std::thread before([&isOver] {
            while (!isOver) {
                std::this_thread::yield();
            }
        });
        const pthread_t handle = before.native_handle();
        {
            CleanEnd end;
            QSignalSpy spy(&end, &CleanEnd::requested);
            pthread_kill(handle, SIGTERM);  // NOLINT(bugprone-bad-signal-to-kill-thread): handled
            QTRY_COMPARE(spy.count(), 1);
        }
        isOver = true;
        before.join();
    }

    void ignoredSignalsStayIgnored() {
        const auto before = std::signal(SIGHUP, SIG_IGN);
        {
            const CleanEnd end;
            struct sigaction now {};
            sigaction(SIGHUP, nullptr, &now);
            QVERIFY(now.sa_handler == SIG_IGN);
        }
        std::signal(SIGHUP, before);
    }

    void whatWasThereBeforeComesBack() {
        const auto before = std::signal(SIGINT, SIG_IGN);
        { const CleanEnd end; }
        QVERIFY(std::signal(SIGINT, before) == SIG_IGN);
        struct sigaction old {};
        sigaction(SIGTERM, nullptr, &old);
        {
            const CleanEnd end;
            std::raise(SIGTERM);  // waits for this thread, and the object is gone first
        }
        struct sigaction now {};
        sigaction(SIGTERM, nullptr, &now);
        QVERIFY(now.sa_handler == old.sa_handler);
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestCleanEnd)
#include "tst_cleanend.moc"
