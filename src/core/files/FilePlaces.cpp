#include "files/FilePlaces.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <mutex>
#include <shared_mutex>
#include <utility>

#include "files/FileNames.h"

namespace {

struct Places {
    std::shared_mutex lock;
    QHash<QString, QString> of;  // by identity
};

Places& places() {
    static Places all;
    return all;
}

}  // namespace

QString identityOf(const QString& fileName) {
    const QFileInfo info(QDir::cleanPath(QFileInfo(fileName).absoluteFilePath()));
    const QString file = info.canonicalFilePath();
    if (!file.isEmpty()) {
        return file;
    }
    const QString folder = QFileInfo(info.path()).canonicalFilePath();
    return folder.isEmpty() ? info.filePath() : fileIn(folder, info.fileName());
}

QString placeOf(const QString& fileName) {
    const std::shared_lock<std::shared_mutex> locker(places().lock);
    return places().of.isEmpty() ? fileName : places().of.value(identityOf(fileName), fileName);
}

bool isPlaced(const QString& fileName) {
    const std::shared_lock<std::shared_mutex> locker(places().lock);
    return !places().of.isEmpty() && places().of.contains(identityOf(fileName));
}

QStringList placedIn(const QString& folder) {
    QStringList files;
    const std::shared_lock<std::shared_mutex> locker(places().lock);
    if (!places().of.isEmpty()) {
        const QString path = identityOf(folder);
        for (auto it = places().of.begin(); it != places().of.end(); ++it) {
            if (QFileInfo(it.key()).path() == path) {
                files << it.key();
            }
        }
    }
    return files;
}

FilePlaces::~FilePlaces() {
    const std::lock_guard<std::shared_mutex> locker(places().lock);
    for (const QString& identity : std::as_const(m_identities)) {
        places().of.remove(identity);
    }
}

void FilePlaces::put(const QString& fileName, const QString& place) {
    const QString identity = identityOf(fileName);
    const std::lock_guard<std::shared_mutex> locker(places().lock);
    if (place.isEmpty()) {
        m_identities.remove(identity);
        places().of.remove(identity);
    } else {
        m_identities.insert(identity);
        places().of.insert(identity, place);
    }
}
