#pragma once

#include <QStringList>
#include <vector>

#include "output/ResultWriter.h"

/// Columns of numbers under a head.
struct ColumnTable {
    QVector<HeaderLine> head;
    QStringList names;                         ///< of the columns, without blanks
    std::vector<std::vector<double>> columns;  ///< of one length
};

/// Writes "# name = value" lines, one with the names of the columns after "#", then a line for each
/// row: UTF-8, tabs between the items, twelve significant digits, "nan" where there is no number.
/// One debug line; false, silent and the old file as it was when it cannot be written.
bool writeColumnTable(const QString& fileName, const ColumnTable& table);
