#include "frames/TiffHeader.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>

#include "base/Limits.h"

namespace {

constexpr auto MostPixels = static_cast<quint64>(Limits::MostPixels);

int tagOf(TIFF* tiff, uint32_t tag) {
    uint16_t value = 0;
    return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : 0;
}

/// What the samples are, where they are not counts of 16 bits, one a pixel.
QString kindOfSamples(TIFF* tiff) {
    const int bits = tagOf(tiff, TIFFTAG_BITSPERSAMPLE);
    const int samples = tagOf(tiff, TIFFTAG_SAMPLESPERPIXEL);
    if (samples != 1) {
        return FrameHeader::tr("%1 samples a pixel, not 1").arg(samples);
    }
    switch (tagOf(tiff, TIFFTAG_SAMPLEFORMAT)) {
        case SAMPLEFORMAT_INT:
            return FrameHeader::tr("signed %1-bit numbers, not counts").arg(bits);
        case SAMPLEFORMAT_IEEEFP:
            return FrameHeader::tr("%1-bit float, not 16-bit counts").arg(bits);
        case SAMPLEFORMAT_COMPLEXINT:
        case SAMPLEFORMAT_COMPLEXIEEEFP:
            return FrameHeader::tr("complex numbers, not counts");
        default:
            return bits == 16 ? QString() : FrameHeader::tr("%1 bits a sample, not 16").arg(bits);
    }
}

/// What the samples are, where they are not floats of 32 bits, one a pixel.
QString kindOtherThanFloat(TIFF* tiff) {
    const int bits = tagOf(tiff, TIFFTAG_BITSPERSAMPLE);
    const int samples = tagOf(tiff, TIFFTAG_SAMPLESPERPIXEL);
    if (samples != 1) {
        return FrameHeader::tr("%1 samples a pixel, not 1").arg(samples);
    }
    if (tagOf(tiff, TIFFTAG_SAMPLEFORMAT) != SAMPLEFORMAT_IEEEFP) {
        return FrameHeader::tr("%1-bit integers, not 32-bit float").arg(bits);
    }
    return bits == 32 ? QString() : FrameHeader::tr("%1-bit float, not 32-bit float").arg(bits);
}

/// How many bytes of an image a byte of a strip can hold; 0: that shows as it is decoded.
quint64 mostOf(int compression) {
    switch (compression) {
        case COMPRESSION_NONE:
            return 1;
        case COMPRESSION_ADOBE_DEFLATE:
        case COMPRESSION_DEFLATE:
            return Limits::MostOfDeflate;
        case COMPRESSION_LZW:
            return Limits::MostOfLzw;
        case COMPRESSION_PACKBITS:
            return Limits::MostOfPackBits;
        default:
            return 0;
    }
}

/// What the strips of a file hold.
struct Strips {
    quint64 rows = 0;       ///< at the most; a compressed strip is there as a whole or not
    quint64 bytes = 0;      ///< in the file, of all strips
    bool isBeyond = false;  ///< one is to end behind the file's end
    bool isShared = false;  ///< they lie over each other: in all they are longer than the file
};

Strips stripsInFile(TIFF* tiff, quint64 rowBytes, quint32 height) {
    const int compression = tagOf(tiff, TIFFTAG_COMPRESSION);
    const quint64 most = mostOf(compression);
    const quint64 fileBytes = TIFFGetSizeProc(tiff)(TIFFClientdata(tiff));
    const auto rowsIn = [&](quint64 bytes) {
        return bytes <= ~quint64(0) / most ? bytes * most / rowBytes : height;
    };
    uint32_t rowsPerStrip = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    Strips found;
    uint32_t strip = 0;
    for (quint64 y = 0; rowsPerStrip > 0 && y < height; y += rowsPerStrip, ++strip) {
        const quint64 offset = TIFFGetStrileOffset(tiff, strip);
        const quint64 bytes = TIFFGetStrileByteCount(tiff, strip);
        if (offset == 0 || bytes == 0 || offset >= fileBytes) {
            continue;
        }
        const quint64 left = fileBytes - offset;
        found.isBeyond = found.isBeyond || bytes > left;
        if (bytes > left && compression != COMPRESSION_NONE) {
            continue;
        }
        const quint64 held = std::min(bytes, left);
        const quint64 rows = std::min<quint64>(rowsPerStrip, height - y);
        found.bytes += held;
        found.rows += most > 0 ? std::min(rows, rowsIn(held)) : rows;
    }
    found.isShared = found.bytes > fileBytes;
    return found;
}

Strips stripsOf(TIFF* tiff, quint32 width, quint32 height) {
    const bool isInRows =
        width > 0 && height > 0 && !isTooLarge(tiff, width, height) && TIFFIsTiled(tiff) == 0;
    return isInRows ? stripsInFile(tiff, static_cast<quint64>(TIFFScanlineSize(tiff)), height)
                    : Strips();
}

/// @param kind what is wrong with the samples
QString refusalOf(TIFF* tiff, quint32 width, quint32 height, const QString& kind,
                  const Strips& strips) {
    if (width == 0 || height == 0) {
        return FrameHeader::tr("an image without pixels");
    }
    if (isTooLarge(tiff, width, height)) {
        return FrameHeader::tr("too large an image");
    }
    if (!kind.isEmpty()) {
        return kind;
    }
    if (TIFFIsTiled(tiff) != 0) {
        return FrameHeader::tr("tiled, not in rows");
    }
    const int compression = tagOf(tiff, TIFFTAG_COMPRESSION);
    if (TIFFIsCODECConfigured(static_cast<uint16_t>(compression)) == 0) {
        return FrameHeader::tr("a compression that is not known (%1)").arg(compression);
    }
    if (strips.rows < height) {
        return FrameHeader::tr("truncated: %1 of %2 rows").arg(strips.rows).arg(height);
    }
    if (strips.isBeyond) {
        return FrameHeader::tr("a strip is announced longer than the file");
    }
    const auto bytes = static_cast<quint64>(TIFFScanlineSize(tiff)) * height;
    return strips.isShared && bytes > Limits::SmallImage
               ? FrameHeader::tr("its strips lie over each other")
               : QString();
}

QStringList remarksOn(TIFF* tiff) {
    QStringList remarks;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
    if (photometric == PHOTOMETRIC_MINISWHITE) {
        remarks << FrameHeader::tr(
            "its counts are taken as they stand, though 0 is marked as white");
    } else if (photometric != PHOTOMETRIC_MINISBLACK) {
        remarks << FrameHeader::tr("its values are taken as counts, though not marked as such");
    }
    if (TIFFLastDirectory(tiff) == 0) {
        remarks << FrameHeader::tr("only the first of its images is read");
    }
    return remarks;
}

FrameHeader headerOf(TIFF* tiff, const QString& kind) {
    FrameHeader header;
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &header.height);
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &header.width);
    const Strips strips = stripsOf(tiff, header.width, header.height);
    header.rowsHeld = strips.isShared ? 0 : strips.rows;
    header.refusal = refusalOf(tiff, header.width, header.height, kind, strips);
    header.remarks = remarksOn(tiff);
    return header;
}

