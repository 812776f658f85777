#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/Inbox.h"
#include "measurement/KeptPass.h"

/// A pass over the bins of an area on several threads whose rows are taken in on the thread of this
/// object, in order, as they come.
class RowJob : public QObject {
    Q_OBJECT

  public:
    /// Takes a row in; called on this object's thread. Its values are those of the pass, or those
    /// that were kept of it.
    using Take = std::function<void(const KeptPass::Row& row, const BinRaster& raster)>;

    explicit RowJob(Take take) : m_take(std::move(take)) {}

    /// Begins; finished() follows, in any case later than this call. What the evaluators and the
    /// source read stays as it is until then, or until stop(). Throws std::bad_alloc: not begun.
    void start(const AbsorptionSource& source, const BinRaster& raster, int valuesPerBin,
               std::vector<RasterPass::Evaluate> evaluators, const KeptRows& kept = {});
    /// Ends the threads in mid-work; nothing is emitted any more.
    void stop();
    /// Of the pass that runs, or ran last.
    int rowsTaken() const { return m_rows; }
    /// What that one could not read, see RasterPass::problem().
    const QString& problem() const { return m_problem; }

  signals:
    /// Some rows have been taken in; so seldom that somebody can show it each time.
    void progressed();
    /// All rows have been taken in, or why they never will be.
    void finished(RasterPass::Failure failure);

  private:
    void postTakeRows(int generation);
    void takeRows(int generation);
    std::optional<RasterPass::Failure> takeTurn(int generation);
    bool isTimeToTell() const;

    Inbox m_inbox;  // outlives the threads of the pass
    Take m_take;
    std::unique_ptr<KeptPass> m_pass;
    bool m_running = false;
    int m_generation = 0;  // of calls that are still on their way
    int m_rows = 0;
    QString m_problem;
    int m_rowsTold = 0;
    int m_tells = 0;
    QElapsedTimer m_sinceTold;
};
