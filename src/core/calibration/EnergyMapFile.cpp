#include "calibration/EnergyMapFile.h"

#include <QDateTime>
#include <QDebug>
#include <QRectF>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <vector>

#include "base/DebugLog.h"
#include "base/LargeMemory.h"
#include "base/Limits.h"
#include "calibration/NumberScan.h"
#include "files/Answer.h"
#include "files/FilePlaces.h"
#include "files/InputFile.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"
#include "frames/FrameHeader.h"
#include "maps/AnalysisGrid.h"
#include "maps/Analyzed2DRes.h"
#include "spectra/Spectrum.h"
#include "spectra/Units.h"

namespace {

constexpr double kHalfHeight = 0.5;
constexpr int kRisingEdge = 0;
constexpr double kLeastSpacing = 0.1;  // angstrom; crystals and multilayers lie far inside
constexpr double kMostSpacing = 1000.0;
constexpr double kMostShift = 1000.0;  // eV

const QLatin1String kShortTag("###TWEM");
const QLatin1String kTag("###Tarnwick::TWEM");
const QLatin1String kDataFollows("##-----------------");

const QLatin1String kRecordDate("Record Date             : ");
const QLatin1String kStdEdgeEnergy("Std Edge Energy [eV]    : ");
const QLatin1String kSpacing("Spacing [nm]            : ");
const QLatin1String kWidth("Width [pix]             : ");
const QLatin1String kHeight("Height [pix]            : ");
const QLatin1String kBinHalfWidth("Bin Half Width [pix]    : ");
const QLatin1String kBinHalfHeight("Bin Half Height [pix]   : ");
const QLatin1String kAreaX0("Area X0                 : ");
const QLatin1String kAreaX1("Area X1                 : ");
const QLatin1String kAreaY0("Area Y0                 : ");
const QLatin1String kAreaY1("Area Y1                 : ");
const QLatin1String kStdFileName("Std File Name           : ");
const QLatin1String kShiftMapHeight("Shift Map Height        : ");
const QLatin1String kShiftMapWidth("Shift Map Width         : ");

struct IntegerLabel {
    QLatin1String label;
    qint32 EMPHeader::*field;
};

// Files of this kind are square for their readers: the height is taken from the width line.
const IntegerLabel kIntegerLabels[] = {
    {kWidth, &EMPHeader::width},
    {kWidth, &EMPHeader::height},
    {kBinHalfWidth, &EMPHeader::binHalfWidth},
    {kBinHalfHeight, &EMPHeader::binHalfHeight},
    {kAreaX0, &EMPHeader::areaX0},
    {kAreaX1, &EMPHeader::areaX1},
    {kAreaY0, &EMPHeader::areaY0},
    {kAreaY1, &EMPHeader::areaY1},
};

QString firstItem(const QString& line, QLatin1String label) {
    return line.mid(label.size()).simplified().section(QLatin1Char(' '), 0, 0);
}

/// Whether there may be a map of this size.
bool sizeIsUsable(const EMPHeader& header) {
    return header.width >= 0 && header.height >= 0 &&
           qint64(header.width) * header.height <= Limits::MostPixels;
}

/// Whether there is memory for such a map, of which a file holds so many values at the most.
bool sizeIsHeld(const EMPHeader& header, qint64 valuesInFile) {
    const qint64 pixels = qint64(header.width) * header.height;
    return mayTakeMemory(quint64(pixels + std::min(pixels, valuesInFile)) * sizeof(double));
}

/// What the angles of a file are, as changes of energy.
struct ShiftOfAngle {
    double edgeEnergy;  // eV
    double spacing;     // angstrom
    double angle0 = braggAngle(edgeEnergy, spacing);

