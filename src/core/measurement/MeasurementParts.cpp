// Analyses whose rows are kept in a work folder.

#include <utility>

#include "absorption/AbsorptionSource.h"
#include "measurement/Measurement.h"
#include "measurement/Share.h"

namespace {

bool isAsLoaded(const QString& file, const FileStamp& stamp) {
    return stamp.size >= 0 && fileStamp(file) == stamp;
}

/// A file that is another than it was when it was loaded; empty: none is.
QString changedSinceLoaded(const Inputs& in) {
    for (const StackInputs* stack : {&in.i1, &in.i0}) {
        for (const Stack::File& frame : stack->files) {
            if (!isAsLoaded(frame.path, frame.stamp)) {
                return frame.path;
            }
        }
    }
    for (int i = 0; i < in.dark.size(); ++i) {
        if (!isAsLoaded(in.dark[i], in.darkStamps.value(i))) {
            return in.dark[i];
        }
    }
    return QString();
}

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

/// Null: nothing is kept.
std::shared_ptr<PartStore> Measurement::partsOf(bool isMeanSearch, const BinRaster& raster,
                                                int columns, int valuesPerBin) {
    const Run& run = *m_analysis->run();
    if (!m_workFolder || m_rehearsal) {
        return nullptr;
    }
    const QString changed = changedSinceLoaded(run.inputs);
    if (!changed.isEmpty()) {
        m_aboutParts.warnings << tr("%1: has changed since it was loaded, the work folder is not "
                                    "used for this analysis")
                                     .arg(changed);
        return nullptr;
    }
    QVector<XafsSpectrum> spectra;
    if (run.work == Work::Calibrate && m_hasStandard) {
        spectra << m_standard.spectrum;
    }
    for (const auto& reference : m_references) {
        if (run.work == Work::Fit && reference->takesPart()) {
            spectra << reference->spectrum();
        }
    }
    const MapValues map = m_map->image.hasData() ? m_map->image.values() : MapValues();
    m_parts = m_workFolder->parts(keyOf({run, isMeanSearch, raster, spectra, map}), PartCut(raster),
                                  columns, valuesPerBin);
    return m_parts;
}

/// Of a pass over a raster, which is left without rows where a share has nothing to make.
KeptRows Measurement::keptRows(BinRaster* raster) {
    KeptRows rows;
    rows.store = partsOf(false, *raster, raster->columns, m_analysis->valuesPerBin());
    shareOut(&rows, raster);
    return rows;
}

KeptRows Measurement::keptSums(BinRaster* raster, int energies) {
    KeptRows rows;
    rows.store = partsOf(true, *raster, 1, energies + 2);
    shareOut(&rows, raster);
    rows.toKeep = [sums = m_search->sums, energies,
                   values = std::vector<double>()](const RasterPass::Row& row) mutable {
        values = valuesOf(sums->rows[static_cast<std::size_t>(row.row)],
                          static_cast<std::size_t>(energies));
        return static_cast<const double*>(values.data());
    };
    return rows;
}

/// Unless all parts are there, a share makes its own and no more.
void Measurement::shareOut(KeptRows* rows, BinRaster* raster) {
    m_sharedPass.reset();
    if (m_share == nullptr || m_rehearsal) {
        return;
    }
    PartStore* const store = rows->store.get();
    if (store == nullptr) {  // which has been said
        m_aboutParts.failures += std::exchange(m_aboutParts.warnings, {});
    } else if (!store->changedInput().isEmpty()) {
        m_aboutParts.failures << tr("changed since other parts of this analysis were made: %1")
                                     .arg(store->changedInput());
    } else if (store->isComplete()) {
        return;
    }
    m_sharedPass = SharedPass();
    if (!m_aboutParts.failed()) {
        const Share::Parts own = m_share->partsOf(store->cut().parts());
        m_sharedPass->ownsAny = !own.isEmpty();
        for (int part = own.first; part < own.end; ++part) {
            if (!store->has(part) || !store->read(part)) {
                ++m_sharedPass->toMake;
                m_sharedPass->rows += store->cut().end(part) - store->cut().first(part);
            }
        }
        rows->onlyMakes = [own](int part) { return part >= own.first && part < own.end; };
    }
    if (m_sharedPass->toMake == 0) {
        raster->rows = 0;
    }
}

/// The batch ends with a pass of which only parts have been made.
void Measurement::shareEnded() {
    const SharedPass pass = *std::exchange(m_sharedPass, std::nullopt);
    Outcome outcome = std::exchange(m_aboutParts, {});
    if (outcome.failed()) {
        m_share->endFailed();
    } else {
        m_share->endPass(pass.toMake, pass.ownsAny);
    }
    outcome.endsBatch = true;
    const std::unique_ptr<AreaAnalysis> analysis = std::move(m_analysis);
    endAsStopped(analysis);
    emit ended(analysis->run()->work, outcome);
}

void Measurement::takeRow(const KeptPass::Row& taken, const BinRaster& raster) {
    const RasterPass::Row& row = taken.row;
    if (m_sharedPass) {
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

/// What is to be said of the parts of a pass that has ended.
void Measurement::partsEnded() {
    if (m_parts) {
        m_aboutParts += m_parts->told();
        if (m_sharedPass && !m_parts->writingFault().isEmpty()) {
            m_aboutParts.failures += std::exchange(m_aboutParts.warnings, {});
        }
        m_parts.reset();
    }
}
