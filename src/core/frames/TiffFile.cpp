#include "frames/TiffFile.h"

#include <tiffio.h>

#include <QFile>
#include <QIODevice>
#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "files/WholeFile.h"
#include "frames/RowMemory.h"
#include "frames/TiffData.h"
#include "frames/TiffHeader.h"

// Of the row in FrameReader.cpp.
QString readTiffFrom(QIODevice& in, TiffData* frame);
FrameHeader headerOfTiff(const QString& name);

namespace {

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

/// The names under which a file is tried: as Latin-1 where that can hold it, then in the system's
/// own encoding, which reaches what the first does not (a folder named in UTF-8).
std::vector<QByteArray> pathsOf(const QString& name) {
    const QByteArray latin = name.toLatin1();
    const QByteArray local = QFile::encodeName(name);
    if (latin == local || QString::fromLatin1(latin) != name) {
        return {local};
    }
    return {latin, local};
}

TiffHandle openTiff(const QString& name, const char* mode) {
    TiffHandle tiff;
    for (const QByteArray& path : pathsOf(name)) {
        tiff.reset(TIFFOpen(path.constData(), mode));
        if (tiff) {
            break;
        }
    }
    return tiff;
}

/// Pixels are folded into the extremes in pieces that are still in the processor's cache.
constexpr quint64 PieceBytes = 256 * 1024;

/// Reads the rows of a sound file of the plainest kind (whole strips of uncompressed 16-bit counts)
/// straight to where they belong. False for any other file, which is to be read row by row then:
/// what is read here is what TIFFReadScanline() would have given for every row.
class PlainReader {
  public:
    PlainReader(TIFF* tiff, quint32 width, quint32 height)
        : m_tiff(tiff), m_width(width), m_height(height), m_rowBytes(quint64(width) * 2) {}

    bool canRead() {
        return TIFFIsTiled(m_tiff) == 0 && has(TIFFTAG_COMPRESSION, COMPRESSION_NONE) &&
               has(TIFFTAG_BITSPERSAMPLE, 16) && has(TIFFTAG_SAMPLESPERPIXEL, 1) &&
               has(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
               has(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) && findRuns();
    }

    /// Into a frame that has its rows.
    bool read(TiffData* frame) {
        quint64 y = 0;
        for (const Run& run : m_runs) {
            if (TIFFGetSeekProc(m_tiff)(TIFFClientdata(m_tiff), run.offset, SEEK_SET) !=
                run.offset) {
                return false;
            }
            const quint64 step = std::max<quint64>(1, PieceBytes / m_rowBytes);
            for (const quint64 end = y + run.rows; y < end;) {
                const quint64 n = std::min(step, end - y);
                if (!readPiece(frame, frame->rows[static_cast<std::size_t>(y)], n)) {
                    return false;
                }
                y += n;
            }
        }
        return true;
    }

  private:
    /// Rows that lie one after another in the file: a strip, or several neighbours.
    struct Run {
        quint64 offset;
        quint64 rows;
    };

    bool has(uint32_t tag, uint16_t value) const {
        uint16_t found = 0;
        return TIFFGetFieldDefaulted(m_tiff, tag, &found) == 1 && found == value;
    }

    /// The file's strips in order; false when one is not there as a whole.
    bool findRuns() {
        uint32_t rowsPerStrip = 0;
        TIFFGetFieldDefaulted(m_tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
        if (rowsPerStrip == 0 || m_rowBytes == 0) {
            return false;
        }
        const quint64 fileBytes = TIFFGetSizeProc(m_tiff)(TIFFClientdata(m_tiff));
        uint32_t strip = 0;
        for (quint64 y = 0; y < m_height; y += rowsPerStrip, ++strip) {
            const quint64 offset = TIFFGetStrileOffset(m_tiff, strip);
            const quint64 bytes = TIFFGetStrileByteCount(m_tiff, strip);
            const quint64 rows = std::min<quint64>(rowsPerStrip, m_height - y);
            if (offset == 0 || bytes < rows * m_rowBytes || bytes > fileBytes ||
                offset > fileBytes - bytes) {
                return false;
            }
            if (!m_runs.empty() &&
                m_runs.back().offset + m_runs.back().rows * m_rowBytes == offset) {
                m_runs.back().rows += rows;
            } else {
                m_runs.push_back({offset, rows});
            }
        }
        return true;
    }

    bool readPiece(TiffData* frame, quint16* counts, quint64 rows) const {
        const auto bytes = static_cast<tmsize_t>(rows * m_rowBytes);
        if (TIFFGetReadProc(m_tiff)(TIFFClientdata(m_tiff), counts, bytes) != bytes) {
            return false;
        }
        const auto n = static_cast<std::size_t>(rows) * m_width;
        if (TIFFIsByteSwapped(m_tiff) != 0) {
            TIFFSwabArrayOfShort(counts, static_cast<tmsize_t>(n));
        }
        frame->foldIn(counts, n);
        return true;
    }

    TIFF* m_tiff;
    quint32 m_width;
    quint32 m_height;
    quint64 m_rowBytes;
    std::vector<Run> m_runs;
};

bool setTags(TIFF* tiff, quint32 width, int height, const QByteArray& description) {
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width) == 1 &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height) == 1 &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, width) == 1 &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1) == 1 &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) == 1 &&
           (description.isEmpty() ||
            TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, description.constData()) == 1);
}

