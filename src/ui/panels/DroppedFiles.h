#pragma once

#include <QMimeData>
#include <QStringList>
#include <QUrl>

/// The files and folders that are dragged or dropped; empty for anything else.
inline QStringList droppedFiles(const QMimeData* data) {
    QStringList files;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile()) {
            files << url.toLocalFile();
        }
    }
    return files;
}
