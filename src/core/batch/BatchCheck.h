#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// Something in a batch that will not do what its author wants.
struct Finding {
    int line = 0;          ///< in the file, from 1
    bool warning = false;  ///< it works, but probably not as meant; otherwise it fails
    QString text;          ///< one line, English
};

/// Work that a check does at most, about one unit an executed line: loops are followed as far as
/// this goes.
constexpr qint64 DefaultCheckEffort = 200000;

/// Checks a batch, given as the lines of its file, without running it: unknown commands, missing
/// and unreadable arguments, missing files (but for those that an earlier line writes), loops that
/// are not closed, quotes, continuations and remarks that go wrong, and steps that can not work
/// because an earlier one is missing. Loops are followed value by value; the effort bounds the
/// work, whatever the batch holds. Sorted by line.
QVector<Finding> checkBatch(const QStringList& lines, qint64 effort = DefaultCheckEffort);
