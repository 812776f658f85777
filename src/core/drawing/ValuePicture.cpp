#include "drawing/ValuePicture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <vector>

#include "base/LargeMemory.h"
#include "base/RowShares.h"
#include "files/PictureResolution.h"

namespace {

constexpr unsigned char Gap = 128;
constexpr std::size_t Steps = 65536;

/// Which of 0 to last stands for a value, a number or not.
inline int placeOf(double value, double low, double scale, double last) {
    const double place = (value - low) * scale;
    // In this order no number becomes 0.
    return static_cast<int>(std::min(std::max(0.0, place), last));
}

void paintGrey(const double* values, int width, double low, double scale, const ColorScale& colors,
               uchar* line) {
    uchar levels[256];
    for (int i = 0; i < 256; ++i) {
        levels[i] = colors.table[std::min(i, colors.last)][0];
    }
    for (int x = 0; x < width; ++x) {
        const uchar level = levels[placeOf(values[x], low, scale, colors.last)];
        line[x] = std::isnan(values[x]) ? Gap : level;
    }
}

void paintColors(const double* values, int width, double low, double scale,
                 const ColorScale& colors, uchar* line) {
    constexpr uchar Gaps[3] = {Gap, Gap, Gap};
    for (int x = 0; x < width; ++x) {
        const auto place = static_cast<std::size_t>(placeOf(values[x], low, scale, colors.last));
        std::memcpy(line + 3 * x, std::isnan(values[x]) ? Gaps : colors.table[place].data(), 3);
    }
}

}  // namespace

QImage valuePicture(const double* values, int width, int height, double low, double high,
                    const ColorScale& colors, int threads) {
    const bool isGrey = colors.isGrey && colors.last < 256;
    QImage picture =
        newPicture({width, height}, isGrey ? QImage::Format_Grayscale8 : QImage::Format_RGB888);
    setPictureResolution(&picture);
    const double step = colors.steps / (high - low);
    const double scale = high > low && std::isfinite(step) ? step : 0.0;
    uchar* const pixels = picture.bits();
    const auto bytes = static_cast<std::size_t>(picture.bytesPerLine());
    RowShares rows(picture.isNull() ? 0 : height);
    inThreads(threads, [&] {
        int y = 0;
        int end = 0;
        while (rows.take(&y, &end)) {
            for (; y < end; ++y) {
                const auto row = static_cast<std::size_t>(y);
                (isGrey ? paintGrey : paintColors)(values + row * static_cast<std::size_t>(width),
                                                   width, low, scale, colors, pixels + row * bytes);
            }
        }
    });
    return picture;
}

QPair<double, double> valuePercentiles(const double* values, int width, int height, double min,
                                       double max, double share, int threads) {
    const double scale = static_cast<double>(Steps) / (max - min);
    if (!(max > min) || !std::isfinite(scale)) {
        return {min, max};
    }
    std::vector<quint64> pixelsOf(Steps);
    std::mutex mutex;
    RowShares rows(height);
    inThreads(threads, [&] {
        std::vector<quint32> own(Steps);
        quint32 noNumbers = 0;
        int y = 0;
        int end = 0;
        while (rows.take(&y, &end)) {
            const std::size_t begin = static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
            const std::size_t behind =
                static_cast<std::size_t>(end) * static_cast<std::size_t>(width);
            for (std::size_t i = begin; i < behind; ++i) {
                noNumbers += std::isnan(values[i]) ? 1 : 0;
                ++own[static_cast<std::size_t>(
                    placeOf(values[i], min, scale, static_cast<double>(Steps - 1)))];
            }
        }
        own[0] -= noNumbers;  // they were counted there
        const std::lock_guard<std::mutex> lock(mutex);
        std::transform(own.begin(), own.end(), pixelsOf.begin(), pixelsOf.begin(),
                       [](quint32 a, quint64 b) { return a + b; });
    });
    double all = 0.0;
    for (const quint64 pixels : pixelsOf) {
        all += static_cast<double>(pixels);
    }
    const auto notExceededBy = [&](double pixels) {
        double sum = 0.0;
        std::size_t step = 0;
        while (step < Steps - 1 && (sum += static_cast<double>(pixelsOf[step])) < pixels) {
            ++step;
        }
        return step;
    };
    const auto valueOf = [&](std::size_t step) { return min + static_cast<double>(step) / scale; };
    // The lower end of the one step, the upper of the other: what they hold is seen.
    return {valueOf(notExceededBy(share * all)), valueOf(notExceededBy((1.0 - share) * all) + 1)};
}
