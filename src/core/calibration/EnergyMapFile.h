#pragma once

#include <QSize>
#include <QString>
#include <vector>

struct AnalysisGrid;
class Analyzed2DRes;
class QIODevice;
class QTextStream;
class Spectrum;

// The energy map file (".emp"): text that keeps an energy-shift map as the changes of Bragg angle,
// in degrees, for the crystal and edge energy in its header. Failures are said in one debug line.

/// What the header of an energy map file says.
struct EMPHeader {
    bool ok = false;    ///< recognised: tag, width, edge energy and d-spacing were there
    qint32 width = 0;   ///< pixels
    qint32 height = 0;  ///< pixels; always the width, whose line stands for both
    qint32 binHalfWidth = 0;
    qint32 binHalfHeight = 0;
    qint32 areaX0 = 0;  ///< the calibrated area
    qint32 areaX1 = 0;
    qint32 areaY0 = 0;
    qint32 areaY1 = 0;
    double stdEdgeEnergy = 0.0;  ///< eV
    double spacing = 0.0;        ///< d-spacing in angstrom, whatever its label in the file says
};

/// What belongs into a map file beside the map.
struct EMapInfo {
    QSize imageSize;          ///< of the loaded images; negative before any
    double edgeEnergy = 0.0;  ///< eV, see edgeEnergyForMap()
    double spacing = 0.0;     ///< d-spacing in angstrom
    QString standardFileName;
};

/// Reads @p stream up to and including the line before the data.
EMPHeader readEMapHeader(QTextStream& stream);

/// Why a map file is not taken.
enum class EMapRefusal {
    None,
    NoFile,      ///< cannot be opened
    NoMap,       ///< not of this kind, or of a size that cannot be held
    OtherSize,   ///< not of the images' size
    EdgeEnergy,  ///< spacing or edge energy missing or absurd: there is no Bragg angle to start
                 ///< from
    Shift        ///< one that is not finite, beyond the crystal's reach or above 1000 eV
};

/// How a map file was read.
struct EMapReading {
    EMapRefusal refusal = EMapRefusal::None;
    qint64 missing = 0;       ///< values that the file ends before
    qint64 noNumbers = 0;     ///< texts in place of values
    bool goesOn = false;      ///< more follows than belongs to the map
    bool ofAnyShape = false;  ///< the file's kind takes images that are not square
    QString why;              ///< of NoFile or NoMap, in one phrase; empty: nothing more is known

    static EMapReading noFile(const QString& why);
};

/// Whether a shift, in eV, can be one; false for what is no number.
bool isUsableShift(double shift);

/// Whether a map has the size of the images, which is set where none are loaded (negative); else
/// one debug line.
bool fitsImage(const QSize& size, QSize* imageSize);

/// Makes a map of shifts, row by row; pixels of the grid beyond them get the one that is missing.
void putShifts(Analyzed2DRes* map, const AnalysisGrid& grid, const std::vector<double>& shifts,
               double missing = 0.0);

/// Replaces @p map by the one in the file. The angles become shifts with @p edgeEnergy (eV) when it
/// is above 0, else with the file's own edge energy, and with the file's d-spacing.
///
/// The map must have the size of the images, @p imageSize; negative means that none is loaded, then
/// the map's size is stored there. Only square images have maps that load, see EMPHeader::height.
///
/// A file that is refused leaves the map as it was. Values that are missing at the end ("run out!"
/// with their number), or no numbers, are shifts of 0.
EMapReading readEMap(const QString& fileName, double edgeEnergy, QSize* imageSize,
                     Analyzed2DRes* map);
/// The same of what lies in a device from its place on; a refusal has no debug line of its own.
EMapReading readEMap(QIODevice& in, double edgeEnergy, QSize* imageSize, Analyzed2DRes* map);

/// Why readEMap() would refuse the map when it were written; its shape apart.
EMapRefusal refusalOf(const Analyzed2DRes& map, const EMapInfo& info);

/// Writes @p map, which may be empty (all shifts 0), for the pixels of the image. Nothing is
/// written without an image; on failure an existing file stays whole.
bool writeEMap(const QString& fileName, const Analyzed2DRes& map, const EMapInfo& info);

/// The edge energy to write, in eV: that of the standard at half height, else, without a standard,
/// the one typed into the calibration panel.
double edgeEnergyForMap(const Spectrum* standard, double panelEdgeEnergy);
