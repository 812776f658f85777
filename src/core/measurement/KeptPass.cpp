#include "measurement/KeptPass.h"

#include <QCoreApplication>
#include <new>
#include <utility>

#include "absorption/AbsorptionSource.h"

KeptPass::KeptPass(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
                   std::vector<RasterPass::Evaluate> evaluators, std::function<void()> ready,
                   const KeptRows& rows)
    : m_source(source),
      m_raster(raster),
      m_valuesPerBin(valuesPerBin),
      m_evaluators(std::move(evaluators)),
      m_ready(std::move(ready)),
      m_rows(rows) {
    if (m_rows.store) {
        m_rows.store->begin();
        m_ready();  // the first rows may be there
        return;
    }
    m_passEnd = raster.rows;
    m_pass =
        std::make_unique<RasterPass>(m_source, m_raster, m_valuesPerBin, m_evaluators, m_ready);
}

bool KeptPass::isLeftOut(int part) const {
    return m_rows.onlyMakes && (!m_rows.onlyMakes(part) || m_rows.store->has(part));
}

/// The row behind the missing parts that follow each other from this one on.
int KeptPass::endOfMissing(int part) const {
    const PartCut& cut = m_rows.store->cut();
    int end = part + 1;
    while (end < cut.parts() && !m_rows.store->has(end) && !isLeftOut(end)) {
        ++end;
    }
    return cut.first(end);
}

/// Finds out where the next row comes from; false: there is none.
bool KeptPass::goOn() {
    m_part.reset();
    if (!m_rows.store) {
        return true;  // the pass tells
    }
    if (m_pass && m_next < m_passEnd) {
        return true;
    }
    const PartCut& cut = m_rows.store->cut();
    while (m_next < m_raster.rows && isLeftOut(cut.partOf(m_next))) {
        m_next = cut.end(cut.partOf(m_next));
    }
    if (m_next >= m_raster.rows) {
        return false;
    }
    m_pass.reset();
    const int part = cut.partOf(m_next);
    m_part = m_rows.store->read(part);
    if (!m_part) {
        m_passEnd = endOfMissing(part);
        m_pass =
            std::make_unique<RasterPass>(m_source, m_raster, RasterPass::Rows{m_next, m_passEnd},
                                         m_valuesPerBin, m_evaluators, m_ready);
    }
    return true;
}

KeptPass::Row KeptPass::tryTake(bool* pending) {
    *pending = false;
    if (!(m_part && m_next < m_part->form().rows.end) && !goOn()) {
        return {};
    }
    if (m_part) {
        return {m_part->row(m_next++), true};
    }
    const RasterPass::Row row = m_pass->tryTake(pending);
    if (row.values != nullptr) {
        ++m_next;
        keep(row);
    }
    return {row, false};
}

void KeptPass::keep(const RasterPass::Row& row) {
    if (!m_rows.store || !m_rows.store->writingFault().isEmpty()) {
        return;
    }
    try {
        if (!m_made) {
            m_made.emplace(m_rows.store->form(m_rows.store->cut().partOf(row.row)));
        }
        m_made->add(row, m_rows.toKeep ? m_rows.toKeep(row) : row.values);
    } catch (const std::bad_alloc&) {
        m_made.reset();
        m_rows.store->giveUp(QCoreApplication::translate("Measurement", "memory ran out"));
        return;
    }
    if (m_made->isFull()) {
        m_rows.store->write(std::move(*m_made));
        m_made.reset();
    }
}

void KeptPass::finish() {
    if (m_rows.store) {
        m_rows.store->finishWriting();
    }
}
