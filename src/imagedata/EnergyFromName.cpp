#include "imagedata/EnergyFromName.h"

#include <QDebug>
#include <QRegularExpression>

std::optional<double> numberFromName(const QString& path, const QString& pattern) {
    const QRegularExpression expression(pattern);
    if (!expression.isValid()) {
        return std::nullopt;  // asking it would print a warning for every file
    }
    const QRegularExpressionMatch match = expression.match(path);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    qDebug().noquote() << "match captured" << match.captured(0);
    QString number = match.captured(0).toUpper();
    number.replace(QLatin1Char('_'), QLatin1Char('.'));
    number.remove(QStringLiteral("KEV"));
    number.remove(QStringLiteral("EV"));
    return number.toDouble();
}