bool writeStrips(TIFF* tiff, int height, const quint16* data, quint64 dataCount) {
    uint32_t rowsPerStrip = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    if (rowsPerStrip == 0 || height <= 0) {
        return false;
    }
    const quint64 rowCount = static_cast<quint64>(height);
    const quint64 dataBytes = dataCount * sizeof(quint16);
    const auto* bytes = reinterpret_cast<const char*>(data);
    std::vector<char> strip;
    quint64 place = 0;
    uint32_t s = 0;
    for (quint64 r = 0; r < rowCount; r += rowsPerStrip, ++s) {
        const quint64 n = std::min<quint64>(rowsPerStrip, rowCount - r);
        const tmsize_t size = TIFFVStripSize(tiff, static_cast<uint32_t>(n));
        strip.assign(static_cast<std::size_t>(size), 0);
        if (place < dataBytes) {
            std::memcpy(strip.data(), bytes + place,
                        std::min<quint64>(static_cast<quint64>(size), dataBytes - place));
        }
        if (TIFFWriteEncodedStrip(tiff, s, strip.data(), size) < 0) {
            return false;
        }
        place += 2 * static_cast<quint64>(size);
    }
    return TIFFFlush(tiff) == 1;  // a full disk shows at the latest here
}

/// Writes beside the file and then takes its place, so that a failure leaves the old one whole.
bool writeFile(const QString& name, quint32 width, int height, const quint16* data,
               quint64 dataCount, const QByteArray& description = {}) {
    for (const QByteArray& path : pathsOf(name)) {
        WholeFile file(path);
        TiffHandle tiff(file.isMade() ? TIFFOpen(file.part().constData(), "w") : nullptr);
        if (file.isTaken()) {
            return false;
        }
        if (!tiff) {
            continue;
        }
        const bool written = setTags(tiff.get(), width, height, description) &&
                             writeStrips(tiff.get(), height, data, dataCount);
        tiff.reset();
        const bool withoutPixels = width == 0 || height <= 0;
        return (written || withoutPixels) && file.putInPlace() && written;
    }
    return false;
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
/// Returns the number of rows that were read.
quint32 readByRow(TIFF* tiff, std::size_t lineBytes, std::size_t rowBytes, TiffData* frame) {
    frame->startCounts();
    quint32 rowsRead = 0;
    for (quint32 y = 0; y < frame->height; ++y) {
        // Only what the file does not fill is cleared: writing every row twice costs time.
        quint16* const row = frame->rows[y];
        const bool isRead = tiff != nullptr && TIFFReadScanline(tiff, row, y, 0) == 1;
        rowsRead += isRead ? 1 : 0;
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
    frame->makeRows(rowBytes);
    if (frame->rows.size() < height) {
        return QStringLiteral("Not enough memory");
    }
    PlainReader plain(tiff.get(), width, height);
    if (!(plain.canRead() && plain.read(frame))) {
        tiff.reset();
        const quint32 rows =
            readByRow(open("r").get(), static_cast<std::size_t>(lineBytes), rowBytes, frame);
        if (rows < height && frame->refusal.isEmpty()) {
            frame->refusal =
                FrameHeader::tr("damaged: %1 of %2 rows can be decoded").arg(rows).arg(height);
        }
    }
    frame->dropPicture();
    return QString();
}

/// A device as libtiff sees a file. Its place is kept here: not every device can be put beyond its
/// end, as files can.
struct Device {
    QIODevice* io;
    quint64 place = 0;
    QByteArray whole;  // what has been "mapped into memory"

    static Device* of(thandle_t handle) { return static_cast<Device*>(handle); }
    static tmsize_t read(thandle_t handle, void* data, tmsize_t bytes) {
        Device* const self = of(handle);
        if (self->place >= size(handle) || !self->io->seek(static_cast<qint64>(self->place))) {
            return 0;
        }
        const qint64 n = self->io->read(static_cast<char*>(data), bytes);
        self->place += static_cast<quint64>(std::max<qint64>(0, n));
        return static_cast<tmsize_t>(n);
    }
    static tmsize_t write(thandle_t, void*, tmsize_t) { return -1; }
    static toff_t seek(thandle_t handle, toff_t offset, int whence) {
        Device* const self = of(handle);
        self->place = whence == SEEK_CUR   ? self->place + offset
                      : whence == SEEK_END ? size(handle) + offset
                                           : offset;
        return self->place;
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t handle) {
        return static_cast<toff_t>(std::max<qint64>(0, of(handle)->io->size()));
    }
    static int map(thandle_t handle, void** base, toff_t* bytes) {
        Device* const self = of(handle);
        self->io->seek(0);
        self->whole = self->io->readAll();
        *base = self->whole.data();
        *bytes = static_cast<toff_t>(self->whole.size());
        return 1;
    }
    static void unmap(thandle_t handle, void*, toff_t) { of(handle)->whole.clear(); }
};

}  // namespace

// Mapping a file into memory costs more than reading it once, but the reader of rows finds out by
// it which strips are whole: "m", without, is tried first.

bool TiffData::readTiff(const QString& name) {
    const Open open = [&name](const char* mode) { return openTiff(name, mode); };
    TiffHandle tiff = open("rm");
    if (!tiff) {
        tiff = open("r");
    }
    if (!tiff) {
        return false;
    }
    fileName = name;
    return readFrom(std::move(tiff), open, this).isEmpty();
}

FrameHeader headerOfTiff(const QString& name) {
    const TiffHandle tiff = openTiff(name, "rm");
    if (tiff) {
        return tiffHeader(tiff.get());
    }
    FrameHeader header;
    header.refusal = FrameHeader::tr("a TIFF file without an image");
    return header;
}

QString readTiffFrom(QIODevice& in, TiffData* frame) {
    Device device{&in, 0, {}};
    const Open open = [&device](const char* mode) {
        device.place = 0;
        return TiffHandle(TIFFClientOpen("device", mode, &device, Device::read, Device::write,
                                         Device::seek, Device::close, Device::size, Device::map,
                                         Device::unmap));
    };
    TiffHandle tiff = open("rm");
    return tiff ? readFrom(std::move(tiff), open, frame) : QStringLiteral("Not a TIFF image");
}

bool writeTiff(const QString& name, quint32 width, int height, const quint16* data,
               const QString& origin) {
    return writeFile(name, width, height, data, static_cast<quint64>(std::max(0, height)) * width,
                     origin.toUtf8());
}

QString tiffDescription(const QString& name) {
    const TiffHandle tiff = openTiff(name, "rm");
    const char* text = nullptr;
    const bool found = tiff && TIFFGetField(tiff.get(), TIFFTAG_IMAGEDESCRIPTION, &text) == 1;
    return found ? QString::fromUtf8(text) : QString();
}

bool writeConstTiff(const QString& name, quint32 width, quint32 height, quint16 value) {
    // Long enough for the doubled step between strips, so that tall frames are right as well.
    const quint64 count = 2 * static_cast<quint64>(width) * height;
    if (count > 2 * TiffData::maxPixels) {
        return false;
    }
    const std::vector<quint16> values(static_cast<std::size_t>(count), value);
    return writeFile(name, width, static_cast<int>(height), values.data(), count);
}

bool writeOnesTiff(const QString& name, quint32 width, quint32 height) {
    return writeConstTiff(name, width, height, 1);
}

bool writeZerosTiff(const QString& name, quint32 width, quint32 height) {
    return writeConstTiff(name, width, height, 0);
}
