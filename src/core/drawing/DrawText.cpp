#include "drawing/DrawText.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/Globals.h"
#include "drawing/Letters.h"

namespace {
constexpr int MostDecimals = 8;
}

QRectF drawText(QPainter& painter, const Letters& letters, const QPointF& anchor,
                const QString& text, Qt::Alignment alignment, const QRectF& inside, bool upright) {
    QSizeF size(letters.width(text), letters.height());
    if (upright) {
        size.transpose();
    }
    QRectF place(anchor, size);
    if (alignment & Qt::AlignRight) {
        place.moveRight(anchor.x());
    } else if (alignment & Qt::AlignHCenter) {
        place.moveLeft(anchor.x() - size.width() / 2);
    }
    if (alignment & Qt::AlignBottom) {
        place.moveBottom(anchor.y());
    } else if (alignment & Qt::AlignVCenter) {
        place.moveTop(anchor.y() - size.height() / 2);
    }
    if (!inside.isNull()) {
        place.moveLeft(
            std::max(inside.left(), std::min(place.left(), inside.right() - size.width())));
        place.moveTop(
            std::max(inside.top(), std::min(place.top(), inside.bottom() - size.height())));
    }
    if (upright) {
        painter.save();
        painter.translate(place.left(), place.bottom());
        painter.rotate(-90);
        letters.draw(painter, QPointF(0, letters.ascent()), text);
        painter.restore();
    } else {
        letters.draw(painter, QPointF(place.left(), place.top() + letters.ascent()), text);
    }
    return place;
}

QRectF drawText(QPainter& painter, const QPointF& anchor, const QString& text,
                Qt::Alignment alignment, const QRectF& inside, bool upright) {
    return drawText(painter, Letters(painter.font()), anchor, text, alignment, inside, upright);
}

QString tickText(double value, double step) {
    const double magnitude = std::abs(step);
    if (magnitude == 0.0 || !std::isfinite(value) || !std::isfinite(magnitude)) {
        return QString::number(value, 'g', 6);
    }
    if (std::abs(value) < magnitude / 2) {
        value = 0.0;  // neither "-0" nor the rounding error of a sum of steps
    }
    if (std::abs(value) >= 1e7 || magnitude < 1e-6) {
        const double digits = std::floor(std::log10(std::max(std::abs(value), magnitude))) -
                              std::floor(std::log10(magnitude)) + 1.0;
        return QString::number(value, 'g', toClampedInt(digits, 1, 15));
    }
    int decimals = 0;
    const double exact = 1e-6 * magnitude;
    for (double unit = 1.0; decimals < MostDecimals; ++decimals, unit /= 10.0) {
        if (std::abs(magnitude - std::round(magnitude / unit) * unit) <= exact) {
            break;
        }
    }
    return QString::number(value, 'f', decimals);
}
