#include "base/Inbox.h"

#include <QCoreApplication>
#include <QEvent>
#include <deque>
#include <mutex>
#include <utility>

namespace {
thread_local InboxPause* ofThisThread = nullptr;
}

struct Inbox::Slit::Shared {
    std::mutex mutex;
    Inbox* inbox = nullptr;  // null once it is gone
    std::deque<Call> calls;
};

Inbox::Inbox(QObject* parent) : QObject(parent) {
    m_slit.m_shared = std::make_shared<Slit::Shared>();
    m_slit.m_shared->inbox = this;
}

Inbox::~Inbox() {
    std::deque<Call> dropped;  // without the lock
    const std::lock_guard<std::mutex> lock(m_slit.m_shared->mutex);
    m_slit.m_shared->inbox = nullptr;
    dropped.swap(m_slit.m_shared->calls);
}

void Inbox::Slit::post(Call call) const {
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    if (m_shared->inbox != nullptr) {
        m_shared->calls.push_back(std::move(call));
        // With the lock held: the inbox can not go meanwhile.
        m_shared->inbox->wake();
    }
}

void Inbox::wake() {
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

bool Inbox::event(QEvent* event) {
    if (event->type() != QEvent::User) {
        return QObject::event(event);
    }
    if (ofThisThread != nullptr) {
        ofThisThread->m_woken.emplace_back(this);
        return true;
    }
    Call call;
    {
        const std::lock_guard<std::mutex> lock(m_slit.m_shared->mutex);
        if (!m_slit.m_shared->calls.empty()) {
            call = std::move(m_slit.m_shared->calls.front());
            m_slit.m_shared->calls.pop_front();
        }
    }
    if (call) {
        call();  // may destroy this
    }
    return true;
}

InboxPause::InboxPause() {
    ofThisThread = this;
}

InboxPause::~InboxPause() {
    ofThisThread = nullptr;
    for (const QPointer<Inbox>& inbox : m_woken) {
        if (inbox) {
            inbox->wake();
        }
    }
}
