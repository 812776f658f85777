#pragma once

#include <tiffio.h>

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

class QIODevice;

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

// What libtiff takes of memory at once for a file that is read grows with what the file holds, see
// Limits::LeastForTiff, whatever its tags claim. Null where there is no image.

/// Opens a file to read it.
TiffHandle openTiff(const QString& name, const char* mode);

/// A device as libtiff sees a file. Its place is kept here: not every device can be put beyond its
/// end, as files can.
struct TiffDevice {
    QIODevice* io;
    quint64 place = 0;
    QByteArray whole = {};  ///< what has been "mapped into memory"
};

/// Opens a device from its beginning, to read it; both outlive the handle.
TiffHandle openDevice(TiffDevice* device, const char* mode);
