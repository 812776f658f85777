#include "absorption/AbsorptionSource.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "frames/DarkFrame.h"
#include "frames/FrameSet.h"
#include "spectra/Logarithm.h"

namespace {

/// Rows whose counts a 32-bit column sum holds for certain.
constexpr qint64 RowsPerColumnSum = 65537;

double muT(double s0, double s1) {
    return s0 * s1 > 0.0 ? logarithm(s0 / s1) : 1.0;
}

}  // namespace

AbsorptionSource::AbsorptionSource(const FrameSet& i1, const FrameSet& i0, int width, int height,
                                   const DarkFrame* dark)
    : m_i1(i1), m_i0(i0), m_width(width), m_height(height), m_dark(dark) {
    for (int i = 0; i < i1.size(); ++i) {
        const double e = i1.at(i)->energy;
        m_energies.push_back(e);
        if (i0.size() >= 2) {
            const int first = bracketOf(i0, e);
            const double e0 = i0.at(first)->energy;
            m_brackets.push_back({first, e - e0, i0.at(first + 1)->energy - e0});
        }
    }
}

double AbsorptionSource::interpolated(const Bracket& bracket, double y0, double y1) const {
    // lerp() with the differences taken beforehand; e1 - e0 is 0 exactly when they are equal.
    return bracket.span == 0.0 ? 0.5 * (y0 + y1)
                               : bracket.fromFirst * ((y1 - y0) / bracket.span) + y0;
}

double AbsorptionSource::darkSum(int x, int y, int halfWidth, int halfHeight) const {
    // Taking 0.0 off a sum leaves its bits as they are.
    return m_dark != nullptr ? m_dark->boxSum(x, y, halfWidth, halfHeight) : 0.0;
}

Spectrum AbsorptionSource::spectrumAt(int x, int y, int halfWidth, int halfHeight) const {
    Spectrum spectrum;
    if (!isInside(x, y)) {
        return spectrum;
    }
    const auto boxSum = [&](const FrameSet& set, int frame) {
        return set.at(frame)->boxSum(x, y, halfWidth, halfHeight);
    };
    const double dark = darkSum(x, y, halfWidth, halfHeight);
    // Neighbouring I1 energies share their I0 frames: each is summed once.
    std::vector<double> i0Sums(static_cast<std::size_t>(m_i0.size()));
    for (int i = 0; i < m_i0.size(); ++i) {
        i0Sums[static_cast<std::size_t>(i)] = boxSum(m_i0, i);
    }
    spectrum.assignWith(energyCount(), [&](Spoint* points) {
        for (std::size_t i = 0; i < m_energies.size(); ++i) {
            const double s1 = boxSum(m_i1, static_cast<int>(i)) - dark;
            double s0 = 1.0;
            if (!m_brackets.empty()) {
                const std::size_t first = static_cast<std::size_t>(m_brackets[i].first);
                s0 = interpolated(m_brackets[i], i0Sums[first], i0Sums[first + 1]) - dark;
            } else if (!i0Sums.empty()) {
                s0 = i0Sums[0] - dark;
            }
            points[i] = {m_energies[i], muT(s0, s1)};
        }
    });
    return spectrum;
}

BlockRowSpectra::BlockRowSpectra(const AbsorptionSource& source, int firstX, int stepX, int endX,
                                 int halfWidth, int halfHeight)
    : m_source(source),
      m_firstX(firstX),
      m_stepX(std::max(1, stepX)),
      m_count(0),
      m_halfWidth(halfWidth),
      m_halfHeight(halfHeight),
      m_kernels(lanes::kernels(lanes::bestUnits())) {
    const int end = std::min(endX, source.m_width);
    if (firstX >= 0 && firstX < end) {
        m_count = (end - 1 - firstX) / m_stepX + 1;
    }
}

Spectrum BlockRowSpectra::at(int x, int y) {
    const bool onRaster = m_source.isInside(x, y) && m_count > 0 && x >= m_firstX &&
                          (x - m_firstX) % m_stepX == 0 && (x - m_firstX) / m_stepX < m_count;
    if (!onRaster) {
        return m_source.spectrumAt(x, y, m_halfWidth, m_halfHeight);
    }
    const int block = (x - m_firstX) / m_stepX;
    if (y != m_row) {
        formRow(y);
    }
    Spectrum spectrum;
    const std::size_t n = m_source.m_energies.size();
    spectrum.assign(m_source.m_energies.data(),
                    m_values.data() + static_cast<std::size_t>(block) * n, static_cast<int>(n));
    return spectrum;
}

