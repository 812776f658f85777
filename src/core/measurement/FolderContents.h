#pragma once

#include <QCoreApplication>
#include <QStringList>
#include <QVector>

#include "measurement/Outcome.h"
#include "measurement/Settings.h"

/// The files of a folder and of the folders in it, by names alone.
struct FolderListing {
    struct Part {
        QString name;       ///< of the folder in it; empty: the folder itself
        QStringList files;  ///< with their paths, in the order in which a stack takes them
    };
    QString path;
    QVector<Part> parts;
    QStringList closed;  ///< folders that may not be read, the folder itself by its path
};

/// What frames are for; the ids of FolderContents::taken.
enum class FrameKind { I1 = 0, I0 = 1, Dark = 2 };
constexpr int FrameKindCount = 3;

/// Frames of a folder that belong together.
struct FrameGroup {
    QString name;  ///< for people: that of their folder, or what their names have in common
    QStringList files;
    int firstOf = 0;  ///< the part of the listing that they lie in
    /// Of the energies in their names, in eV; both 0 without any.
    double lowest = 0.0;
    double highest = 0.0;

    bool hasEnergies() const { return highest > 0.0; }
};

/// What of a measurement a folder seems to hold. Words in the names of the folders in it and of the
/// files tell the kinds of frames: i1, trans, sample ... and i0, flat, incident ... and dark;
/// frames that nothing is said of are taken for I1 where there are no others. Spectra are the
/// references when they lie in a folder named so (references, refs, std ...) or, without one,
/// beside the frames; those in a folder named standard, or so themselves, are the standard.
struct FolderContents {
    Q_DECLARE_TR_FUNCTIONS(FolderContents)

  public:
    QString path;
    QVector<FrameGroup> groups;
    int taken[FrameKindCount] = {-1, -1, -1};  ///< in groups; -1: none
    QStringList references;                    ///< files to be tried
    QStringList standards;                     ///< files to be tried, the first that can be read
    bool besideFrames = false;                 ///< the references lie beside the frames
    /// Failed: there is no frame in it, or none that can be told to be of a kind. Warnings and
    /// notes: what was found and not taken.
    Outcome outcome;

    const FrameGroup* group(FrameKind kind) const;
};

/// @param names how energies are found in the names, by StackId
FolderContents contentsOf(const FolderListing& listing, const NamePattern names[2]);

/// Puts the files in order of the energies in their names, if all have one, and says the lowest and
/// the highest.
void orderByEnergy(FrameGroup* group, const NamePattern& names);

/// Whether a file has the suffix of one of the formats of frames.
bool isFrameName(const QString& file);

/// "1 file", "31 files".
QString countText(int files);

/// "7000.0 to 7300.0 eV", or the one energy that there is.
QString energiesText(double lowest, double highest);

/// The first of the files by its name, and how many there are besides.
QString filesText(const QStringList& files);
