#pragma once

#include <QStringList>
#include <functional>

class Measurement;
struct Result;

/// The lines of a batch that makes a result again, but for the one that saves it; or why there are
/// none.
struct RecordLines {
    QStringList lines;
    QString whyNot;          ///< in English, as saved files say it in every language
    QString whyNotInWindow;  ///< the same in the language of the window

    /// Why there are no lines: an English text of the context "Record" with a name for its %1.
    static RecordLines none(const char* text, const QString& name = {});
};

/// Writes records: what speaks the batch language stands above a measurement and is given to it.
/// Of a result, or of all that are current (null).
using Recorder = std::function<RecordLines(const Measurement& measurement, const Result* result,
                                           const QString& savedBy)>;
