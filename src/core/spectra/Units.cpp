#include "spectra/Units.h"

#include <algorithm>
#include <cmath>

#include "spectra/Constants.h"

namespace {

template <class Table>
int placeOf(const Table& table, const QString& name) {
    const auto found = std::find_if(table.begin(), table.end(), [&name](const auto& row) {
        return name.compare(QLatin1String(row.name), Qt::CaseInsensitive) == 0;
    });
    return found == table.end() ? -1 : static_cast<int>(found - table.begin());
}

}  // namespace

int unitOfName(const QString& name) {
    return placeOf(UnitTable, name);
}

int crystalOfName(const QString& name) {
    return placeOf(CrystalTable, name);
}

double wavelengthOf(double energy) {
    return Hc / energy;
}

double braggAngle(double energy, double spacing) {
    const double x = (Hc / energy) / (2 * spacing);
    return std::abs(x) > 1 ? -1.0 : 180 * std::asin(x) / PiTenDigits;
}

double energyOfAngle(double angle, double spacing) {
    return Hc / (2 * spacing * std::sin(angle / 180 * PiTenDigits));
}
