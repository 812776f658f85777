#include "absorption/BinRowSpectra.h"

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "absorption/AbsorptionSource.h"
#include "base/Numbers.h"
#include "frames/DarkFrame.h"
#include "frames/FrameSet.h"

namespace {

/// Rows whose counts a 32-bit column sum holds for certain.
constexpr qint64 RowsPerColumnSum = 65537;

}  // namespace

BinRowSpectra::BinRowSpectra(const AbsorptionSource& source, int firstX, int stepX, int endX,
                             int halfWidth, int halfHeight)
    : m_source(source),
      m_band(source),
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

Spectrum BinRowSpectra::at(int x, int y) {
    const bool onRaster = m_source.isInside(x, y) && m_count > 0 && x >= m_firstX &&
                          (x - m_firstX) % m_stepX == 0 && (x - m_firstX) / m_stepX < m_count;
    if (!onRaster) {
        return m_source.spectrumAt(x, y, m_halfWidth, m_halfHeight);
    }
    const int bin = (x - m_firstX) / m_stepX;
    if (y != m_row) {
        formRow(y);
    }
    Spectrum spectrum;
    const std::size_t n = m_source.m_energies.size();
    spectrum.assign(m_source.m_energies.data(), m_values.data() + static_cast<std::size_t>(bin) * n,
                    static_cast<int>(n));
    return spectrum;
}

void BinRowSpectra::sumBins(std::size_t frame, int y, double* sums) {
    const qint64 width = m_band.width(frame);
    const qint64 firstX = m_firstX + static_cast<qint64>(m_sumFirst) * m_stepX;
    const qint64 lastX = firstX + static_cast<qint64>(m_sumCount - 1) * m_stepX;
    const qint64 halfWidth = std::abs(static_cast<qint64>(m_halfWidth));
    const PixelRange lines = clippedAround(y, m_halfHeight, m_band.height(frame));
    // Only the columns that some bin covers.
    const PixelRange covered = clipped(firstX - halfWidth, lastX + halfWidth, width);
    const qint64 from = covered.first;
    if (covered.isEmpty() || lines.isEmpty()) {
        std::fill(sums, sums + m_sumCount, 0.0);
        return;
    }
    if (halfWidth == 0 && lines.first == lines.last && m_stepX == 1) {
        const quint16* const row = m_band.row(frame, lines.first) + from;
        const qint64 inside = covered.last - from + 1;
        m_kernels.fromCounts(row, inside, sums);
        std::fill(sums + inside, sums + m_sumCount, 0.0);
        return;
    }
    std::fill(sums, sums + m_sumCount, 0.0);
    for (qint64 line = lines.first; line <= lines.last; line += RowsPerColumnSum) {
        sumColumns(frame, {line, std::min(lines.last, line + RowsPerColumnSum - 1)}, covered);
        const quint32* const columns = m_columns.data();
        for (int bin = 0; bin < m_sumCount; ++bin) {
            const qint64 x = firstX + static_cast<qint64>(bin) * m_stepX;
            const PixelRange own = clipped(x - halfWidth, x + halfWidth, width);
            quint64 sum = 0;
            for (qint64 c = own.first; c <= own.last; ++c) {
                sum += columns[c - from];
            }
            sums[bin] += static_cast<double>(sum);
        }
    }
}

void BinRowSpectra::sumColumns(std::size_t frame, const PixelRange& lines,
                               const PixelRange& covered) {
    // Whole numbers: the order of summing does not change the result.
    m_columns.assign(static_cast<std::size_t>(covered.last - covered.first + 1), 0);
    quint32* const columns = m_columns.data();
    const std::size_t columnCount = m_columns.size();
    for (qint64 r = lines.first; r <= lines.last; ++r) {
        const quint16* row = m_band.row(frame, r) + covered.first;
        for (std::size_t c = 0; c < columnCount; ++c) {
            columns[c] += row[c];
        }
    }
}

void BinRowSpectra::sumI0(int y, std::size_t energy) {
    const AbsorptionSource::I0Energy& i0 = m_source.m_i0[energy];
    double* const sums = &m_i0Sums[energy * m_stride];
    sumBins(i0.place, y, sums);
    if (i0.frames.size() == 1) {
        return;
    }
    m_moreSums.resize(m_stride);
    for (std::size_t f = 1; f < i0.frames.size(); ++f) {
        sumBins(i0.place + f, y, m_moreSums.data());
        std::transform(sums, sums + m_sumCount, m_moreSums.data(), sums, std::plus<>());
    }
    const auto n = static_cast<double>(i0.frames.size());
    std::transform(sums, sums + m_sumCount, sums, [n](double sum) { return sum / n; });
}