bool has(TIFF* tiff, uint32_t tag, uint16_t value) {
    uint16_t found = 0;
    return TIFFGetFieldDefaulted(tiff, tag, &found) == 1 && found == value;
}

std::vector<StripRun> plainRuns(TIFF* tiff, quint32 width, quint32 height) {
    uint32_t rowsPerStrip = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    const quint64 rowBytes = quint64(width) * 2;
    if (TIFFIsTiled(tiff) != 0 || !has(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE) ||
        !has(tiff, TIFFTAG_BITSPERSAMPLE, 16) || !has(tiff, TIFFTAG_SAMPLESPERPIXEL, 1) ||
        !has(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) ||
        !has(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) || rowsPerStrip == 0 || rowBytes == 0) {
        return {};
    }
    const quint64 fileBytes = TIFFGetSizeProc(tiff)(TIFFClientdata(tiff));
    std::vector<StripRun> runs;
    uint32_t strip = 0;
    for (quint64 y = 0; y < height; y += rowsPerStrip, ++strip) {
        const quint64 offset = TIFFGetStrileOffset(tiff, strip);
        const quint64 bytes = TIFFGetStrileByteCount(tiff, strip);
        const quint64 rows = std::min<quint64>(rowsPerStrip, height - y);
        if (offset == 0 || bytes < rows * rowBytes || bytes > fileBytes ||
            offset > fileBytes - bytes) {
            return {};
        }
        if (!runs.empty() && runs.back().offset + runs.back().rows * rowBytes == offset) {
            runs.back().rows += rows;
        } else {
            runs.push_back({offset, rows});
        }
    }
    return runs;
}

}  // namespace

bool isTooLarge(TIFF* tiff, quint32 width, quint32 height) {
    const tmsize_t lineBytes = TIFFScanlineSize(tiff);
    const quint64 rowCost = std::max<quint64>(width, Limits::SmallestRow);
    return height > 0 && (lineBytes <= 0 || lineBytes > 0x7FFFFFFF || width > Limits::LongestSide ||
                          height > Limits::LongestSide || rowCost * height > MostPixels ||
                          static_cast<quint64>(lineBytes) * height > 8 * MostPixels);
}

bool isTooLittle(quint64 held, quint64 rows, quint64 rowBytes) {
    return rows * rowBytes > Limits::SmallImage && rows > Limits::MostClaimed * held;
}

FrameHeader tiffHeader(TIFF* tiff) {
    FrameHeader header = headerOf(tiff, kindOfSamples(tiff));
    if (!isTooLarge(tiff, header.width, header.height)) {
        header.plain = {plainRuns(tiff, header.width, header.height), TIFFIsByteSwapped(tiff) != 0};
    }
    return header;
}

FrameHeader floatTiffHeader(TIFF* tiff) {
    return headerOf(tiff, kindOtherThanFloat(tiff));
}

QString descriptionIn(TIFF* tiff) {
    const char* text = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &text) != 1) {
        return QString();
    }
    const std::size_t bytes = strnlen(text, Limits::LongestOrigin + 1);
    return bytes <= Limits::LongestOrigin ? QString::fromUtf8(text, static_cast<int>(bytes))
                                          : QString();
}
