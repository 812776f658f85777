#pragma once

#include <QHash>
#include <QStringList>
#include <atomic>
#include <functional>

#include "batch/CmdLine.h"
#include "batch/ForLoops.h"

/// Reads the lines of a batch one at a time, carries out the control words, fills loop variables
/// into the arguments of commands and hands every line out; only when that has been answered is it
/// asked for the next one. One thread at a time calls it, but for what is said to be for any.
class BatchInterpreter {
  public:
    /// Who is told what there is.
    struct Listener {
        std::function<void(const CmdLine& cmd, bool inRem)> execCmd;
        std::function<void(const QString& text)> log;
        std::function<void()> started;
        std::function<void()> ended;
    };
    explicit BatchInterpreter(Listener listener) : m_listener(std::move(listener)) {}

    /// Begins with the first line, which is handed out.
    void start(const QStringList& lines);
    /// No further line is handed out.
    void stop();
    /// Hands out the next line, or tells that there is none.
    void next();

    /// From any thread, as those of BatchDispatcher.
    int lineInWork() const { return m_lineInWork.load(); }
    void leaveLoops() { m_followsLoops = false; }

  private:
    void interpret(CmdLine* cmd, int control);
    void doFor(const CmdLine& cmd);
    void doNext(const CmdLine& cmd);
    void doEcho(const CmdLine& cmd);

    Listener m_listener;
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
