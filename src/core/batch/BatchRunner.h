#pragma once

#include <QHash>
#include <QObject>
#include <optional>

#include "batch/BatchDispatcher.h"
#include "batch/BatchPacing.h"
#include "measurement/Measurement.h"
#include "measurement/WindowSettings.h"

struct Action;
struct CommandRow;

/// Runs batches on a measurement: owns the interpreter, carries out one line at a
/// time and answers it once, when its work has ended.
class BatchRunner : public QObject {
    Q_OBJECT

  public:
    explicit BatchRunner(Measurement& measurement);
    ~BatchRunner() override;

    BatchDispatcher* dispatcher() { return &m_dispatcher; }

    /// From now on lines that save and end before this index are left out: a batch is taken up
    /// again, and what they wrote is there.
    void leaveOutSavesBefore(int index) { m_start = index; }

  public slots:
    /// Starts a batch; one that runs is overtaken.
    void start(const QStringList& lines);
    /// No further line is read.
    void stop() { emit stopAsked(); }
    /// Carries out a line that the interpreter hands out.
    void execCmd(const CmdLine& cmd, bool inRem);

  signals:
    /// A line has been dealt with. Emitted just before finishBatchExec().
    void commandDone(const CmdLine& cmd, const Outcome& outcome);
    void finishBatchExec();
    /// Work has ended that no line was waiting for.
    void endedAlone(Work work, const Outcome& outcome);
    /// A line whose word is no command.
    void unknownCommand(const CmdLine& cmd);
    void linesAsked(const QStringList& lines);  // to the interpreter
    void stopAsked();

  private:
    void run(const CmdLine& cmd);
    void runRow(const CommandRow& row, Action* action);
    void answer(const CmdLine& cmd, const Outcome& outcome);
    void forgetFailed(Work work, const Outcome& outcome);
    void workEnded(Work work, const Outcome& outcome);

    Measurement& m_measurement;
    BatchDispatcher m_dispatcher;
    BatchPacing m_pacing;
    WindowSettings m_window;
    int m_start = 0;
    bool m_running = false;                // a row is being carried out
    std::optional<Outcome> m_endedWith;    // the work of the row, before it was through
    Outcome m_outcome;                     // of the row whose work is awaited
    Outcome m_aboutRecord;                 // to be said with its first line
    QHash<QString, QByteArray> m_digests;  // of the files of a record
};
