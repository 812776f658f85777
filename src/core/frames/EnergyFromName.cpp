#include "frames/EnergyFromName.h"

std::optional<double> numberFromName(const QString& path, const QRegularExpression& pattern,
                                     QString* matched) {
    if (!pattern.isValid()) {
        return std::nullopt;  // asking it would print a warning for every file
    }
    const QRegularExpressionMatch match = pattern.match(path);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    if (matched != nullptr) {
        *matched = match.captured(0);
    }
    QString number = match.captured(0).toUpper();
    number.replace(QLatin1Char('_'), QLatin1Char('.'));
    number.remove(QStringLiteral("KEV"));
    number.remove(QStringLiteral("EV"));
    return number.toDouble();
}
