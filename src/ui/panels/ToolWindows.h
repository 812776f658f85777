#pragma once

#include <QObject>
#include <QWidgetList>

/// What all windows beside the main one have in common: they open on the screen, beside the main
/// window or over its right edge where they cover each other least, and keep their place when they
/// are opened again; Ctrl+W closes them and Enter presses the button that has the focus.
class ToolWindows : public QObject {
  public:
    explicit ToolWindows(QWidget* mainWindow);
    void add(QWidget* window);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void place(QWidget* window);
    /// Pixels of the windows that would be covered.
    int overlap(const QRect& place) const;

    QWidget* m_mainWindow;
    QWidgetList m_windows;
    int m_cascaded = 0;
};
