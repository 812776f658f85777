#pragma once

#include <QString>
#include <optional>

// What --origin and --record print of a file that was saved. Nothing, with the reason in one line,
// where the file does not tell.

/// The entries of its origin, a line each.
std::optional<QString> originLines(const QString& fileName, QString* whyNot);

/// The batch that makes the file again: its record and the line that saves it under the name given.
std::optional<QString> recordedBatch(const QString& fileName, QString* whyNot);
