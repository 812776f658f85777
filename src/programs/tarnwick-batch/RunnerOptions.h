#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include "batch/NamedTexts.h"

/// What the command line of tarnwick-batch asks for. An option is a row in OptionRows.cpp and a
/// member here; names of files that it writes are absolute, as folders are changed later.
struct RunnerOptions {
    enum class Action { Run, Check, Stages, Origin, Record, Help, Version, BadUsage };

    Action action = Action::Run;
    QString text;  ///< Help: what to print; BadUsage: what is wrong, one line
    QString file;  ///< Run, Check, Stages: the batch file; Origin, Record: the saved file

    QVector<NamedText> texts;  ///< for the %NAME% of the batch
    int threads = 0;           ///< for analyses; 0: one for each core
    quint64 memory = 0;        ///< bytes that the program may take; 0: defaultMemoryLimit()
    bool isStrict = false;     ///< a warning is a failure
    bool tellsTimes = false;   ///< the time of day with the log
    bool isVerbose = false;    ///< debug lines
    QStringList folders;       ///< where to run, in this order; empty: where the program is started
    QString work;              ///< where parts of analyses are kept; empty: nowhere
    int part = 0;              ///< whose share of `parts` is made; 0: all of the batch
    int parts = 0;
    int from = 0;                   ///< line of the file to go on from; 0: the first
    bool stopsOnError = false;      ///< the first line that fails ends the batch
    QString report;                 ///< tells of each line; empty: none
    QString summary;                ///< the table of all scans; empty: none
    double progressSeconds = 60.0;  ///< between lines about it, without a terminal; 0: none

    /// args[0] is the program, as in main.
    static RunnerOptions parse(const QStringList& args);
};
