#include "base/Numbers.h"

#include <cmath>

int toClampedInt(double v, int low, int high) {
    if (!(v > static_cast<double>(low))) {  // also NaN
        return low;
    }
    return v >= static_cast<double>(high) ? high : static_cast<int>(v);
}

int toPixel(double position) {
    constexpr int Far = 1 << 30;
    return toClampedInt(std::floor(position), -Far, Far);
}

namespace {

/// The power of ten of a number as it is written with some digits, which may round it up.
int exponentOf(double value, int digits) {
    const QString text = QString::number(value, 'e', digits - 1);
    return text.mid(text.indexOf(QLatin1Char('e')) + 1).toInt();
}

/// With decimals, or below 0 to tens, hundreds ...
QString rounded(double value, int decimals) {
    const double unit = decimals < 0 ? std::pow(10.0, -decimals) : 1.0;
    const double kept = decimals < 0 ? std::round(value / unit) * unit : value;
    const QString text = QString::number(kept, 'f', std::max(0, decimals));
    return text.toDouble() == 0.0 && text.startsWith(QLatin1Char('-')) ? text.mid(1) : text;
}

}  // namespace

RoundedPair roundedPair(double value, double error) {
    constexpr int ErrorDigits = 2;
    constexpr int Most = 6;  // decimals, or digits before the point
    if (!std::isfinite(value)) {
        return {QStringLiteral("-"), {}, {}};
    }
    if (!std::isfinite(error) || !(error > 0.0)) {
        return {QString::number(value, 'g', Most), {}, {}};
    }
    const int ofError = exponentOf(error, ErrorDigits);
    const int decimals = ErrorDigits - 1 - ofError;
    const int highest = std::max(ofError, value == 0.0 ? ofError : exponentOf(value, Most));
    if (decimals <= Most && highest < Most) {
        return {rounded(value, decimals), rounded(error, decimals), {}};
    }
    const double unit = std::pow(10.0, highest);
    return {rounded(value / unit, decimals + highest), rounded(error / unit, decimals + highest),
            QString::asprintf("e%+03d", highest)};
}

QString RoundedPair::text() const {
    const QString both = value + QStringLiteral(" \u00b1 ") + error;
    if (error.isEmpty()) {
        return value;
    }
    return power.isEmpty() ? both : QLatin1Char('(') + both + QLatin1Char(')') + power;
}
