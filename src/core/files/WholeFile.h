#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

class QSaveFile;

// Files that appear whole or not at all: they are written beside the old one, under a name that no
// other program has, and take its place at the end. Links are followed to what they point to,
// permissions stay, and only a file is ever replaced: no device, pipe or folder, and no file that
// the user may not write.

/// Such a file for a writer that opens it by name. Names are those of the file system.
class WholeFile {
  public:
    /// Makes the empty new file, unless there is something that it could not replace.
    explicit WholeFile(const QByteArray& path);
    /// Removes the new file where it was not put in place.
    ~WholeFile();
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    bool isMade() const { return !m_part.isEmpty(); }
    /// Not made because of what stands there already.
    bool isTaken() const { return m_taken; }
    /// Where to write; the file is there and empty.
    const QByteArray& part() const { return m_part; }
    /// Puts the finished file, which is closed, in the place of the old one.
    bool putInPlace();

  private:
    QByteArray m_path;  // behind all links
    QByteArray m_part;  // empty: nothing to remove
    bool m_taken = false;
};

/// Whether a file could be put under a name, as far as can be told without writing it.
enum class Target { Fine, NoFolder, FolderNotWritable, Taken };
Target targetAt(const QString& fileName);

/// Opens such a file for writing where it is written through Qt, at its placeOf().
bool openBeside(QSaveFile& file, QIODevice::OpenMode mode = QIODevice::WriteOnly);

/// Puts the new file in the place of the old one, with the debug line, unless any of it could not
/// be written.
bool putInPlace(QSaveFile& file);

/// The debug line of a saved file; true.
bool noteSaved(const QString& fileName);
