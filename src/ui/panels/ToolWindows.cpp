#include "panels/ToolWindows.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <algorithm>

namespace {
constexpr int Step = 32;      // from one window to the next, in pixels
constexpr int Gap = 8;        // between the main window and one beside it
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

ToolWindows::ToolWindows(QWidget* mainWindow) : QObject(mainWindow), m_mainWindow(mainWindow) {
    mainWindow->installEventFilter(this);
}

void ToolWindows::add(QWidget* window) {
    auto* close = new QShortcut(QKeySequence(Qt::CTRL + Qt::Key_W), window);
    connect(close, &QShortcut::activated, window, &QWidget::close);
    window->installEventFilter(this);
    m_windows << window;
}

bool ToolWindows::eventFilter(QObject* watched, QEvent* event) {
    auto* window = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::KeyPress &&
        pressesButton(window, static_cast<QKeyEvent*>(event))) {
        return true;
    }
    if (window != m_mainWindow && window != nullptr && event->type() == QEvent::Show &&
        !event->spontaneous() && !window->testAttribute(Qt::WA_Moved)) {
        place(window);
    }
    return QObject::eventFilter(watched, event);
}

void ToolWindows::place(QWidget* window) {
    const QRect screen =
        m_mainWindow->screen()->availableGeometry().adjusted(0, 0, -Gap, -TitleBar);
    const QRect main = m_mainWindow->frameGeometry();
    window->resize(window->size().boundedTo(screen.size()));
    QPoint corner = screen.bottomRight() - QPoint(window->width() - 1, window->height() - 1);
    const int beside = std::min(main.right() + Gap, corner.x());

    // At the top or at the bottom, where the windows that are open leave more to see; over one of
    // them a little aside, so that its edge stays in reach.
    QPoint best(beside, std::min(main.top(), corner.y()));
    const QPoint below(beside, corner.y());
    if (overlap(QRect(below, window->size())) < overlap(QRect(best, window->size()))) {
        best = below;
    }
    if (overlap(QRect(best, window->size())) > 0) {
        best += QPoint(-Step, best.y() > screen.top() + Step ? -Step : Step) * m_cascaded++;
    }
    // Some window managers put their title above the place of a window that is new.
    const int top = screen.top() + m_mainWindow->geometry().top() - main.top();
    window->move(std::max(best.x(), screen.left()), std::max(top, std::min(best.y(), corner.y())));
}

int ToolWindows::overlap(const QRect& place) const {
    int area = 0;
    for (const QWidget* tool : m_windows) {
        if (tool->isVisible() && tool->testAttribute(Qt::WA_Moved)) {
            const QRect common = tool->frameGeometry() & place;
            area += common.isValid() ? common.width() * common.height() : 0;
        }
    }
    return area;
}
