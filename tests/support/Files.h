#pragma once

#include <QFile>
#include <QString>

/// Nothing when the file cannot be opened.
inline QByteArray contentOf(const QString& fileName) {
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes a file for a test, which cannot go on without it.
inline void put(const QString& fileName, const QByteArray& content) {
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(fileName));
    }
}
