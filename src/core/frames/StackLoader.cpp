#include "frames/StackLoader.h"

#include <utility>

void StackLoader::clear() {
    stop();
    m_frames.clear();
    m_refused.clear();
    m_done = 0;
}

void StackLoader::stop() {
    m_queue.clear();
    m_underWay.clear();
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
    if (m_queue.isEmpty() || static_cast<int>(m_underWay.size()) >= m_atOnce) {
        return std::nullopt;
    }
    m_underWay.push_back({m_queue.dequeue(), std::make_shared<TiffData>()});
    m_underWay.back().frame->stamp = fileStamp(m_underWay.back().fileName);
    return Request{m_underWay.back().fileName, m_underWay.back().frame};
}

std::shared_ptr<TiffData> StackLoader::arrived(const TiffData* frame) {
    if (m_underWay.empty() || frame == nullptr || frame != m_underWay.front().frame.get()) {
        return nullptr;
    }
    UnderWay returned = std::move(m_underWay.front());
    m_underWay.pop_front();
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
