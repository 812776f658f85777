#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

// Mouse events as a device sends them: QTest's own count as synthesized, which a canvas ignores.
namespace mouse {

inline void send(QWidget* widget, QEvent::Type type, const QPointF& at, Qt::MouseButton button,
                 Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const QPointF global = at + QPointF(widget->mapToGlobal(QPoint(0, 0)));
    QMouseEvent event(type, at, at, global, button, buttons, modifiers,
                      Qt::MouseEventNotSynthesized);
    QApplication::sendEvent(widget, &event);
}

inline void move(QWidget* widget, const QPointF& at, Qt::MouseButtons held = Qt::NoButton) {
    send(widget, QEvent::MouseMove, at, Qt::NoButton, held);
}

inline void press(QWidget* widget, const QPointF& at, Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    send(widget, QEvent::MouseButtonPress, at, button, button, modifiers);
}

inline void release(QWidget* widget, const QPointF& at, Qt::MouseButton button = Qt::LeftButton) {
    send(widget, QEvent::MouseButtonRelease, at, button, Qt::NoButton);
}

inline void click(QWidget* widget, const QPointF& at, Qt::MouseButton button = Qt::LeftButton) {
    press(widget, at, button);
    release(widget, at, button);
}

inline void doubleClick(QWidget* widget, const QPointF& at,
                        Qt::MouseButton button = Qt::LeftButton) {
    click(widget, at, button);
    send(widget, QEvent::MouseButtonDblClick, at, button, button);
    release(widget, at, button);
}

inline void drag(QWidget* widget, const QPointF& from, const QPointF& to,
                 Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    press(widget, from, button, modifiers);
    move(widget, 0.5 * (from + to), button);
    move(widget, to, button);
    release(widget, to, button);
}

inline void wheel(QWidget* widget, const QPointF& at, int notches) {
    QWheelEvent event(at, at + QPointF(widget->mapToGlobal(QPoint(0, 0))), QPoint(),
                      QPoint(0, 120 * notches), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false, Qt::MouseEventNotSynthesized);
    QApplication::sendEvent(widget, &event);
}

}  // namespace mouse
