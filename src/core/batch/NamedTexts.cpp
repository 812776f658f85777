#include "batch/NamedTexts.h"

#include <QRegularExpression>
#include <QSet>
#include <algorithm>

#include "batch/BatchTexts.h"
#include "batch/LineItems.h"

namespace {

const QRegularExpression& between() {
    static const QRegularExpression pattern(QStringLiteral("%([A-Z][A-Z0-9_]+)%"));
    return pattern;
}

QString lineWith(const QVector<NamedText>& texts, const QString& line, QSet<QString>* used) {
    QString made;
    int at = 0;
    for (QRegularExpressionMatch match = between().match(line); match.hasMatch();
         match = between().match(line, at)) {
        const auto text = std::find_if(texts.begin(), texts.end(), [&match](const NamedText& t) {
            return t.name == match.captured(1);
        });
        const bool isNamed = text != texts.end();
        // The second sign of a name that is not replaced may be the first of another.
        const int next = isNamed ? match.capturedEnd() : match.capturedEnd() - 1;
        made += line.mid(at, (isNamed ? match.capturedStart() : next) - at);
        if (isNamed) {
            made += text->text;
            used->insert(text->name);
        }
        at = next;
    }
    return made + line.mid(at);
}

}  // namespace

QString readNamedText(const QString& written, NamedText* named) {
    static const QRegularExpression whole(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Z][A-Z0-9_]+")));
    const int sign = written.indexOf(QLatin1Char('='));
    named->name = written.left(std::max(sign, 0));
    named->text = written.mid(sign + 1);
    if (sign < 0 || !whole.match(named->name).hasMatch()) {
        return QStringLiteral(
            "needs NAME=TEXT, NAME of two or more of A to Z, 0 to 9 and _, a letter first");
    }
    const bool breaks = std::any_of(named->text.begin(), named->text.end(), [](QChar c) {
        return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c.isNull();
    });
    QString rest = named->text;
    return breaks || hasContinuation(rest)
               ? QStringLiteral("%1: a text has no line end and no backslash behind it")
                     .arg(named->name)
               : QString();
}

QStringList replaceNamed(const QVector<NamedText>& texts, QStringList* lines) {
    if (texts.isEmpty()) {
        return {};
    }
    QSet<QString> used;
    for (QString& line : *lines) {
        line = lineWith(texts, line, &used);
    }
    QStringList unused;
    for (const NamedText& text : texts) {
        if (!used.contains(text.name)) {
            unused << text.name;
        }
    }
    return unused;
}

QString leftOverName(const QString& text) {
    return text.contains(QLatin1Char('%')) ? between().match(text).captured(0) : QString();
}

QString aboutLeftOver(const QString& name) {
    return Batch::tr("%1 stands for nothing: --set gives no text for it, and no loop has it")
        .arg(name);
}
