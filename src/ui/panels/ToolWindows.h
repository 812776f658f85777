#pragma once

#include <QObject>
#include <QWidgetList>

class QDockWidget;

/// What the windows of the program have in common: Enter presses the button that has the focus. In
/// windows beside the main one and its docks Ctrl+W closes, too; they open on the screen where they
/// cover least of what one looks at, and keep their place when they are opened again.
class ToolWindows : public QObject {
  public:
    /// @param looked what one looks at: image and plots
    ToolWindows(QWidget* mainWindow, const QWidgetList& looked);
    void add(QWidget* window);
    void addDock(QDockWidget* dock);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void place(QWidget* window);
    /// Pixels that would be covered, of what one looks at and of the other windows.
    int covered(const QRect& place, const QWidget* window) const;

    QWidget* m_mainWindow;
    QWidgetList m_looked;
    QWidgetList m_windows;
};
