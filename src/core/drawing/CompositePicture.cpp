#include "drawing/CompositePicture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/LargeMemory.h"
#include "drawing/BarPicture.h"
#include "drawing/DrawText.h"
#include "drawing/Letters.h"
#include "files/PictureResolution.h"

namespace {

constexpr int Steps = 4096;

/// The code of an amount of light from 0 to 1: the transfer function of IEC 61966-2-1 (sRGB).
std::vector<uchar> makeCodes() {
    std::vector<uchar> codes;
    for (int i = 0; i <= Steps; ++i) {
        const double light = i / static_cast<double>(Steps);
        const double code =
            light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
        codes.push_back(static_cast<uchar>(std::lround(255.0 * code)));
    }
    return codes;
}

uchar codeOf(double light) {
    static const std::vector<uchar> codes = makeCodes();
    const double step = light * Steps + 0.5;
    return codes[static_cast<std::size_t>(step > 0.0 ? std::min<double>(step, Steps) : 0.0)];
}

/// Whether a pixel of a map has a value.
bool hasValue(const ShownValues& map, int x, int y, std::size_t pixel) {
    return map.filled.contains(x, y) && !std::isnan(map.values[pixel]) &&
           (map.blank == nullptr || !(*map.blank)[pixel]);
}

const ColorScale::Rgb& blank() {
    return resultColors().blank;
}

constexpr int Red = 0;
constexpr int Green = 1;
constexpr int Blue = 2;

/// The triangle in a square picture of its own, transparent around it.
QImage triangle(int side, const CompositeNames& names) {
    QImage picture = newPicture({side, side}, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    const double height = side - 1.0;
    for (int y = 0; y < side; ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        const double down = y / height;
        for (int x = 0; x < side; ++x) {
            // Across from the left to the right side of the triangle in this row.
            const double across = (x - 0.5 * (1.0 - down) * height) / height;
            const double light[] = {1.0 - down, down - across, across};
            if (light[Green] < 0.0 || light[Blue] < 0.0) {
                continue;
            }
            const auto code = [&](int color) {
                return names[static_cast<std::size_t>(color)].isEmpty() ? 0 : codeOf(light[color]);
            };
            line[x] = qRgb(code(Red), code(Green), code(Blue));
        }
    }
    return picture;
}

}  // namespace

QImage compositePicture(const CompositeMaps& composite) {
    const auto& maps = composite.maps;
    const auto first = std::find_if(maps.begin(), maps.end(),
                                    [](const ShownValues& map) { return map.values != nullptr; });
    if (first == maps.end()) {
        return QImage();
    }
    QImage picture = newPicture({first->width, first->height}, QImage::Format_RGB32);
    setPictureResolution(&picture);
    const double span = composite.high - composite.low;
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const std::size_t pixel =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(first->width) +
                static_cast<std::size_t>(x);
            uchar codes[] = {0, 0, 0};
            bool isBlank = false;
            for (std::size_t i = 0; i < maps.size(); ++i) {
                if (maps[i].values != nullptr) {
                    isBlank = isBlank || !hasValue(maps[i], x, y, pixel);
                    codes[i] = codeOf((maps[i].values[pixel] - composite.low) / span);
                }
            }
            line[x] = isBlank ? qRgb(blank()[0], blank()[1], blank()[2])
                              : qRgb(codes[Red], codes[Green], codes[Blue]);
        }
    }
    return picture;
}

void paintCompositeLegend(QPainter& painter, const Letters& letters, const QRectF& place,
                          const CompositeNames& names) {
    const double line = letters.height();
    const int side =
        static_cast<int>(std::max(2.0, std::min(place.width(), place.height() - 4 * line)));
    painter.drawImage(place.topLeft(), triangle(side, names));
    double y = place.top() + side + line / 2;
    const QColor colors[] = {Qt::red, Qt::green, Qt::blue};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].isEmpty()) {
            continue;
        }
        const QRectF swatch(place.left(), y + line * 0.2, line * 0.6, line * 0.6);
        painter.fillRect(swatch, colors[i]);
        const double left = swatch.right() + line / 3;
        drawText(painter, letters, QPointF(left, y),
                 letters.elided(names[i], static_cast<int>(place.right() - left)),
                 Qt::AlignLeft | Qt::AlignTop, place);
        y += line;
    }
}

QImage withLegend(const CompositeParts& parts) {
    if (parts.picture.isNull()) {
        return QImage();
    }
    const QSize size = parts.picture.size() * barPictureScale(parts.picture.size());
    const Letters letters =
        Letters::ofPictures(std::max(15, std::max(size.width(), size.height()) / 42));
    const int line = static_cast<int>(std::ceil(letters.height()));
    double widest = 0.0;
    for (const QString& name : parts.names) {
        widest = std::max(widest, letters.width(name));
    }
    const int legend = std::max({8 * line, static_cast<int>(std::ceil(widest)) + 2 * line,
                                 static_cast<int>(std::ceil(letters.width(parts.range))) + line});
    const QRectF map(line, 2.5 * line, size.width(), size.height());
    const int height = std::max(size.height(), 8 * line + 6 * line);
    QImage image = newPicture({static_cast<int>(map.right()) + 2 * line + legend,
                               static_cast<int>(map.top()) + height + line},
                              QImage::Format_RGB32);
    if (image.isNull()) {
        return QImage();  // no memory
    }
    image.fill(Qt::white);
    setPictureResolution(&image);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    drawText(painter, letters, QPointF(line, line),
             letters.elided(parts.title, image.width() - 2 * line), Qt::AlignLeft | Qt::AlignTop);
    painter.drawImage(map, parts.picture);
    painter.drawRect(map.adjusted(-1, -1, 0, 0));
    const QRectF place(map.right() + line, map.top(), legend, 12 * line);
    paintCompositeLegend(painter, letters, place, parts.names);
    drawText(painter, letters, QPointF(place.left(), place.bottom() + line), parts.range,
             Qt::AlignLeft | Qt::AlignTop);
    painter.end();
    return image;
}
