#include "measurement/MapJob.h"

#include <QElapsedTimer>
#include <new>

#include "base/AddressSpace.h"
#include "base/OneThread.h"

namespace {
constexpr int TellMilliseconds = 40;  // as often as an eye follows
}

void MapJob::start(const Make& make) {
    stop();
    m_stopped = false;
    const auto work = [this, make, generation = m_generation] { run(make, generation); };
    try {
        if (!usesOneThread() && hasRoomForThread()) {
            m_thread = std::thread(work);
            return;
        }
    } catch (const std::exception&) {
        m_thread = std::thread();
    }
    work();  // no thread: who asks waits
}

void MapJob::stop() {
    m_stopped = true;
    ++m_generation;
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void MapJob::run(const Make& make, int generation) {
    const auto post = [this, generation](const std::function<void()>& action) {
        m_inbox.post([this, generation, action] {
            if (generation == m_generation) {
                action();
            }
        });
    };
    QElapsedTimer sinceTold;
    sinceTold.start();
    const auto goOn = [&](double done) {
        if (sinceTold.hasExpired(TellMilliseconds)) {
            sinceTold.start();
            post([this, done] { emit progressed(done); });
        }
        return !m_stopped;
    };
    std::optional<Processed> made;
    try {
        made = make(goOn);
    } catch (const std::bad_alloc&) {
        made.reset();
    }
    post([this, made] {
        stop();
        emit finished(made);
    });
}
