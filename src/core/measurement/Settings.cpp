#include "measurement/Settings.h"

#include <algorithm>

QRectF Area::within(int width, int height) const {
    const QPointF low(std::min(x0, x1), std::min(y0, y1));
    const QPointF high(std::max(x0, x1), std::max(y0, y1));
    const QRectF inside =
        QRectF(low, high).intersected(QRectF(0, 0, std::max(0, width), std::max(0, height)));
    return inside.isEmpty() ? QRectF() : inside;
}

QString backgroundWord(int background) {
    return background == XafsSpectrum::Victreen ? QStringLiteral("Victreen")
                                                : QStringLiteral("Simple");
}

int backgroundOfWord(const QString& word) {
    for (const int background : {XafsSpectrum::Simple, XafsSpectrum::Victreen}) {
        if (word.compare(backgroundWord(background), Qt::CaseInsensitive) == 0) {
            return background;
        }
    }
    return -1;
}
