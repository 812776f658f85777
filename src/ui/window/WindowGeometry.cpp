#include "window/WindowGeometry.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace {

const QString Organization = QStringLiteral("Haldmoor Lab");
const QString Application = QStringLiteral("Tarnwick");

QVector<QRect> screens() {
    QVector<QRect> all{QGuiApplication::primaryScreen()->availableGeometry()};
    const auto others = QGuiApplication::screens();
    for (const QScreen* screen : others) {
        all << screen->availableGeometry();
    }
    return all;
}

int areaOf(const QRect& rect) {
    return rect.isValid() ? rect.width() * rect.height() : 0;
}

}  // namespace

QSettings windowSettings() {
    return QSettings(Organization, Application);
}

void saveWindowGeometry(const QWidget* w, const QString& group, bool popUp) {
    QSettings settings(Organization, Application);
    settings.beginGroup(group);
    settings.setValue(QStringLiteral("size"), w->size());
    settings.setValue(QStringLiteral("pos"), w->pos());
    settings.setValue(QStringLiteral("visible"), w->isVisible());
    settings.setValue(QStringLiteral("popUp"), popUp);
    settings.endGroup();
}

void restoreWindowGeometry(QWidget* w, const QString& group, bool* popUp) {
    QSettings settings(Organization, Application);
    settings.beginGroup(group);
    w->resize(settings.value(QStringLiteral("size"), QSize(400, 400)).toSize());
    w->move(settings.value(QStringLiteral("pos"), QPoint(200, 200)).toPoint());
    if (settings.contains(QStringLiteral("pos"))) {
        keepOnScreen(w);
    }
    w->setVisible(settings.value(QStringLiteral("visible"), true).toBool());
    *popUp = settings.value(QStringLiteral("popUp"), true).toBool();
    settings.endGroup();
}

QRect placeOnScreens(const QRect& frame, const QVector<QRect>& screens) {
    QRect screen = screens.first();
    for (const QRect& each : screens) {
        screen = areaOf(each & frame) > areaOf(screen & frame) ? each : screen;
    }
    const QSize size = frame.size().boundedTo(screen.size());
    const QPoint last = screen.bottomRight() - QPoint(size.width() - 1, size.height() - 1);
    return QRect(QPoint(std::max(screen.left(), std::min(frame.left(), last.x())),
                        std::max(screen.top(), std::min(frame.top(), last.y()))),
                 size);
}

void keepOnScreen(QWidget* w) {
    const QMargins margins = frameMargins(w);
    const QRect frame(w->pos(), w->size().grownBy(margins));
    const QRect place = placeOnScreens(frame, screens());
    if (place != frame) {
        w->resize(place.size().shrunkBy(margins));
        w->move(place.topLeft());
    }
}

QMargins frameMargins(const QWidget* w) {
    const QRect inner = w->geometry();
    const QRect frame = w->frameGeometry();
    if (frame != inner || w->isVisible()) {
        return QMargins(inner.left() - frame.left(), inner.top() - frame.top(),
                        frame.right() - inner.right(), frame.bottom() - inner.bottom());
    }
    const int title = w->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, w);
    constexpr int Edge = 2;
    return QMargins(Edge, std::max(title, 2 * w->fontMetrics().height()), Edge, Edge);
}