    double operator()(double angle) const {
        return edgeEnergy - energyOfAngle(angle + angle0, spacing);
    }
};

AnalysisGrid gridOf(const EMPHeader& header) {
    // In doubles, since corners from a file may lie farther apart than an integer holds.
    const QRectF area(header.areaX0, header.areaY0, double(header.areaX1) - header.areaX0,
                      double(header.areaY1) - header.areaY0);
    return AnalysisGrid::ofArea(header.width, header.height, header.binHalfWidth,
                                header.binHalfHeight, area);
}

bool isUsable(double edgeEnergy, double spacing) {
    return spacing >= kLeastSpacing && spacing <= kMostSpacing && edgeEnergy > 0.0 &&
           std::isfinite(edgeEnergy) && braggAngle(edgeEnergy, spacing) > 0.0;
}

/// Appends the shifts that belong to the angles behind a header, as many as there are, row by row;
/// what the file says too little or too much is noted in *reading. Stops at a shift that cannot be.
void readShifts(QTextStream& stream, const ShiftOfAngle& shiftOf, qint64 pixels,
                std::vector<double>* to, EMapReading* reading) {
    std::vector<double>& shifts = *to;
    NumberScan numbers(stream);
    // Each row ends with a blank, so white space may be all that is left.
    while (qint64(shifts.size()) < pixels && !numbers.isAtEnd()) {
        bool isNumber = false;
        const double shift = shiftOf(numbers.next(&isNumber));
        reading->noNumbers += isNumber ? 0 : 1;
        if (!isUsableShift(shift)) {
            reading->refusal = EMapRefusal::Shift;
            return;
        }
        shifts.push_back(shift);
    }
    reading->goesOn = !numbers.isAtEnd();
    reading->missing = pixels - qint64(shifts.size());
    if (reading->missing > 0) {
        qDebug() << "run out!" << reading->missing;
    }
}

void writeHeader(QTextStream& out, const AnalysisGrid& grid, const EMapInfo& info) {
    QString standard = info.standardFileName;
    standard.replace(QLatin1Char('\n'), QLatin1Char(' '));
    out << kTag << '\n'
        << kRecordDate
        << QDateTime::currentDateTime().toString(QStringLiteral("yy/MM/dd hh:mm:ss.zzz")) << '\n'
        << kStdEdgeEnergy << info.edgeEnergy << '\n'
        << kSpacing << info.spacing << '\n'
        << kWidth << info.imageSize.width() << '\n'
        << kHeight << info.imageSize.height() << '\n'
        << kBinHalfWidth << grid.halfW << '\n'
        << kBinHalfHeight << grid.halfH << '\n'
        << kAreaX0 << grid.x0 << '\n'
        << kAreaX1 << grid.x1 << '\n'
        << kAreaY0 << grid.y0 << '\n'
        << kAreaY1 << grid.y1 << '\n'
        << kStdFileName << standard << '\n'
        << kShiftMapHeight << grid.height << '\n';
    for (int row = 0; row < grid.height; ++row) {
        out << kShiftMapWidth << row << ' ' << grid.width << '\n';
    }
    out << kDataFollows << '\n';
}

void writeAngles(QTextStream& out, const Analyzed2DRes& map, const EMapInfo& info) {
    const double angle0 = braggAngle(info.edgeEnergy, info.spacing);
    double lastShift = std::nan("");  // all pixels of a bin share one shift, and so one text
    QString text;
    for (int y = 0; y < info.imageSize.height(); ++y) {
        for (int x = 0; x < info.imageSize.width(); ++x) {
            const double shift = map.valueAt(x, y);
            if (!(shift == lastShift)) {
                lastShift = shift;
                const double angle = braggAngle(info.edgeEnergy - shift, info.spacing) - angle0;
                text = QString::number(angle, 'g', 6) + QLatin1Char(' ');
            }
            out << text;
        }
        out << '\n';
    }
}

}  // namespace

bool isUsableShift(double shift) {
    return std::abs(shift) <= kMostShift;  // false for what is no number
}

bool fitsImage(const QSize& size, QSize* imageSize) {
    if (size == *imageSize) {
        return true;
    }
    if (imageSize->width() >= 0 || imageSize->height() >= 0) {
        qDebug().noquote()
            << QStringLiteral(
                   "Loading Energy Map size : %1 x %2 : is not matched to the current image size : "
                   "%3 x %4")
                   .arg(size.width())
                   .arg(size.height())
                   .arg(imageSize->width())
                   .arg(imageSize->height());
        return false;
    }
    *imageSize = size;
    return true;
}

