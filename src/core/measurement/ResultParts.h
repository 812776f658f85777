#pragma once

#include <QString>
#include <vector>

#include "measurement/Measurement.h"
#include "output/BinTable.h"
#include "output/NexusFile.h"

// All results of a measurement at once, as they are saved into one file: bin by bin, as they are
// shown (deglitched where that is on display). Bins that a stopped run has not reached hold no
// number.

/// The results of one analysis.
struct ResultPart {
    QString name;       ///< in files: "fit", "residual", "difference", "calibration"
    QString title;      ///< in English
    bool blanksMasked;  ///< what is masked has no number
    std::vector<const Result*> results;

    const Result& first() const { return *results.front(); }
};

/// Those that hold values, the fit first; empty: there are none. Maps of references that took no
/// part are left out.
std::vector<ResultPart> resultParts(const Measurement& measurement);

/// The bins that the values of a result belong to; a map that was loaded has one value a pixel.
BinRaster rasterOf(const Result& result);
/// Their values as they are shown; no number for bins that a stopped run has not reached, outside
/// the shape of the area that was analysed and, if asked for, where they are masked.
BinValue valuesOf(const Result& result, bool blanksMasked);

/// The name of a result in files, that of a reference's with its index from 0, that of an error
/// behind its value's: "fraction_0", "fraction_0_errors".
QString nameInFiles(const Result& result);

/// A part as maps; a map that was loaded counts as one value a pixel.
NexusMaps mapsOf(const ResultPart& part);

/// What belongs to the first part that a run made: the mean spectrum of its area over the bins with
/// counts at all energies, at the frames' energies less the mean energy shift (the energies alone
/// where other frames or shifts are at hand now, and with a warning where counts cannot be read),
/// and the references of the fit as it compared
/// them, but for those that have been changed since.
std::vector<NexusSpectrum> spectraOf(Measurement& measurement, const std::vector<ResultPart>& parts,
                                     QStringList* warnings);

/// The results of the fit as columns: fraction_r, fraction_error_r, jump_r, jump_error_r for its
/// references r from 1, then R, chi2_reduced, sum and jump (the total one), as far as they were
/// made; no columns without a fit.
BinTable fitTable(const std::vector<ResultPart>& parts);
