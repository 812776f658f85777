#pragma once

class QLineEdit;
class QString;

// Line edits over numbers of the settings: six digits count, and texts such as "0.0" stay as long
// as they read as the setting.

/// The number that a field's text reads; 0.0 for anything else, infinities among them.
double numberIn(const QLineEdit* field);

/// Shows a text from its start: what has no room is cut off at the right, where less is lost.
void showFromStart(QLineEdit* field, const QString& text);

/// Shows a number with as many of its six digits as there is room for, never a part of it.
void showInRoom(QLineEdit* field, double value);

/// Shows a setting, unless the field reads as it already or holds what is being typed. Nothing is
/// emitted.
void showNumber(QLineEdit* field, double value);

/// The text has been taken for the setting; what is typed next is not yet.
void noteTaken(QLineEdit* field);

/// Editing is finished: shows the digits that count.
void finishNumber(QLineEdit* field, double value);
