#include "measurement/RowJob.h"

#include <QElapsedTimer>
#include <new>

#include "absorption/AbsorptionSource.h"

namespace {
constexpr int TurnMilliseconds = 8;   // then other events have theirs
constexpr int TellMilliseconds = 40;  // as often as an eye follows
constexpr int FreeTells = 3;          // the first rows show at once that something goes on
}  // namespace

void RowJob::start(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
                   std::vector<RasterPass::Evaluate> evaluators, const KeptRows& kept) {
    stop();
    m_running = true;
    m_rows = m_rowsTold = m_tells = 0;
    const auto ready = [this, generation = m_generation] { postTakeRows(generation); };
    if (raster.rows > 0 && raster.columns > 0) {
        try {
            m_pass = std::make_unique<KeptPass>(source, raster, valuesPerBin, std::move(evaluators),
                                                ready, kept);
        } catch (const std::bad_alloc&) {
            m_running = false;
            throw;
        }
    } else {
        ready();  // no bin lies inside the image
    }
}

void RowJob::postTakeRows(int generation) {
    m_inbox.post([this, generation] { takeRows(generation); });
}

void RowJob::stop() {
    m_pass.reset();
    m_running = false;
    ++m_generation;
}

bool RowJob::isTimeToTell() const {
    return m_rows > m_rowsTold && (m_tells < FreeTells || m_sinceTold.hasExpired(TellMilliseconds));
}

void RowJob::takeRows(int generation) {
    if (generation != m_generation || !m_running) {
        return;
    }
    std::optional<RasterPass::Failure> end;
    try {
        end = takeTurn(generation);
    } catch (const std::bad_alloc&) {
        end = RasterPass::Failure::Memory;
    }
    if (end && generation == m_generation) {
        stop();
        emit finished(*end);
    }
}

/// Takes in what is there; nothing while more is to come.
std::optional<RasterPass::Failure> RowJob::takeTurn(int generation) {
    bool pending = false;
    QElapsedTimer turn;
    turn.start();
    while (m_pass && turn.elapsed() < TurnMilliseconds) {
        const KeptPass::Row row = m_pass->tryTake(&pending);
        if (row.row.values == nullptr) {
            break;
        }
        m_take(row, m_pass->raster());
        ++m_rows;
    }
    const bool outOfTime = m_pass && turn.elapsed() >= TurnMilliseconds;
    if (m_pass && isTimeToTell()) {
        m_rowsTold = m_rows;
        ++m_tells;
        m_sinceTold.start();
        emit progressed();
    }
    if (generation != m_generation) {
        return std::nullopt;  // stopped by who was told
    }
    if (outOfTime) {
        postTakeRows(generation);
    }
    if (outOfTime || pending) {
        return std::nullopt;
    }
    if (m_pass) {
        m_pass->finish();
    }
    m_problem = m_pass ? m_pass->problem() : QString();
    return m_pass ? m_pass->failure() : RasterPass::Failure::None;
}
