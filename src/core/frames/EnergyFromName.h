#pragma once

#include <QRegularExpression>
#include <QString>
#include <optional>

/// The number that a regular expression finds in a file's path (the whole path is searched): the
/// matched text in capitals with "_" for the decimal point and without "KEV" and "EV"; 0 for text
/// that is no finite number. Empty when the pattern does not match or is none. *matched gets the
/// text as it stands in the path.
std::optional<double> numberFromName(const QString& path, const QRegularExpression& pattern,
                                     QString* matched = nullptr);

/// The expression of a pattern, which may be none. Compiled once for all files of a stack; valid in
/// this thread until the next call.
const QRegularExpression& expressionOf(const QString& pattern);

/// Whether what the pattern finds is a part of a longer number in the path, such as the "5eV" of
/// "7112.5eV": a digit, or a point or comma with a digit beyond it, stands beside its own digits.
bool cutsNumber(const QString& path, const QRegularExpression& pattern);
