#include "display/DispA.h"

#include <QMouseEvent>
#include <QPainter>

#include "base/Globals.h"

namespace {

int toScreen(double v) {
    constexpr int Limit = 1 << 30;
    return v == v ? toClampedInt(v, -Limit, Limit) : 0;
}

}  // namespace

DispA::DispA(QWidget* parent) : QFrame(parent) {
    setMouseTracking(true);
}

void DispA::setRealMousePos(double x, double y) {
    moveMouse(m_coord.r2sX(x), m_coord.r2sY(y));
}

void DispA::setScreenMousePos(double x, double y) {
    moveMouse(x, y);
}

void DispA::moveMouse(double x, double y) {
    m_mouse.moveTo(QPoint(toScreen(x), toScreen(y)));
    emit mouseMoved0();
    update();
}

void DispA::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    paintBelow(painter);
    emit drawImage1(&painter);
    emit drawImage2(&painter);
    paintAbove(painter);
}

void DispA::record(const QMouseEvent* event) {
    m_mouse.moveTo(event->pos());
    m_mouse.setButtons(event->buttons());
}

void DispA::mouseMoveEvent(QMouseEvent* event) {
    if (event->source() != Qt::MouseEventNotSynthesized) {
        return;
    }
    record(event);
    emit mouseMoved0();
    update();
}

void DispA::mousePressEvent(QMouseEvent* event) {
    record(event);
    emit mousePressed0();
}

void DispA::mouseReleaseEvent(QMouseEvent* event) {
    record(event);
    emit mouseReleased0();
}

void DispA::mouseDoubleClickEvent(QMouseEvent* event) {
    record(event);
    emit mouseDoubleClicked0();
}

void DispA::wheelEvent(QWheelEvent* event) {
    m_mouse.moveTo(event->position().toPoint());
    m_mouse.setButtons(event->buttons());
    emit wheelMoved0();
    event->accept();
}
