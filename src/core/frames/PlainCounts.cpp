#include "frames/PlainCounts.h"

#include <fcntl.h>
#include <QtEndian>

#include <algorithm>
#include <cerrno>

#include "frames/OpenFiles.h"
#include "frames/WholeRead.h"

namespace {

QString textOf(const QString& name, int error) {
    if (error < 0) {
        return FrameHeader::tr("%1: is shorter than when it was loaded").arg(name);
    }
    return error == ESTALE ? FrameHeader::tr("%1: has changed since it was loaded").arg(name)
           : error == ENOENT
               ? FrameHeader::tr("%1: has gone since it was loaded").arg(name)
               : FrameHeader::tr("%1: cannot be read: %2").arg(name, qt_error_string(error));
}

}  // namespace

PlainCounts::PlainCounts(const QString& name, const FileState& state, const FrameHeader& header)
    : m_name(name), m_state(state), m_width(header.width), m_strips(header.plain) {}

PlainCounts::~PlainCounts() {
    OpenFiles::ofProcess().forget(&m_place);
}

/// Calls run(offset, rows) for each piece of the file that these rows lie in, until one is false.
template <class Do>
bool PlainCounts::forRuns(quint32 first, quint32 rows, Do run) const {
    const quint64 end = quint64(first) + rows;
    quint64 y = 0;
    for (const StripRun& strips : m_strips.runs) {
        const quint64 from = std::max<quint64>(first, y);
        const quint64 to = std::min(end, y + strips.rows);
        if (from < to && !run(strips.offset + (from - y) * m_width * sizeof(quint16), to - from)) {
            return false;
        }
        y += strips.rows;
        if (y >= end) {
            break;
        }
    }
    return end <= y;
}

QString PlainCounts::read(quint32 first, quint32 rows, quint16* to) {
    const OpenFiles::Lease file = OpenFiles::ofProcess().open(&m_place, m_state);
    if (file.descriptor() < 0) {
        return textOf(m_name, file.error());
    }
    int error = 0;
    quint16* place = to;
    const bool isRead = forRuns(first, rows, [&](quint64 offset, quint64 n) {
        const auto counts = static_cast<std::size_t>(n) * m_width;
        error = readWhole(file.descriptor(), offset, place, counts * sizeof(quint16));
        place += counts;
        return error == 0;
    });
    if (!isRead) {
        return textOf(m_name, error == 0 ? EINVAL : error);
    }
    if (m_strips.isSwapped) {
        std::transform(to, place, to, [](quint16 count) { return qbswap(count); });
    }
    return QString();
}

void PlainCounts::willRead(quint32 first, quint32 rows) {
#ifdef POSIX_FADV_WILLNEED
    const OpenFiles::Lease file = OpenFiles::ofProcess().open(&m_place, m_state);
    if (file.descriptor() < 0) {
        return;
    }
    forRuns(first, rows, [&](quint64 offset, quint64 n) {
        ::posix_fadvise(file.descriptor(), static_cast<off_t>(offset),
                        static_cast<off_t>(n * m_width * sizeof(quint16)), POSIX_FADV_WILLNEED);
        return true;
    });
#endif
}

QString PlainCounts::change() const {
    return changeOf(m_name, m_state, stateNow(m_state));
}
