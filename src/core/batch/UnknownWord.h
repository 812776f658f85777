#pragma once

#include <QString>

/// What to say of a line whose first word is no command: with the command or control word that was
/// probably meant, where there is one.
QString unknownWord(const QString& word);
