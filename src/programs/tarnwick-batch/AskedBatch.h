#pragma once

#include <QString>
#include <QStringList>

#include "tarnwick-batch/RunnerOptions.h"

/// The batch that a command line asks for.
struct AskedBatch {
    QString file;       ///< absolute
    QStringList lines;  ///< those of the file, with the texts of --set in them
    int start = 0;      ///< index in BatchText before which lines that save are left out
    QString problem;    ///< why there is no such batch, one line; empty: there is one

    static AskedBatch read(const RunnerOptions& options);
    /// Whether a line draws letters, for which Qt needs more than a bare program.
    bool drawsLetters() const;
};
