#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

// Mouse events as a real mouse makes them: QTest's moves are marked as synthesized, and canvases
// ignore those.
namespace Mouse {

inline void send(QWidget* widget, QEvent::Type type, const QPointF& at, Qt::MouseButton button,
                 Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                 Qt::MouseEventSource source = Qt::MouseEventNotSynthesized) {
    QMouseEvent event(type, at, at, widget->mapToGlobal(at.toPoint()), button, buttons, modifiers,
                      source);
    QApplication::sendEvent(widget, &event);
}

inline void move(QWidget* widget, const QPointF& at, Qt::MouseButtons buttons = Qt::NoButton) {
    send(widget, QEvent::MouseMove, at, Qt::NoButton, buttons);
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

inline void doubleClick(QWidget* widget, const QPointF& at) {
    click(widget, at);
    send(widget, QEvent::MouseButtonDblClick, at, Qt::LeftButton, Qt::LeftButton);
    release(widget, at);
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
    QWheelEvent event(at, widget->mapToGlobal(at.toPoint()), QPoint(), QPoint(0, 120 * notches),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

}  // namespace Mouse
