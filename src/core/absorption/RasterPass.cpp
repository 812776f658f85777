#include "absorption/RasterPass.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "absorption/AbsorptionSource.h"
#include "absorption/RowEvaluation.h"

namespace {

// Rows that may be finished before they are taken: enough that a thread seldom waits.
constexpr std::size_t RowsAhead = 8;

}  // namespace

RasterPass::RasterPass(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
                       std::vector<Evaluate> evaluators, std::function<void()> ready)
    : RasterPass(source, raster, {0, raster.rows}, valuesPerBin, std::move(evaluators),
                 std::move(ready)) {}

RasterPass::RasterPass(const AbsorptionSource& source, const BinRaster& raster, const Rows& rows,
                       int valuesPerBin, std::vector<Evaluate> evaluators,
                       std::function<void()> ready)
    : m_source(source),
      m_raster(raster),
      m_end(std::min(rows.end, raster.rows)),
      m_valuesPerBin(valuesPerBin),
      m_evaluators(std::move(evaluators)),
      m_ready(std::move(ready)),
      m_slots(m_evaluators.size() + RowsAhead),
      m_begun(rows.first),
      m_taken(rows.first) {
    m_threads.reserve(m_evaluators.size());
    try {
        for (const Evaluate& evaluate : m_evaluators) {
            m_threads.emplace_back([this, &evaluate] { work(evaluate); });
        }
    } catch (const std::exception&) {
        // No thread or no memory for it: the rows are shared out among the threads that there are.
    }
    if (m_threads.empty()) {
        fail(Failure::NoThread);
    }
}

RasterPass::~RasterPass() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
    }
    m_roomMade.notify_all();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

void RasterPass::work(const Evaluate& evaluate) {
    try {
        evaluateRows(evaluate);
        return;
    } catch (const std::bad_alloc&) {
        fail(Failure::Memory);
    } catch (const std::length_error&) {
        fail(Failure::Memory);
    }
}

void RasterPass::fail(Failure why) {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_failure = why;
        m_stopped = true;
    }
    m_roomMade.notify_all();
    m_rowDone.notify_all();
    if (m_ready) {
        m_ready();
    }
}

void RasterPass::evaluateRows(const Evaluate& evaluate) {
    RowEvaluation evaluation(m_source, m_raster, m_valuesPerBin, evaluate);
    std::vector<double> values;
    int row = 0;
    while (nextRow(&row)) {
        const Tally tally = evaluation.row(row, &values);
        finish(row, tally, &values);
    }
}

bool RasterPass::nextRow(int* row) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_roomMade.wait(lock, [this] {
        return m_stopped || m_begun >= m_end ||
               static_cast<std::size_t>(m_begun - m_taken) < m_slots.size();
    });
    if (m_stopped || m_begun >= m_end) {
        return false;
    }
    *row = m_begun++;
    slotOf(*row).row = *row;
    slotOf(*row).done = false;
    return true;
}

void RasterPass::finish(int row, const Tally& tally, std::vector<double>* values) {
    bool awaited = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        Slot& slot = slotOf(row);
        std::swap(slot.values, *values);
        slot.tally = tally;
        slot.done = true;
        awaited = row == m_taken;
    }
    if (awaited) {
        m_rowDone.notify_all();
        if (m_ready) {
            m_ready();
        }
    }
}

bool RasterPass::isReady() const {
    if (m_failure != Failure::None || m_taken >= m_end) {
        return true;
    }
    const Slot& slot = m_slots[static_cast<std::size_t>(m_taken) % m_slots.size()];
    return slot.done && slot.row == m_taken;
}

RasterPass::Row RasterPass::taken() {
    if (m_failure != Failure::None || m_taken >= m_end) {
        return {};
    }
    const int row = m_taken++;
    Slot& slot = slotOf(row);
    std::swap(m_current, slot.values);
    slot.done = false;
    return {row, m_current.data(), slot.tally, {}};
}

RasterPass::Row RasterPass::take() {
    Row row;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_rowDone.wait(lock, [this] { return isReady(); });
        row = taken();
    }
    m_roomMade.notify_one();
    return row;
}

const double* RasterPass::at(int x, int y) {
    const int column = (x - m_raster.firstX) / std::max(1, m_raster.stepX);
    if (x < m_raster.firstX || column >= m_raster.columns || y < m_raster.firstY ||
        y > m_raster.y(m_end - 1)) {
        return nullptr;
    }
    while (m_row.values == nullptr || m_raster.y(m_row.row) < y) {
        m_row = take();
        if (m_row.values == nullptr) {
            return nullptr;
        }
    }
    return m_row.values + static_cast<std::ptrdiff_t>(column) * m_valuesPerBin;
}

RasterPass::Row RasterPass::tryTake(bool* pending) {
    Row row;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        *pending = !isReady();
        row = *pending ? Row{} : taken();
    }
    m_roomMade.notify_one();
    return row;
}

RasterPass::Failure RasterPass::failure() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_failure;
}
