#pragma once

#include <QString>
#include <map>
#include <mutex>

/// The folder of the file that counts go to for which there is no memory; until it is set, TMPDIR
/// or, without that, /tmp. Before the first frame is read.
void setSpillFolder(const QString& folder);

/// One file of the process for decoded counts, made when the first are put there. It has no name:
/// whatever becomes of the process, nothing stays behind. Any thread may call any of it.
class SpillFile {
  public:
    static SpillFile& ofProcess();

    /// Makes room; an error text, or none and the place.
    QString take(quint64 bytes, quint64* offset);
    void giveBack(quint64 offset, quint64 bytes);

    /// Empty, or what went wrong.
    QString write(quint64 offset, const void* data, quint64 bytes);
    QString read(quint64 offset, void* to, quint64 bytes);

    /// How many bytes are in use.
    quint64 size() const;

  private:
    SpillFile() = default;
    QString make();
    void closeUnused();

    mutable std::mutex m_mutex;
    QString m_folder;
    int m_descriptor = -1;
    quint64 m_end = 0;
    quint64 m_used = 0;
    std::multimap<quint64, quint64> m_free;  // offsets by size
};
