#include "files/FileNames.h"

#include <QDir>
#include <QFileInfo>

namespace {

/// What follows the folder in a name that begins with it and has nothing to be cleaned; else empty.
/// Most files are named like that, hundreds at a time, and QDir takes its time.
QString plainlyBelow(const QString& folder, const QString& file) {
    const bool isBelow = folder.startsWith(QLatin1Char('/')) && file.startsWith(folder) &&
                         file.mid(folder.size(), 1) == QLatin1String("/");
    const QString name = isBelow ? file.mid(folder.size() + 1) : QString();
    const bool isPlain = !name.startsWith(QLatin1Char('.')) && !name.startsWith(QLatin1Char('/')) &&
                         !name.startsWith(QLatin1Char(':')) && !name.endsWith(QLatin1Char('/')) &&
                         !name.contains(QLatin1String("/.")) && !name.contains(QLatin1String("//"));
    return isPlain ? name : QString();
}

}  // namespace

QString typedFileName(const QString& name) {
    return name.startsWith(QLatin1Char(':')) ? QLatin1String("./") + name : name;
}

QString fileIn(const QString& folder, const QString& name) {
    // A QDir joins the parts, so that a file in the root directory gets one slash, not two. It
    // would take a colon for the beginning of an absolute path.
    const QString file = QDir(folder).filePath(QLatin1Char('_') + name);
    return file.left(file.size() - name.size() - 1) + name;
}

QString taggedName(const QString& base, const QString& tag) {
    const QFileInfo info(base);
    return fileIn(info.absolutePath(), info.completeBaseName() + QLatin1Char('-') + tag +
                                           QLatin1Char('.') + info.suffix());
}

QString withSuffix(const QString& base, const QString& defaultSuffix) {
    const QFileInfo info(base);
    const QString suffix = info.suffix().isEmpty() ? defaultSuffix : info.suffix();
    return fileIn(info.absolutePath(), info.completeBaseName() + QLatin1Char('.') + suffix);
}

QString deepestFolder(const QStringList& files) {
    QStringList common;
    bool first = true;
    QString last;
    for (const QString& file : files) {
        const QString named = file.left(file.lastIndexOf(QLatin1Char('/')) + 1);
        const bool isPlain = !file.midRef(named.size()).startsWith(QLatin1Char('.'));
        if (isPlain && !last.isEmpty() && named == last) {
            continue;  // the frames of a stack mostly lie together
        }
        last = isPlain ? named : QString();
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
    QString name = plainlyBelow(folder, file);
    if (!name.isEmpty()) {
        return name;
    }
    const QFileInfo info(file);
    name = QDir(folder).relativeFilePath(info.absoluteFilePath());
    if (name.startsWith(QLatin1String("../"))) {
        // Seen from behind a link, ".." is not what stands before the link in the path.
        const QString realFolder = QFileInfo(folder).canonicalFilePath();
        const QString realPlace = QFileInfo(info.absolutePath()).canonicalFilePath();
        if (!realFolder.isEmpty() && !realPlace.isEmpty()) {
            name = QDir(realFolder).relativeFilePath(fileIn(realPlace, info.fileName()));
        }
    }
    return typedFileName(name);
}
