// The picture of Analyzed2DRes: when it is made, and of which values.

#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/ColorMap.h"
#include "files/PictureResolution.h"
#include "maps/Analyzed2DRes.h"

namespace {
constexpr uchar GapGrey = 128;
}

void Analyzed2DRes::dropPicture() {
    m_toPaint.reset();
    m_visibleRange.reset();
    m_image.reset();
    m_pixels = {};
    m_valid = false;
    m_follows = false;
}

Analyzed2DRes::Picture Analyzed2DRes::pictureOfNow() const {
    Picture picture{shownArray(), m_grid.width, m_grid.height, std::nullopt, m_marksGaps || m_mask};
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
    m_pixels.resize(3 * static_cast<std::size_t>(picture.values.size()));
    paintRows(picture, range, 0, picture.height);
    wrapPixels(picture.width, picture.height);
}

void Analyzed2DRes::paintRows(const Picture& picture, const Range& range, int first,
                              int end) const {
    const ColorScale& colors = resultColors();
    const auto width = static_cast<std::size_t>(picture.width);
    const double* const values = picture.values.constData();
    const std::size_t last = static_cast<std::size_t>(std::max(first, end)) * width;
    uchar* pixel = m_pixels.data() + 3 * static_cast<std::size_t>(first) * width;
    for (std::size_t i = static_cast<std::size_t>(first) * width; i < last; ++i) {
        if (picture.marksGaps && (std::isnan(values[i]) || isBlank(i))) {
            std::fill_n(pixel, 3, GapGrey);
        } else {
            std::memcpy(pixel, colors.at((values[i] - range.min) / (range.max - range.min)), 3);
        }
        pixel += 3;
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
