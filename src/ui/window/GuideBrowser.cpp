#include "window/GuideBrowser.h"

#include <QAbstractTextDocumentLayout>
#include <QImage>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>

#include "window/GuideText.h"

namespace {

constexpr int Margin = 40;
const QColor Found(255, 232, 128);

/// How links name a heading: small letters, hyphens for blanks, no punctuation.
QString anchorOf(const QString& heading) {
    static const QRegularExpression punctuation(QStringLiteral("[^\\w\\- ]"),
                                                QRegularExpression::UseUnicodePropertiesOption);
    return heading.toLower().remove(punctuation).replace(QLatin1Char(' '), QLatin1Char('-'));
}

}  // namespace

GuideBrowser::GuideBrowser(QWidget* parent) : QTextBrowser(parent) {
    setOpenExternalLinks(true);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);  // so that pictures keep fitting
    document()->setDocumentMargin(Margin / 2.0);
    connect(this, &QTextBrowser::sourceChanged, this, [this](const QUrl& url) {
        m_current = -1;
        scrollToHeading(url);
        showMarks();
    });
}

QVariant GuideBrowser::loadResource(int type, const QUrl& name) {
    if (type == QTextDocument::MarkdownResource) {
        return guidePage(name.toLocalFile());
    }
    const QVariant found = QTextBrowser::loadResource(type, name);
    if (type != QTextDocument::ImageResource) {
        return found;
    }
    const QImage image = QImage::fromData(found.toByteArray());
    const int room = viewport()->width() - Margin;
    return image.width() > room ? image.scaledToWidth(room, Qt::SmoothTransformation) : image;
}

void GuideBrowser::mark(const QString& words) {
    m_words = words.trimmed().isEmpty() ? QString() : words;
    m_current = -1;
    showMarks();
}

void GuideBrowser::goTo(const QUrl& page, int position) {
    if (source().adjusted(QUrl::RemoveFragment) != page) {
        setSource(page);
    }
    m_current = position;
    showMarks();
    QTextCursor cursor(document());
    cursor.setPosition(position);
    setTextCursor(cursor);  // what is copied or searched with the keys begins here
    const QRect place = cursorRect();
    verticalScrollBar()->setValue(verticalScrollBar()->value() + place.top() -
                                  viewport()->height() / 3);
}

void GuideBrowser::showMarks() {
    QList<QTextEdit::ExtraSelection> marks;
    QTextCursor found(document());
    while (!m_words.isEmpty() && !(found = document()->find(m_words, found)).isNull()) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = found;
        const bool isCurrent = found.selectionStart() == m_current;
        mark.format.setBackground(isCurrent ? palette().highlight() : QBrush(Found));
        mark.format.setForeground(isCurrent ? palette().highlightedText() : QBrush(Qt::black));
        marks << mark;
    }
    setExtraSelections(marks);
}

void GuideBrowser::scrollToHeading(const QUrl& url) {
    const QString anchor = url.fragment();
    document()->documentLayout()->documentSize();  // lays out, so that there is a place to go to
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0 && anchorOf(block.text()) == anchor) {
            const QRectF place = document()->documentLayout()->blockBoundingRect(block);
            verticalScrollBar()->setValue(static_cast<int>(place.top()));
            return;
        }
    }
}
