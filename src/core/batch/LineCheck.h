#pragma once

#include <QHash>
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

/// Splits a batch into its logical lines and follows its remarks; inRemark: it begins in one.
QVector<CheckedLine> logicalLines(const BatchText& text, bool inRemark = false);

/// What can be said of the form of lines as they stand: quotes, continuations, remarks, the
/// arguments of control words and the pairing of loops.
void checkForm(const BatchText& text, const QVector<CheckedLine>& lines, const Report& report);

/// What checkForm() says of lines that are about to be run, by the index of the last physical line
/// of each logical one. Lines without a problem have no entry.
QHash<int, Outcome> problemsOfForm(const QStringList& lines, bool inRemark);
