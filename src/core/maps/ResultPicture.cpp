// The picture of Analyzed2DRes: when it is made, and of which values.

#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/ColorMap.h"
#include "base/LargeMemory.h"
#include "files/PictureResolution.h"
#include "maps/Analyzed2DRes.h"

namespace {

constexpr uchar GapGrey = 128;

/// Colours first as places in the table, which vector units work out, then as bytes.
void paintRow(const double* values, std::size_t count, double min, double span, uchar* pixels) {
    constexpr std::size_t AtOnce = 256;
    const ColorScale& colors = resultColors();
    const double steps = colors.steps;
    const double highest = colors.last;
    int places[AtOnce];
    for (std::size_t first = 0; first < count; first += AtOnce) {
        const std::size_t n = std::min(AtOnce, count - first);
        for (std::size_t i = 0; i < n; ++i) {
            const double place = (values[first + i] - min) / span * steps;
            const double atLeast = place > 0.0 ? place : 0.0;  // no number has the lowest colour
            places[i] = static_cast<int>(atLeast < highest ? atLeast : highest);
        }
        for (std::size_t i = 0; i < n; ++i) {
            std::memcpy(pixels + 3 * (first + i), colors.table[places[i]].data(), 3);
        }
    }
}

}  // namespace

void Analyzed2DRes::dropPicture() {
    m_toPaint.reset();
    m_visibleRange.reset();
    m_robustRange.reset();
    m_image.reset();
    m_pixels = {};
    m_valid = false;
    m_follows = false;
}

Analyzed2DRes::Picture Analyzed2DRes::pictureOfNow() const {
    Picture picture{shownArray(), m_grid.width, m_grid.height, std::nullopt, showsGaps()};
    if (!m_mask) {
        picture.range = rangeInUse();
    }
    return picture;
}

void Analyzed2DRes::genImg() {
    dropPicture();
    if (!shownArray().isEmpty()) {
        // The values of this moment: setting others leaves these as they are. A mask is looked at
        // when the picture is, since one mask is that of many images.
        m_toPaint = pictureOfNow();
        m_valid = true;
    }
}

void Analyzed2DRes::followUp() {
    m_robustRange.reset();
    if (!m_follows) {
        dropPicture();
        m_valid = m_follows = !shownArray().isEmpty();
        return;
    }
    if (!m_image) {
        return;  // nobody has looked
    }
    const Picture picture = pictureOfNow();
    const Range range = picture.range ? *picture.range : rangeInUse();
    const bool isSame = range.min == m_painted.min && range.max == m_painted.max;
    const PixelRange rows =
        clipped(isSame ? m_firstNew : 0, isSame ? m_endNew - 1 : picture.height, picture.height);
    paintRows(picture, range, static_cast<int>(rows.first), static_cast<int>(rows.last) + 1);
    wrapPixels(picture.width, picture.height);
}

void Analyzed2DRes::paint(const Picture& picture) const {
    const Range range = picture.range ? *picture.range : rangeInUse();
    askForMemory(3 * quint64(picture.values.size()));
    m_pixels.resize(3 * static_cast<std::size_t>(picture.values.size()));
    paintRows(picture, range, 0, picture.height);
    wrapPixels(picture.width, picture.height);
}

void Analyzed2DRes::paintRows(const Picture& picture, const Range& range, int first,
                              int end) const {
    const auto width = static_cast<std::size_t>(picture.width);
    for (int y = first; y < end; ++y) {
        const std::size_t start = static_cast<std::size_t>(y) * width;
        const double* const values = picture.values.constData() + start;
        uchar* const pixels = m_pixels.data() + 3 * start;
        paintRow(values, width, range.min, range.max - range.min, pixels);
        for (std::size_t x = 0; picture.marksGaps && x < width; ++x) {
            if (std::isnan(values[x]) || isBlank(start + x)) {
                std::fill_n(pixels + 3 * x, 3, GapGrey);
            }
        }
    }
    m_painted = range;
    m_firstNew = m_endNew = 0;
}

/// A picture of its own even where the pixels were there before: who keeps a scaled one sees that
/// it has changed.
void Analyzed2DRes::wrapPixels(int width, int height) const {
    m_image =
        std::make_unique<QImage>(m_pixels.data(), width, height, 3 * width, QImage::Format_RGB888);
    setPictureResolution(m_image.get());
}

QImage* Analyzed2DRes::img() const {
    if (m_toPaint) {
        paint(*m_toPaint);
        m_toPaint.reset();
    } else if (m_follows && !m_image) {
        paint(pictureOfNow());
    }
    return m_image.get();
}
