#pragma once

#include <QString>
#include <QStringList>

/// What the command line of tarnwick-batch asks for. An option is a row in OptionRows.cpp and a
/// member here; names of files that it writes are absolute, as folders are changed later.
struct RunnerOptions {
    enum class Action { Run, Check, Origin, Record, Help, Version, BadUsage };

    Action action = Action::Run;
    QString text;  ///< Help: what to print; BadUsage: what is wrong, one line
    QString file;  ///< Run, Check: the batch file; Origin, Record: the saved file

    int threads = 0;          ///< for analyses; 0: one for each core
    quint64 memory = 0;       ///< bytes that the program may take; 0: defaultMemoryLimit()
    bool isStrict = false;    ///< a warning is a failure
    bool tellsTimes = false;  ///< the time of day with the log
    bool isVerbose = false;   ///< debug lines
    QStringList folders;      ///< where to run, in this order; empty: where the program is started
    QString report;           ///< tells of each line; empty: none
    QString work;             ///< folder for parts of analyses; empty: none

    /// args[0] is the program, as in main.
    static RunnerOptions parse(const QStringList& args);
};
