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

/// What the strips of a file hold.
struct Strips {
    quint64 rows = 0;       ///< a compressed strip is there as a whole or not
    bool isBeyond = false;  ///< one is to end behind the file's end
};

Strips stripsInFile(TIFF* tiff, quint64 rowBytes, quint32 height, bool isPlain) {
    const quint64 fileBytes = TIFFGetSizeProc(tiff)(TIFFClientdata(tiff));
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
        const quint64 rows = std::min<quint64>(rowsPerStrip, height - y);
        const quint64 left = fileBytes - offset;
        found.isBeyond = found.isBeyond || bytes > left;
        found.rows +=
            isPlain ? std::min(rows, std::min(bytes, left) / rowBytes) : (bytes <= left ? rows : 0);
    }
    return found;
}

/// @param kind what is wrong with the samples, which should have so many bytes a pixel
QString refusalOf(TIFF* tiff, quint32 width, quint32 height, const QString& kind, quint64 bytes) {
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
    const Strips strips =
        stripsInFile(tiff, width * bytes, height, compression == COMPRESSION_NONE);
    if (strips.rows < height) {
        return FrameHeader::tr("truncated: %1 of %2 rows").arg(strips.rows).arg(height);
    }
    return strips.isBeyond ? FrameHeader::tr("a strip is announced longer than the file")
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

FrameHeader headerOf(TIFF* tiff, const QString& kind, quint64 bytes) {
    FrameHeader header;
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &header.height);
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &header.width);
    header.refusal = refusalOf(tiff, header.width, header.height, kind, bytes);
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
    const quint64 rowCost = std::max<quint64>(width, SmallestRow);
    return height > 0 &&
           (lineBytes <= 0 || lineBytes > 0x7FFFFFFF || rowCost * height > TiffData::maxPixels ||
            static_cast<quint64>(lineBytes) * height > 8 * TiffData::maxPixels);
}

FrameHeader tiffHeader(TIFF* tiff) {
    FrameHeader header = headerOf(tiff, kindOfSamples(tiff), sizeof(quint16));
    if (!isTooLarge(tiff, header.width, header.height)) {
        header.plain = {plainRuns(tiff, header.width, header.height), TIFFIsByteSwapped(tiff) != 0};
    }
    return header;
}

FrameHeader floatTiffHeader(TIFF* tiff) {
    return headerOf(tiff, kindOtherThanFloat(tiff), sizeof(float));
}

QString descriptionIn(TIFF* tiff) {
    const char* text = nullptr;
    return TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &text) == 1 ? QString::fromUtf8(text)
                                                                    : QString();
}
