#pragma once

#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

#include "batch/BatchText.h"
#include "batch/CmdLine.h"

/// A logical line of a batch under check.
struct CheckedLine {
    int first = 0;   ///< index of its first physical line in BatchText::lines
    int last = 0;    ///< and of its last
    int number = 0;  ///< of its first physical line in the file, from 1
    CmdLine cmd;
    int control = 0;
    int command = 0;
    bool inRemark = false;  ///< skipped when the batch runs
};

/// Takes what is found: line number in the file, whether it is a warning only, text.
using Report = std::function<void(int line, bool warning, const QString& text)>;

/// Splits a batch into its logical lines and follows its remarks.
QVector<CheckedLine> logicalLines(const BatchText& text);

/// What can be said of the lines as they stand: their words, quotes, continuations and remarks,
/// the number of arguments, the pairing of loops.
void checkLines(const BatchText& text, const QVector<CheckedLine>& lines, const Report& report);
