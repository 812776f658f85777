#include "drawing/Profiles.h"

#include <algorithm>
#include <cstdlib>

namespace {

/// Mean over the cut from - half .. from + half inside 0 .. size - 1, for every index along it.
template <typename Value>
QVector<double> profile(int length, int size, int at, int half, Value valueAt) {
    if (at < 0 || at >= size || length <= 0) {
        return {};
    }
    // As qint64: the half width comes from a field and may be any number.
    const int reach = static_cast<int>(std::min<qint64>(std::abs(qint64{half}), size));
    const int first = std::max(0, at - reach);
    const int last = reach > size - 1 - at ? size - 1 : at + reach;
    QVector<double> result(length);
    for (int i = 0; i < length; ++i) {
        double sum = 0.0;
        for (int j = first; j <= last; ++j) {
            sum += valueAt(i, j);
        }
        result[i] = sum / (last - first + 1);
    }
    return result;
}

}  // namespace

QVector<double> rowProfile(int width, int height, const PixelValue& valueAt, int y, int half) {
    return profile(width, height, y, half,
                   [&](int along, int across) { return valueAt(along, across); });
}

QVector<double> columnProfile(int width, int height, const PixelValue& valueAt, int x, int half) {
    return profile(height, width, x, half,
                   [&](int along, int across) { return valueAt(across, along); });
}
