#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <functional>

#include "batch/BatchText.h"
#include "batch/CmdLine.h"
#include "batch/Verdict.h"
#include "measurement/Inputs.h"
#include "measurement/Outcome.h"

class Console;
class RunReport;

/// The record of one unattended batch: passes its log on, shows how far loads and analyses are,
/// counts the lines, remarks aside, that did their work, those that did it with a warning and those
/// that failed, reports each, and says the verdict at the end. What it keeps does not grow with the
/// rounds of a loop. It is fed by signals and knows neither the main window nor the interpreter.
class BatchSession : public QObject {
    Q_OBJECT

  public:
    enum ExitCode { AllDone = 0, SomeFailed = 1, BadUsage = 2, SignalBase = 128 };

    struct Options {
        bool isStrict = false;        ///< a warning is a failure
        bool tellsTime = false;       ///< of all of it, with the verdict
        RunReport* report = nullptr;  ///< open; null: none
    };

    /// lineInWork gives the index, in text.lines, of the line that is being carried out.
    BatchSession(Console* console, BatchText text, std::function<int()> lineInWork,
                 const Options& options, QObject* parent = nullptr);

    /// "12 lines done, 1 with a warning, 0 failed" or "10 lines done, 0 with a warning, 3 failed:
    /// line 4 (load_I1_files), line 7 (abc, 2 times)"; "0 lines" when there was none. Those with a
    /// warning are among those done.
    QString verdict() const;

  public slots:
    void log(const QString& text);
    /// A line whose word is no command.
    void unknown(const CmdLine& cmd);
    void commandDone(const CmdLine& cmd, const Outcome& outcome);
    void progress(Work work, double done, double of);
    /// The batch has come to its end.
    void end();
    /// The user or the system wants the program to end.
    void interrupt(int signalNumber);

  signals:
    /// Emitted once, after the verdict has been written.
    void finished(int exitCode);

  private:
    void say(int line, const CmdLine& cmd, const Outcome& outcome);
    void report(int line, const CmdLine& cmd, const Outcome& outcome);
    void finish(const QString& closing, int exitCode);

    Console* m_console;
    BatchText m_text;
    std::function<int()> m_lineInWork;
    Options m_options;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceLine;
    Verdict m_verdict;
    bool m_finished = false;
};
