#pragma once

#include <QQueue>
#include <QStringList>
#include <QVector>
#include <deque>
#include <memory>
#include <optional>

#include "frames/FrameSet.h"
#include "frames/TiffData.h"

/// One stack of frames and the files that are still to be read into it.
///
/// A frame is with the reader from next() until arrived(); frames return in the order in which they
/// went. One that is under way when the stack is cleared or the loading stopped is not waited for.
class StackLoader {
  public:
    /// At most so many frames are under way: with two the reader always has its next one.
    explicit StackLoader(int atOnce = 1) : m_atOnce(atOnce) {}

    /// A file to read and the empty frame to read it into.
    struct Request {
        QString fileName;
        std::shared_ptr<TiffData> frame;  ///< lives as long as the reader wants it to
    };

    /// Deletes every frame, empties the queue and forgets what was left out.
    void clear();

    /// Appends files to the queue; a queue that had run empty starts a new count.
    void enqueue(const QStringList& files);

    /// Drops the files that are still to be read, and those under way.
    void stop();

    /// The next file to read; nothing while enough frames are under way or when the queue is empty.
    std::optional<Request> next();

    /// A file that is left out, and why in one phrase.
    struct Refused {
        QString fileName;
        QString why;
    };

    /// Takes the frame back from the reader. The result is the frame when it is to be appended;
    /// empty when it could not be read, holds no counts (TiffData::refusal) or is not wanted any
    /// more.
    std::shared_ptr<TiffData> arrived(const TiffData* frame);

    /// Whether frames are still to come.
    bool isLoading() const { return done() < total(); }
    int done() const { return m_done; }
    int total() const { return m_done + m_queue.size() + static_cast<int>(m_underWay.size()); }

    /// The files that were left out since the last call.
    QVector<Refused> takeRefused();

    FrameSet& frames() { return m_frames; }
    const FrameSet& frames() const { return m_frames; }

  private:
    struct UnderWay {
        QString fileName;
        std::shared_ptr<TiffData> frame;
    };

    int m_atOnce;
    FrameSet m_frames;
    QQueue<QString> m_queue;
    std::deque<UnderWay> m_underWay;
    int m_done = 0;
    QVector<Refused> m_refused;
};
