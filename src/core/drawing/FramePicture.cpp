#include "drawing/FramePicture.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/Globals.h"
#include "frames/TiffData.h"

QImage framePicture(const TiffData& frame, double low, double high) {
    const int width = static_cast<int>(frame.width);
    const int height = static_cast<int>(frame.height);
    QImage picture(width, height, QImage::Format_Grayscale8);
    picture.fill(Qt::black);
    if (!(high > low)) {
        return picture;
    }
    std::vector<uchar> greys(65536);
    for (std::size_t count = 0; count < greys.size(); ++count) {
        greys[count] = *greyOf((static_cast<double>(count) - low) / (high - low));
    }
    const int rows = std::min(height, static_cast<int>(frame.rows.size()));
    for (int y = 0; y < rows; ++y) {
        const quint16* counts = frame.rows[static_cast<std::size_t>(y)];
        uchar* line = picture.scanLine(y);
        for (int x = 0; x < width; ++x) {
            line[x] = greys[counts[x]];
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
    const auto* end = values + static_cast<std::ptrdiff_t>(width) * height;
    if (std::none_of(values, end, isGap)) {
        return picture;
    }
    QImage marked = picture.convertToFormat(QImage::Format_RGB32);
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
