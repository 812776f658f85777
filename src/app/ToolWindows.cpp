#include "app/ToolWindows.h"

#include <QEvent>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <algorithm>

namespace {
constexpr int Step = 32;      // from one window to the next, in pixels
constexpr int Gap = 8;        // between the main window and one beside it
constexpr int TitleBar = 40;  // left free for what the window manager adds
}  // namespace

ToolWindows::ToolWindows(QWidget* mainWindow) : QObject(mainWindow), m_mainWindow(mainWindow) {}

void ToolWindows::add(QWidget* window) {
    auto* close = new QShortcut(QKeySequence::Close, window);
    connect(close, &QShortcut::activated, window, &QWidget::close);
    const auto buttons = window->findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        button->setAutoDefault(true);
    }
    window->installEventFilter(this);
    m_windows << window;
}

bool ToolWindows::eventFilter(QObject* watched, QEvent* event) {
    auto* window = qobject_cast<QWidget*>(watched);
    if (window != nullptr && event->type() == QEvent::Show && !event->spontaneous() &&
        !window->testAttribute(Qt::WA_Moved)) {
        place(window);
    }
    return QObject::eventFilter(watched, event);
}

void ToolWindows::place(QWidget* window) {
    const QRect screen = m_mainWindow->screen()->availableGeometry().adjusted(0, 0, 0, -TitleBar);
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
    window->move(std::max(best.x(), screen.left()),
                 std::max(screen.top(), std::min(best.y(), corner.y())));
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
