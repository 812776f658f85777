#include "frames/TiffHeader.h"

#include <tiffio.h>

#include <algorithm>

#include "frames/TiffData.h"

namespace {

/// Pixels that the narrowest row counts as against TiffData::maxPixels: it costs memory of its own.
constexpr quint64 SmallestRow = 32;

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

/// Rows of 16-bit counts that the file holds. A compressed strip is there as a whole or not.
quint64 rowsInFile(TIFF* tiff, quint32 width, quint32 height, bool isPlain) {
    const quint64 fileBytes = TIFFGetSizeProc(tiff)(TIFFClientdata(tiff));
    const quint64 rowBytes = quint64(width) * 2;
    uint32_t rowsPerStrip = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    quint64 found = 0;
    uint32_t strip = 0;
    for (quint64 y = 0; rowsPerStrip > 0 && y < height; y += rowsPerStrip, ++strip) {
        const quint64 offset = TIFFGetStrileOffset(tiff, strip);
        const quint64 bytes = TIFFGetStrileByteCount(tiff, strip);
        if (offset == 0 || bytes == 0 || offset >= fileBytes) {
            continue;
        }
        const quint64 rows = std::min<quint64>(rowsPerStrip, height - y);
        const quint64 left = fileBytes - offset;
        found +=
            isPlain ? std::min(rows, std::min(bytes, left) / rowBytes) : (bytes <= left ? rows : 0);
    }
    return found;
}

QString refusalOf(TIFF* tiff, quint32 width, quint32 height) {
    if (width == 0 || height == 0) {
        return FrameHeader::tr("an image without pixels");
    }
    if (isTooLarge(tiff, width, height)) {
        return FrameHeader::tr("too large an image");
    }
    const QString kind = kindOfSamples(tiff);
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
    const quint64 rows = rowsInFile(tiff, width, height, compression == COMPRESSION_NONE);
    return rows == height ? QString()
                          : FrameHeader::tr("truncated: %1 of %2 rows").arg(rows).arg(height);
}

}  // namespace

bool isTooLarge(TIFF* tiff, quint32 width, quint32 height) {
    const tmsize_t lineBytes = TIFFScanlineSize(tiff);
    const quint64 rowCost = std::max<quint64>(width, SmallestRow);
    return height > 0 &&
           (lineBytes <= 0 || lineBytes > 0x7FFFFFFF || rowCost * height > TiffData::maxPixels ||
            static_cast<quint64>(lineBytes) * height > 8 * TiffData::maxPixels);
}

FrameHeader tiffHeader(TIFF* tiff) {
    FrameHeader header;
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &header.height);
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &header.width);
    header.refusal = refusalOf(tiff, header.width, header.height);
    return header;
}