void BlockRowSpectra::sumBlocks(const TiffData& frame, int y, double* sums) {
    const qint64 halfWidth = std::abs(static_cast<qint64>(m_halfWidth));
    const qint64 halfHeight = std::abs(static_cast<qint64>(m_halfHeight));
    const qint64 firstX = m_firstX + static_cast<qint64>(m_sumFirst) * m_stepX;
    const qint64 lastX = firstX + static_cast<qint64>(m_sumCount - 1) * m_stepX;
    const qint64 top = std::max<qint64>(0, y - halfHeight);
    const qint64 bottom =
        std::min<qint64>(static_cast<qint64>(frame.rows.size()) - 1, y + halfHeight);
    // Only the columns that some block covers.
    const qint64 from = std::max<qint64>(0, firstX - halfWidth);
    const qint64 to = std::min<qint64>(static_cast<qint64>(frame.width) - 1, lastX + halfWidth);
    if (to < from || bottom < top) {
        std::fill(sums, sums + m_sumCount, 0.0);
        return;
    }
    if (bottom - top >= RowsPerColumnSum) {
        for (int block = 0; block < m_sumCount; ++block) {
            sums[block] = frame.boxSum(static_cast<int>(firstX + qint64(block) * m_stepX), y,
                                       m_halfWidth, m_halfHeight);
        }
        return;
    }
    if (halfWidth == 0 && top == bottom && m_stepX == 1) {
        const quint16* const row = frame.rows[static_cast<std::size_t>(top)] + from;
        const qint64 inside = to - from + 1;
        m_kernels.fromCounts(row, inside, sums);
        std::fill(sums + inside, sums + m_sumCount, 0.0);
        return;
    }
    // Whole numbers: the order of summing does not change the result.
    m_columns.assign(static_cast<std::size_t>(to - from + 1), 0);
    quint32* const columns = m_columns.data();
    const std::size_t columnCount = m_columns.size();
    for (qint64 r = top; r <= bottom; ++r) {
        const quint16* row = frame.rows[static_cast<std::size_t>(r)] + from;
        for (std::size_t c = 0; c < columnCount; ++c) {
            columns[c] += row[c];
        }
    }
    for (int block = 0; block < m_sumCount; ++block) {
        const qint64 x = firstX + static_cast<qint64>(block) * m_stepX;
        const qint64 left = std::max(from, x - halfWidth);
        const qint64 right = std::min(to, x + halfWidth);
        quint64 sum = 0;
        for (qint64 c = left; c <= right; ++c) {
            sum += columns[c - from];
        }
        sums[block] = static_cast<double>(sum);
    }
}

void BlockRowSpectra::sum(int y, int firstBlock, int blocks) {
    m_sumFirst = firstBlock;
    m_sumCount = blocks;
    const std::size_t i0Frames = static_cast<std::size_t>(m_source.m_i0.size());
    const std::size_t i1Frames = m_source.m_energies.size();
    m_stride = (static_cast<std::size_t>(blocks) + lanes::Count - 1) / lanes::Count * lanes::Count;
    m_i0Sums.resize(m_stride * i0Frames);
    m_i1Sums.resize(m_stride * i1Frames);
    for (std::size_t i = 0; i < i0Frames; ++i) {
        sumBlocks(*m_source.m_i0.at(static_cast<int>(i)), y, &m_i0Sums[i * m_stride]);
    }
    for (std::size_t i = 0; i < i1Frames; ++i) {
        sumBlocks(*m_source.m_i1.at(static_cast<int>(i)), y, &m_i1Sums[i * m_stride]);
    }
    const double* dark = nullptr;
    if (m_source.m_dark != nullptr) {
        m_darkSums.resize(m_stride);
        for (int block = 0; block < blocks; ++block) {
            m_darkSums[static_cast<std::size_t>(block)] = m_source.darkSum(
                m_firstX + (firstBlock + block) * m_stepX, y, m_halfWidth, m_halfHeight);
        }
        dark = m_darkSums.data();
    }
    m_sums.resize(i1Frames);
    for (std::size_t i = 0; i < i1Frames; ++i) {
        lanes::Sums& sums = m_sums[i];
        sums = {&m_i1Sums[i * m_stride], nullptr, nullptr, dark, 0.0, 0.0};
        if (!m_source.m_brackets.empty()) {
            const AbsorptionSource::Bracket& bracket = m_source.m_brackets[i];
            sums.before = &m_i0Sums[static_cast<std::size_t>(bracket.first) * m_stride];
            sums.after = sums.before + m_stride;
            sums.fromBefore = bracket.fromFirst;
            sums.span = bracket.span;
        } else if (i0Frames == 1) {
            sums.before = m_i0Sums.data();
        }
    }
}

void BlockRowSpectra::formPack(int block, double* mu) const {
    m_kernels.muT(m_sums.data(), static_cast<int>(m_sums.size()), static_cast<std::size_t>(block),
                  mu);
}

void BlockRowSpectra::formRow(int y) {
    // Few enough bins at a time for their sums to stay in the fast part of the memory.
    constexpr int BlocksAtATime = 32 * lanes::Count;
    m_row = y;
    const std::size_t energies = m_source.m_energies.size();
    m_values.resize(static_cast<std::size_t>(m_count) * energies);
    m_pack.resize(energies * lanes::Count);
    for (int first = 0; first < m_count; first += BlocksAtATime) {
        sum(y, first, std::min(BlocksAtATime, m_count - first));
        for (int block = 0; block < m_sumCount; block += lanes::Count) {
            formPack(block, m_pack.data());
            const int formed = std::min(lanes::Count, m_sumCount - block);
            for (int l = 0; l < formed; ++l) {
                double* const values =
                    &m_values[static_cast<std::size_t>(first + block + l) * energies];
                for (std::size_t e = 0; e < energies; ++e) {
                    values[e] = m_pack[e * lanes::Count + static_cast<std::size_t>(l)];
                }
            }
        }
    }
}
