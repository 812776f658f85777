#pragma once

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

/// A temporary folder with a measurement of 5 x 5 pixels in it, where batches are run one after
/// another. Each finds it as the first one did.
class TinyFolder {
  public:
    /// In memory where the system has such a place.
    TinyFolder();
    /// With all that is in it; nothing else can be done then.
    void remove() const;
    TinyFolder(const TinyFolder&) = delete;
    TinyFolder& operator=(const TinyFolder&) = delete;

    /// The names of the files and folders that a batch finds, relative.
    const QStringList& names() const { return m_names; }

    /// What is there now is what each batch finds.
    void keep();
    /// Makes it the current folder of the program, or that which was so before.
    void enter() const;
    void leave() const;
    /// A name that leads to no place outside of the folder, the given one where it does so.
    QString confined(const QString& name) const;
    /// Whether a file that each batch finds is another now.
    bool isChanged() const;
    /// Puts everything back as it was. Ends the program where a file has come, gone or changed that
    /// is not among those said to be written.
    void putBack(const QSet<QString>& written);

  private:
    struct Kept {
        QByteArray content;
        qint64 size = 0;
        qint64 changed = 0;  // ns
    };

    template <typename Take>
    void forFiles(const QByteArray& folder, const Take& take) const;
    bool isTouched() const;
    void forgetTouches() const;
    void note(const QByteArray& path, const QByteArray& content);

    int m_home;
    int m_touches;  // what was done below the folder, as inotify has it; -1: not known
    QByteArray m_path;
    QStringList m_names;
    QHash<QByteArray, Kept> m_files;  // by absolute path
    QSet<QByteArray> m_folders;
};
