#include "fitting/ReferenceSeries.h"

#include <QDebug>
#include <cmath>

#include "spectra/XafsSpectrum.h"

ReferenceSeries::ReferenceSeries(const XafsSpectrum& reference, const Spectrum& series)
    : curve(series),
      referenceIsShifted(reference.shiftOn()),
      referenceShift(reference.shift()),
      isShifted(series.shiftOn()),
      shift(series.shift()) {}

double ReferenceSeries::at(double e) const {
    const double shifted = referenceIsShifted ? e + referenceShift : e;
    if (std::isnan(shifted)) {
        qDebug() << "nan EeV in XafsSpectrum::doubleNormalizedPreBase";
    }
    return curve.valueAt(isShifted ? shifted + shift : shifted);
}
