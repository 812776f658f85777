#include "Stage.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDockWidget>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <QTimer>
#include <QWheelEvent>
#include <cstdio>
#include <cstdlib>

#include "batch/BatchDispatcher.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "panels/BatchCtrl.h"
#include "window/Docks.h"

namespace {

constexpr int SettleMs = 300;
constexpr int LeastWidth = 560;
constexpr int PlotHeight = 420;

[[noreturn]] void giveUp(const char* what, const QString& name) {
    std::fprintf(stderr, "tarnwick-screenshots: %s %s\n", what, qPrintable(name));
    std::exit(1);
}

void sendMouse(QWidget* to, QEvent::Type type, const QPointF& at, Qt::MouseButtons buttons) {
    QMouseEvent event(type, at, to->mapToGlobal(at.toPoint()),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(to, &event);
}

QWidget* panelIn(const QDockWidget* dock) {
    return qobject_cast<QScrollArea*>(dock->widget())->widget();
}

}  // namespace

Stage::Stage(const QString& prefix) : m_prefix(prefix) {
    m_body.resize(1180, 740);
    m_body.show();
}

void Stage::takeApart() {
    const auto docks = m_body.findChildren<QDockWidget*>();
    for (QDockWidget* dock : docks) {
        dock->setFloating(true);
        dock->resize(panelIn(dock)->sizeHint() + QSize(0, dock->fontMetrics().height()));
    }
}

void Stage::arrange(const QSize& size) {
    m_body.resize(size);
    settle();
    auto* docks = m_body.findChild<Docks*>();
    docks->arrange();
    settle();
    docks->setSizes();
    settle();
}

void Stage::giveRoom(QWidget* panel) {
    QWidget* dock = panel->window();
    if (qobject_cast<QDockWidget*>(dock) != nullptr) {
        const bool isPlot = qobject_cast<XafsView*>(panel) != nullptr;
        const QSize wanted = panel->sizeHint().expandedTo(panel->minimumSizeHint());
        const int line = dock->fontMetrics().height();
        dock->resize(wanted.expandedTo(QSize(LeastWidth, isPlot ? PlotHeight : 0)) +
                     QSize(2 * line, 3 * line));
        settle();
    }
}

QWidget* Stage::control(const char* name) {
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        if (widget->objectName() == QLatin1String(name)) {
            return widget;
        }
    }
    giveUp("no control", QString::fromLatin1(name));
}

void Stage::run(const QStringList& lines) {
    QEventLoop loop;
    QObject::connect(m_body.dispatcher(), &BatchDispatcher::ended, &loop, &QEventLoop::quit);
    m_body.batchCtrl()->dispatchLines(lines);
    loop.exec();
    settle();
}

void Stage::click(const char* button) {
    auto* found = qobject_cast<QAbstractButton*>(control(button));
    if (found == nullptr) {
        giveUp("no button", QString::fromLatin1(button));
    }
    found->click();
    settle();
}

void Stage::clickAndWait(const char* button) {
    click(button);
    while (m_body.measurement().working() != Work::None) {
        settle();
    }
}

void Stage::settle() {
    QEventLoop loop;
    QTimer::singleShot(SettleMs, &loop, &QEventLoop::quit);
    loop.exec();
}

void Stage::drag(QWidget* widget, const QPointF& from, const QPointF& to) {
    sendMouse(widget, QEvent::MouseButtonPress, from, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseMove, to, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseButtonRelease, to, Qt::NoButton);
    settle();
}

void Stage::select(const QPoint& from, const QPoint& to) {
    auto* view = qobject_cast<ImageView*>(control("dispA"));
    const auto at = [view](const QPoint& p) {
        return QPointF(view->coord().r2sX(p.x()), view->coord().r2sY(p.y()));
    };
    drag(view, at(from), at(to));
}

void Stage::wheel(const QPoint& at, int notches) {
    auto* view = qobject_cast<ImageView*>(control("dispA"));
    const QPointF screen(view->coord().r2sX(at.x()), view->coord().r2sY(at.y()));
    QWheelEvent event(screen, view->mapToGlobal(screen.toPoint()), QPoint(),
                      QPoint(0, 120 * notches), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(view, &event);
    settle();
}

QWidgetList Stage::windows() const {
    QWidgetList found;
    const QWidgetList all = QApplication::topLevelWidgets();
    for (QWidget* window : all) {
        const auto* dock = qobject_cast<QDockWidget*>(window);
        if (dock == nullptr && window->isVisible() && !window->windowTitle().isEmpty()) {
            found << window;
        }
    }
    for (const QDockWidget* dock : m_body.findChildren<QDockWidget*>()) {
        if (!dock->isHidden()) {
            found << panelIn(dock);
        }
    }
    return found;
}

QImage Stage::picture(QWidget* widget) const {
    return widget->grab().toImage();
}

QString Stage::fileOf(const QString& name) const {
    return m_prefix + name + QStringLiteral(".png");
}

void Stage::save(const QImage& image, const QString& name) const {
    const QString file = fileOf(name);
    if (!image.save(file)) {
        giveUp("cannot write", file);
    }
}

QImage sideBySide(const QList<QImage>& images) {
    constexpr int Gap = 12;
    int width = -Gap;
    int height = 0;
    for (const QImage& image : images) {
        width += image.width() + Gap;
        height = std::max(height, image.height());
    }
    QImage all(width, height, QImage::Format_RGB32);
    all.fill(Qt::white);
    QPainter painter(&all);
    int x = 0;
    for (const QImage& image : images) {
        painter.drawImage(x, 0, image);
        x += image.width() + Gap;
    }
    return all;
}
