#include "frames/TiffFile.h"

#include <fcntl.h>
#include <tiffio.h>
#include <unistd.h>

#include <QIODevice>
#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "base/LargeMemory.h"
#include "base/Limits.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "files/SystemPaths.h"
#include "files/WholeFile.h"
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
constexpr quint64 WritebackBytes = 32 * PieceBytes;

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

/// What goes into a file.
struct Pixels {
    quint32 width;
    int height;
    quint16 bits;  ///< a pixel
    quint16 format;
    quint32 rowsPerStrip;
    quint64 stride;  ///< from strip to strip in the data, in strips
    std::function<void(quint64 first, std::size_t count, void* to)> fill;  ///< pixels of the data
    quint64 count;  ///< of pixels in the data; what lies beyond is 0
    QByteArray description;

    bool isEmpty() const { return width == 0 || height <= 0; }
};

bool setTags(TIFF* tiff, const Pixels& image) {
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width) == 1 &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height) == 1 &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, image.rowsPerStrip) == 1 &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1) == 1 &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, image.bits) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) == 1 &&
           (image.format == SAMPLEFORMAT_UINT ||
            TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, image.format) == 1) &&
           (image.description.isEmpty() ||
            TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, image.description.constData()) == 1);
}

/// What lies behind `place`, both in bytes, as it is in the file.
void fillPiece(const Pixels& image, quint64 place, std::vector<char>* piece) {
    const quint64 pixelBytes = image.bits / 8;
    const quint64 first = place / pixelBytes;
    const quint64 count =
        std::min<quint64>(piece->size() / pixelBytes, image.count - std::min(image.count, first));
    std::fill(piece->begin() + static_cast<std::ptrdiff_t>(count * pixelBytes), piece->end(), 0);
    if (count > 0) {
        image.fill(first, static_cast<std::size_t>(count), piece->data());
    }
#if Q_BYTE_ORDER == Q_BIG_ENDIAN
    if (pixelBytes == sizeof(quint16)) {
        TIFFSwabArrayOfShort(reinterpret_cast<quint16*>(piece->data()), tmsize_t(count));
    } else {
        TIFFSwabArrayOfLong(reinterpret_cast<quint32*>(piece->data()), tmsize_t(count));
    }
#endif
}

/// On a descriptor of its own, which it closes.
TiffHandle openToWrite(const WholeFile& file) {
    const int descriptor = file.isMade() ? ::fcntl(file.descriptor(), F_DUPFD_CLOEXEC, 0) : -1;
    TiffHandle tiff(descriptor < 0 ? nullptr
                                   : TIFFFdOpen(descriptor, file.part().constData(), "wl"));
    if (descriptor >= 0 && !tiff) {
        ::close(descriptor);
    }
    return tiff;
}

/// A piece at a time: strips may be as large as the image.
bool writeStrips(TIFF* tiff, const Pixels& image, const WholeFile& file) {
    uint32_t rowsPerStrip = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    if (rowsPerStrip == 0 || image.isEmpty()) {
        return false;
    }
    const quint64 rowCount = static_cast<quint64>(image.height);
    std::vector<char> piece;
    quint64 place = 0;
    quint64 written = 0;
    uint32_t s = 0;
    for (quint64 r = 0; r < rowCount; r += rowsPerStrip, ++s) {
        const quint64 n = std::min<quint64>(rowsPerStrip, rowCount - r);
        const auto size = static_cast<quint64>(TIFFVStripSize(tiff, static_cast<uint32_t>(n)));
        for (quint64 done = 0; done < size; done += piece.size()) {
            piece.resize(static_cast<std::size_t>(std::min(PieceBytes, size - done)));
            fillPiece(image, place + done, &piece);
            const auto bytes = static_cast<tmsize_t>(piece.size());
            // Goes behind what the strip has already.
            if (TIFFWriteRawStrip(tiff, s, piece.data(), bytes) != bytes) {
                return false;
            }
            written += piece.size();
            if (written % WritebackBytes == 0) {
                file.startWriteback();
            }
        }
        place += image.stride * size;
    }
    return TIFFFlush(tiff) == 1;  // a full disk shows at the latest here
}

/// Writes beside the file and then takes its place, so that a failure leaves the old one whole.
bool writeFile(const QString& name, const Pixels& image) {
    for (const QByteArray& path : pathsOfFile(placeOf(name))) {
        WholeFile file(path);
        if (file.isTaken()) {
            return false;
        }
        TiffHandle tiff = openToWrite(file);
        if (!tiff) {
            continue;
        }
        const bool written = setTags(tiff.get(), image) && writeStrips(tiff.get(), image, file);
        tiff.reset();
        return (written || image.isEmpty()) && file.putInPlace() && written;
    }
    return false;
}

/// See writeTiff(): strips of as many rows as the image is wide, taken from twice as far apart.
bool writeCounts(const QString& name, quint32 width, int height, const FillCounts& fill,
                 quint64 count, const QString& origin) {
    const auto fillPixels = [&fill](quint64 first, std::size_t n, void* to) {
        fill(first, n, static_cast<quint16*>(to));
    };
    return writeFile(
        name, {width, height, 16, SAMPLEFORMAT_UINT, width, 2, fillPixels, count, origin.toUtf8()});
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

bool writeTiff(const QString& name, quint32 width, int height, const FillCounts& fill,
               const QString& origin) {
    return writeCounts(name, width, height, fill, static_cast<quint64>(std::max(0, height)) * width,
                       origin);
}

bool writeTiff(const QString& name, quint32 width, int height, const quint16* data,
               const QString& origin) {
    const auto copy = [data](quint64 first, std::size_t count, quint16* to) {
        std::copy_n(data + first, count, to);
    };
    return writeTiff(name, width, height, copy, origin);
}

bool writeFloatTiff(const QString& name, const QSize& size, const FillFloats& fill,
                    const QString& origin) {
    const auto pixels = static_cast<quint64>(size.width()) * static_cast<quint64>(size.height());
    if (size.isEmpty() || pixels > quint64(Limits::MostPixels)) {
        return false;
    }
    const quint64 rowBytes = static_cast<quint64>(size.width()) * sizeof(float);
    const auto rows = static_cast<quint32>(std::max<quint64>(1, PieceBytes / rowBytes));
    const auto fillPixels = [&fill](quint64 first, std::size_t n, void* to) {
        fill(first, n, static_cast<float*>(to));
    };
    return writeFile(
        name, {static_cast<quint32>(size.width()), size.height(), 32, SAMPLEFORMAT_IEEEFP,
               std::min(rows, quint32(size.height())), 1, fillPixels, pixels, origin.toUtf8()});
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

bool writeConstTiff(const QString& name, quint32 width, quint32 height, quint16 value) {
    // Long enough for the doubled step between strips, so that tall frames are right as well.
    const quint64 count = 2 * static_cast<quint64>(width) * height;
    if (count > 2 * quint64(Limits::MostPixels)) {
        return false;
    }
    const auto fill = [value](quint64, std::size_t n, quint16* to) { std::fill_n(to, n, value); };
    return writeCounts(name, width, static_cast<int>(height), fill, count, {});
}

bool writeOnesTiff(const QString& name, quint32 width, quint32 height) {
    return writeConstTiff(name, width, height, 1);
}

bool writeZerosTiff(const QString& name, quint32 width, quint32 height) {
    return writeConstTiff(name, width, height, 0);
}
