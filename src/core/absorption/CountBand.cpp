#include "absorption/CountBand.h"

#include <algorithm>
#include <limits>

#include "absorption/AbsorptionSource.h"
#include "base/Numbers.h"
#include "frames/CountFile.h"
#include "frames/TiffData.h"

namespace {

constexpr quint16 Highest = std::numeric_limits<quint16>::max();

/// Counts beside those of a frame that stay empty: rows of many frames at distances of a power of
/// two would share the same few places of the cache.
constexpr qint64 Gap = 64;

qint64 lengthOf(qint64 lines, qint64 width) {
    return (lines * width + Gap - 1) / Gap * Gap + Gap / 2;
}

bool isAnySaturated(const quint16* counts, qint64 n) {
    unsigned found = 0;
    for (qint64 i = 0; i < n; ++i) {
        found |= counts[i] == Highest ? 1u : 0u;
    }
    return found != 0;
}

}  // namespace

bool CountBand::isRead(const TiffData* frame) {
    return frame->rows.empty() && frame->countFile != nullptr;
}

quint64 CountBand::bytes(const AbsorptionSource& source, qint64 lines) {
    quint64 counts = 0;
    for (const TiffData* frame : source.frames()) {
        if (isRead(frame)) {
            counts += static_cast<quint64>(
                lengthOf(std::min<qint64>(lines, frame->height), frame->width));
        }
    }
    return counts * sizeof(quint16);
}

CountBand::CountBand(const AbsorptionSource& source) {
    m_places.reserve(source.frames().size());
    for (const TiffData* frame : source.frames()) {
        if (isRead(frame)) {
            m_read.push_back({m_places.size(), frame->countFile.get(), false});
            m_places.push_back({nullptr, frame->width, frame->height});
        } else {
            m_places.push_back(
                {frame->rows.data(), frame->width, static_cast<qint64>(frame->rows.size())});
        }
    }
}

void CountBand::read(qint64 first, qint64 last) {
    m_first = first = std::max<qint64>(0, first);
    m_last = first - 1;
    qint64 counts = 0;
    for (Read& read : m_read) {
        Place& place = m_places[read.frame];
        place.start = counts;
        counts += lengthOf(clipped(first, last, place.height).last - first + 1, place.width);
    }
    if (static_cast<std::size_t>(counts) > m_counts.size()) {
        m_counts = {};  // never both
        m_counts.resize(static_cast<std::size_t>(counts));
    }
    for (Read& read : m_read) {
        const Place& place = m_places[read.frame];
        const PixelRange lines = clipped(first, last, place.height);
        read.isSaturated = false;
        if (lines.isEmpty()) {
            continue;
        }
        quint16* const to = m_counts.data() + place.start;
        const qint64 rows = lines.last - first + 1;
        const QString problem =
            read.file->read(static_cast<quint32>(first), static_cast<quint32>(rows), to);
        if (!problem.isEmpty()) {
            throw UnreadCounts{problem};
        }
        read.isSaturated = isAnySaturated(to, rows * place.width);
    }
    m_last = last;
}

void CountBand::willRead(qint64 first, qint64 last) const {
    for (const Read& read : m_read) {
        const PixelRange lines = clipped(first, last, m_places[read.frame].height);
        if (!lines.isEmpty()) {
            read.file->willRead(static_cast<quint32>(lines.first),
                                static_cast<quint32>(lines.last - lines.first + 1));
        }
    }
}

std::vector<Saturated> CountBand::saturated(qint64 first, qint64 last) const {
    std::vector<Saturated> found;
    for (const Read& read : m_read) {
        if (!read.isSaturated) {
            continue;
        }
        const Place& place = m_places[read.frame];
        const PixelRange lines =
            clipped(std::max(first, m_first), std::min(last, m_last), place.height);
        if (lines.isEmpty()) {
            continue;
        }
        const quint16* const counts = row(read.frame, lines.first);
        const auto pixels =
            std::count(counts, counts + (lines.last - lines.first + 1) * place.width, Highest);
        if (pixels > 0) {
            found.push_back({static_cast<int>(read.frame), static_cast<quint32>(pixels)});
        }
    }
    return found;
}
