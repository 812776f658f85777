// Analyses whose rows are kept in a work folder.

#include <utility>

#include "absorption/AbsorptionSource.h"
#include "measurement/Measurement.h"

namespace {

/// The sums of a row as they are kept: mu at each energy, shift, bins.
std::vector<double> valuesOf(const RowSums::Row& row, std::size_t energies) {
    std::vector<double> values = row.mu;
    values.resize(energies, 0.0);
    values.push_back(row.shift);
    values.push_back(row.bins);
    return values;
}

RowSums::Row sumsOf(const double* values, std::size_t energies) {
    RowSums::Row row;
    row.shift = values[energies];
    row.bins = static_cast<int>(values[energies + 1]);
    if (row.bins > 0) {
        row.mu.assign(values, values + energies);
    }
    return row;
}

}  // namespace

/// What the rows of a pass are kept under.
KeyedWork Measurement::keyedWork(bool isMeanSearch, const BinRaster& raster) const {
    const Run& run = *m_analysis->run();
    KeyedWork work{run, isMeanSearch, raster, {}, {}};
    if (!m_parts.folder()) {
        return work;
    }
    if (run.work == Work::Calibrate && m_hasStandard) {
        work.spectra << m_standard.spectrum;
    }
    for (const auto& reference : m_references) {
        if (run.work == Work::Fit && reference->takesPart()) {
            work.spectra << reference->spectrum();
        }
    }
    if (m_map->image.hasData()) {
        work.map = m_map->image.values();
    }
    return work;
}

KeptRows Measurement::keptRows(BinRaster* raster) {
    return m_rehearsal ? KeptRows()
                       : m_parts.rowsOf(keyedWork(false, *raster), raster->columns,
                                        m_analysis->valuesPerBin(), raster);
}

KeptRows Measurement::keptSums(BinRaster* raster, int energies) {
    KeptRows rows = m_rehearsal ? KeptRows()
                                : m_parts.rowsOf(keyedWork(true, *raster), 1, energies + 2, raster);
    rows.toKeep = [sums = m_search->sums, energies,
                   values = std::vector<double>()](const RasterPass::Row& row) mutable {
        values = valuesOf(sums->rows[static_cast<std::size_t>(row.row)],
                          static_cast<std::size_t>(energies));
        return static_cast<const double*>(values.data());
    };
    return rows;
}

/// The batch ends with a pass of which only parts have been made.
void Measurement::shareEnded() {
    const Outcome outcome = m_parts.end(true);
    const std::unique_ptr<AreaAnalysis> analysis = std::move(m_analysis);
    endAsStopped(analysis);
    emit ended(analysis->run()->work, outcome);
}

void Measurement::takeRow(const KeptPass::Row& taken, const BinRaster& raster) {
    const RasterPass::Row& row = taken.row;
    if (m_parts.isOfShare()) {
        return;  // it is kept, no more
    }
    if (!m_search) {
        m_saturated.take(row, raster, m_size, m_i1.size());
        m_analysis->run()->tally += row.tally;
        ++m_analysis->run()->rows;
        m_analysis->take(row, raster);
    } else if (taken.isKept) {
        m_search->sums->rows[static_cast<std::size_t>(row.row)] =
            sumsOf(row.values, static_cast<std::size_t>(source().energyCount()));
    }
}
