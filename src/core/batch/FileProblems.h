#pragma once

#include <QString>
#include <QStringList>

#include "measurement/Settings.h"

// What speaks against a file that a batch names, in one line; empty if nothing does.

/// A file to read.
QString inputProblem(const QString& name);

/// A file to write: its directory has to be there.
QString outputProblem(const QString& name);

/// A picture to write: its suffix chooses the format.
QString pictureProblem(const QString& name);

/// A directory listed by patterns (all files without one): at least one file has to match.
QString listingProblem(const QString& dir, const QStringList& patterns);

/// A frame: its energy is read from its path by the pattern, an underscore being the decimal point.
QString energyProblem(const QString& path, const NamePattern& names);

/// The same for the frames of a listing; the first that has a problem.
QString energyProblem(const QString& dir, const QStringList& patterns, const NamePattern& names);
