#pragma once

#include <QVector>
#include <cmath>

#include "spectra/XafsSpectrum.h"

// Spectra whose normalisation is known: straight backgrounds of slope 0 and an edge that is wholly
// between them, so that every normalised series is the step itself.
namespace edges {

inline QVector<double> energies(double from = 7000.0, double to = 7300.0, double step = 2.0) {
    QVector<double> list;
    for (double e = from; e <= to; e += step) {
        list.append(e);
    }
    return list;
}

/// 0 below 7095 eV, 1 above 7105 eV, a ramp between, and a bump of the given height inside it.
inline double step(double e, double bump) {
    const double t = std::fmin(1.0, std::fmax(0.0, (e - 7095.0) / 10.0));
    return t + bump * 4.0 * t * (1.0 - t);
}

template <typename Value>
Spectrum curve(const QVector<double>& list, Value value) {
    Spectrum spectrum;
    for (double e : list) {
        spectrum.append(e, value(e));
    }
    return spectrum;
}

inline XafsSpectrum reference(double bump, double from = 7000.0, double to = 7300.0) {
    return XafsSpectrum(curve(energies(from, to), [bump](double e) { return step(e, bump); }),
                        XafsSpectrum::Simple, 0.0);
}

}  // namespace edges
