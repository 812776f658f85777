#include "window/Remembered.h"

#include <QFileInfo>
#include <QSettings>

#include "display/FolderMemory.h"

namespace {

QSettings store() {
    return QSettings(QStringLiteral("Haldmoor Lab"), QStringLiteral("Tarnwick"));
}

QString folderKey(FolderMemory::Use use) {
    return use == FolderMemory::Reading ? QStringLiteral("folder of reading")
                                        : QStringLiteral("folder of writing");
}

}  // namespace

Remembered::Remembered() {
    connect(&FolderMemory::shared(), &FolderMemory::changed, this, &Remembered::writeFolders);
}

Remembered& Remembered::shared() {
    static Remembered remembered;
    return remembered;
}

void Remembered::keep() {
    const QSettings settings = store();
    m_keeps = false;  // what is read need not be written
    for (const QString& key : {folders(), records()}) {
        m_recent[key] = settings.value(key).toStringList().mid(0, MostRecent);
    }
    for (const auto use : {FolderMemory::Reading, FolderMemory::Writing}) {
        FolderMemory::shared().note(use, settings.value(folderKey(use)).toString());
    }
    m_keeps = true;
    emit changed();
}

void Remembered::note(const QString& key, const QString& path) {
    const QString name = QFileInfo(path).absoluteFilePath();
    QStringList names = recent(key);
    names.removeAll(name);
    names.prepend(name);
    set(key, names.mid(0, MostRecent));
}

void Remembered::forget(const QString& key, const QString& path) {
    QStringList names = recent(key);
    names.removeAll(path);
    set(key, names);
}

void Remembered::set(const QString& key, const QStringList& paths) {
    m_recent[key] = paths;
    if (m_keeps) {
        store().setValue(key, paths);
    }
    emit changed();
}

void Remembered::writeFolders() const {
    for (const auto use : {FolderMemory::Reading, FolderMemory::Writing}) {
        // Without a choice yet, the folder of the program's start is not one.
        const QString folder = FolderMemory::shared().chosen(use);
        if (m_keeps && !folder.isEmpty()) {
            store().setValue(folderKey(use), folder);
        }
    }
}
