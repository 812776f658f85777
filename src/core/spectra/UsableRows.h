#pragma once

#include <QStringList>

#include "spectra/XafsSpectrum.h"

class QIODevice;

// What a file of a single spectrum holds for somebody who works with it: a reference, a standard.
// readSpectrumFile() takes every line for a point; here only what can be one counts.

/// With fewer usable energies a file is no spectrum.
constexpr std::size_t FewestUsableEnergies = 5;

/// A file that was taken, or why it was not.
struct TakenSpectrum {
    XafsSpectrum spectrum;  ///< not normalised; without points when the file was not taken
    QString whyNot;         ///< with the file's name; empty: taken
    QStringList warnings;   ///< what was left out of it
};

/// Takes the rows that are an energy above 0 eV and a finite mu-t, in order of energy; energies
/// that are repeated count once, with the mean of their values. A file whose rows are all usable
/// and ascend gives the bits of readSpectrumFile().
///
/// Two columns: separated by blanks or tabs, by semicolons, by commas and blanks, or by commas, the
/// first of these by which most rows can be read. But for the last, a comma between digits is a
/// decimal one. Exponents are written with E or D. Lines that begin with # and what stands above
/// the first row are headings; other lines that are no row are left out and counted.
///
/// 9809: rows without counts are left out, too.
///
/// Not taken are files that cannot be opened (one debug line) or are no text, fewer than five
/// energies, energies that must be keV, and the 9809 format without its d-spacing or "Offset" line.
TakenSpectrum takeSpectrumFile(const QString& fileName);
/// The same of an open device, from its place on; the name is for the texts.
TakenSpectrum takeSpectrum(QIODevice& file, const QString& fileName);
