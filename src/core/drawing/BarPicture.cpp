#include "drawing/BarPicture.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>

#include "drawing/BarScale.h"
#include "drawing/DrawText.h"
#include "drawing/Ticks.h"

namespace {

constexpr int LeastSide = 480;    // of an enlarged picture
constexpr int LeastLetters = 15;  // pixels
constexpr int LettersOnSide = 42;
constexpr int MostTitle = 48;  // of these letters, when the picture is narrower

/// Where everything lies.
class Layout {
  public:
    explicit Layout(const BarPicture& parts);

    QFont font;
    QFont titleFont;
    QSize size;
    QPointF title;
    QPointF source;
    QRectF map;
    QRectF bar;
    QPointF unit;  // middle of its left side, turned upright
    QString titleText;
    QString sourceText;
};

int widestLabel(const QFontMetrics& letters, double low, double high) {
    int widest = std::max(letters.horizontalAdvance(QString::number(low, 'g', 6)),
                          letters.horizontalAdvance(QString::number(high, 'g', 6)));
    const Ticks ticks = ticksBetween(low, high);
    for (double value : ticks.values) {
        widest = std::max(widest, letters.horizontalAdvance(tickText(value, ticks.step)));
    }
    return widest;
}

Layout::Layout(const BarPicture& parts) {
    const QSize enlarged = parts.picture.size() * barPictureScale(parts.picture.size());
    const int longer = std::max(enlarged.width(), enlarged.height());
    font = QGuiApplication::font();
    font.setPixelSize(std::max(LeastLetters, longer / LettersOnSide));
    titleFont = font;
    titleFont.setBold(true);
    const QFontMetrics letters(font);
    const QFontMetrics titleLetters(titleFont);
    const int line = letters.height();
    const int margin = line;

    // From left to right: picture, bar, numbers, unit.
    const int barHeight = std::max(enlarged.height(), 8 * line);
    const int numbers = line / 3 + widestLabel(letters, parts.low, parts.high);
    const int unitWidth = parts.unit.isEmpty() ? 0 : line + line / 2;
    const int body = enlarged.width() + line + line + numbers + unitWidth;
    const int widestText = std::max(body, MostTitle * letters.averageCharWidth());
    titleText = titleLetters.elidedText(parts.title, Qt::ElideMiddle, widestText);
    sourceText = letters.elidedText(parts.source, Qt::ElideMiddle, widestText);
    const int texts =
        std::max(titleLetters.horizontalAdvance(titleText), letters.horizontalAdvance(sourceText));

    int y = margin;
    title = QPointF(margin, y);
    y += titleText.isEmpty() ? 0 : titleLetters.height();
    source = QPointF(margin, y);
    y += sourceText.isEmpty() ? 0 : line;
    y += titleText.isEmpty() && sourceText.isEmpty() ? 0 : line / 2;
    map = QRectF(QPoint(margin, y), enlarged);
    bar = QRectF(map.right() + line, y, line, barHeight);
    unit = QPointF(bar.right() + numbers + line / 2.0, bar.center().y());
    size = QSize(2 * margin + std::max(body, texts), y + barHeight + margin);
}

/// The end values beside the ends of the bar.
void paintEnds(QPainter& painter, const QRectF& bar, double low, double high) {
    const double x = bar.right() + painter.fontMetrics().height() / 3.0;
    const double half = painter.fontMetrics().height() / 2.0;
    const QRectF beside = QRectF(x, bar.top() - half, 1e6, bar.height() + 2 * half);
    drawText(painter, QPointF(x, bar.top()), QString::number(high, 'g', 6),
             Qt::AlignLeft | Qt::AlignVCenter, beside);
    drawText(painter, QPointF(x, bar.bottom()), QString::number(low, 'g', 6),
             Qt::AlignLeft | Qt::AlignVCenter, beside);
}

}  // namespace

int barPictureScale(const QSize& size) {
    const int longer = std::max({1, size.width(), size.height()});
    return std::max(1, (LeastSide + longer / 2) / longer);
}

QPoint barPictureOrigin(const BarPicture& parts) {
    return Layout(parts).map.topLeft().toPoint();
}

QImage withColorBar(const BarPicture& parts) {
    if (parts.picture.isNull()) {
        return QImage();
    }
    const Layout layout(parts);
    QImage image(layout.size, QImage::Format_RGB32);
    if (image.isNull()) {
        return QImage();  // no memory
    }
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    painter.setFont(layout.titleFont);
    drawText(painter, layout.title, layout.titleText, Qt::AlignLeft | Qt::AlignTop);
    painter.setFont(layout.font);
    drawText(painter, layout.source, layout.sourceText, Qt::AlignLeft | Qt::AlignTop);
    painter.drawImage(layout.map, parts.picture);
    paintBarColors(painter, layout.bar, parts.isGrey ? BarColors::Grey : BarColors::False,
                   parts.low, parts.high);
    painter.drawRect(layout.bar.adjusted(-1, -1, 0, 0));
    painter.drawRect(layout.map.adjusted(-1, -1, 0, 0));
    if (parts.low <= parts.high) {
        paintEnds(painter, layout.bar, parts.low, parts.high);
        paintBarTicks(painter, layout.bar, parts.low, parts.high, painter.fontMetrics().height(),
                      QRectF(image.rect()));
    }
    drawText(painter, layout.unit, parts.unit, Qt::AlignLeft | Qt::AlignVCenter,
             QRectF(image.rect()), true);
    return image;
}
