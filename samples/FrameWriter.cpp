#include "FrameWriter.h"

#include <tiffio.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>

namespace samples {

std::string frameName(const std::string& stem, double energy) {
    const long hundredths = std::lround(energy * 100.0);
    char number[32];
    std::snprintf(number, sizeof number, "%04ld_%02ld", hundredths / 100, hundredths % 100);
    return stem + "-" + number + "eV.tif";
}

void writeFrame(const std::string& fileName, int width, int height, const Frame& frame) {
    struct Closer {
        void operator()(TIFF* tiff) const { TIFFClose(tiff); }
    };
    const std::unique_ptr<TIFF, Closer> tiff(TIFFOpen(fileName.c_str(), "wl"));
    const std::size_t bytes = frame.size() * sizeof(frame[0]);
    bool written = tiff != nullptr;
    written = written && TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(width));
    written =
        written && TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(height));
    written = written && TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 16);
    written = written && TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
    written = written && TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    written = written && TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    written = written && TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    written =
        written && TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(height));
    // libtiff wants a writable pointer only because it may swap bytes in place; in the machine's
    // own order it reads.
    written = written &&
              TIFFWriteEncodedStrip(tiff.get(), 0, const_cast<std::uint16_t*>(frame.data()),
                                    static_cast<tmsize_t>(bytes)) == static_cast<tmsize_t>(bytes);
    written = written && TIFFFlush(tiff.get()) == 1;
    if (!written) {
        throw std::runtime_error("can not write " + fileName);
    }
}

}  // namespace samples
