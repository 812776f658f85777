#include "measurement/FrameImages.h"

#include <chrono>
#include <new>
#include <utility>

#include "base/AddressSpace.h"
#include "base/LargeMemory.h"
#include "drawing/ValuePicture.h"
#include "measurement/Revision.h"

namespace {
/// What an eye does not take for waiting.
constexpr std::chrono::milliseconds Blink{40};
}  // namespace

void FrameImages::make() {
    try {
        makeImage();
    } catch (const std::bad_alloc&) {
        m_isMade = false;
        m_made = FrameImage();
        m_made.pixels.problem = lackOfMemory();
    }
}

void FrameImages::makeImage() {
    const Request& request = *m_request;
    PixelValues pixels = std::move(m_made.pixels);
    m_made = FrameImage();
    m_made.kind = request.kind;
    m_made.from = request.from;
    m_made.to = request.to;
    m_isMade = request.pass->run(request.threads, m_stop, &pixels);
    if (m_isMade) {
        const auto [low, high] = valuePercentiles(pixels.values.get(), pixels.width, pixels.height,
                                                  pixels.min, pixels.max, 0.01, request.threads);
        m_made.low = low;
        m_made.high = high;
    }
    m_made.pixels = std::move(pixels);
}

/// What the thread has made becomes the image.
void FrameImages::takeOver() {
    if (m_thread.joinable()) {
        m_thread.join();
    }
    if (m_isMade) {
        std::swap(m_shown, m_made);
        m_shown.serial = nextRevision();
        m_key = m_wanted;
    }
    m_request.reset();
    m_isMade = false;
}

const FrameImage* FrameImages::now(const Key& key, const Ask& ask) {
    if (!has(key)) {
        stop();
        m_wanted = key;
        m_request = ask();
        make();
        const bool isMade = m_isMade;
        m_problem = m_made.pixels.problem;
        takeOver();
        return isMade ? &m_shown : nullptr;
    }
    return last();
}

void FrameImages::start(const Key& key, const Request& request) {
    m_wanted = key;
    m_request = request;
    m_stop = false;
    m_hasEnded = false;
    const int generation = ++m_generation;
    const auto work = [this, generation] {
        make();
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_hasEnded = true;
        }
        m_ended.notify_all();
        m_inbox.post([this, generation] { ended(generation); });
    };
    try {
        if (hasRoomForThread()) {
            m_thread = std::thread(work);
            return;
        }
    } catch (const std::exception&) {
        m_thread = std::thread();
    }
    work();  // no thread: who asks waits
}

const FrameImage* FrameImages::soon(const Key& key, const Ask& ask) {
    if (has(key) || (m_request && m_wanted == key)) {
        m_next.reset();
        return last();
    }
    if (m_request) {
        if (!m_next || m_nextKey != key) {
            m_nextKey = key;
            m_next = ask();
        }
        return last();
    }
    start(key, ask());
    std::unique_lock<std::mutex> lock(m_mutex);
    const bool isEnded = m_ended.wait_for(lock, Blink, [this] { return m_hasEnded; });
    lock.unlock();
    if (isEnded) {
        takeOver();
    }
    return last();
}

void FrameImages::ended(int generation) {
    if (generation != m_generation || !m_request) {
        return;  // taken over already, or stopped
    }
    takeOver();
    if (m_next) {
        start(m_nextKey, *std::exchange(m_next, std::nullopt));
    }
    emit ready();
}

void FrameImages::stop() {
    m_stop = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
    m_stop = false;
    ++m_generation;
    m_request.reset();
    m_next.reset();
    m_isMade = false;
}

void FrameImages::forget() {
    if (m_key || m_request) {
        stop();
        m_key.reset();
        m_shown = FrameImage();
        m_made = FrameImage();
    }
}
