#include "files/OriginText.h"

#include <algorithm>

#include "base/LargeMemory.h"
#include "base/Limits.h"

namespace {

const QLatin1String FirstWords("Tarnwick origin ");
const QLatin1String Between(" = ");
constexpr int Version = 1;

QString inOneLine(QString text) {
    for (QChar& c : text) {
        const bool endsLine = c == QLatin1Char('\n') || c == QLatin1Char('\r') || c.isNull() ||
                              c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
        if (endsLine) {
            c = QLatin1Char(' ');
        }
    }
    return text;
}

// Only blanks of ASCII: a file name may end in any other.
bool isEmptyLine(const QString& line) {
    return std::all_of(line.begin(), line.end(), [](QChar c) {
        return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c.isNull();
    });
}

QStringList linesOf(const QString& text) {
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        while (line.endsWith(QLatin1Char('\r'))) {
            line.chop(1);
        }
    }
    while (!lines.isEmpty() && isEmptyLine(lines.last())) {
        lines.removeLast();
    }
    return lines;
}

QString problemOfFirst(const QString& line) {
    if (!OriginText::beginsIn(line)) {
        return QStringLiteral("no origin in it");
    }
    bool isNumber = false;
    const int version = line.mid(FirstWords.size()).trimmed().toInt(&isNumber);
    if (!isNumber || version < 1) {
        return QStringLiteral("its origin has no version");
    }
    return version > Version ? QStringLiteral("its origin was written by a newer version")
                             : QString();
}

bool takeEntry(const QString& line, OriginText* origin) {
    const int at = line.indexOf(Between);
    if (at >= 0) {
        origin->entries.append({line.left(at), line.mid(at + Between.size())});
        return true;
    }
    // Editors cut off the blank of an empty value.
    if (line.endsWith(QLatin1String(" ="))) {
        origin->entries.append({line.chopped(2), QString()});
        return true;
    }
    return false;
}

}  // namespace

QString OriginText::value(const QString& key) const {
    for (const auto& entry : entries) {
        if (entry.first == key) {
            return entry.second;
        }
    }
    return QString();
}

QString OriginText::toText() const {
    QString text = FirstWords + QString::number(Version) + QLatin1Char('\n');
    for (const auto& entry : entries) {
        text += inOneLine(entry.first) + Between + inOneLine(entry.second) + QLatin1Char('\n');
    }
    if (!record.isEmpty()) {
        text += QLatin1Char('\n') + record.join(QLatin1Char('\n')) + QLatin1Char('\n');
    }
    return text;
}

std::optional<OriginText> OriginText::fromText(const QString& text, QString* whyNot) {
    const bool hasRoom = mayTakeMemory(Limits::MemoryOfText * static_cast<quint64>(text.size()));
    const QStringList lines = hasRoom ? linesOf(text) : QStringList();
    QString problem = hasRoom ? problemOfFirst(lines.value(0)) : lackOfMemory();
    OriginText origin;
    int i = 1;
    for (; problem.isEmpty() && i < lines.size() && !isEmptyLine(lines.at(i)); ++i) {
        if (!takeEntry(lines.at(i), &origin)) {
            problem = QStringLiteral("line %1 of its origin is no \"key = value\"").arg(i + 1);
        }
    }
    if (!problem.isEmpty()) {
        if (whyNot) {
            *whyNot = problem;
        }
        return std::nullopt;
    }
    origin.record = lines.mid(i + 1);
    return origin;
}

bool OriginText::beginsIn(const QString& line) {
    return line.startsWith(FirstWords);
}
