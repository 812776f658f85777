#pragma once

#include "files/OriginText.h"
#include "measurement/Measurement.h"
#include "measurement/ResultParts.h"

// What a result was made from, in words. Nothing in them differs between two right runs: no time,
// host, user, program, number of threads or output name, and file names relative to the folder of
// the frames.

/// The program with its version, as saved files name it.
QString programName();

/// The deepest folder that holds all frames of both stacks; without frames that of the map's file.
QString originFolder(const Inputs& inputs);

/// "key = value" entries of an origin, in order.
using OriginEntries = QVector<QPair<QString, QString>>;

/// The origin of a result, with the record that the measurement's recorder makes of it. savedBy is
/// the command word that saves the file, meaning what the file's numbers stand for.
OriginText originOf(const Measurement& measurement, const Result& result, const QString& savedBy,
                    const OriginEntries& meaning = {});

/// What the counts of a 16-bit TIFF of a result stand for: the values of 0 and 65535, of what is
/// blank and, with a fixed scale, of what lies outside.
OriginEntries meaningOfCounts(const Result& result, const TiffOptions& form);
/// The same of a TIFF of floats.
OriginEntries meaningOfFloats();

/// The same of a file with all results: what each analysis was made from, its name before each key.
OriginText originOf(const Measurement& measurement, const std::vector<ResultPart>& parts,
                    const QString& savedBy);

/// A file's name for the head of a table: a relative one as it was given, an absolute one relative
/// to the folder of the frames, so that it is the same wherever they lie.
QString nameInHead(const FileInput& file, const Inputs& inputs);

/// "complete" or "stopped at 43 %"; empty for what no run has made.
QString stateOf(const Result& result);
