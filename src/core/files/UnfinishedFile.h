#pragma once

#include <sys/types.h>

#include <QByteArray>

/// Removes the files that this program has not finished and lets it make or finish no other: for
/// its end on a signal or without memory. May be called in a signal handler, from any thread.
void removeUnfinishedFiles() noexcept;

/// What is written beside a file until it can take its place: a new file in the same folder,
/// called ".NAME.XXXXXXXXXXXX.tarnwick-part" with twelve random letters or digits (NAME cut where
/// the whole would be too long), and locked as long as it is open. Goes with the object unless
/// renamed.
class UnfinishedFile {
  public:
    UnfinishedFile() = default;
    /// Never opens anything that is there.
    UnfinishedFile(const QByteArray& target, mode_t mode);
    ~UnfinishedFile();
    UnfinishedFile(UnfinishedFile&& other) noexcept;
    UnfinishedFile& operator=(UnfinishedFile&& other) noexcept;

    /// False, with errno after the constructor: it could not be made.
    bool isMade() const { return !m_path.isEmpty(); }
    const QByteArray& path() const { return m_path; }
    /// For reading and writing; -1 once closed.
    int descriptor() const { return m_descriptor; }
    bool close();
    /// It has another name now and stays.
    void release();

  private:
    QByteArray m_path;
    int m_descriptor = -1;
    int m_slot = -1;
};
