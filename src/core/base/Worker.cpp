#include "base/Worker.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

#include "base/AddressSpace.h"
#include "base/OneThread.h"

namespace {
std::atomic<int> left{0};
}

struct Worker::Shared {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Work> queue;
    bool ends = false;
    bool hasEnded = false;
    bool isLeft = false;
};

void Worker::work(const std::shared_ptr<Shared>& shared) {
    std::unique_lock<std::mutex> lock(shared->mutex);
    while (true) {
        shared->changed.wait(lock, [&] { return shared->ends || !shared->queue.empty(); });
        if (shared->ends) {
            break;
        }
        {
            Work next = std::move(shared->queue.front());
            shared->queue.pop_front();
            lock.unlock();
            next();
        }  // what it holds goes without the lock
        lock.lock();
    }
    shared->hasEnded = true;
    left -= shared->isLeft ? 1 : 0;
    shared->changed.notify_all();
}

bool Worker::begin() {
    m_isOver = m_isOver || usesOneThread() || !hasRoomForThread();
    if (m_isOver) {
        return false;
    }
    auto shared = std::make_shared<Shared>();
    try {
        m_thread = std::thread([shared] { work(shared); });
    } catch (const std::system_error&) {
        m_isOver = true;
        return false;
    }
    m_shared = std::move(shared);
    return true;
}

bool Worker::run(Work work) {
    if (m_shared == nullptr && !begin()) {
        return false;
    }
    {
        const std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->queue.push_back(std::move(work));
    }
    m_shared->changed.notify_all();
    return true;
}

bool Worker::end(std::chrono::milliseconds patience) {
    m_isOver = true;
    const std::shared_ptr<Shared> shared = std::exchange(m_shared, nullptr);
    if (shared == nullptr) {
        return true;
    }
    std::deque<Work> dropped;  // without the lock
    std::unique_lock<std::mutex> lock(shared->mutex);
    shared->ends = true;
    dropped.swap(shared->queue);
    shared->changed.notify_all();
    const bool isBack = shared->changed.wait_for(lock, patience, [&] { return shared->hasEnded; });
    if (!isBack) {
        shared->isLeft = true;
        ++left;
    }
    lock.unlock();
    if (isBack) {
        m_thread.join();
    } else {
        m_thread.detach();
    }
    return isBack;
}

bool Worker::isAnyLeft() {
    return left > 0;
}
