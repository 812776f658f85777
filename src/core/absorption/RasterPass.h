#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "absorption/BandPlan.h"
#include "absorption/CountBand.h"
#include "maps/BinRaster.h"
#include "spectra/LaneErrors.h"

class AbsorptionSource;

/// Forms the spectra of a raster and works something out from each, several rows of bins at a time
/// in threads of its own; the rows come out in order. Every spectrum is worked on by itself, so
/// that the results are the same to the last bit whatever the number of threads.
///
/// The source, the frames behind it and the evaluators stay as they are until the pass has gone.
class RasterPass {
  public:
    /// Spectra of neighbouring bins of a row, as in BinRowSpectra::formPack().
    struct Pack {
        const double* mu;         ///< mu[energy * lanes::Count + spectrum]
        const bool* lacksCounts;  ///< at some energy, for each spectrum
        int row;
        int column;                 ///< of the first
        int count;                  ///< at most lanes::Count
        lanes::Counts counts = {};  ///< behind the spectra
    };

    /// Which spectra of a pack were found to be odd, as far as it is worked out: bit l for the
    /// l-th.
    struct Found {
        unsigned withoutJump = 0;   ///< with an edge jump of 0
        unsigned withoutLines = 0;  ///< with too few energies in a background range
    };

    /// Works out `valuesPerBin` numbers for each spectrum of a pack.
    using Evaluate = std::function<Found(const Pack& pack, double* values)>;

    /// What was seen in the spectra of some bins of the raster's inside.
    struct Tally {
        int bins = 0;
        int withoutCounts = 0;  ///< at some energy
        int withoutJump = 0;    ///< see Found
        int withoutLines = 0;

        Tally& operator+=(const Tally& other) {
            bins += other.bins;
            withoutCounts += other.withoutCounts;
            withoutJump += other.withoutJump;
            withoutLines += other.withoutLines;
            return *this;
        }
    };

    using Saturated = ::Saturated;

    /// A row of results, column after column, no number for bins that are not inside; null with the
    /// last row taken or after a failure.
    struct Row {
        int row = 0;
        const double* values = nullptr;
        Tally tally;
        /// Of frames whose counts are read for the pass, in the rows of pixels of the bins.
        std::vector<Saturated> saturated = {};
    };

    /// Rows first .. end - 1 of a raster.
    struct Rows {
        int first = 0;
        int end = 0;
    };

    enum class Failure { None, Memory, NoThread, Read };

    /// One evaluator for each thread; they are called there. Where the system gives fewer threads,
    /// those do the whole work; where it gives none, the pass has failed and ready is called here.
    /// ready, which may be empty, is called from any of the threads when a row that take() waits
    /// for has been finished.
    RasterPass(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
               std::vector<Evaluate> evaluators, std::function<void()> ready = {});
    /// The same for some of the rows, which keep their numbers.
    RasterPass(const AbsorptionSource& source, const BinRaster& raster, const Rows& rows,
               int valuesPerBin, std::vector<Evaluate> evaluators,
               std::function<void()> ready = {});
    /// Stops the threads in mid-work.
    ~RasterPass();

    /// The next row, which is valid until the next call; waits for it.
    Row take();
    /// Results of the bin around (x, y), taking the rows up to its own; bins are asked for row by
    /// row. Null for what is not in the raster and after a failure.
    const double* at(int x, int y);
    /// take() without waiting; *pending when it is still being worked on.
    Row tryTake(bool* pending);
    /// Why no more rows come.
    Failure failure() const;
    /// What could not be read, with the file's name.
    QString problem() const;
    bool failed() const { return failure() != Failure::None; }

    const BinRaster& raster() const { return m_raster; }

  private:
    struct Slot {
        int row = -1;
        bool done = false;
        std::vector<double> values;
        Tally tally;
        std::vector<Saturated> saturated;
    };

    void work(const Evaluate& evaluate);
    void fail(Failure why, const QString& problem = {});
    void evaluateRows(const Evaluate& evaluate);
    bool nextBand(Rows* band, Rows* behind);
    bool isLast();
    bool areFilesTheSame();
    bool finish(Slot* made);
    Row taken();
    bool isReady() const;
    Slot& slotOf(int row) { return m_slots[static_cast<std::size_t>(row) % m_slots.size()]; }

    const AbsorptionSource& m_source;
    const BinRaster m_raster;
    const int m_end;
    const int m_valuesPerBin;
    const std::vector<Evaluate> m_evaluators;
    const BandPlan m_plan;
    const std::function<void()> m_ready;

    mutable std::mutex m_mutex;
    std::condition_variable m_rowDone;
    std::condition_variable m_roomMade;
    std::vector<Slot> m_slots;  // a few rows ahead of the one to be taken next
    int m_toMake;               // rows
    int m_begun;                // rows that a thread has begun or done
    int m_told;                 // rows of which the system knows that they will be read
    int m_taken;
    bool m_stopped = false;
    Failure m_failure = Failure::None;
    QString m_problem;
    std::vector<double> m_current;  // the row taken last
    Row m_row;                      // the row that at() is in
    std::vector<std::thread> m_threads;
};
