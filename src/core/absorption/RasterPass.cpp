#include "absorption/RasterPass.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "absorption/AbsorptionSource.h"
#include "absorption/RowEvaluation.h"
#include "base/AddressSpace.h"
#include "base/OneThread.h"
#include "frames/CountFile.h"
#include "frames/TiffData.h"

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
      m_plan(BandPlan::of(source, raster, valuesPerBin, static_cast<int>(m_evaluators.size()))),
      m_ready(std::move(ready)),
      m_slots(static_cast<std::size_t>(usesOneThread() ? std::max(1, rows.end - rows.first)
                                                       : m_plan.results)),
      m_toMake(m_end - rows.first),
      m_begun(rows.first),
      m_told(rows.first),
      m_taken(rows.first) {
    if (usesOneThread()) {
        work(m_evaluators.front());
        return;
    }
    const auto threads = static_cast<std::size_t>(m_plan.threads);
    m_threads.reserve(threads);
    try {
        for (std::size_t i = 0; i < threads && hasRoomForThread(); ++i) {
            m_threads.emplace_back([this, i] { work(m_evaluators[i]); });
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
    } catch (const UnreadCounts& unread) {
        fail(Failure::Read, unread.problem);
    } catch (const std::bad_alloc&) {
        fail(Failure::Memory);
    } catch (const std::length_error&) {
        fail(Failure::Memory);
    }
}

void RasterPass::fail(Failure why, const QString& problem) {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_failure = why;
        m_problem = problem;
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
    Slot made;
    Rows band;
    Rows behind;
    while (nextBand(&band, &behind)) {
        if (m_plan.reads) {
            evaluation.read(band.first, band.end, behind.first, behind.end);
        }
        for (int row = band.first; row < band.end; ++row) {
            made.row = row;
            made.tally = evaluation.row(row, &made.values);
            made.saturated = evaluation.saturated(row);
            if ((m_plan.reads && isLast() && !areFilesTheSame()) || !finish(&made)) {
                return;
            }
        }
    }
}

/// The rows that a thread is to work on next, and those to tell the system of, if any.
bool RasterPass::nextBand(Rows* band, Rows* behind) {
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto rows = [this] { return std::min(m_plan.rows, m_end - m_begun); };
    m_roomMade.wait(lock, [&] {
        return m_stopped || m_begun >= m_end ||
               static_cast<std::size_t>(m_begun - m_taken + rows()) <= m_slots.size();
    });
    if (m_stopped || m_begun >= m_end) {
        return false;
    }
    *band = {m_begun, m_begun + rows()};
    m_begun = band->end;
    *behind = {};
    if (m_plan.reads && m_begun >= m_told - m_plan.ahead / 2) {
        behind->first = std::max(m_told, m_begun);
        m_told = behind->end = std::min(m_end, behind->first + m_plan.ahead);
    }
    for (int row = band->first; row < band->end; ++row) {
        slotOf(row).row = row;
        slotOf(row).done = false;
    }
    return true;
}

/// Counts the rows that are made, one each time: all of them are.
bool RasterPass::isLast() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return --m_toMake == 0;
}

/// What was made of files that are others now is worth nothing.
bool RasterPass::areFilesTheSame() {
    QString change;
    for (const TiffData* frame : m_source.frames()) {
        change = CountBand::isRead(frame) ? frame->countFile->change() : QString();
        if (!change.isEmpty()) {
            break;
        }
    }
    if (!change.isEmpty()) {
        fail(Failure::Read, change);
    }
    return change.isEmpty();
}

/// False where no more rows are wanted.
bool RasterPass::finish(Slot* made) {
    bool awaited = false;
    bool goesOn = true;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        Slot& slot = slotOf(made->row);
        std::swap(slot.values, made->values);
        std::swap(slot.saturated, made->saturated);
        slot.tally = made->tally;
        slot.done = true;
        awaited = made->row == m_taken;
        goesOn = !m_stopped;
    }
    if (awaited) {
        m_rowDone.notify_all();
        if (m_ready) {
            m_ready();
        }
    }
    return goesOn;
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
    return {row, m_current.data(), slot.tally, std::move(slot.saturated)};
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

QString RasterPass::problem() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_problem;
}

RasterPass::Failure RasterPass::failure() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_failure;
}
