#include "batch/FileProblems.h"

#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QRegularExpression>

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
    if (!QDir(dir).entryList(patterns, QDir::Files).isEmpty()) {
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

QString energyProblem(const QString& path) {
    static const QRegularExpression pattern(QStringLiteral("[\\d_]+eV"));
    const QRegularExpressionMatch match = pattern.match(path);
    if (!match.hasMatch()) {
        return QStringLiteral(
                   "no energy such as 7112_5eV in the name, so a running number is "
                   "taken: ") +
               path;
    }
    if (match.capturedEnd() <= path.lastIndexOf(QLatin1Char('/'))) {
        return QStringLiteral("the energy is read from '%1' in the directory's name: %2")
            .arg(match.captured(), path);
    }
    QString number = match.captured();
    number.chop(2);
    number.replace(QLatin1Char('_'), QLatin1Char('.'));
    const double energy = number.toDouble();
    return energy >= 1.0 ? QString()
                         : QStringLiteral(
                               "the energy reads as %1: an underscore before the number "
                               "is taken for its decimal point: %2")
                               .arg(QString::number(energy), path);
}

QString energyProblem(const QString& dir, const QStringList& patterns) {
    const QStringList names = QDir(dir).entryList(patterns, QDir::Files);
    for (const QString& name : names) {
        const QString problem = energyProblem(dir + QLatin1Char('/') + name);
        if (!problem.isEmpty()) {
            return problem;
        }
    }
    return QString();
}
