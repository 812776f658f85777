#include "batch/LineItems.h"

#include <QDebug>
#include <QRegularExpression>

namespace {

const QChar Quote = QLatin1Char('"');

int firstNonBlank(const QString& line) {
    static const QRegularExpression nonBlank(QStringLiteral("\\S"));
    return line.indexOf(nonBlank);
}

int firstBlank(const QString& line, int from) {
    static const QRegularExpression blank(QStringLiteral("\\s"));
    return line.indexOf(blank, from);
}

QString takeQuoted(const QString& line, int from, QString* item) {
    const int end = line.indexOf(Quote, from);
    if (end < 0) {
        qDebug().noquote()
            << QStringLiteral("In a line [%1] item is started from quote but not ended by quote")
                   .arg(line);
        *item = line.mid(from);
        return QString();
    }
    *item = line.mid(from, end - from);
    return line.mid(end + 1);
}

}  // namespace

QString stripComment(const QString& line) {
    const int comment = line.indexOf(QLatin1Char('#'));
    return comment < 0 ? line : line.left(comment);
}

bool isBlank(const QString& line) {
    return stripComment(line).simplified().isEmpty();
}

bool hasContinuation(QString& line) {
    static const QRegularExpression nonBlank(QStringLiteral("\\S"));
    const int last = line.lastIndexOf(nonBlank);
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

QString takeItem(const QString& line, QString* item) {
    const int start = firstNonBlank(line);
    if (start < 0) {
        item->clear();
        return QString();
    }
    if (line.at(start) == Quote) {
        return takeQuoted(line, start + 1, item);
    }
    const int end = firstBlank(line, start);
    if (end < 0) {
        if (line.endsWith(Quote)) {
            qDebug().noquote()
                << QStringLiteral(
                       "In a line [%1] item is started from not quote but ended by quote")
                       .arg(line);
        }
        *item = line.mid(start);
        return QString();
    }
    *item = line.mid(start, end - start);
    return line.mid(end);
}
