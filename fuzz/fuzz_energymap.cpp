#include <QBuffer>
#include <QSize>
#include <QTextStream>

#include "Fuzz.h"
#include "calibration/EnergyMapFile.h"
#include "maps/Analyzed2DRes.h"

// Energy maps as text.

namespace {

/// A short file's map is made in full, as large as its header says: large ones would cost the time
/// of all others. Their limits are tested in tests/calibration.
constexpr qint64 MostPixels = 1 << 20;

bool isSmall(QIODevice& file) {
    QTextStream stream(&file);
    const EMPHeader header = readEMapHeader(stream);
    return qint64(header.width) * header.height <= MostPixels;
}

}  // namespace

void fuzz(const QByteArray& input) {
    QBuffer file;
    file.setData(input);
    file.open(QIODevice::ReadOnly | QIODevice::Text);
    if (!isSmall(file)) {
        return;
    }
    file.seek(0);
    Analyzed2DRes map;
    QSize size(-1, -1);
    const EMapReading reading = readEMap(file, 0.0, &size, &map);
    require(logLines() <= 5, "few lines in the log");
    if (reading.refusal != EMapRefusal::None) {
        require(size == QSize(-1, -1), "a map that is refused leaves the size alone");
        return;
    }
    require(size.width() >= 0 && size.width() == size.height(), "a square map");
    require(map.grid().width == size.width() && map.grid().height == size.height(), "a grid");
    const qint64 pixels = qint64(size.width()) * size.height();
    require(reading.missing >= 0 && reading.noNumbers >= 0 &&
                reading.missing + reading.noNumbers <= pixels,
            "no more is wrong than there is");
    require(reading.missing == 0 || !reading.goesOn, "either too little or too much");
    for (const double shift : map.values()) {
        require(isUsableShift(shift), "a shift");
    }
}
