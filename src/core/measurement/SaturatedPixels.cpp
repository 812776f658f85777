#include "measurement/SaturatedPixels.h"

#include <cstdlib>
#include <utility>

#include "base/Numbers.h"
#include "measurement/FrameJudgement.h"
#include "measurement/Stack.h"

void SaturatedPixels::begin() {
    m_i1.saturated = 0;
    m_i0.saturated = 0;
    m_pixels = 0;
}

void SaturatedPixels::take(const RasterPass::Row& row, const BinRaster& raster, const QSize& image,
                           int i1Frames) {
    const PixelRange lines = clippedAround(raster.y(row.row), raster.halfHeight, image.height());
    m_pixels +=
        static_cast<quint64>(lines.last - lines.first + 1) * static_cast<quint64>(image.width());
    for (const RasterPass::Saturated& frame : row.saturated) {
        (frame.frame < i1Frames ? m_i1 : m_i0).saturated += frame.pixels;
    }
}

QStringList SaturatedPixels::warnings(const Stack& i1, const Stack& i0) {
    return warningsOf(i1, &m_i1) + warningsOf(i0, &m_i0);
}

QStringList SaturatedPixels::warningsOf(const Stack& stack, Share* share) const {
    const bool isTold = std::exchange(share->toldOf, stack.revision()) == stack.revision();
    if (isTold || !stack.isInFiles() || m_pixels == 0) {
        return {};
    }
    const double pixels = static_cast<double>(m_pixels) * stack.size();
    const QString text = saturatedText(stack, static_cast<double>(share->saturated) / pixels);
    return text.isEmpty() ? QStringList() : QStringList(text);
}
