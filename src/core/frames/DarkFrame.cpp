#include "frames/DarkFrame.h"

#include <algorithm>
#include <cstdlib>

#include "frames/FrameSet.h"

bool DarkFrame::fits(const TiffData& frame, int width, int height) {
    return width > 0 && height > 0 && frame.width == static_cast<quint32>(width) &&
           frame.height == static_cast<quint32>(height);
}

DarkFrame::DarkFrame(const FrameSet& frames, int width, int height) {
    for (int i = 0; i < frames.size(); ++i) {
        const TiffData& frame = *frames.at(i);
        if (!fits(frame, width, height)) {
            continue;
        }
        const std::size_t columns = static_cast<std::size_t>(width);
        const std::size_t lines = static_cast<std::size_t>(height);
        m_mean.resize(columns * lines, 0.0);
        // Whole numbers: exact until the division.
        for (std::size_t r = 0; r < std::min(lines, frame.rows.size()); ++r) {
            double* sum = m_mean.data() + r * columns;
            for (std::size_t c = 0; c < columns; ++c) {
                sum[c] += frame.rows[r][c];
            }
        }
        ++m_frameCount;
    }
    if (m_frameCount > 0) {
        m_width = width;
        m_height = height;
        for (double& mean : m_mean) {
            mean /= m_frameCount;
        }
    }
}

double DarkFrame::boxSum(int x, int y, int halfWidth, int halfHeight) const {
    const qint64 hw = std::abs(static_cast<qint64>(halfWidth));
    const qint64 hh = std::abs(static_cast<qint64>(halfHeight));
    const qint64 left = std::max<qint64>(0, x - hw);
    const qint64 right = std::min<qint64>(m_width - 1, x + hw);
    const qint64 top = std::max<qint64>(0, y - hh);
    const qint64 bottom = std::min<qint64>(m_height - 1, y + hh);
    double sum = 0.0;
    for (qint64 r = top; r <= bottom; ++r) {
        const double* row = m_mean.data() + r * m_width;
        for (qint64 c = left; c <= right; ++c) {
            sum += row[c];
        }
    }
    return sum;
}
