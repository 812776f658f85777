#pragma once

#include <QObject>
#include <QWidgetList>

class Docks;
class QMainWindow;

/// Keeps sizes and places of the windows, and which docks are open, from one start of the program
/// to the next; nothing else. Nothing is read or written before restore() has been called.
class Layout : public QObject {
    Q_OBJECT

  public:
    /// Where the form of the docks changes, states that were saved before do not fit any more.
    static constexpr int Version = 1;

    /// @param windows beside the docks, each with an object name
    Layout(QMainWindow* window, Docks* docks, const QWidgetList& windows);

    /// As the program was left; the start layout where that is not known or does not fit.
    void restore();
    /// The start layout, also of the main window itself.
    void start();
    /// The same with all docks closed, for a batch to open what it wants.
    void close();
    /// For the next restore(), if there has been one; at the end of the program. The windows beside
    /// the docks keep their places, and are closed.
    void save() const;

  private:
    void startWindow();
    bool restoreDocks();
    void restoreWindows();
    void keepFloatsOnScreen();

    QMainWindow* m_window;
    Docks* m_docks;
    QWidgetList m_windows;
    bool m_keeps = false;
};
