#include "files/FileNames.h"

#include <QDir>
#include <QFileInfo>

namespace {

// A QDir joins the parts, so that a file in the root directory gets one slash, not two.
QString besideBase(const QFileInfo& base, const QString& fileName) {
    return QDir(base.absolutePath()).filePath(fileName);
}

}  // namespace

QString taggedName(const QString& base, const QString& tag) {
    const QFileInfo info(base);
    return besideBase(
        info, info.completeBaseName() + QLatin1Char('-') + tag + QLatin1Char('.') + info.suffix());
}

QString withSuffix(const QString& base, const QString& defaultSuffix) {
    const QFileInfo info(base);
    const QString suffix = info.suffix().isEmpty() ? defaultSuffix : info.suffix();
    return besideBase(info, info.completeBaseName() + QLatin1Char('.') + suffix);
}
