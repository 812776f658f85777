#pragma once

#include <QByteArray>

// What programs that were killed have left beside the files that they wrote.

constexpr char SuffixOfUnfinished[] = ".tarnwick-part";
constexpr int LettersOfUnfinished = 12;

/// Whether a file of this name, without its folder, is an UnfinishedFile.
bool isNameOfUnfinished(const QByteArray& name);

/// Removes every UnfinishedFile of a folder that was last written more than a day ago and that no
/// running program has open. Nothing else is touched, and no link is followed.
void removeLeftOver(const QByteArray& folder);

/// The same, unless this program has done so in this folder. From any thread.
void removeLeftOverOnce(const QByteArray& folder);