void BinRowSpectra::sum(int y, int firstBin, int bins) {
    m_band.need(y - std::abs(qint64(m_halfHeight)), y + std::abs(qint64(m_halfHeight)));
    m_sumFirst = firstBin;
    m_sumCount = bins;
    const std::size_t i0Energies = m_source.m_i0.size();
    const std::size_t i1Frames = m_source.m_i1.size();
    m_stride = (static_cast<std::size_t>(bins) + lanes::Count - 1) / lanes::Count * lanes::Count;
    m_i0Sums.resize(m_stride * i0Energies);
    m_i1Sums.resize(m_stride * i1Frames);
    for (std::size_t i = 0; i < i0Energies; ++i) {
        sumI0(y, i);
    }
    for (std::size_t i = 0; i < i1Frames; ++i) {
        sumBins(i, y, &m_i1Sums[i * m_stride]);
    }
    const double* dark = nullptr;
    if (m_source.m_dark != nullptr) {
        m_darkSums.resize(m_stride);
        if (m_halfWidth == 0 && m_halfHeight == 0 && m_stepX == 1) {
            m_source.m_dark->copyRow(m_firstX + firstBin, y, bins, m_darkSums.data());
        } else {
            for (int bin = 0; bin < bins; ++bin) {
                m_darkSums[static_cast<std::size_t>(bin)] = m_source.darkSum(
                    m_firstX + (firstBin + bin) * m_stepX, y, m_halfWidth, m_halfHeight);
            }
        }
        dark = m_darkSums.data();
    }
    m_sums.resize(i1Frames);
    for (std::size_t i = 0; i < i1Frames; ++i) {
        lanes::Sums& sums = m_sums[i];
        sums = {&m_i1Sums[i * m_stride], nullptr, nullptr, dark, 0.0, 0.0};
        if (!m_source.m_brackets.empty()) {
            const AbsorptionSource::Bracket& bracket = m_source.m_brackets[i];
            sums.before = &m_i0Sums[bracket.first * m_stride];
            sums.after = bracket.isInterpolated ? sums.before + m_stride : nullptr;
            sums.fromBefore = bracket.fromFirst;
            sums.span = bracket.span;
        }
    }
}

int BinRowSpectra::formPack(int bin, double* mu, bool* lacksCounts) const {
    m_kernels.muT(m_sums.data(), static_cast<int>(m_sums.size()), static_cast<std::size_t>(bin), mu,
                  lacksCounts);
    const int bins = std::min(lanes::Count, m_sumCount - bin);
    return static_cast<int>(std::count(lacksCounts, lacksCounts + bins, true));
}

lanes::Counts BinRowSpectra::counts(int bin) const {
    lanes::Counts counts{m_sums.data(), m_source.m_shares.data(), static_cast<std::size_t>(bin)};
    if (m_source.m_haveSharedI0) {
        counts.i0Energies = static_cast<int>(m_source.m_i0.size());
        counts.i0 = m_i0Sums.data();
        counts.i0Stride = m_stride;
        counts.i0PerFrame = m_source.m_i0PerFrame.data();
    }
    return counts;
}

void BinRowSpectra::formRow(int y) {
    // Few enough bins at a time for their sums to stay in the fast part of the memory.
    constexpr int BinsAtATime = 32 * lanes::Count;
    m_row = y;
    const std::size_t energies = m_source.m_energies.size();
    m_values.resize(static_cast<std::size_t>(m_count) * energies);
    m_pack.resize(energies * lanes::Count);
    for (int first = 0; first < m_count; first += BinsAtATime) {
        sum(y, first, std::min(BinsAtATime, m_count - first));
        for (int bin = 0; bin < m_sumCount; bin += lanes::Count) {
            bool lacksCounts[lanes::Count];
            formPack(bin, m_pack.data(), lacksCounts);
            const int formed = std::min(lanes::Count, m_sumCount - bin);
            for (int l = 0; l < formed; ++l) {
                double* const values =
                    &m_values[static_cast<std::size_t>(first + bin + l) * energies];
                for (std::size_t e = 0; e < energies; ++e) {
                    values[e] = m_pack[e * lanes::Count + static_cast<std::size_t>(l)];
                }
            }
        }
    }
}
