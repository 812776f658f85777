#include "output/BinTable.h"

#include <array>
#include <charconv>
#include <cmath>

#include "files/WholeDevice.h"
#include "files/WholeFile.h"

namespace {

constexpr int Piece = 1 << 20;  // bytes written at once: a row of bins may be longer than 2 GB

void append(QByteArray* line, double value) {
    if (std::isnan(value)) {  // which may have a sign
        line->append("nan");
        return;
    }
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    line->append(text.data(), static_cast<int>(end - text.data()));
}

}  // namespace

bool writeBinTable(const QString& fileName, const BinTable& table) {
    WholeDevice file(fileName);
    if (!file.open()) {
        return false;
    }
    QByteArray text("x,y");
    for (const BinTable::Column& column : table.columns) {
        text += ',' + column.name.toUtf8();
    }
    text += '\n';
    const BinRaster& raster = table.raster;
    for (int row = 0; row < raster.rows; ++row) {
        for (int column = 0; column < raster.columns; ++column) {
            text += QByteArray::number(raster.x(column)) + ',' + QByteArray::number(raster.y(row));
            for (const BinTable::Column& values : table.columns) {
                text += ',';
                append(&text, values.value(column, row));
            }
            text += '\n';
            if (text.size() > Piece || column + 1 == raster.columns) {
                file.write(text);
                text.clear();
            }
        }
    }
    return file.putInPlace() && noteSaved(fileName);
}
