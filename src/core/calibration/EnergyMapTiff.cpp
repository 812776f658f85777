#include "calibration/EnergyMapTiff.h"

#include <QFile>
#include <QFileInfo>
#include <QRectF>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <vector>

#include "base/DebugLog.h"
#include "files/Answer.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "files/OriginText.h"
#include "files/WholeFile.h"
#include "frames/TiffFile.h"
#include "maps/Analyzed2DRes.h"

namespace {

const QLatin1String kSource("E-shift");  // what the origin of an energy map calls it

/// The bins of a map, as the entries of its origin tell them.
AnalysisGrid gridOf(const QSize& size, const OriginText& origin) {
    static const QRegularExpression bins(
        QStringLiteral("^half width (-?\\d+), half height (-?\\d+)$"));
    static const QRegularExpression corners(
        QStringLiteral("^(-?\\d+) (-?\\d+) (-?\\d+) (-?\\d+)$"));
    const QRegularExpressionMatch half = bins.match(origin.value(QStringLiteral("bins")));
    const QRegularExpressionMatch at = corners.match(origin.value(QStringLiteral("area")));
    const auto number = [&at](int i) { return at.captured(i).toDouble(); };
    const auto gridOver = [&](const QRectF& area) {
        return AnalysisGrid::ofArea(size.width(), size.height(), half.captured(1).toInt(),
                                    half.captured(2).toInt(), area);
    };
    const AnalysisGrid grid =
        gridOver({number(1), number(2), number(3) - number(1), number(4) - number(2)});
    const bool isWhole = grid.x0 == grid.x1 || grid.y0 == grid.y1;  // or beside the image
    return isWhole ? gridOver(QRectF(QPointF(), size)) : grid;
}

/// The shifts of an image; stops at one that cannot be.
std::vector<double> shiftsIn(const FloatTiff& image, EMapReading* reading) {
    std::vector<double> shifts;
    shifts.reserve(image.values.size());
    for (const float value : image.values) {
        const bool isBlank = std::isnan(value);
        reading->noNumbers += isBlank ? 1 : 0;
        shifts.push_back(isBlank ? 0.0 : double(value));
        if (!isUsableShift(shifts.back())) {
            reading->refusal = EMapRefusal::Shift;
            break;
        }
    }
    return shifts;
}

/// @param why the image could not be read; empty: it was
EMapReading readImage(const FloatTiff& image, const QString& why, QSize* imageSize,
                      Analyzed2DRes* map) {
    EMapReading reading;
    reading.ofAnyShape = true;
    const OriginText origin = OriginText::fromText(image.description).value_or(OriginText());
    const QString source = origin.value(QStringLiteral("result"));
    reading.why = source.isEmpty() || source == kSource ? why : source;
    if (!reading.why.isEmpty()) {
        reading.refusal = EMapRefusal::NoMap;
        return reading;
    }
    QSize size = *imageSize;
    if (!fitsImage(image.size, &size)) {
        reading.refusal = EMapRefusal::OtherSize;
        return reading;
    }
    const std::vector<double> shifts = shiftsIn(image, &reading);
    if (reading.refusal == EMapRefusal::None) {
        *imageSize = size;
        putShifts(map, gridOf(image.size, origin), shifts);
    }
    return reading;
}

}  // namespace

bool isTiffMap(const QString& fileName) {
    const auto start = answerOf(fileName, [fileName] {
        InputFile file(placeOf(fileName));
        return file.open(QIODevice::ReadOnly) ? file.read(2) : QByteArray();
    });
    return start == QByteArray("II") || start == QByteArray("MM");
}

bool isTiffMapName(const QString& fileName) {
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    return suffix == QLatin1String("tif") || suffix == QLatin1String("tiff");
}

EMapReading readTiffMap(const QString& fileName, QSize* imageSize, Analyzed2DRes* map) {
    const auto read = answerOf(fileName, [fileName] {
        FloatTiff image;
        const QString why = readFloatTiff(placeOf(fileName), &image);
        return std::pair(std::move(image), why);
    });
    if (!read) {
        return EMapReading::noFile(givenUpText());
    }
    const EMapReading reading = readImage(read->first, read->second, imageSize, map);
    if (reading.refusal != EMapRefusal::None && reading.refusal != EMapRefusal::OtherSize) {
        debugFile("Invalid Energy Map Data File : ", fileName);
    }
    return reading;
}

EMapReading readTiffMap(QIODevice& in, QSize* imageSize, Analyzed2DRes* map) {
    FloatTiff image;
    const QString why = readFloatTiff(in, &image);
    return readImage(image, why, imageSize, map);
}

EMapRefusal refusalOfTiff(const Analyzed2DRes& map) {
    const MapValues shifts = map.values();
    const bool isUsable = std::all_of(shifts.begin(), shifts.end(), [](double shift) {
        return std::isnan(shift) || isUsableShift(shift);
    });
    return isUsable ? EMapRefusal::None : EMapRefusal::Shift;
}

bool writeTiffMap(const QString& fileName, const Analyzed2DRes& map, const QString& origin) {
    const MapValues shifts = map.values();
    const QSize size(map.grid().width, map.grid().height);
    const auto fill = [&shifts](quint64 first, std::size_t count, float* to) {
        std::transform(shifts.begin() + first, shifts.begin() + first + count, to,
                       [](double shift) { return static_cast<float>(shift); });
    };
    return qint64(size.width()) * size.height() == shifts.size() &&
           writeFloatTiff(fileName, size, fill, origin) && noteSaved(fileName);
}
