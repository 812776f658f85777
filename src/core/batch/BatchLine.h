#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// Writing batch lines: what CmdLine::parse() gives back exactly, also after the text went through
// a file or an editor.

/// An item as it must stand in a batch line. Nothing where the language cannot carry it: an empty
/// text, one that begins with a quote or holds one together with white space or with a backslash
/// at its end, line ends, NUL, and what is no text (half of a surrogate pair).
std::optional<QString> batchItem(const QString& text);

/// A command with its arguments as physical lines of at most about 100 characters, continued with
/// a backslash where it is longer (an item is never cut); nothing, with the offending text in
/// *refused, where an argument cannot be carried. The items of ":for" may hold no white space.
std::optional<QStringList> batchLine(const QString& command, const QStringList& args,
                                     QString* refused = nullptr);
