#include "panels/PromptLoop.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QPointer>

namespace {

constexpr int TurnMilliseconds = 2;
// Qt walks past those delivered already at every delivery of a turn.
constexpr int DeliveriesInATurn = 128;

}  // namespace

bool PromptDispatcher::processEvents(QEventLoop::ProcessEventsFlags flags) {
    QCoreApplication::sendPostedEvents();
    if (flags & QEventLoop::WaitForMoreEvents) {
        wait();
    }
    // Whoever wakes us has posted, or asked to quit, before: the loop looks at both now.
    return m_woken.exchange(false);
}

bool PromptDispatcher::hasPendingEvents() {
    return m_woken.load();
}

void PromptDispatcher::wakeUp() {
    if (!m_woken.exchange(true) && m_asleep.load()) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_wake.notify_one();
    }
}

void PromptDispatcher::wait() {
    if (m_look.sees([this] { return m_woken.load(std::memory_order_relaxed); })) {
        return;
    }
    emit aboutToBlock();
    std::unique_lock<std::mutex> lock(m_mutex);
    m_asleep.store(true);
    m_wake.wait(lock, [this] { return m_woken.load(); });
    m_asleep.store(false);
    emit awake();
}

void PromptDelivery::run(QObject* receiver, const std::function<bool()>& underWay,
                         const std::function<bool()>& arrived) {
    if (m_running) {
        return;
    }
    m_running = true;
    const QPointer<QObject> alive(receiver);
    QElapsedTimer turn;
    turn.start();
    for (int i = 0; i < DeliveriesInATurn && turn.elapsed() < TurnMilliseconds; ++i) {
        if (!underWay() || !m_look.sees(arrived)) {
            break;
        }
        QCoreApplication::sendPostedEvents(receiver, QEvent::MetaCall);
        if (!alive) {
            return;
        }
    }
    m_running = false;
}
