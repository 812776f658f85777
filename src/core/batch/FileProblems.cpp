#include "batch/FileProblems.h"

#include <QFileInfo>
#include <QImageWriter>
#include <optional>

#include "files/FileListing.h"
#include "frames/EnergyFromName.h"

QString inputProblem(const QString& name) {
    const QFileInfo info(name);
    if (!info.exists()) {
        return QStringLiteral("no such file: ") + name;
    }
    if (info.isDir()) {
        return QStringLiteral("is a directory, not a file: ") + name;
    }
    return info.isReadable() ? QString() : QStringLiteral("file is not readable: ") + name;
}

QString outputProblem(const QString& name) {
    const QFileInfo info(name);
    if (info.isDir()) {
        return QStringLiteral("is a directory, not a file: ") + name;
    }
    const QFileInfo dir(info.absolutePath());
    if (!dir.isDir()) {
        return QStringLiteral("no such directory to write to: ") + dir.filePath();
    }
    return dir.isWritable() ? QString()
                            : QStringLiteral("directory is not writable: ") + dir.filePath();
}

QString listingProblem(const QString& dir, const QStringList& patterns) {
    if (!QFileInfo(dir).isDir()) {
        return QStringLiteral("no such directory: ") + dir;
    }
    if (!listImageFiles(dir, patterns).isEmpty()) {
        return QString();
    }
    return patterns.isEmpty() ? QStringLiteral("no file in %1").arg(dir)
                              : QStringLiteral("no file matches %1 in %2")
                                    .arg(patterns.join(QLatin1Char(' ')), dir);
}

QString pictureProblem(const QString& name) {
    const QByteArray suffix = QFileInfo(name).suffix().toLower().toLatin1();
    return name.isEmpty() || QImageWriter::supportedImageFormats().contains(suffix)
               ? QString()
               : QStringLiteral(
                     "no picture format has this suffix, nothing is written "
                     "(use .png): ") +
                     name;
}

QString energyProblem(const QString& path, const NamePattern& names) {
    const QRegularExpression pattern(names.pattern);
    const std::optional<double> energy = numberFromName(path, pattern);
    if (!energy) {
        const QString wanted = names == NamePattern()
                                   ? QStringLiteral("such as 7112_5eV")
                                   : QStringLiteral("that %1 finds").arg(names.pattern);
        return QStringLiteral("no energy %1 in the name, so a running number is taken: %2")
            .arg(wanted, path);
    }
    const QString directory = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    if (numberFromName(directory, pattern)) {
        return QStringLiteral("the energy is read from the directory's name: ") + path;
    }
    return *energy * names.factor() >= 1.0 ? QString()
                                           : QStringLiteral(
                                                 "the energy reads as %1: an underscore before the "
                                                 "number is taken for its decimal point: %2")
                                                 .arg(QString::number(*energy), path);
}

QString energyProblem(const QString& dir, const QStringList& patterns, const NamePattern& names) {
    const QStringList paths = listImageFiles(dir, patterns);
    for (const QString& path : paths) {
        QString problem = energyProblem(path, names);
        if (!problem.isEmpty()) {
            return problem;
        }
    }
    return QString();
}
