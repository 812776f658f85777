#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>
#include <atomic>

#include "batch/CmdLine.h"
#include "batch/ForLoops.h"

/// The interpreter of the batch language. Reads the lines of a batch one at a time, carries out the
/// control words, fills loop variables into the arguments of commands and hands every line to the
/// BatchRunner, which answers with finishBatchExec(); only then is the next line read. Lives in a
/// thread of its own; everything that it is told and tells goes through signals.
class BatchDispatcher : public QObject {
    Q_OBJECT

  public:
    explicit BatchDispatcher(QObject* parent = nullptr);

    /// Index of the last physical line of the line that was handed out last; -1 before any.
    /// May be asked from any thread.
    int lineInWork() const { return m_lineInWork.load(); }

    /// From now on the bodies of loops are not run again. May be called from any thread.
    void leaveLoops() { m_followsLoops = false; }

  signals:
    void execCmd(CmdLine cmd, bool inRem);
    void log(QString);
    /// A batch begins: emitted before its first line is read.
    void started();
    /// There is no next line: the batch is over, or it was stopped.
    void ended();

  public slots:
    void execNextLine();
    void doDispatchCmds(const QStringList& cmdList);
    void batchStop();
    void finishBatchExec();

  private:
    void doFor(const CmdLine& cmd);
    void doNext(const CmdLine& cmd);
    void doEcho(const CmdLine& cmd);

    bool m_running = false;
    bool m_open = false;  // a batch whose end has not been told
    bool m_inRem = false;
    QStringList m_lines;
    int m_current = 0;
    ForLoops m_loops;
    QHash<int, Outcome> m_problems;  // of form, by the last physical line
    std::atomic<int> m_lineInWork{-1};
    std::atomic<bool> m_followsLoops{true};
};
