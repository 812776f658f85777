#include <QBuffer>

#include "Fuzz.h"
#include "output/ReadOrigin.h"

// Origins in whatever a user asks for them: TIFF and PNG files, tables, and the text itself.

namespace {

/// What is read as an origin is written and read again as the same, but for what one line cannot
/// hold.
void writeAndRead(const OriginText& origin) {
    const QString text = origin.toText();
    require(OriginText::beginsIn(text), "begins as an origin");
    const auto back = OriginText::fromText(text);
    require(back.has_value(), "read again");
    require(back->toText() == text, "the same text again");
    require(back->entries.size() == origin.entries.size(), "as many entries");
}

}  // namespace

void fuzz(const QByteArray& input) {
    QBuffer file;
    file.setData(input);
    file.open(QIODevice::ReadOnly);
    QString whyNot;
    const auto origin = readOrigin(file, &whyNot);
    require(origin.has_value() == whyNot.isEmpty(), "an origin or a reason");
    require(!whyNot.contains(QLatin1Char('\n')), "a reason in one line");
    if (origin) {
        writeAndRead(*origin);
    }
    if (const auto text = OriginText::fromText(QString::fromUtf8(input))) {
        writeAndRead(*text);
    }
    require(logLines() <= 2, "few lines in the log, of libpng");
}
