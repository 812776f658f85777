#pragma once

#include <QStringList>
#include <functional>

class Measurement;
struct Result;

/// The lines of a batch that makes a result again, but for the one that saves it; or why there are
/// none.
struct RecordLines {
    QStringList lines;
    QString whyNot;
};

/// Writes records: what speaks the batch language stands above a measurement and is given to it.
using Recorder = std::function<RecordLines(const Measurement& measurement, const Result& result,
                                           const QString& savedBy)>;
