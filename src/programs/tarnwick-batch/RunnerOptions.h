#pragma once

#include <QString>
#include <QStringList>

/// What the command line of tarnwick-batch asks for.
struct RunnerOptions {
    enum class Action { Run, Check, Origin, Record, Help, Version, BadUsage };

    Action action = Action::BadUsage;
    int threads = 0;          ///< Run: for analyses; 0: one for each core
    bool isStrict = false;    ///< Run: a warning is a failure
    bool tellsTimes = false;  ///< Run: the time of day with the log
    bool isVerbose = false;   ///< Run: debug lines
    QString report;  ///< Run: absolute name of the file that tells of each line; empty: none
    QString file;    ///< Run, Check: the batch file; Origin, Record: the saved file
    QString folder;  ///< Run, Check: where to go once the batch file is read; empty: nowhere
    QString text;    ///< Help: what to print; BadUsage: what is wrong, one line

    /// args[0] is the program, as in main.
    static RunnerOptions parse(const QStringList& args);
};
