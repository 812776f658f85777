#include <QBuffer>
#include <algorithm>

#include "Fuzz.h"
#include "frames/FrameReader.h"
#include "frames/TiffData.h"
#include "frames/TiffFile.h"

// Frames of counts in TIFF files: the header alone, as a folder or a batch is looked at, and all.

namespace {

void judgeCounts(const TiffData& frame) {
    require(frame.rows.size() == frame.height, "a frame that was read has all rows");
    quint32 least = 0xFFFFFFFFu;
    quint32 most = 0;
    quint64 saturated = 0;
    for (const quint16* row : frame.rows) {
        for (quint32 x = 0; x < frame.width; ++x) {
            least = std::min<quint32>(least, row[x]);
            most = std::max<quint32>(most, row[x]);
            saturated += row[x] == 0xFFFF ? 1 : 0;
        }
    }
    require(frame.min == least && frame.max == most, "the extremes of the counts");
    require(frame.saturated == saturated, "the pixels at 65535");
}

/// What the header promises holds for the counts.
void compare(const FrameHeader& header, const TiffData& frame, bool isRead) {
    if (!header.refusal.isEmpty()) {
        require(!isRead || !frame.refusal.isEmpty(), "what a header refuses is refused");
        return;
    }
    require(header.width > 0 && header.height > 0, "a header that is taken has a size");
    require(isRead || !frame.refusal.isEmpty(), "a header that is taken is read, or damaged");
    require(isRead || frame.rows.empty(), "a frame that is refused has no rows");
    if (!isRead) {
        return;
    }
    require(frame.width == header.width && frame.height == header.height, "one size");
    require(frame.remarks == header.remarks, "the same remarks");
    quint64 rows = 0;
    for (const StripRun& run : header.plain.runs) {
        rows += run.rows;
    }
    require(rows == 0 || rows == header.height, "plain strips hold all rows");
    require(rows == 0 || frame.refusal.isEmpty(), "a plain file is read whole");
}

}  // namespace

void fuzz(const QByteArray& input) {
    QBuffer file;
    file.setData(input);
    file.open(QIODevice::ReadOnly);
    const FrameHeader header = readTiffHeader(file);
    TiffData frame;
    const bool isRead = readFrame(file, &frame).isEmpty();
    require(isRead == frame.loaded, "loaded");
    if (isRead) {
        judgeCounts(frame);
    }
    if (frameReaderOf(input.left(FrameMagicBytes)) == &frameReaders().front()) {
        compare(header, frame, isRead);
    }
    require(logLines() == 0, "no line in the log");
}
