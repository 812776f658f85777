#include "frames/EnergyFromName.h"

#include <cmath>

#include "base/Limits.h"

namespace {

bool isDigit(const QString& text, int i) {
    return i >= 0 && i < text.size() && text.at(i) >= QLatin1Char('0') &&
           text.at(i) <= QLatin1Char('9');
}

/// Whether the number that has its outermost digit at i goes on in that direction.
bool goesOn(const QString& text, int i, int direction) {
    const int next = i + direction;
    const bool isPoint = next >= 0 && next < text.size() &&
                         (text.at(next) == QLatin1Char('.') || text.at(next) == QLatin1Char(','));
    return isDigit(text, i) && isDigit(text, isPoint ? next + direction : next);
}

}  // namespace

const QRegularExpression& expressionOf(const QString& pattern) {
    thread_local QRegularExpression expression;
    if (expression.pattern() != pattern) {
        expression.setPattern(pattern);
    }
    return expression;
}

bool cutsNumber(const QString& path, const QRegularExpression& pattern) {
    const QRegularExpressionMatch match =
        pattern.isValid() ? pattern.match(path) : QRegularExpressionMatch();
    return match.hasMatch() &&
           (goesOn(path, match.capturedStart(0), -1) || goesOn(path, match.capturedEnd(0) - 1, 1));
}

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
    const double value = number.toDouble();
    return std::abs(value) <= Limits::LargestInName ? value
                                                    : 0.0;  // "nan" and "1e999" are none, either
}
