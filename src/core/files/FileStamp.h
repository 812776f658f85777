#pragma once

#include <QString>
#include <QtGlobal>

/// What tells that a file has been written to since: its size in bytes and the time of its last
/// change in ns. Of a file that this run has written (see FilePlaces.h) a checksum stands for the
/// time.
struct FileStamp {
    qint64 size = -1;  ///< -1: there is no such file
    qint64 time = 0;

    bool operator==(const FileStamp& o) const { return size == o.size && time == o.time; }
};

FileStamp fileStamp(const QString& fileName);
