#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>

#include "files/UnfinishedFile.h"

/// A file that appears whole or not at all: it is written beside the old one, under a name that no
/// other program has (see UnfinishedFile), and takes its place at the end, synced to the disk.
/// Links are followed to what they point to; permissions stay, and owner and group where the user
/// may; of a file with several names the others keep the old contents. Only a regular file that the
/// user may write is ever replaced.
class WholeFile {
  public:
    /// Makes the empty new file, unless there is something that it could not replace. The path is
    /// one of the file system.
    explicit WholeFile(const QByteArray& path);

    bool isMade() const { return m_file.isMade(); }
    /// Not made because of what stands there already.
    bool isTaken() const { return m_isTaken; }
    /// Where the new file is until it is put in place.
    const QByteArray& part() const { return m_file.path(); }
    /// For writers of their own; at the end of what is written. A duplicate may be closed.
    int descriptor() const { return m_file.descriptor(); }

    /// Once it fails, for want of space or whatever, nothing more succeeds.
    bool write(const void* bytes, std::size_t size);
    /// Lets the system write to the disk what it has of the file, without waiting for it.
    void startWriteback() const;
    /// Puts the finished file in the place of the old one; with FilesTogether, when those are.
    bool putInPlace();
    /// The same at once and without syncing: for what tells by itself whether it is whole.
    bool putInPlaceUnsynced();
    /// Why something failed, in the words of the system.
    QString whyNot() const;

  private:
    bool failed();

    QByteArray m_path;  // behind all links
    UnfinishedFile m_file;
    std::size_t m_notStarted = 0;  // bytes since startWriteback()
    int m_error = 0;
    bool m_isTaken = false;
};

/// The debug line of a saved file; true.
bool noteSaved(const QString& fileName);
