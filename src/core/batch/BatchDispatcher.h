#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>

#include "base/Inbox.h"
#include "base/Worker.h"
#include "batch/CmdLine.h"

class BatchInterpreter;

/// The interpreter of the batch language as a QObject: hands lines to the BatchRunner, which
/// answers with finishBatchExec(); see BatchInterpreter. Its signals come in the thread that it
/// lives in.
class BatchDispatcher : public QObject {
    Q_OBJECT

  public:
    explicit BatchDispatcher(QObject* parent = nullptr);
    ~BatchDispatcher() override;

    /// From now on lines are read in a thread of its own, or by the event loop where there is none
    /// to be had: signals come later than the slot that they answer. Before the first batch;
    /// without it they come before the slot returns.
    void readInBackground() { m_inBackground = true; }

    /// Index of the last physical line of the line that was handed out last; -1 before any.
    /// May be asked from any thread.
    int lineInWork() const;

    /// From now on the bodies of loops are not run again. May be called from any thread.
    void leaveLoops();

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
    void ask(const std::function<void(BatchInterpreter&)>& what);

    bool m_inBackground = false;
    std::shared_ptr<BatchInterpreter> m_interpreter;
    Inbox m_inbox;
    Worker m_thread;  // goes first
};
