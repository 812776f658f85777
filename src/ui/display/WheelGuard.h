#pragma once

#include <QEvent>
#include <QWidget>

/// Leaves the wheel to the scroll area that a control lies in, unless the control has the focus:
/// who scrolls past a list or a slider does not want to change it.
class WheelGuard : public QObject {
  public:
    explicit WheelGuard(QObject* parent) : QObject(parent) {}

    void guard(QWidget* control) {
        control->setFocusPolicy(Qt::StrongFocus);  // the wheel itself gives no focus
        control->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* control = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::Wheel && control != nullptr && !control->hasFocus()) {
            event->ignore();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }
};
