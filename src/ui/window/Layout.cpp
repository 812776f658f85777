#include "window/Layout.h"

#include <QMainWindow>
#include <QScreen>
#include <QTimer>

#include "window/Docks.h"
#include "window/WindowGeometry.h"

namespace {
const QString GeometryKey = QStringLiteral("Body/geometry");
const QString StateKey = QStringLiteral("Body/docks");
}  // namespace

Layout::Layout(QMainWindow* window, Docks* docks, const QWidgetList& windows)
    : QObject(window), m_window(window), m_docks(docks), m_windows(windows) {
    const auto all = docks->all();
    for (QDockWidget* dock : all) {
        // The window manager has its word first.
        connect(
            dock, &QDockWidget::topLevelChanged, this, [this] { keepFloatsOnScreen(); },
            Qt::QueuedConnection);
    }
}

void Layout::startWindow() {
    const QRect screen = m_window->screen()->availableGeometry();
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMaximized);
    m_window->resize(screen.size().shrunkBy(frameMargins(m_window)));
    m_window->move(screen.topLeft());
}

void Layout::start() {
    startWindow();
    m_docks->arrange();
    QTimer::singleShot(0, this, [this] { m_docks->setSizes(); });
}

void Layout::restore() {
    m_keeps = true;
    if (!m_window->restoreGeometry(windowSettings().value(GeometryKey).toByteArray())) {
        startWindow();
    } else if (!m_window->isMaximized()) {
        keepOnScreen(m_window);
    }
    if (restoreDocks()) {
        // A window that is maximised has its size only now.
        QTimer::singleShot(0, this, &Layout::restoreDocks);
    } else {
        m_docks->arrange();
        QTimer::singleShot(0, m_docks, &Docks::setSizes);
    }
    restoreWindows();
}

void Layout::close() {
    startWindow();
    m_docks->place();
}

bool Layout::restoreDocks() {
    const bool isRestored =
        m_window->restoreState(windowSettings().value(StateKey).toByteArray(), Version);
    keepFloatsOnScreen();
    return isRestored;
}

void Layout::restoreWindows() {
    const QStringList known = windowSettings().childGroups();
    for (QWidget* window : qAsConst(m_windows)) {
        if (known.contains(window->objectName())) {
            bool popUp = false;
            restoreWindowGeometry(window, window->objectName(), &popUp);
        }
    }
}

void Layout::save() const {
    if (!m_keeps) {
        return;
    }
    QSettings settings = windowSettings();
    settings.setValue(GeometryKey, m_window->saveGeometry());
    settings.setValue(StateKey, m_window->saveState(Version));
    for (QWidget* window : m_windows) {
        if (window->testAttribute(Qt::WA_Moved)) {  // it has been open
            window->hide();                         // next time it is opened when it is wanted
            saveWindowGeometry(window, window->objectName(), false);
        }
    }
}

void Layout::keepFloatsOnScreen() {
    const auto all = m_docks->all();
    for (QDockWidget* dock : all) {
        if (dock->isFloating()) {
            keepOnScreen(dock);
        }
    }
}
