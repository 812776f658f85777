#include "absorption/RowEvaluation.h"

#include <algorithm>
#include <bitset>
#include <cstdlib>
#include <limits>

#include "absorption/AbsorptionSource.h"
#include "base/Numbers.h"
#include "spectra/Lanes.h"

namespace {

constexpr int PackSize = lanes::Count;
constexpr unsigned All = (1u << PackSize) - 1;

// Bytes of the counts of a few bins over all frames that a core keeps near itself.
constexpr std::size_t NearMemory = std::size_t(1) << 18;

/// Rows of pixels of rows of bins first .. end - 1; some lie outside the image at its edges.
PixelRange linesOf(const BinRaster& raster, int first, int end) {
    const qint64 half = std::abs(qint64(raster.halfHeight));
    return {raster.y(first) - half, raster.y(end - 1) + half};
}

int bitsIn(unsigned bits) {
    return static_cast<int>(std::bitset<lanes::Count>(bits).count());
}

}  // namespace

RowEvaluation::RowEvaluation(const AbsorptionSource& source, const BinRaster& raster,
                             int valuesPerBin, const RasterPass::Evaluate& evaluate)
    : m_raster(raster),
      m_valuesPerBin(static_cast<std::size_t>(valuesPerBin)),
      m_evaluate(evaluate),
      m_bins(source, raster.firstX, raster.stepX, raster.x(raster.columns - 1) + 1,
             raster.halfWidth, raster.halfHeight),
      m_mu(static_cast<std::size_t>(source.energyCount()) * PackSize) {
    const std::size_t energies = static_cast<std::size_t>(source.energyCount());
    m_packs = static_cast<int>(
        std::max<std::size_t>(4, NearMemory / (2 * sizeof(double) * PackSize * (energies + 1))));
}

void RowEvaluation::read(int first, int end, int firstBehind, int endBehind) {
    const PixelRange lines = linesOf(m_raster, first, end);
    m_bins.band().read(lines.first, lines.last);
    if (firstBehind < endBehind) {
        const PixelRange behind = linesOf(m_raster, firstBehind, endBehind);
        m_bins.band().willRead(behind.first, behind.last);
    }
}

std::vector<Saturated> RowEvaluation::saturated(int row) {
    const PixelRange lines = linesOf(m_raster, row, row + 1);
    return m_bins.band().saturated(lines.first, lines.last);
}

RasterPass::Tally RowEvaluation::row(int row, std::vector<double>* values) {
    m_tally = {};
    const std::size_t size = static_cast<std::size_t>(m_raster.columns) * m_valuesPerBin;
    if (m_raster.inside) {
        values->assign(size, std::numeric_limits<double>::quiet_NaN());
    } else {
        values->resize(size);
    }
    for (int first = 0; first < m_raster.columns; first += m_packs * PackSize) {
        some(row, first, std::min(m_packs * PackSize, m_raster.columns - first), values);
    }
    return m_tally;
}

/// The bins of a pack that are inside, a bit for each.
unsigned RowEvaluation::inner(int row, int first, int spectra) const {
    if (!m_raster.inside) {
        return All >> (PackSize - spectra);
    }
    unsigned bits = 0;
    for (int l = 0; l < spectra; ++l) {
        bits |= m_raster.holds(first + l, row) ? 1u << l : 0u;
    }
    return bits;
}

/// Bins side by side: only from the first pack with one inside to the last such pack.
void RowEvaluation::some(int row, int first, int count, std::vector<double>* values) {
    int end = first + count;
    const auto isOutside = [&](int pack) {
        return inner(row, pack, std::min(PackSize, first + count - pack)) == 0;
    };
    while (first < end && isOutside(first)) {
        first += PackSize;
        count -= PackSize;
    }
    while (first < end && isOutside((end - 1) / PackSize * PackSize)) {
        end = (end - 1) / PackSize * PackSize;
    }
    if (first >= end) {
        return;
    }
    m_bins.sum(m_raster.y(row), first, end - first);
    for (int bin = 0; bin < end - first; bin += PackSize) {
        pack(row, first, bin, std::min(PackSize, end - first - bin), values);
    }
}

void RowEvaluation::pack(int row, int first, int bin, int spectra, std::vector<double>* values) {
    const unsigned wanted = inner(row, first + bin, spectra);
    if (wanted == 0) {
        return;
    }
    bool lacksCounts[PackSize];
    m_bins.formPack(bin, m_mu.data(), lacksCounts);
    unsigned lacking = 0;
    for (int l = 0; l < spectra; ++l) {
        const bool isInside = (wanted >> l & 1u) != 0;
        lacking |= isInside && lacksCounts[l] ? 1u << l : 0u;
        lacksCounts[l] = lacksCounts[l] || !isInside;
    }
    double* const at = &(*values)[static_cast<std::size_t>(first + bin) * m_valuesPerBin];
    const RasterPass::Found found =
        m_evaluate({m_mu.data(), lacksCounts, row, first + bin, spectra, m_bins.counts(bin)}, at);
    for (int l = 0; l < spectra; ++l) {
        if ((wanted >> l & 1u) == 0) {
            std::fill_n(at + static_cast<std::size_t>(l) * m_valuesPerBin, m_valuesPerBin,
                        std::numeric_limits<double>::quiet_NaN());
        }
    }
    m_tally += {bitsIn(wanted), bitsIn(lacking), bitsIn(found.withoutJump & wanted),
                bitsIn(found.withoutLines & wanted)};
}
