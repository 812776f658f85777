#pragma once

#include <QObject>
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

  signals:
    /// Emitted whether or not the frame could be read (see TiffData::loaded).
    void loaded(TiffData* data);

  public slots:
    /// Reads before it returns.
    void loadTiff(const QString& fname, TiffData* data);

  private:
    enum class What { Counts, Headers, CountFiles };
    static void read(const QString& fname, TiffData* data, What what);
    static void readHeader(const QString& fname, TiffData* data, What what);

    What m_what = What::Counts;
    Inbox m_inbox;
    Worker m_thread;  // goes first
};
