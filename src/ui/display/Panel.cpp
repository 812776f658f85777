#include "display/Panel.h"

#include <QDockWidget>

bool isPanelOpen(const QWidget& panel) {
    const QWidget* holder = &panel;
    while (!holder->isWindow() && qobject_cast<const QDockWidget*>(holder) == nullptr) {
        holder = holder->parentWidget();
    }
    return !holder->isHidden();
}
