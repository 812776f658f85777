#include "measurement/FrameMemory.h"

#include <future>

#include "base/Memory.h"
#include "base/Worker.h"
#include "frames/FrameHeader.h"
#include "measurement/Stack.h"

namespace {

QSize sizeOf(const QString& file) {
    const FrameHeader header = frameHeader(file);
    return header.refusal.isEmpty()
               ? QSize(static_cast<int>(header.width), static_cast<int>(header.height))
               : QSize();
}

/// Sizes of frames, by a thread of its own: who asks does not wait for a file that never answers.
class Headers {
  public:
    /// Empty: not to be read, or a file has not answered in time, this one or one before.
    QSize size(const QString& file) {
        if (m_isSilent) {
            return {};
        }
        const auto promise = std::make_shared<std::promise<QSize>>();
        std::future<QSize> answer = promise->get_future();
        if (!m_thread.run([file, promise] { promise->set_value(sizeOf(file)); })) {
            return sizeOf(file);
        }
        if (answer.wait_for(Worker::Patience) == std::future_status::ready) {
            return answer.get();
        }
        m_isSilent = true;
        m_thread.end(std::chrono::milliseconds(0));
        return {};
    }

  private:
    bool m_isSilent = false;
    Worker m_thread;
};

/// What a load takes if all of its files are as the first that can be read.
quint64 mostOf(const FramesToRead& load, Headers* headers) {
    QSize size = load.size;
    for (int i = 0; size.isEmpty() && i < load.files.size(); ++i) {
        size = headers->size(load.files.at(i));
    }
    return countBytes(size, load.files.size());
}

/// What it takes of those that are taken.
quint64 bytesOf(const FramesToRead& load, Headers* headers, int* frames) {
    QSize size = load.size;
    int taken = 0;
    for (const QString& file : load.files) {
        const QSize own = headers->size(file);
        size = size.isEmpty() ? own : size;
        taken += !own.isEmpty() && own == size ? 1 : 0;
    }
    *frames += taken;
    return countBytes(size, taken);
}

}  // namespace

quint64 countBytes(const QSize& size, qint64 frames) {
    return size.isEmpty()
               ? 0
               : static_cast<quint64>(size.width()) * static_cast<quint64>(size.height()) *
                     sizeof(quint16) * static_cast<quint64>(frames);
}

Outcome judgeMemory(const QVector<FramesToRead>& loads, quint64 available) {
    Headers headers;
    quint64 most = 0;
    for (const FramesToRead& load : loads) {
        most += mostOf(load, &headers);
    }
    if (most <= available) {
        return {};
    }
    quint64 needed = 0;
    int frames = 0;
    QStringList names;
    for (const FramesToRead& load : loads) {
        needed += bytesOf(load, &headers, &frames);
        names << (load.files.isEmpty() ? QString() : load.name);
    }
    names.removeAll(QString());
    return needed <= available
               ? Outcome()
               : Outcome::failure(Stack::tr("%1: the counts of %n frame(s) need %2 of memory, %3 "
                                            "are available: nothing was read",
                                            nullptr, frames)
                                      .arg(names.join(QStringLiteral(", ")), sizeText(needed),
                                           sizeText(available)));
}
