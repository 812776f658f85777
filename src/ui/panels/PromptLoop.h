#pragma once

#include <QAbstractEventDispatcher>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

// Two threads that hand work to each other by queued signals lose most of their time in waking each
// other up, when the work takes microseconds. Here both look for the other's signal for a few
// microseconds more before they sleep, giving the processor away at every look.

/// Looks for a few microseconds whether something has come true before its caller sleeps. On a busy
/// machine another program takes a processor that is given away for far longer than that; a thread
/// that sleeps gets it back sooner, so that the looks then stop for a while.
class BriefLook {
  public:
    template <typename Condition>
    bool sees(Condition condition) {
        if (condition()) {
            return true;
        }
        if (m_leaveOut > 0) {
            --m_leaveOut;
            return false;
        }
        const auto start = Clock::now();
        Clock::duration passed{};
        bool seen = false;
        while (!seen && passed < LookFor) {
            std::this_thread::yield();
            seen = condition();
            passed = Clock::now() - start;
        }
        if (passed > Busy) {
            m_leaveOut = LeaveOut;
        }
        return seen;
    }

  private:
    using Clock = std::chrono::steady_clock;
    // Longer than the preparation of a spectrum takes, shorter than anybody notices.
    static constexpr std::chrono::microseconds LookFor{20};
    static constexpr std::chrono::microseconds Busy{100};
    static constexpr int LeaveOut = 200;

    int m_leaveOut = 0;
};

/// The event dispatcher of a worker thread that lives on queued signals alone: it knows no timers
/// and no sockets. QThread::setEventDispatcher() takes it before the thread starts.
class PromptDispatcher : public QAbstractEventDispatcher {
    Q_OBJECT

  public:
    bool processEvents(QEventLoop::ProcessEventsFlags flags) override;
    bool hasPendingEvents() override;
    void wakeUp() override;
    void interrupt() override { wakeUp(); }
    void flush() override {}

    void registerSocketNotifier(QSocketNotifier*) override {}
    void unregisterSocketNotifier(QSocketNotifier*) override {}
    void registerTimer(int, int, Qt::TimerType, QObject*) override {}
    bool unregisterTimer(int) override { return false; }
    bool unregisterTimers(QObject*) override { return false; }
    QList<TimerInfo> registeredTimers(QObject*) const override { return {}; }
    int remainingTime(int) override { return -1; }

  private:
    void wait();

    BriefLook m_look;
    std::atomic<bool> m_woken{false};
    std::atomic<bool> m_asleep{false};
    std::mutex m_mutex;
    std::condition_variable m_wake;
};

/// Delivers the queued calls of a receiver as soon as they are there, without going back to the
/// event loop in between: for as long as underWay() says that one is to come, each is there
/// (arrived()) within a few microseconds, and for a few milliseconds at most, so that all other
/// events have their turn. Call it in the receiver's thread, at the end of the slot that a queued
/// call runs; within a delivery it does nothing.
class PromptDelivery {
  public:
    void run(QObject* receiver, const std::function<bool()>& underWay,
             const std::function<bool()>& arrived);

  private:
    BriefLook m_look;
    bool m_running = false;
};
