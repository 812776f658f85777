#pragma once

#include <QObject>
#include <atomic>
#include <memory>

#include "base/Inbox.h"
#include "base/Worker.h"
#include "frames/TiffData.h"

/// Reads one frame at a time, in a thread of its own; where there is none to be had, in the thread
/// that it lives in. At its end it waits for the frame under way, but not longer than
/// Worker::Patience.
class LoadTiff : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    /// Counts are left alone: frames come without rows, as their headers tell. Those that already
    /// have a size, or a refusal, are not looked at. Before the first file.
    void readHeadersOnly() { m_what = What::Headers; }
    /// Frames come without rows, but with a CountFile. Before the first file.
    void readCountsWhenNeeded() { m_what = What::CountFiles; }

    /// Reads in the background; loaded() follows, later than this call, in the order of the calls.
    /// The frame is the reader's until then.
    void load(const QString& fname, const std::shared_ptr<TiffData>& data);
    /// Nobody waits for the frames under way any more, nor do those that are asked for from here
    /// on, whether or not these files ever answer. In place of them loaded() follows once, with
    /// null.
    void drop();

  signals:
    /// Emitted whether or not the frame could be read (see TiffData::loaded); null after drop().
    void loaded(TiffData* data);

  public slots:
    /// Reads before it returns.
    void loadTiff(const QString& fname, TiffData* data);

  private:
    enum class What { Counts, Headers, CountFiles };
    static void read(const QString& fname, TiffData* data, What what);
    static void readHeader(const QString& fname, TiffData* data, What what);

    What m_what = What::Counts;
    int m_underWay = 0;
    std::shared_ptr<std::atomic<bool>> m_wanted = std::make_shared<std::atomic<bool>>(true);
    Inbox m_inbox;
    std::unique_ptr<Worker> m_thread = std::make_unique<Worker>();  // goes first
};
