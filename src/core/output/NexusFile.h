#pragma once

#include <QPair>
#include <QSize>
#include <QString>
#include <QVector>
#include <vector>

#include "maps/BinRaster.h"
#include "output/BinValues.h"

// Results of several analyses in one HDF5 file after the NeXus convention, see "Results" in
// docs/file-formats.md for its tree. Names are those of HDF5 objects, without "/".

struct NexusMap {
    QString name;
    QString title;
    QString unit;  ///< empty: a number without one
    BinValue value;
    BinValue error = nullptr;  ///< one sigma, unit of the map; empty: none
    QVector<QPair<QByteArray, QString>> attributes = {};
};

/// Maps over the same bins, of one analysis. The first one is what viewers show.
struct NexusMaps {
    QString name;
    QString title;
    BinRaster raster;
    QSize image;  ///< that the bins lie in, in pixels
    std::vector<NexusMap> maps;
    BinValue blank = nullptr;  ///< other than 0: the bin is masked; empty: there is no mask
};

struct NexusCurve {
    QString name;
    QString title;
    std::vector<double> values;  ///< as many as energies
};

/// Curves over energies in eV, the first one shown; without curves the energies alone.
struct NexusSpectrum {
    QString name;
    QString title;
    std::vector<double> energies;
    std::vector<NexusCurve> curves;
    QVector<QPair<QByteArray, QString>> attributes = {};
};

struct NexusContent {
    QString version;               ///< of the program
    std::vector<NexusMaps> parts;  ///< at least one; the first one is what viewers show
    std::vector<NexusSpectrum> spectra;
    QString origin;
    QString record;  ///< empty: none
};

/// Writes the file whole or not at all; the same content gives the same bytes. Whether it was
/// written, with the debug line.
bool writeNexus(const QString& fileName, const NexusContent& content);

// Where the texts lie in such a file.
inline QString nexusOriginPath() {
    return QStringLiteral("/entry/process/origin/data");
}
inline QString nexusRecordPath() {
    return QStringLiteral("/entry/process/record/data");
}
