#pragma once

#include <QString>

#include "spectra/PointBuffer.h"

class QIODevice;
class QTextStream;
class XafsSpectrum;

// Files of single spectra: the 9809 format of transmission measurements (monochromator angle and
// two counts a point), plain two-column text (energy in eV, mu-t), and our own spectrum files.

/// Reads a file of either input kind into the spectrum, replacing its points, and notes the kind
/// (not9809). False when the file cannot be opened (one debug line; the spectrum is then empty and
/// not valid); a file without any data line counts as read. The caller normalises.
bool readSpectrumFile(const QString& fileName, XafsSpectrum* spectrum);
/// The same of a device that can seek and is open as text, from its beginning.
void readSpectrum(QIODevice& file, XafsSpectrum* spectrum);

/// Whether a file's first line is that of the 9809 format.
bool isFirstLineOf9809(const QString& line);

/// Appends the points of plain two-column text: lines of at least two items whose first does not
/// begin with "#". What is no number reads as 0.
void readPlain(QTextStream& in, XafsSpectrum* spectrum);

/// Appends the points of 9809 text; without a "D=" item the energies are infinite.
void read9809(QTextStream& in, XafsSpectrum* spectrum);

/// Reads up to and including the line "Offset", which a whole header has; the last d-spacing
/// (angstrom) that it names, 0.0 for none.
double readHeaderOf9809(QTextStream& in, bool* isWhole);

/// A line below the header.
struct Row9809 {
    bool isPoint = false;    ///< it has the five items of a point
    bool hasCounts = false;  ///< both of them are above 0
    Spoint point{0.0, 0.0};  ///< energy in eV and mu-t, the latter 1.0 when the counts give none
};
Row9809 rowOf9809(const QString& line, double dSpacing);

/// Writes x, the double-normalized-pre-base value, mu-t, pre-edge and post-edge curve of every
/// point, one tab-separated line each, six digits, below two header lines. x is the point's energy,
/// less the energy correction if asked for. False when the file cannot be written, which leaves an
/// existing one as it was.
bool writeSpectrumFile(const QString& fileName, const XafsSpectrum& spectrum, bool corrected);
bool writeSpectrum(QIODevice& file, const XafsSpectrum& spectrum, bool corrected);
