#include "window/GuideText.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextDocument>
#include <QUrl>
#include <algorithm>

namespace {

constexpr int MostLetters = 160;  // of a sentence that is shown

bool endsSentence(const QString& text, int at) {
    const QChar c = text.at(at);
    return c == QChar(0x3002) ||
           (c == QLatin1Char('.') && at + 1 < text.size() && text.at(at + 1) == QLatin1Char(' '));
}

/// The sentence around a place, without more of a long one than can be read at a glance.
QString sentenceAt(const QString& text, int from, int length) {
    const int paragraph = text.lastIndexOf(QLatin1Char('\n'), from) + 1;
    int begin = from;
    while (begin > paragraph && !endsSentence(text, begin - 1)) {
        --begin;
    }
    int end = from + length;
    while (end < text.size() && text.at(end) != QLatin1Char('\n') && !endsSentence(text, end - 1)) {
        ++end;
    }
    const int first = std::max(begin, std::min(from - MostLetters / 3, end - MostLetters));
    const int last = std::min(end, first + MostLetters);
    const QChar more(0x2026);
    return (first > begin ? QString(more) : QString()) +
           text.mid(first, last - first).remove(QChar::ObjectReplacementCharacter).trimmed() +
           (last < end ? QString(more) : QString());
}

}  // namespace

QString guidePage(const QString& fileName) {
    static const QRegularExpression insideText(
        QStringLiteral("(?<=[\\x{3000}-\\x{9fff}\\x{ff00}-\\x{ffef}])\\n {0,3}"
                       "(?=[\\x{3000}-\\x{9fff}\\x{ff00}-\\x{ffef}])"));
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).remove(insideText)
                                          : QString();
}

GuideText::GuideText(const QString& contents) {
    add(contents);
    static const QRegularExpression link(QStringLiteral("\\]\\(([^)#:]+\\.md)"));
    auto links = link.globalMatch(guidePage(contents));
    while (links.hasNext()) {
        const QString file =
            QUrl::fromLocalFile(contents).resolved(QUrl(links.next().captured(1))).toLocalFile();
        if (QFileInfo(file).fileName() != QFileInfo(contents).fileName()) {  // another language's
            add(file);
        }
    }
}

void GuideText::add(const QString& file) {
    const bool isKnown = std::any_of(m_pages.cbegin(), m_pages.cend(),
                                     [&](const Page& page) { return page.file == file; });
    QTextDocument document;
    document.setMarkdown(guidePage(file));
    if (!isKnown && !document.isEmpty()) {
        m_pages.append({file, document.firstBlock().text(), document.toPlainText()});
    }
}

QVector<GuideHit> GuideText::find(const QString& words, int most) const {
    QVector<GuideHit> hits;
    if (words.trimmed().isEmpty()) {
        return hits;
    }
    for (const Page& page : m_pages) {
        int at = page.text.indexOf(words, 0, Qt::CaseInsensitive);
        while (at >= 0 && hits.size() < most) {
            hits.append({page.file, page.title, sentenceAt(page.text, at, words.size()), at});
            at = page.text.indexOf(words, at + words.size(), Qt::CaseInsensitive);
        }
    }
    return hits;
}
