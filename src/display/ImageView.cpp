#include "display/ImageView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>
#include <algorithm>
#include <cmath>

#include "app/Globals.h"
#include "display/DrawText.h"

namespace {

constexpr double ZoomStep = 1.25;
constexpr double ClosestPixels = 8.0;
constexpr int DragDistance = 3;
const QColor Background(40, 42, 46);

/// Lines with a dark seam, so that they are seen over pictures of any colour.
template <typename Draw>
void inTwoTones(QPainter& painter, const QPen& pen, Draw draw) {
    QPen seam = pen;
    seam.setColor(QColor(0, 0, 0, 60));
    seam.setWidthF(pen.widthF() + 2.0);
    painter.setPen(seam);
    draw();
    painter.setPen(pen);
    draw();
}

}  // namespace

ImageView::ImageView(QWidget* parent) : DispA(parent) {
    setFocusPolicy(Qt::StrongFocus);
    updateCoord();
}

void ImageView::setImageSize(int width, int height) {
    if (width == m_width && height == m_height) {
        return;
    }
    m_width = std::max(0, width);
    m_height = std::max(0, height);
    applySelection(m_selection);
    resetImageViewWindow();
}

QRectF ImageView::area() const {
    return hasSelection() ? m_selection : imageRect();
}

void ImageView::setSelection(int x0, int y0, int x1, int y1) {
    const QPointF low(std::min(x0, x1), std::min(y0, y1));
    const QPointF high(std::max(x0, x1), std::max(y0, y1));
    applySelection(QRectF(low, high));
}

void ImageView::clearSelection() {
    applySelection(QRectF());
}

void ImageView::applySelection(const QRectF& area) {
    const QRectF clipped = area.intersected(imageRect());
    const QRectF selection = clipped.isEmpty() ? QRectF() : clipped;
    if (selection != m_selection) {
        m_selection = selection;
        emit selectionChanged();
    }
    update();
}

void ImageView::setBinBox(int halfWidth, int halfHeight) {
    m_halfWidth = toClampedInt(std::abs(static_cast<double>(halfWidth)), 0, 1 << 20);
    m_halfHeight = toClampedInt(std::abs(static_cast<double>(halfHeight)), 0, 1 << 20);
    update();
}

void ImageView::resetImageViewWindow() {
    showArea(imageRect());
}

void ImageView::showArea(QRectF area) {
    const QRectF whole = imageRect();
    if (area.width() >= whole.width() && area.height() >= whole.height()) {
        area = whole;
    } else {
        area.moveLeft(std::max(0.0, std::min(area.left(), whole.width() - area.width())));
        area.moveTop(std::max(0.0, std::min(area.top(), whole.height() - area.height())));
        area = area.intersected(whole);
    }
    m_visible = area;
    updateCoord();
    emit viewChanged();
    update();
}

void ImageView::updateCoord() {
    // Square pixels: the scale at which both sides fit; the rest of the view stays empty.
    const double w = std::max(1.0, m_visible.width());
    const double h = std::max(1.0, m_visible.height());
    const double scale = std::max(1e-6, std::min(width() / w, height() / h));
    const double left = (width() - w * scale) / 2;
    const double top = (height() - h * scale) / 2;
    m_coord.setScreen(left, left + w * scale, top, top + h * scale);
    m_coord.setReal(m_visible.left(), m_visible.left() + w, m_visible.top(), m_visible.top() + h);
}

bool ImageView::isInside(const QPointF& real) const {
    return real.x() >= 0 && real.x() < m_width && real.y() >= 0 && real.y() < m_height;
}

QPointF ImageView::toReal(const QPointF& screen) const {
    return QPointF(m_coord.s2rX(screen.x()), m_coord.s2rY(screen.y()));
}

void ImageView::resizeEvent(QResizeEvent* event) {
    DispA::resizeEvent(event);
    updateCoord();
    emit viewChanged();
}

void ImageView::setPosition(const QPointF& real) {
    m_position = real;
    emit mouseMoved(real.x(), real.y());
}

void ImageView::setRealMousePos(double x, double y) {
    m_position = QPointF(x, y);
    DispA::setRealMousePos(x, y);
    emit mouseMoved(x, y);
}

void ImageView::setScreenMousePos(double x, double y) {
    m_position = toReal(QPointF(std::trunc(x), std::trunc(y)));
    DispA::setScreenMousePos(x, y);
    emit mouseMoved(m_position.x(), m_position.y());
}

void ImageView::mouseMoveEvent(QMouseEvent* event) {
    if (event->source() != Qt::MouseEventNotSynthesized) {
        return;
    }
    const QPointF real = toReal(event->localPos());
    if (m_drag == Drag::None && !m_pinned) {
        m_position = real;
    }
    DispA::mouseMoveEvent(event);
    m_dragged = m_dragged || (event->pos() - m_dragStart).manhattanLength() >= DragDistance;
    if (m_drag == Drag::Pan) {
        QRectF area = m_visible;
        area.translate(m_dragStartReal - real);
        showArea(area);
    } else if (m_drag == Drag::Select && m_dragged) {
        const QPointF low(std::floor(std::min(real.x(), m_dragStartReal.x())),
                          std::floor(std::min(real.y(), m_dragStartReal.y())));
        const QPointF high(std::ceil(std::max(real.x(), m_dragStartReal.x())),
                           std::ceil(std::max(real.y(), m_dragStartReal.y())));
        applySelection(QRectF(low, high));
    } else if (!m_pinned) {
        setPosition(real);
    }
}

void ImageView::mousePressEvent(QMouseEvent* event) {
    DispA::mousePressEvent(event);
    m_pinnedAtPress = m_pinned;
    beginDrag(event);
}

