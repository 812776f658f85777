#pragma once

#include <QObject>

#include "frames/TiffData.h"

/// Reads one frame at a time, in a thread of its own.
class LoadTiff : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    /// Counts are left alone: frames come without rows, as their headers tell. Those that already
    /// have a size, or a refusal, are not looked at. Before the first file.
    void readHeadersOnly() { m_headersOnly = true; }
    /// Frames come without rows, but with a CountFile. Before the first file.
    void readCountsWhenNeeded() { m_countsWhenNeeded = true; }

  signals:
    /// Emitted whether or not the frame could be read (see TiffData::loaded).
    void loaded(TiffData* data);

  public slots:
    void loadTiff(const QString& fname, TiffData* data);

  private:
    void loadHeader(const QString& fname, TiffData* data) const;

    bool m_headersOnly = false;
    bool m_countsWhenNeeded = false;
};
