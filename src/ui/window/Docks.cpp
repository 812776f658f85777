#include "window/Docks.h"

#include <QAction>
#include <QMainWindow>
#include <QScrollArea>
#include <QShortcut>
#include <QStatusBar>
#include <QStyle>

#include "display/XafsView.h"
#include "panels/Analyzer.h"
#include "panels/AreaStatistics.h"
#include "panels/BatchCtrl.h"
#include "panels/CalibCtrl.h"
#include "window/MessagesWindow.h"

namespace {

// In heights of a line, which the font gives.
constexpr int TallHeight = 52;  // of a window that has room for both plots above the analyzer
constexpr int WideWidth = 125;  // and for both beside it
constexpr int SideWidth = 35;   // of the analyzer

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
      messages(std::make_unique<MessagesWindow>(all)),
      statistics(std::make_unique<AreaStatistics>(measurement)) {
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
    add(panels.statistics.get(), "StatisticsDock", Place::Side, false);
    add(panels.messages.get(), "MessagesDock", Place::Side, false);
    MessagesWindow* messages = panels.messages.get();
    connect(m_docks.back().dock, &QDockWidget::visibilityChanged, messages, [messages](bool seen) {
        if (seen) {
            messages->showNewest();
        }
    });
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

Docks::Room Docks::room() const {
    const int line = m_window->fontMetrics().height();
    if (m_window->height() < TallHeight * line) {
        return Room::Small;
    }
    return m_window->width() < WideWidth * line ? Room::Tall : Room::Wide;
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
    m_window->splitDockWidget(spectrum, side, room() == Room::Wide ? Qt::Horizontal : Qt::Vertical);
    if (room() == Room::Small) {
        m_window->tabifyDockWidget(spectrum, fit);
    } else {
        m_window->splitDockWidget(spectrum, fit, Qt::Vertical);
    }
    for (const Dock& each : m_docks) {
        if (each.place == Place::Side && each.dock != side) {
            m_window->tabifyDockWidget(side, each.dock);
        }
    }
    for (const Dock& each : m_docks) {
        each.dock->hide();
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
    const int side = SideWidth * m_window->fontMetrics().height() +
                     m_window->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const QList<QDockWidget*> docks{first(Place::Spectrum), first(Place::Fit), first(Place::Side)};
    switch (room()) {
        case Room::Small:
            m_window->resizeDocks({docks[0]}, {side}, Qt::Horizontal);
            m_window->resizeDocks({docks[0], docks[2]}, {45, 55}, Qt::Vertical);
            break;
        case Room::Tall:
            m_window->resizeDocks({docks[0]}, {side * 11 / 10}, Qt::Horizontal);
            m_window->resizeDocks(docks, {26, 34, 40}, Qt::Vertical);
            break;
        case Room::Wide:
            m_window->resizeDocks({docks[0], docks[2]}, {side * 6 / 5, side}, Qt::Horizontal);
            m_window->resizeDocks({docks[0], docks[1]}, {1, 1}, Qt::Vertical);
            break;
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