void ImageView::beginDrag(const QMouseEvent* event) {
    m_dragStart = event->pos();
    m_dragStartReal = toReal(event->localPos());
    m_dragged = false;
    const bool pan = event->button() == Qt::MiddleButton ||
                     (event->button() == Qt::LeftButton && event->modifiers() & Qt::ShiftModifier);
    if (pan) {
        m_drag = Drag::Pan;
        setCursor(Qt::ClosedHandCursor);
    } else if (event->button() == Qt::LeftButton) {
        m_drag = Drag::Select;
    } else if (event->button() == Qt::RightButton) {
        clearSelection();
    }
}

void ImageView::mouseReleaseEvent(QMouseEvent* event) {
    DispA::mouseReleaseEvent(event);
    if (m_drag == Drag::Select && !m_dragged) {
        m_pinned = !m_pinned;
        setPosition(toReal(event->localPos()));
        update();
    }
    m_drag = Drag::None;
    unsetCursor();
}

void ImageView::mouseDoubleClickEvent(QMouseEvent* event) {
    DispA::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) {
        m_pinned = m_pinnedAtPress;  // the first of both clicks was meant for this one
        resetImageViewWindow();
    } else {
        beginDrag(event);  // another button pressed twice
    }
}

void ImageView::wheelEvent(QWheelEvent* event) {
    DispA::wheelEvent(event);
    if (event->angleDelta().y() == 0 || imageRect().isEmpty()) {
        return;
    }
    const double factor = event->angleDelta().y() > 0 ? 1 / ZoomStep : ZoomStep;
    const QPointF centre = toReal(event->position());
    QSizeF size = m_visible.size() * factor;
    const double smallest = std::min({ClosestPixels, imageRect().width(), imageRect().height()});
    if (std::min(size.width(), size.height()) < smallest) {
        size *= smallest / std::min(size.width(), size.height());
    }
    const double applied = size.width() / m_visible.width();
    showArea(QRectF(centre + (m_visible.topLeft() - centre) * applied, size));
}

void ImageView::keyPressEvent(QKeyEvent* event) {
    const double stepX = 2.0 * m_halfWidth + 1;
    const double stepY = 2.0 * m_halfHeight + 1;
    QPointF move;
    switch (event->key()) {
        case Qt::Key_Escape:
            clearSelection();
            return;
        case Qt::Key_Left:
            move.setX(-stepX);
            break;
        case Qt::Key_Right:
            move.setX(stepX);
            break;
        case Qt::Key_Up:
            move.setY(-stepY);
            break;
        case Qt::Key_Down:
            move.setY(stepY);
            break;
        default:
            DispA::keyPressEvent(event);
            return;
    }
    const QPointF target = m_position + move;
    if (isInside(target)) {
        setRealMousePos(target.x(), target.y());
    }
}

void ImageView::paintImage(QPainter* p, const QImage& picture) const {
    if (picture.isNull() || m_visible.isEmpty()) {
        return;
    }
    const QRectF target(QPointF(m_coord.sx0, m_coord.sy0), QPointF(m_coord.sx1, m_coord.sy1));
    p->save();
    p->setRenderHint(QPainter::SmoothPixmapTransform, target.width() < m_visible.width());
    p->drawImage(target, picture, m_visible);
    p->restore();
}

void ImageView::paintBelow(QPainter& painter) {
    painter.fillRect(rect(), Background);
}

void ImageView::paintAbove(QPainter& painter) {
    if (imageRect().isEmpty()) {
        painter.setPen(QColor(170, 174, 180));
        painter.drawText(rect(), Qt::AlignCenter, tr("No image"));
        return;
    }
    paintMarks(painter);
}

void ImageView::paintMarks(QPainter& painter) const {
    const auto onScreen = [this](const QRectF& real) {
        return QRectF(QPointF(m_coord.r2sX(real.left()), m_coord.r2sY(real.top())),
                      QPointF(m_coord.r2sX(real.right()), m_coord.r2sY(real.bottom())));
    };
    const QRectF shown = onScreen(m_visible);
    if (isInside(m_position)) {
        const QPointF pixel(std::floor(m_position.x()), std::floor(m_position.y()));
        const double x = m_coord.r2sX(pixel.x() + 0.5);
        const double y = m_coord.r2sY(pixel.y() + 0.5);
        const QRectF bin(pixel.x() - m_halfWidth, pixel.y() - m_halfHeight, 2.0 * m_halfWidth + 1,
                         2.0 * m_halfHeight + 1);
        const QRectF box = onScreen(bin.intersected(imageRect()));
        inTwoTones(painter, QPen(QColor(255, 255, 255, m_pinned ? 230 : 130), 1), [&] {
            painter.drawLine(QPointF(x, shown.top()), QPointF(x, shown.bottom()));
            painter.drawLine(QPointF(shown.left(), y), QPointF(shown.right(), y));
        });
        inTwoTones(painter, QPen(getColor(1), 1), [&] { painter.drawRect(box); });
    }
    if (hasSelection() && m_selection.intersects(m_visible)) {
        const QRectF area = onScreen(m_selection);
        inTwoTones(painter, QPen(getColor(0), 2), [&] { painter.drawRect(area); });
        const QString size = QStringLiteral("%1 x %2")
                                 .arg(m_selection.width(), 0, 'f', 0)
                                 .arg(m_selection.height(), 0, 'f', 0);
        painter.setPen(QColor(255, 120, 120));
        drawTextOnPaper(painter, area.intersected(shown).bottomLeft() + QPointF(2, 2), size,
                        Qt::AlignLeft | Qt::AlignTop, QRectF(rect()), Background);
    }
}
