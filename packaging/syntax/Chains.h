#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "batch/CommandTables.h"

// The batch language as editors see it: a command awaits its arguments one behind the other.

/// What may stand in one place of a line.
struct Place {
    enum class Style { Number, Word, File, Text, Name };

    QString id;         ///< a name of letters
    Style style;        ///< of what is neither a number nor one of the words
    bool isNumber;      ///< numbers are shown as such
    QStringList words;  ///< shown as such, in any case
};

/// What a line awaits: the places from here on, by their ids. The last one awaits itself where any
/// number may be given.
struct Chain {
    QStringList places;
    bool repeats = false;

    /// A name of letters, digits and "_".
    QString name() const;
    /// What is awaited behind the first place. Of an empty chain: nothing.
    Chain next() const;
};

/// Control words or commands that await the same.
struct Group {
    Chain chain;
    QStringList words;
};

/// All places that chains have.
std::vector<Place> places();
const Place& placeOf(const std::vector<Place>& all, const QString& id);

/// All commands; each stands in one group.
std::vector<Group> commandGroups();
/// The control words but those of remarks.
std::vector<Group> controlGroups();

/// All chains that a line of these groups may come to, without the empty one.
std::vector<Chain> chainsOf(const std::vector<Group>& groups);

/// Names that stand for something else: %NAME% and those of loops.
inline const QString Replaced = QStringLiteral("%[A-Z][A-Z0-9_]+%");
inline const QString LoopValue = QStringLiteral("%[A-Za-z][A-Za-z0-9_]*");
/// A number, of an item that holds nothing else.
inline const QString Number =
    QStringLiteral("[-+]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][-+]?[0-9]+)?");

/// The texts of the files.
QString kateSyntax();
QString vimSyntax();
/// By their lines vim knows batches from other files named .bat.
QString vimDetection();
