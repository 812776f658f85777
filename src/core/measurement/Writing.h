#pragma once

#include <functional>

#include "measurement/Measurement.h"
#include "measurement/Rehearsal.h"

// The one way by which a measurement writes a file.

/// Failed: the file is one that the measurement, or the batch that runs, was read from, one of
/// `alsoRead`, or no file can be there.
Outcome judgeTarget(const Measurement& measurement, const QString& fileName,
                    const QStringList& alsoRead = {});

/// Lets `work` write several files, which are put in their places together at the end, so that they
/// wait for the disk once. One that fails only then is a failure of its own; the others stay.
Outcome writeTogether(const std::function<Outcome()>& work);

/// Says that a file is not there, or the old one still.
Outcome unwritable(const QString& fileName, const QString& why = QString());

/// Writes a file through a writer, which returns whether it succeeded and leaves an older file
/// whole where it did not. Not called, and failed, where judgeTarget() does. Done: notes the file
/// and says "Saved NAME". In a rehearsal the writer is not called; the file counts as written, as
/// what `written` says. For a share of a batch it is kept where a later line reads it,
/// see Share.h, else left out.
Outcome writeFile(const Measurement& measurement, const QString& fileName,
                  const std::function<bool()>& writer, const Rehearsal::Written& written = {},
                  const QStringList& alsoRead = {});
