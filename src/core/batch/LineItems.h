#pragma once

#include <QString>

// Splitting one line of a command or parameter text into items: white space (of
// ASCII) separates items, an item that begins with a double quote runs to the next one, "#" starts
// a comment, a trailing backslash continues the line on the next.

/// While one lives, its thread splits lines without a debug line: for those who look ahead.
class SilentItems {
  public:
    SilentItems();
    ~SilentItems();
    SilentItems(const SilentItems&) = delete;
    SilentItems& operator=(const SilentItems&) = delete;
};

/// The text before the first "#", quoted or not.
QString stripComment(const QString& line);

/// Nothing but white space and a comment.
bool isBlank(const QString& line);

/// Whether the last character that is not white space is a backslash; if so, the line is cut
/// just before it.
bool hasContinuation(QString& line);

/// The line as hasContinuation() leaves it.
QString withoutContinuation(const QString& line);

/// Takes the first item off the line and returns the rest after it. Quotes that do not balance are
/// said in the debug log and the line is split all the same. White space only gives an empty item
/// and an empty rest.
QString takeItem(const QString& line, QString* item);

/// The item that takeItem() would take off what follows *place, which moves behind it: a line of
/// many thousand items is split without being copied as often.
QString takeItemAt(const QString& line, int* place);
