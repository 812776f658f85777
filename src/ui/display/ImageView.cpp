#include "display/ImageView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QtMath>
#include <algorithm>
#include <cmath>

#include "base/Globals.h"

namespace {

constexpr double ZoomStep = 1.25;
constexpr double ClosestPixels = 8.0;
constexpr int DragDistance = 3;
constexpr double WheelNotch = 120.0;

}  // namespace

ImageView::ImageView(QWidget* parent) : DispA(parent) {
    setFocusPolicy(Qt::StrongFocus);
    showAgain();
}

void ImageView::setImageSize(int width, int height) {
    if (width == m_width && height == m_height) {
        return;
    }
    m_width = std::max(0, width);
    m_height = std::max(0, height);
    endDrag();
    if (!isInside(m_position)) {
        m_pinned = false;
    }
    const Area before = m_area.area();
    m_area.setImageSize(imageRect().size().toSize());
    tellArea(!(m_area.area() == before));
    resetImageViewWindow();
}

bool ImageView::isInside(const QPointF& real) const {
    return real.x() >= 0.0 && real.y() >= 0.0 && real.x() < m_width && real.y() < m_height;
}

QRectF ImageView::area() const {
    return hasSelection() ? selection() : imageRect();
}

void ImageView::select(const Area& area) {
    tellArea(m_area.set(area));
}

void ImageView::chooseShape(AreaShape shape) {
    m_area.choose(shape);
    update();
}

void ImageView::tellArea(bool isChanged) {
    if (isChanged) {
        emit selectionChanged();
    }
    update();
}

/// Or what is being drawn of it.
void ImageView::removeArea() {
    endDrag();
    m_area.choose(m_area.chosen());
    clearSelection();
}

void ImageView::setBand(const QString& text) {
    if (text != m_band) {
        m_band = text;
        update();
    }
}

void ImageView::setCaption(const QString& text) {
    if (text != m_caption) {
        m_caption = text;
        update();
    }
}

void ImageView::setBinBox(int halfWidth, int halfHeight) {
    m_halfWidth = toClampedInt(std::abs(static_cast<double>(halfWidth)), 0, 1 << 20);
    m_halfHeight = toClampedInt(std::abs(static_cast<double>(halfHeight)), 0, 1 << 20);
    m_area.setBins(m_halfWidth, m_halfHeight);
    update();
}

void ImageView::resetImageViewWindow() {
    m_wheelAnchor.reset();
    zoomTo(wholeScale(), imageRect().center());
}

double ImageView::wholeScale() const {
    const double scale = std::min(width() / std::max(1.0, imageRect().width()),
                                  height() / std::max(1.0, imageRect().height()));
    return std::max(1e-6, scale);
}

double ImageView::closestScale() const {
    return std::max(wholeScale(), std::min(width(), height()) / ClosestPixels);
}

void ImageView::zoomTo(double scale, const QPointF& centre) {
    const double fit = wholeScale();
    m_zoom = std::max(1.0, std::min(scale, closestScale()) / fit);
    m_centre = centre;
    showAgain();
}

void ImageView::showAgain() {
    const double fit = wholeScale();
    const double scale = std::min(m_zoom * fit, closestScale());
    // Along each side as much as fits into the view; the picture never leaves a border free on one
    // side only.
    const QRectF whole = imageRect();
    QRectF area(0, 0, std::min(whole.width(), width() / scale),
                std::min(whole.height(), height() / scale));
    area.moveCenter(m_centre);
    area.moveLeft(std::max(0.0, std::min(area.left(), whole.width() - area.width())));
    area.moveTop(std::max(0.0, std::min(area.top(), whole.height() - area.height())));
    m_visible = area;
    m_centre = area.center();

    const double w = std::max(1.0, m_visible.width());
    const double h = std::max(1.0, m_visible.height());
    const double left = (width() - w * scale) / 2;
    const double top = (height() - h * scale) / 2;
    m_coord.setScreen(left, left + w * scale, top, top + h * scale);
    m_coord.setReal(m_visible.left(), m_visible.left() + w, m_visible.top(), m_visible.top() + h);
    emit viewChanged();
    update();
}

void ImageView::bringIntoView(const QPointF& real) {
    if (!m_visible.isEmpty() && !m_visible.contains(real)) {
        m_wheelAnchor.reset();
        m_centre = real;
        showAgain();
    }
}

QPointF ImageView::toReal(const QPointF& screen) const {
    return QPointF(m_coord.s2rX(screen.x()), m_coord.s2rY(screen.y()));
}

void ImageView::resizeEvent(QResizeEvent* event) {
    DispA::resizeEvent(event);
    m_wheelAnchor.reset();
    showAgain();
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
    m_position = toReal(QPointF(x, y));
    DispA::setScreenMousePos(x, y);
    emit mouseMoved(m_position.x(), m_position.y());
}

