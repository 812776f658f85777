#include "drawing/FramePicture.h"

#include <QColor>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "base/LargeMemory.h"
#include "files/PictureResolution.h"
#include "frames/TiffData.h"

QImage framePicture(const TiffData& frame, double low, double high, const ColorScale& colors) {
    const int width = static_cast<int>(frame.width);
    const int height = static_cast<int>(frame.height);
    QImage picture = newPicture({width, height},
                                colors.isGrey ? QImage::Format_Grayscale8 : QImage::Format_RGB888);
    if (picture.isNull()) {
        return picture;
    }
    setPictureResolution(&picture);
    const uchar* lowest = colors.at(0.0);
    picture.fill(QColor(lowest[0], lowest[1], lowest[2]));
    if (!(high > low)) {
        return picture;
    }
    const std::size_t bytes = colors.isGrey ? 1 : 3;
    std::vector<uchar> table(65536 * bytes);
    for (std::size_t count = 0; count < 65536; ++count) {
        const double v = (static_cast<double>(count) - low) / (high - low);
        std::memcpy(&table[count * bytes], colors.at(v), bytes);
    }
    const int rows = std::min(height, static_cast<int>(frame.rows.size()));
    for (int y = 0; y < rows; ++y) {
        const quint16* counts = frame.rows[static_cast<std::size_t>(y)];
        uchar* line = picture.scanLine(y);
        for (int x = 0; x < width; ++x) {
            if (bytes == 1) {
                line[x] = table[counts[x]];
            } else {
                std::memcpy(line + 3 * x, &table[3 * std::size_t{counts[x]}], 3);
            }
        }
    }
    return picture;
}

QPair<double, double> countPercentiles(const TiffData& frame, double share) {
    std::vector<quint64> pixelsOf(65536);
    for (const quint16* row : frame.rows) {
        for (quint32 x = 0; x < frame.width; ++x) {
            ++pixelsOf[row[x]];
        }
    }
    const double all = static_cast<double>(frame.rows.size()) * frame.width;
    const auto notExceededBy = [&](double pixels) {
        double sum = 0.0;
        std::size_t count = 0;
        while (count < pixelsOf.size() - 1 &&
               (sum += static_cast<double>(pixelsOf[count])) < pixels) {
            ++count;
        }
        return static_cast<double>(count);
    };
    return {notExceededBy(share * all), notExceededBy((1.0 - share) * all)};
}

QImage withGapsMarked(const QImage& picture, const double* values, int width, int height) {
    if (values == nullptr || picture.width() != width || picture.height() != height) {
        return picture;
    }
    const auto isGap = [](double value) { return std::isnan(value); };
    bool hasGap = false;
    for (int y = 0; y < height && !hasGap; ++y) {
        const double* const row = values + static_cast<std::ptrdiff_t>(y) * width;
        for (int x = 0; x < width; ++x) {  // a whole row: vector units can not stop in mid-way
            hasGap |= row[x] != row[x];
        }
    }
    if (!hasGap) {
        return picture;
    }
    askForMemory(sizeof(QRgb) * quint64(width) * quint64(height));
    QImage marked = picture.convertToFormat(QImage::Format_RGB32);
    if (marked.isNull()) {
        throw NotEnoughMemory();
    }
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(marked.scanLine(y));
        for (int x = 0; x < width; ++x, ++values) {
            if (isGap(*values)) {
                line[x] = qRgb(128, 128, 128);
            }
        }
    }
    return marked;
}
