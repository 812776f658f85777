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
    const QRect screen = m_mainWindow->screen()->availableGeometry();
    const QRect main = m_mainWindow->frameGeometry();
    const QSize room(screen.width(), screen.height() - TitleBar);
    window->resize(window->size().boundedTo(room));
    const int shift = Step * m_placed++;
    const int rightmost = screen.right() + 1 - window->width();
    const int lowest = screen.top() + room.height() - window->height();
    window->move(std::max(screen.left(), std::min(main.right() + Gap, rightmost - shift)),
                 std::max(screen.top(), std::min(main.top() + shift, lowest)));
}