void putShifts(Analyzed2DRes* map, const AnalysisGrid& grid, const std::vector<double>& shifts,
               double missing) {
    map->startOver(grid);
    const auto width = static_cast<size_t>(grid.width);
    std::vector<double> row(width);
    for (int y = 0; y < grid.height; ++y) {
        const size_t first = std::min(size_t(y) * width, shifts.size());
        const auto here = shifts.begin() + static_cast<std::ptrdiff_t>(first);
        const auto end = here + static_cast<std::ptrdiff_t>(std::min(width, shifts.size() - first));
        std::fill(std::copy(here, end, row.begin()), row.end(), missing);
        map->setRow(0, 1, y, 0, 0, row.data(), 1, grid.width);
    }
    map->genImg();
}

EMPHeader readEMapHeader(QTextStream& stream) {
    EMPHeader header;
    if (stream.atEnd()) {
        return header;
    }
    const QString tag = stream.readLine(Limits::LongestLine);
    if (!tag.startsWith(kShortTag) && !tag.startsWith(kTag)) {
        qDebug() << "Not a emp file.";
        return header;
    }
    bool widthSeen = false;
    bool energySeen = false;
    bool spacingSeen = false;
    while (!stream.atEnd()) {
        const QString line = stream.readLine(Limits::LongestLine);
        if (line.startsWith(kDataFollows)) {
            break;
        }
        for (const IntegerLabel& integer : kIntegerLabels) {
            if (line.startsWith(integer.label)) {
                header.*integer.field = firstItem(line, integer.label).toInt();
            }
        }
        widthSeen = widthSeen || line.startsWith(kWidth);
        if (line.startsWith(kStdEdgeEnergy)) {
            header.stdEdgeEnergy = firstItem(line, kStdEdgeEnergy).toDouble();
            energySeen = true;
        }
        if (line.startsWith(kSpacing)) {
            header.spacing = firstItem(line, kSpacing).toDouble();
            spacingSeen = true;
        }
    }
    header.ok = widthSeen && energySeen && spacingSeen;
    return header;
}

namespace {

/// What a file holds, once nothing is against it.
struct EMapContent {
    AnalysisGrid grid;
    QSize size;
    std::vector<double> shifts;
    double missing = 0.0;  ///< the shift where it ends too early
};

EMapReading readContent(QIODevice& in, double edgeEnergy, const QSize& imageSize,
                        EMapContent* content) {
    EMapReading reading;
    QTextStream stream(&in);
    stream.setCodec("UTF-8");
    const EMPHeader header = readEMapHeader(stream);
    const double edge = edgeEnergy > 0.0 ? edgeEnergy : header.stdEdgeEnergy;
    const qint64 valuesInFile = in.size() / Limits::LeastOfMapValue;
    content->size = imageSize;
    if (!header.ok) {
        reading.refusal = EMapRefusal::NoMap;
    } else if (!sizeIsUsable(header)) {
        reading.refusal = EMapRefusal::NoMap;
        reading.why = FrameHeader::tr("too large an image");
    } else if (!sizeIsHeld(header, valuesInFile)) {
        reading.refusal = EMapRefusal::NoFile;
        reading.why = lackOfMemory();
    } else if (!isUsable(edge, header.spacing)) {
        reading.refusal = EMapRefusal::EdgeEnergy;
    } else if (!fitsImage(QSize(header.width, header.height), &content->size)) {
        reading.refusal = EMapRefusal::OtherSize;
    } else {
        debugTimed(QStringLiteral("Start Reading EMP file "));
        const ShiftOfAngle shiftOf{edge, header.spacing};
        content->grid = gridOf(header);
        content->missing = shiftOf(0.0);
        const qint64 pixels = qint64(header.width) * header.height;
        content->shifts.reserve(size_t(std::min(pixels, valuesInFile)));
        readShifts(stream, shiftOf, pixels, &content->shifts, &reading);
        if (reading.missing > 0 && !isUsableShift(content->missing)) {
            reading.refusal = EMapRefusal::Shift;  // an edge beyond what a double resolves to 1 eV
        }
    }
    return reading;
}

void takeContent(const EMapContent& content, QSize* imageSize, Analyzed2DRes* map) {
    *imageSize = content.size;
    putShifts(map, content.grid, content.shifts, content.missing);
    debugTimed(QStringLiteral("End Reading EMP file   "));
}

}  // namespace

