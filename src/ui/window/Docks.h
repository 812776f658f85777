#pragma once

#include <QDockWidget>
#include <QObject>
#include <memory>
#include <vector>

#include "display/Panel.h"

class Analyzer;
class AreaStatistics;
class BatchCtrl;
class CalibCtrl;
class Measurement;
class Messages;
class MessagesWindow;
class QAction;
class QMainWindow;
class XafsView;

/// The panels that stand in docks of the main window.
struct Panels {
    Panels(Measurement& measurement, Messages& all);
    ~Panels();

    std::unique_ptr<XafsView> spectrum;
    std::unique_ptr<Analyzer> analyzer;
    std::unique_ptr<CalibCtrl> calibration;
    std::unique_ptr<BatchCtrl> batch;
    std::unique_ptr<MessagesWindow> messages;
    std::unique_ptr<AreaStatistics> statistics;
};

/// The docks of the main window, one a panel, with the panel's title. A panel that is shown opens
/// and raises its dock; a dock that is closed closes its panel. In a dock that is too small for it
/// a panel scrolls.
class Docks : public QObject {
    Q_OBJECT

  public:
    Docks(QMainWindow* window, const Panels& panels);

    /// Closes all, each in its place of the start layout.
    void place();
    /// The layout that the program starts with, for the present size of the window: the plots above
    /// the analyzer, or beside it where there is room for both plots. The others open as tabs of
    /// the analyzer, where they hide no plot.
    void arrange();
    /// What arrange() has asked for can be had only of a window that is on the screen.
    void setSizes();

    QList<QDockWidget*> all() const;
    QList<QWidget*> plots() const;
    /// An action a dock: checked while it is open.
    QList<QAction*> toggles() const;

  private:
    enum class Place { Spectrum, Fit, Side };
    enum class Room { Small, Tall, Wide };
    struct Dock {
        QDockWidget* dock;
        Place place;
        bool opensAtStart;
    };
    template <class Base>
    void add(Panel<Base>* panel, const char* name, Place place, bool opensAtStart);
    QDockWidget* makeDock(QWidget* panel, const char* name);
    QDockWidget* first(Place place) const;
    void asked(QDockWidget* dock, PanelAsked what);
    Room room() const;

    QMainWindow* m_window;
    std::vector<Dock> m_docks;
};
