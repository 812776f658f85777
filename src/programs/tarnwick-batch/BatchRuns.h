#pragma once

#include <QElapsedTimer>
#include <QVector>
#include <functional>

#include "base/CleanEnd.h"
#include "batch/BatchText.h"
#include "files/UnfinishedFile.h"
#include "tarnwick-batch/AskedBatch.h"
#include "tarnwick-batch/BatchSession.h"
#include "tarnwick-batch/Folders.h"
#include "tarnwick-batch/Progress.h"
#include "tarnwick-batch/RunReport.h"
#include "tarnwick-batch/Summary.h"

/// Runs a batch in each of the folders that were asked for, one after another, each time on a
/// measurement of its own: what becomes of one is nothing to the others. Needs an application
/// object.
class BatchRuns {
  public:
    /// All of them outlive it.
    BatchRuns(const AskedBatch& batch, const RunnerOptions& options, Console& console);

    /// Runs them all, writes report and summary; the exit code of the program.
    int run();

  private:
    /// A file that is written when all is done.
    struct LateFile {
        QString option;
        QString name;     ///< absolute; empty: not asked for
        Outcome refused;  ///< failed: it would replace what a batch was read from
    };

    bool begin();
    int runAll();
    int runIn(int folder);
    int converse(BatchSession* session, Measurement* measurement, int folder);
    bool openWorkFolder(Measurement* measurement);
    void prepare(Measurement* measurement) const;
    void cannotEnter(int folder);
    void takeEnd(const BatchSession& session, const Measurement& measurement, int folder, int code);
    int close(int code);
    void tellTotals(int code);
    bool write(const LateFile& file, const std::function<bool()>& writer);

    const AskedBatch& m_batch;
    const RunnerOptions& m_options;
    Console& m_console;
    BatchText m_text;
    Folders m_folders;
    QElapsedTimer m_sinceStart;
    CleanEnd m_cleanEnd{removeUnfinishedFiles};
    Progress m_progress;
    RunReport m_report;
    LateFile m_reportFile;
    LateFile m_summaryFile;
    QVector<SummaryRow> m_rows;
};
