#include "spectra/Units.h"

#include <cmath>

#include "spectra/Constants.h"

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
