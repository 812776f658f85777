#pragma once

#include "measurement/FolderContents.h"

class Measurement;
class Stack;

// A measurement is opened by the folder that it lies in: list it, tell what is in it, load that.

/// What is to be loaded of a folder.
struct FolderFiles {
    QStringList frames[FrameKindCount];  ///< by FrameKind
    QStringList references;
    QString standard;  ///< empty: none

    QStringList& of(FrameKind kind) { return frames[static_cast<int>(kind)]; }
    const QStringList& of(FrameKind kind) const { return frames[static_cast<int>(kind)]; }
};

/// The files of a folder and, one part each, of those in it; in a rehearsal with those that would
/// be there. Maps and tables that this program saved are left out.
FolderListing listingOf(const Measurement& measurement, const QString& folder);
/// The same of files and folders that somebody has chosen: a folder alone is listed with those in
/// it, of several each is a part.
FolderListing listingOf(const Measurement& measurement, const QStringList& chosen);

/// What lies in a listing, with the references and the standard that can be read. Spectra beside
/// the frames count only where they share energies with the frames.
FolderContents contentsOf(const Measurement& measurement, const FolderListing& listing);

/// What is taken of it.
FolderFiles filesOf(const FolderContents& contents);

/// Loads the files: I1, I0 and dark frames replace those there are, with I1 also by none; each
/// reference goes into a panel, from the first on, and is used. Frames that no stack takes by their
/// headers or names are left out with a warning. Failed: nothing has begun, since of some frames
/// none can be read; otherwise ended(Work::LoadFolder) follows, which tells of everything.
/// @param found what there is to say of the folder itself
Outcome openFolder(Measurement& measurement, FolderFiles files, const Outcome& found = {});

/// "loaded 90 frames of I1, 7020.0 to 7340.5 eV", of the last load; empty for none.
QString loadedText(const Stack& stack);
