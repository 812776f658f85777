#include "frames/StackLoader.h"

#include <algorithm>
#include <utility>

void StackLoader::clear() {
    stop();
    m_frames.clear();
    m_refused.clear();
    m_done = 0;
}

void StackLoader::stop() {
    m_queue.clear();
    for (UnderWay& item : m_underWay) {
        item.isStale = true;
    }
}

void StackLoader::enqueue(const QStringList& files) {
    if (!isLoading()) {
        m_done = 0;
    }
    for (const QString& file : files) {
        m_queue.enqueue(file);
    }
}

int StackLoader::total() const {
    const auto wanted = std::count_if(m_underWay.begin(), m_underWay.end(),
                                      [](const UnderWay& item) { return !item.isStale; });
    return m_done + m_queue.size() + static_cast<int>(wanted);
}

std::optional<StackLoader::Request> StackLoader::next() {
    if (m_queue.isEmpty() || static_cast<int>(m_underWay.size()) >= m_atOnce) {
        return std::nullopt;
    }
    m_underWay.push_back({m_queue.dequeue(), std::make_shared<TiffData>(), false});
    m_underWay.back().frame->stamp = fileStamp(m_underWay.back().fileName);
    return Request{m_underWay.back().fileName, m_underWay.back().frame};
}

std::shared_ptr<TiffData> StackLoader::arrived(const TiffData* frame) {
    if (m_underWay.empty() || frame == nullptr || frame != m_underWay.front().frame.get()) {
        return nullptr;
    }
    UnderWay returned = std::move(m_underWay.front());
    m_underWay.pop_front();
    if (returned.isStale) {
        return nullptr;
    }
    ++m_done;
    if (!returned.frame->loaded || !returned.frame->refusal.isEmpty()) {
        m_refused.append({returned.fileName, returned.frame->refusal});
        return nullptr;
    }
    return returned.frame;
}

QVector<StackLoader::Refused> StackLoader::takeRefused() {
    return std::exchange(m_refused, {});
}
