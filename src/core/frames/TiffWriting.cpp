// The writers of TiffFile.h.

#include <fcntl.h>
#include <tiffio.h>
#include <unistd.h>

#include <QByteArray>
#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

#include "base/Limits.h"
#include "files/FilePlaces.h"
#include "files/SystemPaths.h"
#include "files/WholeFile.h"
#include "frames/TiffDevice.h"
#include "frames/TiffFile.h"

namespace {

constexpr quint64 PieceBytes = 256 * 1024;
constexpr quint64 WritebackBytes = 32 * PieceBytes;

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
