#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

// Files that a run has written itself, and where their bytes are: under their names, or somewhere
// else for a run that may not write there. Whoever opens a file by name, to read or to write it,
// asks for its place. Of the whole program; from any thread.

/// One name for a file, absolute, whatever links lead to it; also for one that is not there yet.
QString identityOf(const QString& fileName);

/// Where to open a file: the name itself for most.
QString placeOf(const QString& fileName);
/// Whether a FilePlaces has the file.
bool isPlaced(const QString& fileName);
/// The identities of the files in a folder that a FilePlaces has.
QStringList placedIn(const QString& folder);

/// Some places, in force until they go.
class FilePlaces {
  public:
    FilePlaces() = default;
    ~FilePlaces();
    FilePlaces(const FilePlaces&) = delete;
    FilePlaces& operator=(const FilePlaces&) = delete;

    /// @param place may be the file's own name; empty: the file is not one of these any more
    void put(const QString& fileName, const QString& place);

  private:
    QSet<QString> m_identities;
};
