#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// By what a file that somebody has changed is told from the one that it was.
struct FileState {
    QByteArray path;  ///< as the system takes it
    quint64 device = 0;
    quint64 number = 0;  ///< of the file on its device
    qint64 size = -1;    ///< bytes; -1: there is no such file
    qint64 seconds = 0;  ///< of the last change of its content
    qint64 nanoseconds = 0;

    bool operator==(const FileState& other) const;
};

/// Of the file that an image is read from.
FileState stateOfFile(const QString& name);
/// Of what is there now under the path of another state.
FileState stateNow(const FileState& before);
/// Of an open file.
FileState stateOf(int descriptor, const QByteArray& path);

/// That a file is another than it was, with its name; empty where it is the same.
QString changeOf(const QString& name, const FileState& before, const FileState& now);
