#pragma once

#include <QQueue>
#include <QStringList>
#include <memory>
#include <optional>

#include "imagedata/FrameSet.h"
#include "imagedata/TiffData.h"

/// One stack of frames and the files that are still to be read into it.
///
/// A frame is with the reader from next() until arrived(); at most one is under way. A frame that
/// was under way when the stack was cleared is dropped on its return, and the queue goes on.
class StackLoader {
  public:
    /// A file to read and the empty frame to read it into; the frame stays owned by the loader.
    struct Request {
        QString fileName;
        TiffData* frame;
    };

    /// Deletes every frame, empties the queue and forgets the failures.
    void clear();

    /// Appends files to the queue; a queue that had run empty starts a new count.
    void enqueue(const QStringList& files);

    /// The next file to read; nothing while a frame is under way or when the queue is empty.
    std::optional<Request> next();

    /// Takes the frame back from the reader. The result is the frame when it is to be appended;
    /// empty when it could not be read, or the stack was cleared meanwhile.
    std::unique_ptr<TiffData> arrived(const TiffData* frame);

    bool isLoading() const { return m_underWay != nullptr || !m_queue.isEmpty(); }
    int done() const { return m_done; }
    int total() const { return m_done + m_queue.size() + (m_underWay && !m_stale ? 1 : 0); }

    /// Names of the files that could not be read since the last call.
    QStringList takeFailures();

    FrameSet& frames() { return m_frames; }
    const FrameSet& frames() const { return m_frames; }

  private:
    FrameSet m_frames;
    QQueue<QString> m_queue;
    std::unique_ptr<TiffData> m_underWay;
    QString m_underWayName;
    bool m_stale = false;
    int m_done = 0;
    QStringList m_failures;
};
