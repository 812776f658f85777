#include "absorption/BandPlan.h"

#include <algorithm>
#include <cstdlib>

#include "absorption/AbsorptionSource.h"
#include "absorption/CountBand.h"
#include "base/Memory.h"
#include "maps/BinRaster.h"

namespace {

// Rows of results that may be finished before they are taken: enough that a thread seldom waits.
constexpr int RowsAhead = 8;

// Counts of a band that a core keeps near itself, and for which the calls of the system do not
// show.
constexpr quint64 BandBytes = quint64(1) << 20;

// Of a frame, that the system reads ahead: as much as a disk likes to read at one place.
constexpr quint64 AheadBytes = quint64(1) << 16;

// Bands a thread, so that none has much left to do when the others have ended.
constexpr int BandsEach = 8;

/// What the parts of a plan take.
class Cost {
  public:
    Cost(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin)
        : m_source(source),
          m_raster(raster),
          m_results(quint64(std::max(0, raster.columns)) * quint64(valuesPerBin) * sizeof(double)) {
    }

    /// The counts of a band.
    quint64 counts(int rows) const {
        const qint64 lines =
            qint64(rows - 1) * m_raster.stepY + 2 * std::abs(qint64(m_raster.halfHeight)) + 1;
        return CountBand::bytes(m_source, lines);
    }
    /// All that a plan takes, with a band to spare.
    quint64 all(const BandPlan& plan) const {
        const auto threads = static_cast<quint64>(plan.threads);
        return (threads + 1) * counts(plan.rows) + threads * working() +
               (threads + static_cast<quint64>(plan.results) + 1) * m_results;
    }

  private:
    /// What a thread has besides: sums of some bins of all frames, and their spectra.
    quint64 working() const {
        constexpr quint64 Fixed = quint64(1) << 19;
        constexpr quint64 EachFrame = 1024;
        return Fixed + EachFrame * m_source.frames().size();
    }

    const AbsorptionSource& m_source;
    const BinRaster& m_raster;
    quint64 m_results;  // of a row of bins
};

void setResults(BandPlan* plan, bool isShort) {
    plan->results = plan->threads * plan->rows + (isShort ? 1 : std::max(RowsAhead, plan->rows));
}

}  // namespace

BandPlan BandPlan::of(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
                      int threads) {
    BandPlan plan;
    plan.threads = threads;
    plan.reads = source.isStreamed();
    setResults(&plan, false);
    if (!plan.reads || threads < 1) {
        return plan;
    }
    const Cost cost(source, raster, valuesPerBin);
    const int most = std::max(1, raster.rows / (BandsEach * threads));
    while (2 * plan.rows <= most && cost.counts(2 * plan.rows) <= BandBytes) {
        plan.rows *= 2;
    }
    setResults(&plan, false);
    const quint64 each = cost.counts(1) / source.frames().size() + 1;
    plan.ahead = static_cast<int>(
        std::max<quint64>(quint64(plan.rows) * quint64(threads), AheadBytes / each));
    const quint64 left = memoryLeft();
    while (cost.all(plan) > left && (plan.rows > 1 || plan.threads > 1)) {
        (plan.rows > 1 ? plan.rows : plan.threads) /= 2;
        setResults(&plan, true);
    }
    return plan;
}

quint64 BandPlan::least(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin) {
    if (!source.isStreamed()) {
        return 0;
    }
    BandPlan plan;
    setResults(&plan, true);
    return Cost(source, raster, valuesPerBin).all(plan);
}
