#pragma once

#include <functional>

#include "measurement/Measurement.h"

// The one way by which a measurement writes a file.

/// Writes a file through a writer, which returns whether it succeeded and leaves an older file
/// whole where it did not. Not called, and failed, where the file is one that the measurement was
/// read from. Done: notes the file and says "Saved NAME".
Outcome writeFile(const Measurement& measurement, const QString& fileName,
                  const std::function<bool()>& writer);
