#pragma once

#include <QObject>

#include "frames/TiffData.h"

/// Reads one frame at a time, in a thread of its own.
class LoadTiff : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

  signals:
    /// Emitted whether or not the frame could be read (see TiffData::loaded).
    void loaded(TiffData* data);

  public slots:
    void loadTiff(const QString& fname, TiffData* data);
};
