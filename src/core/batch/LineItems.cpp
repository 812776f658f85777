#include "batch/LineItems.h"

#include <QDebug>

namespace {

const QChar Quote = QLatin1Char('"');

thread_local int silent = 0;

void say(const QString& text, const QString& line) {
    if (silent == 0) {
        qDebug().noquote() << text.arg(line);
    }
}

// White space of ASCII only: any other is part of an item.
bool separates(QChar c) {
    return c == QLatin1Char(' ') || (c >= QLatin1Char('\t') && c <= QLatin1Char('\r'));
}

int firstNonBlank(const QString& line, int from) {
    while (from < line.size() && separates(line.at(from))) {
        ++from;
    }
    return from;
}

int firstBlank(const QString& line, int from) {
    while (from < line.size() && !separates(line.at(from))) {
        ++from;
    }
    return from;
}

QString takeQuoted(const QString& line, int from, int* place) {
    const int end = line.indexOf(Quote, from);
    if (end < 0) {
        say(QStringLiteral("In a line [%1] item is started from quote but not ended by quote"),
            line.mid(*place));
        *place = line.size();
        return line.mid(from);
    }
    *place = end + 1;
    return line.mid(from, end - from);
}

}  // namespace

SilentItems::SilentItems() {
    ++silent;
}

SilentItems::~SilentItems() {
    --silent;
}

QString stripComment(const QString& line) {
    const int comment = line.indexOf(QLatin1Char('#'));
    return comment < 0 ? line : line.left(comment);
}

bool isBlank(const QString& line) {
    return stripComment(line).simplified().isEmpty();
}

bool hasContinuation(QString& line) {
    int last = line.size() - 1;
    while (last >= 0 && separates(line.at(last))) {
        --last;
    }
    if (last < 0 || line.at(last) != QLatin1Char('\\')) {
        return false;
    }
    line.truncate(last);
    return true;
}

QString withoutContinuation(const QString& line) {
    QString cut = line;
    hasContinuation(cut);
    return cut;
}

QString takeItemAt(const QString& line, int* place) {
    const int start = firstNonBlank(line, *place);
    if (start == line.size()) {
        *place = start;
        return QString();
    }
    if (line.at(start) == Quote) {
        return takeQuoted(line, start + 1, place);
    }
    const int end = firstBlank(line, start);
    if (end == line.size() && line.endsWith(Quote)) {
        say(QStringLiteral("In a line [%1] item is started from not quote but ended by quote"),
            line.mid(*place));
    }
    *place = end;
    return line.mid(start, end - start);
}

QString takeItem(const QString& line, QString* item) {
    int place = 0;
    *item = takeItemAt(line, &place);
    return line.mid(place);
}
