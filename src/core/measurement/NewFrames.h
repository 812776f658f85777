#pragma once

#include <QStringList>

class Stack;

/// The files that have come beside the last one of a stack, which is not empty.
struct NewFrames {
    QStringList files;
    QStringList otherwise;  ///< alike but for a number that belongs to the name
};

/// Takes the files whose names only what the energy pattern finds and runs of digits tell from a
/// loaded one. A run of digits behind a letter that all loaded names share belongs to the name (the
/// "1" of "i1-7112eV.tif"). None of the other stack or named as those, none that this program
/// wrote.
NewFrames newFramesOf(const Stack& stack, const Stack& other);
