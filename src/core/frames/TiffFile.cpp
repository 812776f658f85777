#include "frames/TiffFile.h"

#include <tiffio.h>

#include <QIODevice>
#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <utility>
#include <vector>

#include "base/LargeMemory.h"
#include "files/InputFile.h"
#include "files/SystemPaths.h"
#include "frames/RowMemory.h"
#include "frames/TiffData.h"
#include "frames/TiffDevice.h"
#include "frames/TiffHeader.h"

// Of the row in FrameReader.cpp.
QString readTiffFrom(QIODevice& in, TiffData* frame);
FrameHeader headerOfTiff(const QString& name);

namespace {

/// Pixels are folded into the extremes in pieces that are still in the processor's cache.
constexpr quint64 PieceBytes = 256 * 1024;

/// Reads the rows of a sound file of the plainest kind (see PlainStrips) straight to where they
/// belong: what is read here is what TIFFReadScanline() would have given for every row. False for
/// what is not as long as it says.
bool readPlain(TIFF* tiff, const std::vector<StripRun>& runs, TiffData* frame) {
    const quint64 rowBytes = quint64(frame->width) * 2;
    const quint64 step = std::max<quint64>(1, PieceBytes / rowBytes);
    quint64 y = 0;
    for (const StripRun& run : runs) {
        if (TIFFGetSeekProc(tiff)(TIFFClientdata(tiff), run.offset, SEEK_SET) != run.offset) {
            return false;
        }
        for (const quint64 end = y + run.rows; y < end;) {
            const quint64 n = std::min(step, end - y);
            quint16* const counts = frame->rows[static_cast<std::size_t>(y)];
            const auto bytes = static_cast<tmsize_t>(n * rowBytes);
            if (TIFFGetReadProc(tiff)(TIFFClientdata(tiff), counts, bytes) != bytes) {
                return false;
            }
            const auto pixels = static_cast<std::size_t>(n) * frame->width;
            if (TIFFIsByteSwapped(tiff) != 0) {
                TIFFSwabArrayOfShort(counts, static_cast<tmsize_t>(pixels));
            }
            frame->foldIn(counts, pixels);
            y += n;
        }
    }
    return true;
}

}  // namespace

void* allocateRow(std::size_t bytes) {
    return _TIFFmalloc(static_cast<tmsize_t>(bytes));
}

void freeRow(void* row) {
    _TIFFfree(row);
}

void silenceTiffMessages() {
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandler(nullptr);
}

