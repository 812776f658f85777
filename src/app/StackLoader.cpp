#include "app/StackLoader.h"

#include <utility>

void StackLoader::clear() {
    m_frames.clear();
    m_queue.clear();
    m_failures.clear();
    m_done = 0;
    m_stale = m_underWay != nullptr;
}

void StackLoader::enqueue(const QStringList& files) {
    if (!isLoading()) {
        m_done = 0;
    }
    for (const QString& file : files) {
        m_queue.enqueue(file);
    }
}

std::optional<StackLoader::Request> StackLoader::next() {
    if (m_underWay || m_queue.isEmpty()) {
        return std::nullopt;
    }
    m_underWay = std::make_unique<TiffData>();
    m_underWayName = m_queue.dequeue();
    m_stale = false;
    return Request{m_underWayName, m_underWay.get()};
}

std::unique_ptr<TiffData> StackLoader::arrived(const TiffData* frame) {
    if (frame == nullptr || frame != m_underWay.get()) {
        return nullptr;
    }
    std::unique_ptr<TiffData> returned = std::move(m_underWay);
    if (std::exchange(m_stale, false)) {
        return nullptr;
    }
    ++m_done;
    if (!returned->loaded) {
        m_failures.append(m_underWayName);
        return nullptr;
    }
    return returned;
}

QStringList StackLoader::takeFailures() {
    return std::exchange(m_failures, {});
}
