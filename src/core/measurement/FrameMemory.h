#pragma once

#include <QSize>
#include <QStringList>
#include <QVector>

#include "measurement/Outcome.h"

/// Frames that are to be read into memory.
struct FramesToRead {
    QString name;  ///< of their load: "I1", "I0", "dark"
    QStringList files;
    QSize size = QSize();  ///< of the frames to which they are added; others are not taken
};

/// Bytes that the counts of some frames take.
quint64 countBytes(const QSize& size, qint64 frames);

/// Failed, with the sizes: the frames do not fit into what there is. Looks at one file of each
/// load, at the headers of all only where those seem not to fit. Files from one on that does not
/// answer within Worker::Patience are taken to fit: their reader meets the same.
Outcome judgeMemory(const QVector<FramesToRead>& loads, quint64 available);
