#include <QBuffer>
#include <cmath>

#include "Fuzz.h"
#include "calibration/EnergyMapTiff.h"
#include "frames/TiffFile.h"
#include "maps/Analyzed2DRes.h"

// Images of 32-bit floats with their description, and energy maps that are kept so.

void fuzz(const QByteArray& input) {
    QBuffer file;
    file.setData(input);
    file.open(QIODevice::ReadOnly);
    FloatTiff image;
    const bool isRead = readFloatTiff(file, &image).isEmpty();
    if (isRead) {
        require(!image.size.isEmpty(), "an image has pixels");
        require(image.values.size() ==
                    static_cast<std::size_t>(image.size.width()) * std::size_t(image.size.height()),
                "a value a pixel");
        require(image.description == tiffDescription(file), "one description");
    } else {
        require(image.values.empty(), "an image that is refused is left alone");
    }
    Analyzed2DRes map;
    QSize size(-1, -1);
    const EMapReading reading = readTiffMap(file, &size, &map);
    if (reading.refusal == EMapRefusal::None) {
        require(isRead && size == image.size, "a map has the size of its image");
        require(map.grid().width == size.width() && map.grid().height == size.height(), "a grid");
        for (const double shift : map.values()) {
            require(isUsableShift(shift), "a shift");
        }
    } else {
        require(size == QSize(-1, -1), "a map that is refused leaves the size alone");
    }
    require(logLines() == 0, "no line in the log");
}