EMapReading EMapReading::noFile(const QString& why) {
    EMapReading reading;
    reading.refusal = EMapRefusal::NoFile;
    reading.why = why;
    return reading;
}

EMapReading readEMap(QIODevice& in, double edgeEnergy, QSize* imageSize, Analyzed2DRes* map) {
    EMapContent content;
    const EMapReading reading = readContent(in, edgeEnergy, *imageSize, &content);
    if (reading.refusal == EMapRefusal::None) {
        takeContent(content, imageSize, map);
    }
    return reading;
}

namespace {

std::pair<EMapReading, EMapContent> mapIn(const QString& fileName, double edgeEnergy,
                                          const QSize& imageSize) {
    InputFile file(placeOf(fileName));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        debugFile("Can not open", fileName);
        return {EMapReading::noFile(file.isNoFile() ? file.whyNot() : QString()), {}};
    }
    EMapContent content;
    EMapReading reading = readContent(file, edgeEnergy, imageSize, &content);
    if (reading.refusal != EMapRefusal::OtherSize && file.hasChanged()) {
        reading = EMapReading::noFile(InputFile::changedText());
    }
    if (reading.refusal != EMapRefusal::None && reading.refusal != EMapRefusal::OtherSize) {
        debugFile("Invalid Energy Map Data File : ", fileName);
    }
    return {reading, std::move(content)};
}

}  // namespace

EMapReading readEMap(const QString& fileName, double edgeEnergy, QSize* imageSize,
                     Analyzed2DRes* map) {
    const auto found = answerOf(fileName, [fileName, edgeEnergy, size = *imageSize] {
        return mapIn(fileName, edgeEnergy, size);
    });
    if (found && found->first.refusal == EMapRefusal::None) {
        takeContent(found->second, imageSize, map);
    }
    return found ? found->first : EMapReading::noFile(givenUpText());
}

EMapRefusal refusalOf(const Analyzed2DRes& map, const EMapInfo& info) {
    if (!isUsable(info.edgeEnergy, info.spacing)) {
        return EMapRefusal::EdgeEnergy;
    }
    double lastShift = 0.0;
    for (int y = 0; y < info.imageSize.height(); ++y) {
        for (int x = 0; x < info.imageSize.width(); ++x) {
            const double shift = map.valueAt(x, y);
            if (shift != lastShift &&
                (!isUsableShift(shift) || !isUsable(info.edgeEnergy - shift, info.spacing))) {
                return EMapRefusal::Shift;
            }
            lastShift = shift;
        }
    }
    return EMapRefusal::None;
}

bool writeEMap(const QString& fileName, const Analyzed2DRes& map, const EMapInfo& info) {
    if (info.imageSize.isEmpty()) {
        return false;
    }
    WholeDevice file(fileName);
    if (!file.open()) {
        debugFile("Can not open", fileName);
        return false;
    }
    QTextStream out(&file);
    out.setCodec("UTF-8");
    writeHeader(out, map.grid(), info);
    debugTimed(QStringLiteral("EMap Write Start : "));
    writeAngles(out, map, info);
    debugTimed(QStringLiteral("EMap Write End   : "));
    if (!file.putInPlace(out)) {
        debugFile("Error on writing", fileName);
        return false;
    }
    return noteSaved(fileName);
}

double edgeEnergyForMap(const Spectrum* standard, double panelEdgeEnergy) {
    const double edge = standard ? standard->findE(kHalfHeight, kRisingEdge) : 0.0;
    return edge > 0.0 || !(panelEdgeEnergy > 0.0) ? edge : panelEdgeEnergy;
}
