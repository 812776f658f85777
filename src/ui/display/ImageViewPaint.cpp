// What the image view paints: the picture in its place, ticks, the position mark, the selection.

#include <QPainter>
#include <cmath>

#include "base/Globals.h"
#include "base/LargeMemory.h"
#include "display/ImageView.h"
#include "display/Outlined.h"
#include "drawing/DrawText.h"

namespace {

constexpr double TickSpacing = 70.0;
constexpr double TickLength = 9.0;
const QColor OverColors(0, 235, 255);  // of an area: red is one of the colours of results

}  // namespace

QRectF ImageView::onScreen(const QRectF& real) const {
    return QRectF(QPointF(m_coord.r2sX(real.left()), m_coord.r2sY(real.top())),
                  QPointF(m_coord.r2sX(real.right()), m_coord.r2sY(real.bottom())));
}

void ImageView::paintImage(QPainter* p, const QImage& picture) const {
    if (picture.isNull() || m_visible.isEmpty()) {
        return;
    }
    if (m_coord.r2sLengthX(1.0) < 1.0) {
        paintReduced(p, picture);
    } else {
        p->save();
        p->setRenderHint(QPainter::SmoothPixmapTransform, false);
        p->drawImage(onScreen(m_visible), picture, m_visible);
        p->restore();
    }
}

namespace {

/// Its pixels are those of the picture, unless they are of a table.
QImage partOf(const QImage& picture, const QRect& part) {
    const bool hasBytes = picture.depth() % 8 == 0 && picture.colorCount() == 0;
    if (part == picture.rect()) {
        return picture;
    }
    if (!hasBytes) {
        return picture.copy(part);
    }
    const auto left = static_cast<std::ptrdiff_t>(part.left()) * (picture.depth() / 8);
    return {picture.constScanLine(part.top()) + left, part.width(), part.height(),
            picture.bytesPerLine(), picture.format()};
}

}  // namespace

void ImageView::paintReduced(QPainter* p, const QImage& picture) const {
    const QRect part = m_visible.toAlignedRect() & picture.rect();
    const QRect target = onScreen(QRectF(part)).toRect();
    if (part.isEmpty() || target.isEmpty()) {
        return;
    }
    if (m_reduced.key != picture.cacheKey() || m_reduced.part != part ||
        m_reduced.image.size() != target.size()) {
        m_reduced.key = picture.cacheKey();
        m_reduced.part = part;
        const QImage seen = partOf(picture, part);
        // To be smooth it becomes one of four bytes a pixel before.
        const quint64 pixels = quint64(part.width()) * quint64(part.height());
        const bool isSmooth = picture.depth() == 32 || mayTakeMemory(4 * pixels);
        m_reduced.image = seen.scaled(target.size(), Qt::IgnoreAspectRatio,
                                      isSmooth ? Qt::SmoothTransformation : Qt::FastTransformation);
    }
    p->drawImage(target.topLeft(), m_reduced.image);
}

void ImageView::paintBelow(QPainter& painter) {
    painter.fillRect(rect(), QColor(40, 42, 46));
}

void ImageView::paintAbove(QPainter& painter) {
    if (imageRect().isEmpty()) {
        painter.setPen(QColor(170, 174, 180));
        painter.drawText(rect(), Qt::AlignCenter, tr("No image"));
        return;
    }
    paintTicks(painter);
    paintPosition(painter);
    m_area.paint(painter, m_coord, m_resultDisplayed ? OverColors : getColor(0), QRectF(rect()));
    paintBand(painter);
    paintCaption(painter);
}

void ImageView::paintTicks(QPainter& painter) const {
    const QColor ink(235, 235, 235, 200);
    const QRectF shown = onScreen(m_visible);
    const double step = m_coord.tickStepX(1.0, TickSpacing);
    for (double x = step * std::ceil(m_visible.left() / step); x < m_visible.right(); x += step) {
        const double s = m_coord.r2sX(x);
        drawOutlined(painter, QLineF(s, shown.top(), s, shown.top() + TickLength), ink);
        drawLabel(painter, QPointF(s + 3, shown.top() + 1), tickText(x, step),
                  Qt::AlignLeft | Qt::AlignTop, QRectF(rect()), ink);
    }
    const double skip = painter.fontMetrics().height() + TickLength;  // room of the upper labels
    for (double y = step * std::ceil(m_visible.top() / step); y < m_visible.bottom(); y += step) {
        const double s = m_coord.r2sY(y);
        if (s < shown.top() + skip) {
            continue;
        }
        // Below its tick: beside it, the tick would read as a minus.
        drawOutlined(painter, QLineF(shown.left(), s, shown.left() + TickLength, s), ink);
        drawLabel(painter, QPointF(shown.left() + 2, s + 1), tickText(y, step),
                  Qt::AlignLeft | Qt::AlignTop, QRectF(rect()), ink);
    }
}

void ImageView::paintPosition(QPainter& painter) const {
    if (!isInside(m_position)) {
        return;
    }
    const QRectF shown = onScreen(m_visible);
    const QPointF pixel(std::floor(m_position.x()), std::floor(m_position.y()));
    const double x = m_coord.r2sX(pixel.x() + 0.5);
    const double y = m_coord.r2sY(pixel.y() + 0.5);
    painter.save();
    painter.setClipRect(shown.adjusted(-1, -1, 1, 1));
    const QColor ink(255, 255, 255, m_pinned ? 240 : 150);
    drawOutlined(painter, QLineF(x, shown.top(), x, shown.bottom()), ink);
    drawOutlined(painter, QLineF(shown.left(), y, shown.right(), y), ink);
    const QRectF bin(pixel.x() - m_halfWidth, pixel.y() - m_halfHeight, 2.0 * m_halfWidth + 1,
                     2.0 * m_halfHeight + 1);
    drawOutlined(painter, onScreen(bin.intersected(imageRect())), getColor(1));
    painter.restore();
}

void ImageView::paintCaption(QPainter& painter) const {
    if (m_caption.isEmpty()) {
        return;
    }
    const QFontMetrics letters = painter.fontMetrics();
    const int margin = letters.height() / 4;
    QRect box(0, 0, letters.horizontalAdvance(m_caption) + 4 * margin, letters.height() + margin);
    box.moveBottomRight((onScreen(m_visible).toAlignedRect() & rect()).bottomRight());
    painter.fillRect(box, QColor(0, 0, 0, 150));
    painter.setPen(QColor(240, 240, 240));
    painter.drawText(box, Qt::AlignCenter, m_caption);
}

void ImageView::paintBand(QPainter& painter) const {
    if (m_band.isEmpty()) {
        return;
    }
    const QFontMetrics letters = painter.fontMetrics();
    const int margin = letters.height() / 3;
    const QRect shown = onScreen(m_visible).toAlignedRect() & rect();
    const QString text = letters.elidedText(m_band, Qt::ElideRight, shown.width() - 2 * margin);
    QRect band(0, 0, letters.horizontalAdvance(text) + 4 * margin, letters.height() + 2 * margin);
    band.moveCenter(shown.center());
    band.moveBottom(shown.bottom() - margin);
    painter.fillRect(band & shown, QColor(0, 0, 0, 225));
    painter.setPen(QColor(255, 225, 130));
    painter.drawRect(band & shown);
    painter.drawText(band, Qt::AlignCenter, text);
}