namespace {

/// Opens a file by a mode of libtiff; as often as is needed.
using Open = std::function<TiffHandle(const char* mode)>;

/// Reads whatever can be read of a frame that has its rows; a file that is gone gives zeros.
/// Returns the number of rows that were read. Memory is handed out as rows are filled: the frame is
/// left without rows where more of it than what isTooLittle() allows would be zeros.
quint32 readByRow(TIFF* tiff, std::size_t lineBytes, std::size_t rowBytes, TiffData* frame) {
    frame->startCounts();
    quint32 rowsRead = 0;
    for (quint32 y = 0; y < frame->height; ++y) {
        // Only what the file does not fill is cleared: writing every row twice costs time.
        quint16* const row = frame->rows[y];
        const bool isRead = tiff != nullptr && TIFFReadScanline(tiff, row, y, 0) == 1;
        rowsRead += isRead ? 1 : 0;
        if (!isRead && isTooLittle(rowsRead, y + quint64(1), rowBytes)) {
            frame->clearRows();
            return rowsRead;
        }
        const std::size_t filled = isRead ? lineBytes : 0;
        std::memset(reinterpret_cast<char*>(row) + filled, 0, rowBytes - filled);
        frame->foldIn(row);
    }
    return rowsRead;
}

/// Reads a frame; returns what went wrong once the file could be opened.
QString readFrom(TiffHandle tiff, const Open& open, TiffData* frame) {
    frame->clearRows();
    frame->startCounts();
    const FrameHeader header = tiffHeader(tiff.get());
    const quint32 width = header.width;
    const quint32 height = header.height;
    frame->width = width;
    frame->height = height;
    frame->refusal = header.refusal;
    frame->remarks = header.remarks;
    const tmsize_t lineBytes = TIFFScanlineSize(tiff.get());
    if (isTooLarge(tiff.get(), width, height)) {
        return QStringLiteral("Too large an image");
    }
    frame->scanlineSize = static_cast<qint32>(lineBytes);
    const std::size_t longest =
        std::max(static_cast<std::size_t>(lineBytes), static_cast<std::size_t>(width) * 2);
    const std::size_t rowBytes = (longest + 1) / 2 * 2;
    if (isTooLittle(header.rowsHeld, height, rowBytes)) {
        return header.refusal;
    }
    frame->makeRows(rowBytes);
    if (frame->rows.size() < height) {
        frame->refusal = lackOfMemory();
        return frame->refusal;
    }
    const std::vector<StripRun>& runs = header.plain.runs;
    if (runs.empty() || !readPlain(tiff.get(), runs, frame)) {
        tiff.reset();
        const quint32 rows =
            readByRow(open("r").get(), static_cast<std::size_t>(lineBytes), rowBytes, frame);
        if (rows < height && frame->refusal.isEmpty()) {
            frame->refusal =
                FrameHeader::tr("damaged: %1 of %2 rows can be decoded").arg(rows).arg(height);
        }
    }
    frame->dropPicture();
    return frame->rows.empty() ? frame->refusal : QString();
}

QString noTiff() {
    return FrameHeader::tr("a TIFF file without an image");
}

FrameHeader headerIn(TIFF* tiff) {
    if (tiff != nullptr) {
        return tiffHeader(tiff);
    }
    FrameHeader header;
    header.refusal = noTiff();
    return header;
}

QString readFloats(TIFF* tiff, FloatTiff* image) {
    if (tiff == nullptr) {
        return noTiff();
    }
    const FrameHeader header = floatTiffHeader(tiff);
    if (!header.refusal.isEmpty()) {
        return header.refusal;
    }
    FloatTiff read;
    read.size = QSize(static_cast<int>(header.width), static_cast<int>(header.height));
    read.description = descriptionIn(tiff);
    try {
        // Memory is handed out as rows are filled.
        read.values.reserve(static_cast<std::size_t>(header.width) * header.height);
    } catch (const std::bad_alloc&) {
        return FrameHeader::tr("too large an image");
    }
    for (quint32 y = 0; y < header.height; ++y) {
        const std::size_t first = read.values.size();
        read.values.resize(first + header.width);
        float* const row = read.values.data() + first;
        if (TIFFReadScanline(tiff, row, y, 0) != 1) {
            return FrameHeader::tr("damaged: %1 of %2 rows can be decoded")
                .arg(y)
                .arg(header.height);
        }
    }
    *image = std::move(read);
    return QString();
}

QString descriptionOf(TIFF* tiff) {
    return tiff != nullptr ? descriptionIn(tiff) : QString();
}

}  // namespace

// The reader of rows finds out which strips are whole only where all of the file is in memory. It
// is never mapped there: what is cut meanwhile would end the program.

bool TiffData::readTiff(const QString& name) {
    InputFile file;
    if (!file.openAt(pathsOfFile(name), QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return false;
    }
    fileName = name;
    const bool isRead = readTiffFrom(file, this).isEmpty();
    if (isRead && file.hasChanged()) {
        refusal = InputFile::changedText();
    }
    return isRead && refusal != InputFile::changedText();
}

FrameHeader headerOfTiff(const QString& name) {
    return headerIn(openTiff(name, "rm").get());
}

FrameHeader readTiffHeader(QIODevice& in) {
    TiffDevice device{&in};
    return headerIn(openDevice(&device, "rm").get());
}

QString readTiffFrom(QIODevice& in, TiffData* frame) {
    TiffDevice device{&in};
    const Open open = [&device](const char* mode) { return openDevice(&device, mode); };
    TiffHandle tiff = open("rm");
    return tiff ? readFrom(std::move(tiff), open, frame) : QStringLiteral("Not a TIFF image");
}

QString readFloatTiff(const QString& name, FloatTiff* image) {
    InputFile file;
    if (!file.openAt(pathsOfFile(name), QIODevice::ReadOnly)) {
        return noTiff();
    }
    FloatTiff read;
    const QString problem = readFloatTiff(file, &read);
    if (problem.isEmpty() && file.hasChanged()) {
        return InputFile::changedText();
    }
    if (problem.isEmpty()) {
        *image = std::move(read);
    }
    return problem;
}

QString readFloatTiff(QIODevice& in, FloatTiff* image) {
    TiffDevice device{&in};
    return readFloats(openDevice(&device, "rm").get(), image);
}

QString tiffDescription(const QString& name) {
    return descriptionOf(openTiff(name, "rm").get());
}

QString tiffDescription(QIODevice& in) {
    TiffDevice device{&in};
    return descriptionOf(openDevice(&device, "rm").get());
}
