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

QString deepestFolder(const QStringList& files) {
    QStringList common;
    bool first = true;
    for (const QString& file : files) {
        const QString folder = QDir::cleanPath(QFileInfo(file).absolutePath());
        // The root ends in the slash that stands between the others: "/" has one empty part.
        const QStringList parts =
            (folder.endsWith(QLatin1Char('/')) ? folder.chopped(1) : folder).split('/');
        if (first) {
            common = parts;
        }
        int same = 0;
        while (same < qMin(common.size(), parts.size()) && common.at(same) == parts.at(same)) {
            ++same;
        }
        common = common.mid(0, same);
        first = false;
    }
    const bool isRoot = common.size() == 1;
    return common.join(QLatin1Char('/')) + (isRoot ? QStringLiteral("/") : QString());
}

QString relativeTo(const QString& folder, const QString& file) {
    const QFileInfo info(file);
    QString name = QDir(folder).relativeFilePath(info.absoluteFilePath());
    if (name.startsWith(QLatin1String("../"))) {
        // Seen from behind a link, ".." is not what stands before the link in the path.
        const QString realFolder = QFileInfo(folder).canonicalFilePath();
        const QString realPlace = QFileInfo(info.absolutePath()).canonicalFilePath();
        if (!realFolder.isEmpty() && !realPlace.isEmpty()) {
            name = QDir(realFolder).relativeFilePath(QDir(realPlace).filePath(info.fileName()));
        }
    }
    // A name that begins with a colon stands for a resource of the program.
    return name.startsWith(QLatin1Char(':')) ? QStringLiteral("./") + name : name;
}
