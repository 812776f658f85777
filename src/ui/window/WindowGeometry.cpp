#include "window/WindowGeometry.h"

#include <QSettings>
#include <QWidget>

namespace {
const QString Organization = QStringLiteral("Haldmoor Lab");
const QString Application = QStringLiteral("Tarnwick");
}  // namespace

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
    w->setVisible(settings.value(QStringLiteral("visible"), true).toBool());
    *popUp = settings.value(QStringLiteral("popUp"), true).toBool();
    settings.endGroup();
}
