#include "drawing/BarPicture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/LargeMemory.h"
#include "drawing/BarScale.h"
#include "drawing/DrawText.h"
#include "drawing/Letters.h"
#include "drawing/Ticks.h"
#include "files/PictureResolution.h"

namespace {

constexpr int LeastSide = 480;    // of an enlarged picture
constexpr int LeastLetters = 15;  // pixels
constexpr int LettersOnSide = 42;
constexpr int LeastTitle = 48;  // letters that a title has room for beside a narrow picture

/// Where everything lies.
class Layout {
  public:
    explicit Layout(const BarPicture& parts);

    Letters letters;
    Letters titleLetters;
    QSize size;
    QPointF title;
    QPointF source;
    QRectF map;
    QRectF bar;
    int marks = 0;  // height of the triangles above and below it
    QPointF unit;   // middle of its left side, turned upright
    QString titleText;
    QString sourceText;
};

double letterSize(const QImage& picture) {
    const QSize enlarged = picture.size() * barPictureScale(picture.size());
    return std::max(LeastLetters, std::max(enlarged.width(), enlarged.height()) / LettersOnSide);
}

int lineOf(const Letters& letters) {
    return static_cast<int>(std::ceil(letters.height()));
}

int widthOf(const Letters& letters, const QString& text) {
    return static_cast<int>(std::ceil(letters.width(text)));
}

int widestLabel(const Letters& letters, double low, double high) {
    int widest = std::max(widthOf(letters, QString::number(low, 'g', 6)),
                          widthOf(letters, QString::number(high, 'g', 6)));
    const Ticks ticks = ticksBetween(low, high);
    for (double value : ticks.values) {
        widest = std::max(widest, widthOf(letters, tickText(value, ticks.step)));
    }
    return widest;
}

Layout::Layout(const BarPicture& parts)
    : letters(Letters::ofPictures(letterSize(parts.picture))),
      titleLetters(Letters::ofPictures(letterSize(parts.picture), Letters::Bold)) {
    const QSize enlarged = parts.picture.size() * barPictureScale(parts.picture.size());
    const int line = lineOf(letters);
    const int margin = line;

    // From left to right: picture, bar, numbers, unit.
    const int barHeight = std::max(enlarged.height(), 8 * line);
    const int numbers = line / 3 + widestLabel(letters, parts.low, parts.high);
    const int unitWidth = parts.unit.isEmpty() ? 0 : line + line / 2;
    const int body = enlarged.width() + line + line + numbers + unitWidth;
    const int widestText = std::max(body, LeastTitle * widthOf(letters, QStringLiteral("x")));
    titleText = titleLetters.elided(parts.title, widestText);
    sourceText = letters.elided(parts.source, widestText);
    const int texts = std::max(widthOf(titleLetters, titleText), widthOf(letters, sourceText));

    int y = margin;
    title = QPointF(margin, y);
    y += titleText.isEmpty() ? 0 : lineOf(titleLetters);
    source = QPointF(margin, y);
    y += sourceText.isEmpty() ? 0 : line;
    y += titleText.isEmpty() && sourceText.isEmpty() ? 0 : line / 2;
    map = QRectF(QPoint(margin, y), enlarged);
    marks = parts.marksOutside ? line / 2 + 2 : 0;
    bar = QRectF(map.right() + line, y + marks, line, barHeight - 2 * marks);
    unit = QPointF(bar.right() + numbers + line / 2.0, bar.center().y());
    size = QSize(2 * margin + std::max(body, texts), y + barHeight + margin);
}

/// The end values beside the ends of the bar.
void paintEnds(QPainter& painter, const Letters& letters, const QRectF& bar, double low,
               double high) {
    const double x = bar.right() + letters.height() / 3.0;
    const double half = letters.height() / 2.0;
    const QRectF beside = QRectF(x, bar.top() - half, 1e6, bar.height() + 2 * half);
    drawText(painter, letters, QPointF(x, bar.top()), QString::number(high, 'g', 6),
             Qt::AlignLeft | Qt::AlignVCenter, beside);
    drawText(painter, letters, QPointF(x, bar.bottom()), QString::number(low, 'g', 6),
             Qt::AlignLeft | Qt::AlignVCenter, beside);
}

void paint(QPainter& painter, const BarPicture& parts, const Layout& layout) {
    const Letters& letters = layout.letters;
    const QRectF all(QPointF(0, 0), layout.size);
    painter.setPen(Qt::black);
    drawText(painter, layout.titleLetters, layout.title, layout.titleText,
             Qt::AlignLeft | Qt::AlignTop);
    drawText(painter, letters, layout.source, layout.sourceText, Qt::AlignLeft | Qt::AlignTop);
    painter.drawImage(layout.map, parts.picture);
    paintBarColors(painter, layout.bar, *parts.colors, parts.low, parts.high);
    painter.drawRect(layout.bar.adjusted(-1, -1, 0, 0));
    if (layout.marks > 0) {
        paintBarMarks(painter, layout.bar, *parts.colors, layout.marks);
    }
    painter.drawRect(layout.map.adjusted(-1, -1, 0, 0));
    if (parts.low <= parts.high) {
        paintEnds(painter, letters, layout.bar, parts.low, parts.high);
        paintBarTicks(painter, letters, layout.bar, parts.low, parts.high, letters.height(), all);
    }
    drawText(painter, letters, layout.unit, parts.unit, Qt::AlignLeft | Qt::AlignVCenter, all,
             true);
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
    QImage image = newPicture(layout.size, QImage::Format_RGB32);
    if (image.isNull()) {
        return QImage();  // no memory
    }
    image.fill(Qt::white);
    setPictureResolution(&image);
    QPainter painter(&image);
    paint(painter, parts, layout);
    painter.end();
    return image;
}
