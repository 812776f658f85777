#include "window/Docks.h"

#include <QAction>
#include <QMainWindow>
#include <QScrollArea>
#include <QShortcut>
#include <QStatusBar>

#include "display/XafsView.h"
#include "panels/Analyzer.h"
#include "panels/BatchCtrl.h"
#include "panels/CalibCtrl.h"
#include "window/MessagesWindow.h"

namespace {

// In heights of a line, which the font gives.
constexpr int RoomyWidth = 100;  // of a window that has room for both plots beside the analyzer
constexpr int RoomyHeight = 46;
constexpr int SideWidth = 34;  // of the analyzer
constexpr int PlotPart = 45;   // per cent of the height, above the analyzer

/// The first control in it, where keys go when it opens.
void focusInto(QWidget* panel) {
    if (panel->isAncestorOf(panel->window()->focusWidget())) {
        return;
    }
    QWidget* next = panel->nextInFocusChain();
    while (next != panel && !(panel->isAncestorOf(next) && next->isEnabled() &&
                              (next->focusPolicy() & Qt::TabFocus) != 0)) {
        next = next->nextInFocusChain();
    }
    next->setFocus();
}

}  // namespace

Panels::Panels(Measurement& measurement, Messages& all)
    : spectrum(std::make_unique<XafsView>()),
      analyzer(std::make_unique<Analyzer>(measurement)),
      calibration(std::make_unique<CalibCtrl>(measurement)),
      batch(std::make_unique<BatchCtrl>()),
      messages(std::make_unique<MessagesWindow>(all)) {
    spectrum->setWindowTitle(Docks::tr("Spectrum"));
    spectrum->setObjectName(QStringLiteral("Spectrum"));
}

Panels::~Panels() = default;

Docks::Docks(QMainWindow* window, const Panels& panels) : QObject(window), m_window(window) {
    window->setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowNestedDocks |
                           QMainWindow::AllowTabbedDocks);
    window->setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);
    add(panels.spectrum.get(), "SpectrumDock", Place::Spectrum, true);
    add(panels.analyzer->view(), "AnalyzingSpectrumDock", Place::Fit, true);
    add(panels.analyzer.get(), "AnalyzerDock", Place::Side, true);
    add(panels.calibration.get(), "CalibCtrlDock", Place::Side, false);
    add(panels.batch.get(), "BatchCtrlDock", Place::Side, false);
    add(panels.messages.get(), "MessagesDock", Place::Side, false);
    MessagesWindow* messages = panels.messages.get();
    connect(m_docks.back().dock, &QDockWidget::visibilityChanged, messages, [messages](bool seen) {
        if (seen) {
            messages->showNewest();
        }
    });
    place();
    for (const Dock& each : m_docks) {
        each.dock->hide();
    }
}

template <class Base>
void Docks::add(Panel<Base>* panel, const char* name, Place place, bool opensAtStart) {
    QDockWidget* dock = makeDock(panel, name);
    m_docks.push_back({dock, place, opensAtStart});
    panel->setKeeper([this, dock](PanelAsked what) { asked(dock, what); });
}

QDockWidget* Docks::makeDock(QWidget* panel, const char* name) {
    auto* dock = new QDockWidget(panel->windowTitle(), m_window);
    dock->setObjectName(QLatin1String(name));
    auto* scroll = new QScrollArea(dock);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setWidget(panel);
    panel->show();
    dock->setWidget(scroll);
    for (QStatusBar* bar : panel->findChildren<QStatusBar*>()) {
        bar->setSizeGripEnabled(false);
    }
    auto* close = new QShortcut(QKeySequence(Qt::CTRL + Qt::Key_W), dock);
    close->setContext(Qt::WidgetWithChildrenShortcut);
    connect(close, &QShortcut::activated, dock, &QWidget::close);
    return dock;
}

void Docks::asked(QDockWidget* dock, PanelAsked what) {
    if (what == PanelAsked::Hide) {
        dock->hide();
        return;
    }
    dock->show();
    if (what == PanelAsked::Show) {
        dock->raise();
        focusInto(dock->widget());
    }
}

bool Docks::isRoomy() const {
    const int line = m_window->fontMetrics().height();
    return m_window->width() >= RoomyWidth * line && m_window->height() >= RoomyHeight * line;
}

QDockWidget* Docks::first(Place place) const {
    for (const Dock& each : m_docks) {
        if (each.place == place) {
            return each.dock;
        }
    }
    return nullptr;
}

void Docks::place() {
    QDockWidget* spectrum = first(Place::Spectrum);
    QDockWidget* fit = first(Place::Fit);
    QDockWidget* side = first(Place::Side);
    for (const Dock& each : m_docks) {
        each.dock->setFloating(false);
        m_window->removeDockWidget(each.dock);
    }
    m_window->addDockWidget(Qt::RightDockWidgetArea, spectrum);
    if (isRoomy()) {
        m_window->splitDockWidget(spectrum, side, Qt::Horizontal);
        m_window->splitDockWidget(spectrum, fit, Qt::Vertical);
    } else {
        m_window->splitDockWidget(spectrum, side, Qt::Vertical);
        m_window->tabifyDockWidget(spectrum, fit);
    }
    for (const Dock& each : m_docks) {
        if (each.place == Place::Side && each.dock != side) {
            m_window->tabifyDockWidget(side, each.dock);
        }
    }
}

void Docks::arrange() {
    place();
    for (const Dock& each : m_docks) {
        each.dock->setVisible(each.opensAtStart);
    }
    first(Place::Spectrum)->raise();
    setSizes();
}

void Docks::setSizes() {
    const int line = m_window->fontMetrics().height();
    QDockWidget* spectrum = first(Place::Spectrum);
    QDockWidget* side = first(Place::Side);
    if (isRoomy()) {
        const int width = m_window->width();
        m_window->resizeDocks({spectrum, side},
                              {(width - SideWidth * line) * 2 / 5, SideWidth * line},
                              Qt::Horizontal);
        m_window->resizeDocks({spectrum, first(Place::Fit)}, {1, 1}, Qt::Vertical);
    } else {
        m_window->resizeDocks({spectrum}, {SideWidth * line}, Qt::Horizontal);
        m_window->resizeDocks({spectrum, side}, {PlotPart, 100 - PlotPart}, Qt::Vertical);
    }
}

QList<QDockWidget*> Docks::all() const {
    QList<QDockWidget*> docks;
    for (const Dock& each : m_docks) {
        docks << each.dock;
    }
    return docks;
}

QList<QWidget*> Docks::plots() const {
    return {first(Place::Spectrum), first(Place::Fit)};
}

QList<QAction*> Docks::toggles() const {
    QList<QAction*> actions;
    for (const Dock& each : m_docks) {
        QAction* action = each.dock->toggleViewAction();
        action->setObjectName(QStringLiteral("toggle") + each.dock->objectName());
        actions << action;
    }
    return actions;
}
