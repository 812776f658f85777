#include "base/Globals.h"

#include <algorithm>

#include "base/ColorMap.h"

QString DataDir;
QList<QColor> Colors;
std::array<unsigned char, 256> GreyTable;
std::array<std::array<unsigned char, 3>, 768> ColorMap;
bool DebugFlag = false;

namespace {

constexpr int LastColor = 766;

void buildColors() {
    Colors = {QColor(255, 0, 0),   QColor(0, 255, 0),   QColor(0, 0, 255),
              QColor(255, 200, 0), QColor(255, 0, 200), QColor(200, 255, 0),
              QColor(200, 0, 255), QColor(0, 255, 200), QColor(0, 200, 255)};
}

}  // namespace

void buildColourTables() {
    buildColors();
    for (std::size_t i = 0; i < GreyTable.size(); ++i) {
        GreyTable[i] = greyScale().table[i][0];
    }
    std::copy_n(heatScale().table, LastColor + 1, ColorMap.begin());
}

QColor getColor(int i) {
    const int n = Colors.size();
    return n == 0 ? QColor(0, 0, 0, 255) : Colors.at(((i % n) + n) % n);
}

const unsigned char* greyOf(double v) {
    return greyOf(toClampedInt(v * 256.0, 0, 255));
}

const unsigned char* greyOf(int i) {
    return &GreyTable[static_cast<std::size_t>(i < 0 ? 0 : (i > 255 ? 255 : i))];
}

const unsigned char* colorOf(double v) {
    return colorOf(toClampedInt(v * 766.0, 0, LastColor));
}

const unsigned char* colorOf(int i) {
    const int j = i < 0 ? 0 : (i > LastColor ? LastColor : i);
    return ColorMap[static_cast<std::size_t>(j)].data();
}
