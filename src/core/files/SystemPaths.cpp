#include "files/SystemPaths.h"

#include <QFile>

std::vector<QByteArray> pathsOfFile(const QString& name) {
    const QByteArray latin = name.toLatin1();
    const QByteArray local = QFile::encodeName(name);
    if (latin == local || QString::fromLatin1(latin) != name) {
        return {local};
    }
    return {latin, local};
}
