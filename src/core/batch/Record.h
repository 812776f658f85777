#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>

#include "measurement/Measurement.h"

// Writing down what was done, as a batch that does it again. Its file names are relative to the
// folder of the frames: it is run there.

/// The batch that makes a result again, but for the line that saves it. Nothing, with the reason,
/// where a name cannot be carried by the language, or where an energy stands in the name of a
/// folder and would be lost.
RecordLines recordOf(const Measurement& measurement, const Result& result, const QString& savedBy);

/// The batch that makes all current results again, one after another, and sets what is set now.
/// Results that were stopped or that the present inputs would not give are named in its remark.
RecordLines recordOf(const Measurement& measurement);

/// The same without what is set now, which none of the results rests on. Nothing, with the reason,
/// where none is current.
RecordLines recordOfResults(const Measurement& measurement);

/// Writes the batch of a whole measurement into a file.
Outcome saveRecord(const Measurement& measurement, const QString& fileName);

/// The digests that the remark of a record names, by absolute path in the present folder; none for
/// any other batch.
QHash<QString, QByteArray> digestsInRecord(const QStringList& lines);

/// Says of a record that a newer version has written which of its commands are not known here;
/// nothing of any other batch.
Outcome aboutNewerRecord(const QStringList& lines);
