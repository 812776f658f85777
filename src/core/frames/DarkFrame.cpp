#include "frames/DarkFrame.h"

#include <algorithm>

#include "base/LargeMemory.h"
#include "base/Numbers.h"
#include "frames/CountFile.h"
#include "frames/FrameSet.h"

namespace {

void add(const quint16* counts, std::size_t n, double* sums) {
    for (std::size_t i = 0; i < n; ++i) {
        sums[i] += counts[i];
    }
}

}  // namespace

bool DarkFrame::fits(const TiffData& frame, int width, int height) {
    return width > 0 && height > 0 && frame.width == static_cast<quint32>(width) &&
           frame.height == static_cast<quint32>(height);
}

DarkFrame::DarkFrame(const FrameSet& frames, int width, int height) {
    const std::size_t columns = static_cast<std::size_t>(width);
    for (int i = 0; i < frames.size() && m_problem.isEmpty(); ++i) {
        const TiffData& frame = *frames.at(i);
        if (!fits(frame, width, height)) {
            continue;
        }
        if (m_mean.empty()) {
            askForMemory(sizeof(double) * quint64(width) * quint64(height));
        }
        m_mean.resize(columns * static_cast<std::size_t>(height), 0.0);
        if (frame.isInFile()) {
            m_problem = read(frame);
        } else {
            // Whole numbers: exact until the division.
            for (std::size_t r = 0; r < std::min<std::size_t>(frame.height, frame.rows.size());
                 ++r) {
                add(frame.rows[r], columns, m_mean.data() + r * columns);
            }
        }
        ++m_frameCount;
    }
    if (!m_problem.isEmpty()) {
        m_frameCount = 0;
        m_mean = {};
    } else if (m_frameCount > 0) {
        m_width = width;
        m_height = height;
        for (double& mean : m_mean) {
            mean /= m_frameCount;
        }
    }
}

/// Some rows at a time: a frame more would be in memory, else.
QString DarkFrame::read(const TiffData& frame) {
    constexpr std::size_t CountsAtATime = 1 << 19;
    const std::size_t width = frame.width;
    const auto step = static_cast<quint32>(std::max<std::size_t>(1, CountsAtATime / width));
    std::vector<quint16> counts(width * std::min(step, frame.height));
    for (quint32 y = 0; y < frame.height; y += step) {
        const quint32 rows = std::min(step, frame.height - y);
        const QString problem = frame.countFile->read(y, rows, counts.data());
        if (!problem.isEmpty()) {
            return problem;
        }
        add(counts.data(), rows * width, m_mean.data() + y * width);
    }
    return frame.countFile->change();
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
