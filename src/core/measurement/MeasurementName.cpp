#include "measurement/MeasurementName.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "files/FileNames.h"
#include "measurement/Measurement.h"

QString measurementName(const Measurement& measurement) {
    QStringList files;
    for (const StackId id : {StackId::I1, StackId::I0}) {
        for (const Stack::File& file : measurement.stack(id).files()) {
            files << file.path;
        }
    }
    if (files.isEmpty()) {
        return QString();
    }
    static const QRegularExpression saysNothing(
        QStringLiteral("^(i[01]|it|io|data|raw|images?|frames?|tiffs?|trans\\w*|flats?)$"),
        QRegularExpression::CaseInsensitiveOption);
    QString folder = deepestFolder(files);
    while (QFileInfo(folder).fileName().contains(saysNothing)) {
        folder = QFileInfo(folder).absolutePath();
    }
    const QString name = QFileInfo(folder).fileName();
    if (!name.isEmpty()) {
        return name;
    }
    static const QRegularExpression numbers(QStringLiteral("[\\W_]*\\d.*$"));
    const QString stem = QFileInfo(files.first()).completeBaseName();
    const QString start = QString(stem).remove(numbers);
    return start.isEmpty() ? stem : start;
}
