#include <QBuffer>
#include <algorithm>

#include "Fuzz.h"
#include "frames/FrameReader.h"
#include "frames/TiffData.h"

// Frames of counts in IMG files.

void fuzz(const QByteArray& input) {
    QBuffer file;
    file.setData(input.startsWith("IM") ? input : "IM" + input);
    file.open(QIODevice::ReadOnly);
    TiffData frame;
    const bool isRead = readFrame(file, &frame).isEmpty();
    require(isRead == frame.loaded, "loaded");
    if (!isRead) {
        require(frame.rows.empty(), "a frame that is refused has no rows");
    } else {
        require(frame.width > 0 && frame.rows.size() == frame.height, "all rows");
        const quint64 bytes = quint64(2) * frame.width * frame.height;
        require(bytes + 64 <= static_cast<quint64>(file.size()), "counts that are in the file");
        quint32 most = 0;
        for (const quint16* row : frame.rows) {
            most = std::max<quint32>(most, *std::max_element(row, row + frame.width));
        }
        require(frame.min <= frame.max && frame.max == most, "the extremes of the counts");
    }
    require(logLines() == 0, "no line in the log");
}
