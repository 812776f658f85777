#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "files/UnfinishedFile.h"

/// A file that is written and waits for being put in its place. Each step returns false with errno,
/// and then the file at the target is the old one.
class FinishedFile {
  public:
    FinishedFile(UnfinishedFile file, QByteArray target);

    /// Rights, contents on the disk, and closed.
    bool sync();
    /// The same without waiting for the disk.
    bool close();
    bool replace();
    const QByteArray& target() const { return m_target; }

  private:
    UnfinishedFile m_file;
    QByteArray m_target;  // behind all links
};

/// Waits until the disk has the names in a folder.
bool syncFolder(const QByteArray& folder);

/// Several files that are put in their places together, so that they wait for the disk once: as
/// long as one is in force on a thread, each WholeFile that it finishes goes there. Another one
/// within is of its own.
class FilesTogether {
  public:
    FilesTogether();
    /// What is left is removed.
    ~FilesTogether();
    FilesTogether(const FilesTogether&) = delete;
    FilesTogether& operator=(const FilesTogether&) = delete;

    /// Of this thread; null for none.
    static FilesTogether* inForce();

    /// What the files from now on are called in failures().
    void callThem(const QString& name) { m_name = name; }
    /// The first ones are put in place when there are many, or when they are large.
    void take(UnfinishedFile file, const QByteArray& target);
    /// Syncs what is there, then puts it in place; whether all files till now are there.
    bool finish();
    /// The names of those that are not; their old files are.
    const QStringList& failures() const { return m_failures; }

  private:
    struct Entry {
        FinishedFile file;
        QString name;
    };

    std::vector<char> syncAll();

    FilesTogether* m_outer;
    QString m_name;
    std::vector<Entry> m_files;
    qint64 m_bytes = 0;
    QStringList m_failures;
};
