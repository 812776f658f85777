#pragma once

/// h c in eV x angstrom: wavelength = Hc / energy.
constexpr double Hc = 12398.424360387684;

/// pi as the angle conversions use it. Ten digits, kept: energy-map files rely on it.
constexpr double PiTenDigits = 3.1415926535;
