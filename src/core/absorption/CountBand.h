#pragma once

#include <QString>
#include <QtGlobal>
#include <cstddef>
#include <vector>

#include "base/LargeMemory.h"

class AbsorptionSource;
class CountFile;
struct TiffData;

/// Thrown where counts cannot be read: names the file.
struct UnreadCounts {
    QString problem;
};

/// Pixels at 65535 of a frame in some of its rows.
struct Saturated {
    int frame = 0;  ///< as in CountBand
    quint32 pixels = 0;
};

/// Counts of all frames of a source in some neighbouring rows of pixels, for one thread: those of a
/// frame in memory where they lie, those of the others read into memory of its own.
///
/// Frames are numbered as in AbsorptionSource::frames(): the I1 frames in order of energy, then
/// those of I0. Valid as long as the source.
class CountBand {
  public:
    explicit CountBand(const AbsorptionSource& source);

    /// The counts are not in memory, but read when they are needed.
    static bool isRead(const TiffData* frame);
    /// Bytes of `lines` rows of pixels of all frames that are read.
    static quint64 bytes(const AbsorptionSource& source, qint64 lines);

    /// Has rows first .. last there, as far as each frame has them, in the place of those before.
    /// Throws UnreadCounts, and std::bad_alloc; no rows are there then.
    void read(qint64 first, qint64 last);
    /// The same unless they are there.
    void need(qint64 first, qint64 last) {
        if (!m_read.empty() && (qMax<qint64>(0, first) < m_first || last > m_last)) {
            read(first, last);
        }
    }
    /// Tells the system that these rows are read soon.
    void willRead(qint64 first, qint64 last) const;

    qint64 width(std::size_t frame) const { return m_places[frame].width; }
    /// Rows that a frame has; those that were not read of a damaged file are not among them.
    qint64 height(std::size_t frame) const { return m_places[frame].height; }
    /// A row of counts of a frame, of its own or one that is there.
    const quint16* row(std::size_t frame, qint64 line) const {
        const Place& place = m_places[frame];
        return place.rows != nullptr
                   ? place.rows[line]
                   : m_counts.data() + place.start + (line - m_first) * place.width;
    }

    /// Of the frames that are read, in rows first .. last, which are there; none without any.
    std::vector<Saturated> saturated(qint64 first, qint64 last) const;

  private:
    struct Place {
        const quint16* const* rows;  // null: its counts are read
        qint64 width;
        qint64 height;
        qint64 start = 0;  // of row m_first
    };

    /// A frame whose counts are read.
    struct Read {
        std::size_t frame;
        CountFile* file;
        bool isSaturated;  // some pixel of the rows that are there
    };

    std::vector<Place> m_places;
    std::vector<Read> m_read;
    LargeVector<quint16> m_counts;
    qint64 m_first = 0;
    qint64 m_last = -1;
};
