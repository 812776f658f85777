#include "frames/DarkFrame.h"

#include <algorithm>

#include "base/Numbers.h"
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
    const PixelRange columns = clippedAround(x, halfWidth, m_width);
    const PixelRange lines = clippedAround(y, halfHeight, m_height);
    double sum = 0.0;
    for (qint64 r = lines.first; r <= lines.last; ++r) {
        const double* row = m_mean.data() + r * m_width;
        for (qint64 c = columns.first; c <= columns.last; ++c) {
            sum += row[c];
        }
    }
    return sum;
}

void DarkFrame::copyRow(int x, int y, int count, double* sums) const {
    const int inside = y < 0 || y >= m_height ? 0 : std::clamp(m_width - x, 0, count);
    if (inside > 0) {
        const double* const row = m_mean.data() + qint64(y) * m_width + x;
        std::copy(row, row + inside, sums);
    }
    std::fill(sums + inside, sums + count, 0.0);
}
