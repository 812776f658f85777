#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// Something in a batch that will not do what its author wants.
struct Finding {
    enum class Kind {
        Error,    ///< the line will fail
        Warning,  ///< the line will warn, or a control line is probably not meant so
        Note      ///< the line will do its work, but probably not what is meant
    };

    int line = 0;  ///< in the file, from 1
    Kind kind = Kind::Error;
    QString text;  ///< one line
};

/// Lines that a check goes through at most, long ones counting for several; from then on loops are
/// not followed any more.
constexpr qint64 DefaultCheckEffort = 100000;

/// Tells how the lines of a batch (those of its file) would end, by carrying them out in a
/// rehearsal: nothing is analysed and nothing is written, frames are read by their headers. The
/// commands are those of the run, so that what is told is what will happen, but for what only
/// counts and time can tell. Loops are followed value by value; the effort bounds the work,
/// whatever the batch holds. Sorted by line. Needs an application object.
/// @param file of the batch, which no line may replace; empty for none
/// @param start index in BatchText before which lines that save are left out
/// @param readsCountsWhenNeeded as the run will, so that what analyses need of memory is judged
QVector<Finding> checkBatch(const QStringList& lines, const QString& file = QString(),
                            qint64 effort = DefaultCheckEffort, int start = 0,
                            bool readsCountsWhenNeeded = false);

/// What a batch will do, as far as can be told before.
struct BatchPlan {
    /// Passes over the bins of an area that its lines make, loops run: each analysis is one, and
    /// the search for the mean E0 with which one begins is another.
    qint64 passes = 0;
    /// The files that a line writes and a later one reads, by identity (see FilePlaces.h).
    QSet<QString> readBack;
    QVector<Finding> errors;
};

/// By a rehearsal of all rounds of all loops, see checkBatch().
BatchPlan planOf(const QStringList& lines, const QString& file = QString());
/// BatchPlan::readBack alone: without a rehearsal, which takes memory and time for each bin, where
/// no line that reads stands behind one that saves.
QSet<QString> readBackOf(const QStringList& lines, const QString& file = QString());
