#pragma once

#include <QString>
#include <vector>

#include "maps/BinRaster.h"
#include "output/BinValues.h"

/// Values of all bins of a raster, side by side.
struct BinTable {
    struct Column {
        QString name;  ///< without a comma
        BinValue value;
    };

    BinRaster raster;
    std::vector<Column> columns;
};

/// Writes the table whole or not at all: a line with the names, "x" and "y" first, then a line for
/// each bin, row by row, with its centre in pixels. Commas between, a dot as decimal sign, the
/// fewest digits that read back as the same number, "nan" where there is none. Whether it was
/// written, with the debug line.
bool writeBinTable(const QString& fileName, const BinTable& table);
