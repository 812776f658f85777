#include "files/FileListing.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <algorithm>

#include "files/FileNames.h"
#include "files/FilePlaces.h"

namespace {

int endOfDigits(const QString& s, int from) {
    int end = from;
    while (end < s.size() && s.at(end) >= QLatin1Char('0') && s.at(end) <= QLatin1Char('9')) {
        ++end;
    }
    return end;
}

/// Compares two runs of digits of any length as numbers.
int compareDigits(QStringView a, QStringView b) {
    const auto skipZeros = [](QStringView s) {
        while (s.size() > 1 && s.front() == QLatin1Char('0')) {
            s = s.mid(1);
        }
        return s;
    };
    a = skipZeros(a);
    b = skipZeros(b);
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    return a.compare(b);
}

}  // namespace

bool comesBefore(const QString& a, const QString& b) {
    int i = 0;
    int j = 0;
    while (i < a.size() && j < b.size()) {
        const int endA = endOfDigits(a, i);
        const int endB = endOfDigits(b, j);
        if (endA > i && endB > j) {
            const int order =
                compareDigits(QStringView(a).mid(i, endA - i), QStringView(b).mid(j, endB - j));
            if (order != 0) {
                return order < 0;
            }
            i = endA;
            j = endB;
        } else {
            if (a.at(i) != b.at(j)) {
                return a.at(i) < b.at(j);
            }
            ++i;
            ++j;
        }
    }
    if (a.size() - i != b.size() - j) {
        return a.size() - i < b.size() - j;
    }
    return a < b;
}

QStringList listImageFiles(const QString& directory, const QStringList& patterns) {
    const QDir dir(directory);
    QStringList names = dir.entryList(patterns, QDir::Files, QDir::NoSort);
    for (const QString& file : placedIn(directory)) {
        const QString name = QFileInfo(file).fileName();
        if (!names.contains(name) && (patterns.isEmpty() || QDir::match(patterns, name))) {
            names << name;
        }
    }
    std::sort(names.begin(), names.end(), comesBefore);
    for (QString& name : names) {
        name = fileIn(directory, name);
    }
    return names;
}

QStringList listNewFiles(const QStringList& listed) {
    constexpr qint64 SettledAfterMs = 1000;
    const QFileInfo last(listed.isEmpty() ? QString() : listed.last());
    const QSet<QString> known(listed.begin(), listed.end());
    const QDateTime now = QDateTime::currentDateTime();
    QStringList fresh;
    for (const QString& file : listImageFiles(last.absolutePath(), {})) {
        const QFileInfo info(file);
        if (info.suffix().compare(last.suffix(), Qt::CaseInsensitive) == 0 &&
            !known.contains(info.absoluteFilePath()) &&
            info.lastModified().msecsTo(now) >= SettledAfterMs) {
            fresh << file;
        }
    }
    return fresh;
}
