#pragma once

#include <QFile>
#include <QString>
#include <QVector>

/// Nothing when the file cannot be opened.
inline QByteArray contentOf(const QString& fileName) {
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The lines of a table behind its header.
inline QList<QByteArray> rowsOf(const QString& fileName) {
    QList<QByteArray> rows;
    for (const QByteArray& line : contentOf(fileName).split('\n')) {
        if (!line.isEmpty() && !line.startsWith('#')) {
            rows << line;
        }
    }
    return rows;
}

/// What a table reader makes of them; an item that is no number makes its row too long.
inline QVector<QVector<double>> numbersOf(const QString& fileName, char separator = ' ') {
    QVector<QVector<double>> rows;
    for (const QByteArray& line : rowsOf(fileName)) {
        rows.append(QVector<double>());
        for (const QByteArray& item : line.split(separator)) {
            bool ok = false;
            rows.last() << item.toDouble(&ok);
            rows.last() << QVector<double>(ok ? 0 : 2);
        }
    }
    return rows;
}

/// Writes a file for a test, which cannot go on without it.
inline void put(const QString& fileName, const QByteArray& content) {
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(fileName));
    }
}

/// Writes a curve in two columns.
template <typename Energies, typename Value>
void putCurve(const QString& fileName, const Energies& energies, Value value) {
    QByteArray text("# energy mu\n");
    for (const double e : energies) {
        text += QByteArray::number(e, 'g', 17) + ' ' + QByteArray::number(value(e), 'g', 17) + '\n';
    }
    put(fileName, text);
}
