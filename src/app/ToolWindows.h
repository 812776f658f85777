#pragma once

#include <QObject>

class QWidget;

/// What all windows beside the main one have in common: they open on the screen, beside the main
/// window or cascaded over its right edge, and keep their place when they are opened again;
/// Ctrl+W closes them and Enter presses the button that has the focus.
class ToolWindows : public QObject {
  public:
    explicit ToolWindows(QWidget* mainWindow);
    void add(QWidget* window);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void place(QWidget* window);

    QWidget* m_mainWindow;
    int m_placed = 0;
};
