#pragma once

#include <QByteArray>
#include <QStringList>

#include "batch/TinyFolder.h"
#include "measurement/Measurement.h"

// What the targets over the batch language share.

/// The folder of all executions; made by the first call, with the application object and all that
/// is of the whole program.
TinyFolder& tinyFolder();

/// Lines that are handed out before loops are left.
constexpr int MostRounds = 16;

/// The line of an input that stands for loadingLines(), so that short batches work with frames,
/// too.
constexpr char Loading[] = "LOAD";

/// Lines that load the measurement.
const QStringList& loadingLines();

/// The lines of an input as those of a batch file.
QStringList linesOf(const QByteArray& input);

/// Runs a batch in the folder: each line is answered once, the batch ends, nothing is written but
/// what is said, and no setting holds what is no number.
/// @param draws lines that draw letters, which take a hundred times as long as others
void runBatch(const QByteArray& input, bool draws);

/// Ends the program where a setting holds what no line may set: a number that is none.
void checkSettings(const Settings& settings);
