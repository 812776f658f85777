#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
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
class Share;

/// The record of one unattended batch: passes its log on, counts the lines, remarks aside, that did
/// their work, those that did it with a warning and those that failed, reports each, and says the
/// verdict at the end. What it keeps does not grow with the
/// rounds of a loop. It is fed by signals and knows neither the main window nor the interpreter.
class BatchSession : public QObject {
    Q_OBJECT

  public:
    enum ExitCode {
        AllDone = 0,
        SomeFailed = 1,
        BadUsage = 2,
        OthersFirst = 75,  ///< nothing failed, but other shares of the batch must come first
        SignalBase = 128
    };

    struct Options {
        bool isStrict = false;         ///< a warning is a failure
        bool tellsTime = false;        ///< of all of it, with the verdict
        RunReport* report = nullptr;   ///< open; null: none
        QString folder{};              ///< said with each, of several; empty: the only one
        bool stopsOnError = false;     ///< what counts as a failure ends the batch
        const Share* share = nullptr;  ///< of the batch that is made; null: all of it
    };

    BatchSession(Console* console, BatchText text, const Options& options,
                 QObject* parent = nullptr);

    /// Gives the index, in text.lines, of the line that is being carried out.
    void setLineInWork(const std::function<int()>& lineInWork) { m_lineInWork = lineInWork; }

    /// "12 lines done, 1 with a warning, 0 failed" or "10 lines done, 0 with a warning, 3 failed:
    /// line 4 (load_I1_files), line 7 (abc, 2 times)"; "0 lines" when there was none. Those with a
    /// warning are among those done.
    QString verdict() const;
    bool hasWarned() const { return m_verdict.warned() > 0; }
    double seconds() const { return m_seconds; }  ///< that all took

  public slots:
    void log(const QString& text);
    /// A line whose word is no command.
    void unknown(const CmdLine& cmd);
    void commandDone(const CmdLine& cmd, const Outcome& outcome);
    /// The batch has come to its end.
    void end();
    /// The user or the system wants the program to end.
    void interrupt(int signalNumber);

  signals:
    /// Emitted once, after the verdict has been written.
    void finished(int exitCode);
    /// What is to be said if the program ends before the verdict; empty: nothing any more.
    void lastWordsChanged(const QByteArray& text);
    /// No further line shall be read.
    void stopAsked();

  private:
    void say(int line, const CmdLine& cmd, const Outcome& outcome);
    void report(int line, const CmdLine& cmd, const Outcome& outcome);
    void add(QJsonObject entry);
    bool isFailure(const Outcome& outcome) const;
    QString shareText() const;
    QString interrupted() const;
    QString counts() const;
    void changeLastWords();
    void finish(const QString& closing, int exitCode);

    Console* m_console;
    BatchText m_text;
    std::function<int()> m_lineInWork;
    Options m_options;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceLine;
    Verdict m_verdict;
    int m_lastLine = 0;   // that was answered
    int m_stoppedAt = 0;  // number of the line; 0: not stopped
    double m_seconds = 0.0;
    bool m_finished = false;
};
