#include "panels/ToolWindows.h"

#include <QDockWidget>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <algorithm>
#include <limits>

namespace {
constexpr int Step = 16;      // from one place that is looked at to the next, in pixels
constexpr int Gap = 8;        // to the edge of the screen
constexpr int TitleBar = 40;  // left free for what the window manager adds

/// Enter on a button, which has come up to the window because the button takes Space only.
bool pressesButton(const QWidget* window, const QKeyEvent* key) {
    auto* button = window ? qobject_cast<QPushButton*>(window->focusWidget()) : nullptr;
    if (button == nullptr || (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)) {
        return false;
    }
    button->click();
    return true;
}

}  // namespace

ToolWindows::ToolWindows(QWidget* mainWindow, const QWidgetList& looked)
    : QObject(mainWindow), m_mainWindow(mainWindow), m_looked(looked) {
    mainWindow->installEventFilter(this);
}

void ToolWindows::add(QWidget* window) {
    auto* close = new QShortcut(QKeySequence(Qt::CTRL + Qt::Key_W), window);
    connect(close, &QShortcut::activated, window, &QWidget::close);
    window->installEventFilter(this);
    m_windows << window;
}

void ToolWindows::addDock(QDockWidget* dock) {
    dock->installEventFilter(this);
}

bool ToolWindows::eventFilter(QObject* watched, QEvent* event) {
    auto* window = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::KeyPress &&
        pressesButton(window, static_cast<QKeyEvent*>(event))) {
        return true;
    }
    if (m_windows.contains(window) && event->type() == QEvent::Show && !event->spontaneous() &&
        !window->testAttribute(Qt::WA_Moved)) {
        place(window);
    }
    return QObject::eventFilter(watched, event);
}

void ToolWindows::place(QWidget* window) {
    QRect screen = m_mainWindow->screen()->availableGeometry().adjusted(0, 0, -Gap, -Gap);
    // Some window managers put their title above the place of a window that is new.
    screen.setTop(screen.top() + m_mainWindow->geometry().top() -
                  m_mainWindow->frameGeometry().top());
    window->resize(window->size().boundedTo(screen.size() - QSize(0, TitleBar)));
    const QSize size = window->size() + QSize(0, TitleBar);
    const QPoint last = screen.bottomRight() - QPoint(size.width() - 1, size.height() - 1);
    QPoint best = last;
    int least = std::numeric_limits<int>::max();
    // Of places that are equally good, that at the right and at the top.
    for (int x = last.x(); x >= screen.left(); x -= Step) {
        for (int y = screen.top(); y <= last.y(); y += Step) {
            const int cost = covered(QRect(QPoint(x, y), size), window);
            if (cost < least) {
                least = cost;
                best = QPoint(x, y);
            }
        }
    }
    window->move(best);
}

int ToolWindows::covered(const QRect& place, const QWidget* window) const {
    int area = 0;
    const auto add = [&area, &place](const QRect& rect) {
        const QRect common = rect & place;
        area += common.isValid() ? common.width() * common.height() : 0;
    };
    for (const QWidget* looked : m_looked) {
        if (looked->isVisible() && !looked->visibleRegion().isEmpty()) {
            add(QRect(looked->mapToGlobal(QPoint()), looked->size()));
        }
    }
    for (const QWidget* other : m_windows) {
        if (other != window && other->isVisible()) {
            add(other->frameGeometry());
        }
    }
    return area;
}
