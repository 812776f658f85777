#pragma once

#include "spectra/CurveLookup.h"

class Spectrum;
class XafsSpectrum;

/// A series of a reference, such as its normalised values, with what is added to an energy (eV) to
/// find its value: the shift of the reference, and that of the series.
struct ReferenceSeries {
    CurveLookup curve;
    bool referenceIsShifted;
    double referenceShift;
    bool isShifted;
    double shift;

    ReferenceSeries(const XafsSpectrum& reference, const Spectrum& series);
    double at(double e) const;
};
