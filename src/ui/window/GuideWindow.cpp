#include "window/GuideWindow.h"

#include <QAbstractTextDocumentLayout>
#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>

namespace {

constexpr int LevelsOfABuild = 4;  // build/PRESET/src/programs
constexpr int Margin = 40;

/// How links name a heading: small letters, hyphens for blanks, no punctuation.
QString anchorOf(const QString& heading) {
    static const QRegularExpression punctuation(QStringLiteral("[^\\w\\- ]"),
                                                QRegularExpression::UseUnicodePropertiesOption);
    return heading.toLower().remove(punctuation).replace(QLatin1Char(' '), QLatin1Char('-'));
}

}  // namespace

QString GuideWindow::firstPage() {
    //: contents of the guide in the language of the interface
    const QString page = tr("guide/README.md");
    QDir dir(QCoreApplication::applicationDirPath());
    const QString installed = dir.filePath(QStringLiteral(TARNWICK_DOCUMENTS "/") + page);
    if (QFile::exists(installed)) {
        return QDir::cleanPath(installed);
    }
    for (int i = 0; i < LevelsOfABuild && dir.cdUp(); ++i) {
        const QString source = dir.filePath(QStringLiteral("docs/") + page);
        if (QFile::exists(source)) {
            return source;
        }
    }
    return QString();
}

GuideWindow::GuideWindow(QWidget* parent) : QTextBrowser(parent) {
    setWindowFlag(Qt::Window);
    setWindowTitle(tr("User Guide"));
    setOpenExternalLinks(true);
    resize(900, 760);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);  // so that pictures keep fitting
    document()->setDocumentMargin(Margin / 2.0);
    connect(this, &QTextBrowser::sourceChanged, this, &GuideWindow::scrollToHeading);
}

QVariant GuideWindow::loadResource(int type, const QUrl& name) {
    const QVariant found = QTextBrowser::loadResource(type, name);
    if (type != QTextDocument::ImageResource) {
        return found;
    }
    const QImage image = QImage::fromData(found.toByteArray());
    const int room = viewport()->width() - Margin;
    return image.width() > room ? image.scaledToWidth(room, Qt::SmoothTransformation) : image;
}

void GuideWindow::scrollToHeading(const QUrl& url) {
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
