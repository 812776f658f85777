#include "measurement/RunParts.h"

#include <QCoreApplication>
#include <utility>

#include "measurement/Share.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(RunParts)
};

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

}  // namespace

void RunParts::begin() {
    m_told = {};
    m_store.reset();
}

KeptRows RunParts::rowsOf(const KeyedWork& work, int columns, int valuesPerBin, BinRaster* raster) {
    KeptRows rows;
    rows.store = storeOf(work, columns, valuesPerBin);
    shareOut(&rows, raster);
    return rows;
}

/// Null: nothing is kept.
std::shared_ptr<PartStore> RunParts::storeOf(const KeyedWork& work, int columns, int valuesPerBin) {
    if (!m_folder) {
        return nullptr;
    }
    const QString changed = changedSinceLoaded(work.run.inputs);
    if (!changed.isEmpty()) {
        m_told.warnings << Texts::tr(
                               "%1: has changed since it was loaded, the work folder is not "
                               "used for this analysis")
                               .arg(changed);
        return nullptr;
    }
    m_store = m_folder->parts(keyOf(work), PartCut(work.raster), columns, valuesPerBin);
    return m_store;
}

/// Unless all parts are there, a share makes its own and no more.
void RunParts::shareOut(KeptRows* rows, BinRaster* raster) {
    m_shared.reset();
    if (m_share == nullptr) {
        return;
    }
    PartStore* const store = rows->store.get();
    if (store == nullptr) {  // which has been said
        m_told.failures += std::exchange(m_told.warnings, {});
    } else if (!store->changedInput().isEmpty()) {
        m_told.failures << Texts::tr("changed since other parts of this analysis were made: %1")
                               .arg(store->changedInput());
    } else if (store->isComplete()) {
        return;
    }
    m_shared = SharedPass();
    if (!m_told.failed()) {
        const Share::Parts own = m_share->partsOf(store->cut().parts());
        m_shared->ownsAny = !own.isEmpty();
        for (int part = own.first; part < own.end; ++part) {
            if (!store->has(part) || !store->read(part)) {
                ++m_shared->toMake;
                m_shared->rows += store->cut().end(part) - store->cut().first(part);
            }
        }
        rows->onlyMakes = [own](int part) { return part >= own.first && part < own.end; };
    }
    if (m_shared->toMake == 0) {
        raster->rows = 0;
    }
}

void RunParts::passEnded() {
    if (m_store) {
        m_told += m_store->told();
        if (m_shared && !m_store->writingFault().isEmpty()) {
            m_told.failures += std::exchange(m_told.warnings, {});
        }
        m_store.reset();
    }
}

Outcome RunParts::end(bool isMade) {
    Outcome outcome = std::exchange(m_told, {});
    if (const auto shared = std::exchange(m_shared, std::nullopt)) {
        if (isMade && !outcome.failed()) {
            m_share->endPass(shared->toMake, shared->ownsAny);
        } else {
            m_share->endFailed();
        }
        outcome.endsBatch = true;
    }
    return outcome;
}
