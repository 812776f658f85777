#pragma once

#include <QSet>
#include <QString>
#include <functional>

#include "files/FilePlaces.h"

/// What one run of several does of a batch that they make together: its share of the parts of the
/// first pass over an area whose parts are not all there. The passes before come from their parts,
/// and what their lines write is kept in the work folder where a later line reads it, else left
/// out: nothing is written beside the work folder.
class Share {
  public:
    /// @param number from 1 to @p of
    /// @param folder where files are kept; made when the first one is
    /// @param readBack the files that a line writes and a later one reads, by identity, see
    /// FilePlaces.h
    Share(int number, int of, QString folder, QSet<QString> readBack);

    struct Parts {
        int first = 0;
        int end = 0;
        bool isEmpty() const { return first >= end; }
    };
    /// Its own of so many parts.
    Parts partsOf(int count) const;

    /// Whether what is written to a file is kept.
    bool keeps(const QString& fileName) const;
    /// Has the writer write such a file, which is read from where it is kept from now on. False:
    /// the writer failed, or it cannot be kept there.
    bool keep(const QString& fileName, const std::function<bool()>& writer);

    enum class End {
        Failed,       ///< as the line where it ended tells
        NothingLeft,  ///< all parts of all passes were there
        Made,         ///< its own are there now; some had to be made, or it has none
        Waits         ///< its own were there, but not those of others
    };
    /// A pass has ended the batch.
    /// @param made parts that were not there
    void endPass(int made, bool ownsAny);
    void endFailed() { m_end = End::Failed; }
    End end() const { return m_end; }
    int made() const { return m_made; }
    int number() const { return m_number; }
    int of() const { return m_of; }

  private:
    int m_number;
    int m_of;
    QString m_folder;
    QSet<QString> m_readBack;
    FilePlaces m_kept;
    End m_end = End::NothingLeft;
    int m_made = 0;
};