void ImageView::mouseMoveEvent(QMouseEvent* event) {
    if (event->source() != Qt::MouseEventNotSynthesized) {
        return;
    }
    m_wheelAnchor.reset();
    const QPointF real = toReal(event->localPos());
    const bool follows = m_drag == Drag::None && !m_pinned;
    if (follows) {
        m_position = real;  // before the signals, whose receivers ask for it
    }
    DispA::mouseMoveEvent(event);
    m_dragged = m_dragged || (event->pos() - m_dragStart).manhattanLength() >= DragDistance;
    if (m_drag == Drag::Pan) {
        m_centre += m_dragStartReal - real;
        showAgain();
    } else if (m_drag == Drag::Select && m_dragged) {
        tellArea(m_area.drag(real));
    } else if (follows) {
        setPosition(real);
    }
    m_area.setMouse(real);
    if (m_drag == Drag::None) {
        setCursor(m_area.cursorAt(real, reach()));
    }
    if (m_area.isDrawing()) {
        update();
    }
}

void ImageView::mousePressEvent(QMouseEvent* event) {
    DispA::mousePressEvent(event);
    m_clicked = false;
    if (event->button() == Qt::RightButton) {
        removeArea();
        return;
    }
    const bool pan = event->button() == Qt::MiddleButton ||
                     (event->button() == Qt::LeftButton && event->modifiers() & Qt::ShiftModifier);
    if (m_drag != Drag::None || (!pan && event->button() != Qt::LeftButton)) {
        return;
    }
    m_drag = pan ? Drag::Pan : Drag::Select;
    m_dragButton = event->button();
    m_dragStart = event->pos();
    m_dragStartReal = toReal(event->localPos());
    m_dragged = false;
    if (pan) {
        setCursor(Qt::ClosedHandCursor);
    } else {
        m_area.press(m_dragStartReal, reach());
    }
}

void ImageView::mouseReleaseEvent(QMouseEvent* event) {
    DispA::mouseReleaseEvent(event);
    if (event->button() != m_dragButton) {
        return;
    }
    const QPointF real = toReal(event->localPos());
    if (m_drag == Drag::Select && !m_dragged && m_area.click(real)) {
        update();
    } else if (m_drag == Drag::Select && !m_dragged && (m_pinned || isInside(real))) {
        m_clicked = true;
        m_pinnedBefore = m_pinned;
        m_positionBefore = m_position;
        m_pinned = !m_pinned;
        setPosition(real);
        update();
    }
    endDrag();
}

void ImageView::endDrag() {
    m_drag = Drag::None;
    m_dragButton = Qt::NoButton;
    unsetCursor();
}

void ImageView::mouseDoubleClickEvent(QMouseEvent* event) {
    DispA::mouseDoubleClickEvent(event);
    if (event->button() != Qt::LeftButton) {
        return;
    }
    if (m_area.isDrawing()) {
        tellArea(m_area.close());
        return;
    }
    if (m_clicked) {  // the first of both clicks was meant for this one
        m_clicked = false;
        m_pinned = m_pinnedBefore;
        if (m_pinned) {
            setPosition(m_positionBefore);
        }
    }
    resetImageViewWindow();
}

void ImageView::wheelEvent(QWheelEvent* event) {
    DispA::wheelEvent(event);
    if (event->angleDelta().y() == 0 || imageRect().isEmpty()) {
        return;
    }
    const double before = m_zoom * wholeScale();
    if (!m_wheelAnchor || m_wheelAt != event->position()) {
        m_wheelAnchor = toReal(event->position());
        m_wheelAt = event->position();
    }
    const double factor = std::pow(ZoomStep, event->angleDelta().y() / WheelNotch);
    const double scale = std::max(wholeScale(), std::min(before * factor, closestScale()));
    // What lies under the cursor stays there, or comes back once the image has outgrown the bars
    // beside it.
    const QPointF middle(width() / 2.0, height() / 2.0);
    zoomTo(scale, *m_wheelAnchor + (middle - m_wheelAt) / scale);
}

/// The keys of the area: Alt with an arrow moves it by a pixel, with Shift resizes it.
bool ImageView::editArea(const QKeyEvent& key) {
    const bool isEnter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (m_area.isDrawing() && isEnter) {
        tellArea(m_area.close());
        return true;
    }
    if (m_area.isDrawing() && key.key() == Qt::Key_Backspace) {
        m_area.removeLastVertex();
        update();
        return true;
    }
    if (!(key.modifiers() & Qt::AltModifier)) {
        return false;
    }
    const int x = (key.key() == Qt::Key_Right) - (key.key() == Qt::Key_Left);
    const int y = (key.key() == Qt::Key_Down) - (key.key() == Qt::Key_Up);
    if (x == 0 && y == 0) {
        return false;
    }
    const bool resizes = key.modifiers() & Qt::ShiftModifier;
    tellArea(resizes ? m_area.resize({x, y}) : m_area.move({x, y}));
    return true;
}

void ImageView::keyPressEvent(QKeyEvent* event) {
    if (editArea(*event)) {
        return;
    }
    const double stepX = 2.0 * m_halfWidth + 1;
    const double stepY = 2.0 * m_halfHeight + 1;
    QPointF move;
    switch (event->key()) {
        case Qt::Key_Escape:
            removeArea();
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
    const QPointF target = isInside(m_position) ? m_position + move : m_visible.center();
    if (isInside(target)) {
        bringIntoView(target);
        setRealMousePos(target.x(), target.y());
    }
}
