#include "batch/BatchLine.h"

#include <algorithm>

#include "batch/CommandTables.h"

namespace {

constexpr int LineWidth = 100;
const QLatin1Char Quote('"');
const QLatin1Char Continued('\\');

/// Ends a line for a file, a device of text or an editor, or is lost in one of them.
bool breaksText(QChar c) {
    return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c.isNull() ||
           c == QChar::LineSeparator || c == QChar::ParagraphSeparator || c == QChar(0xFDD0) ||
           c == QChar(0xFDD1) || c == QChar::ByteOrderMark;
}

bool isBlank(QChar c) {
    return c.isSpace();
}

}  // namespace

std::optional<QString> batchItem(const QString& text) {
    if (text.isEmpty() || text.startsWith(Quote) || !text.isValidUtf16() ||
        std::any_of(text.begin(), text.end(), breaksText)) {
        return std::nullopt;
    }
    // White space of other scripts separates nothing, but is cut off or taken for nothing here and
    // there; between quotes it is safe.
    const bool needsQuotes =
        text.endsWith(Continued) || std::any_of(text.begin(), text.end(), isBlank);
    if (!needsQuotes) {
        return text;
    }
    if (text.contains(Quote)) {
        return std::nullopt;
    }
    return Quote + text + Quote;
}

std::optional<QStringList> batchLine(const QString& command, const QStringList& args,
                                     QString* refused) {
    const bool isLoop = controlId(command) == ForControl;
    QStringList lines;
    QString line;
    for (const QString& text : QStringList(command) + args) {
        const std::optional<QString> item = batchItem(text);
        // A loop splits its items once more, without their quotes.
        const bool splits = isLoop && std::any_of(text.begin(), text.end(), isBlank);
        if (!item || splits) {
            if (refused) {
                *refused = text;
            }
            return std::nullopt;
        }
        if (line.isEmpty()) {
            line = *item;
        } else if (line.size() + 1 + item->size() + 2 <= LineWidth) {
            line += QLatin1Char(' ') + *item;
        } else {
            lines << line + QLatin1Char(' ') + Continued;
            line = *item;
        }
    }
    lines << line;
    return lines;
}
