#pragma once

#include <QMap>
#include <QObject>
#include <QStringList>
#include <functional>

#include "batch/BatchText.h"
#include "batch/CmdLine.h"
#include "measurement/Inputs.h"
#include "measurement/Outcome.h"

class Console;

/// The record of one unattended batch: passes its log on, shows how far loads and analyses are,
/// counts the lines, remarks aside, that did their work and those that failed, and says the verdict
/// at the end. It is fed by signals and knows neither the main window nor the interpreter.
class BatchSession : public QObject {
    Q_OBJECT

  public:
    enum ExitCode { AllDone = 0, SomeFailed = 1, BadUsage = 2, SignalBase = 128 };

    /// lineInWork gives the index, in text.lines, of the line that is being carried out.
    BatchSession(Console* console, BatchText text, std::function<int()> lineInWork,
                 QObject* parent = nullptr);

    /// "12 lines done, 0 failed", "12 lines done, 1 with a warning, 0 failed" or "10 lines done, 3
    /// failed: line 4 (load_I1_files), line 7 (abc, 2 times)"; "0 lines" when there was none.
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
    struct Failure {
        QString command;
        int times = 0;
    };

    void finish(const QString& closing, int exitCode);

    Console* m_console;
    BatchText m_text;
    std::function<int()> m_lineInWork;
    qint64 m_done = 0;
    qint64 m_warned = 0;  // of those done
    qint64 m_failed = 0;
    QMap<int, Failure> m_failures;  // by line number
    bool m_inRemark = false;
    bool m_finished = false;
};
