#pragma once

#include <QHash>
#include <QSet>
#include <QSize>
#include <QStringList>
#include <vector>

#include "calibration/EnergyMapFile.h"
#include "spectra/Spectrum.h"

struct TiffData;

/// What a batch would have written by now, when its lines are only gone through to tell how they
/// would end: frames are read by their headers, nothing is analysed and nothing is written.
class Rehearsal {
  public:
    enum class Kind { Frame, Spectrum, Map, TiffMap, FloatTiff, Other };

    /// A file that would be there.
    struct Written {
        Kind kind = Kind::Other;
        QSize size;                    ///< of a frame or a map, in pixels
        std::vector<double> energies;  ///< of a spectrum's points, in eV
    };

    void write(const QString& fileName, const Written& file);
    /// Null for a file that is what stands on the disk.
    const Written* find(const QString& fileName) const;

    /// listImageFiles() with the files that would be there.
    QStringList list(const QString& folder, const QStringList& patterns) const;

    /// Why no stack would take the file, as FrameHeader tells it; empty: it would.
    static QString whyNoFrame(const Written& file);

    /// Gives a frame the size of one that would be there, or why the file would be no frame;
    /// nothing for a file that is what stands on the disk.
    void describe(const QString& fileName, TiffData* frame) const;

    /// readEMap() of a file that would be there.
    static EMapReading readMap(const Written& file, QSize* imageSize, Analyzed2DRes* map);

    /// Stands for a spectrum that nobody has formed: these energies (eV, ascending), with an edge
    /// in their middle. Without points for none.
    static Spectrum spectrumOf(const std::vector<double>& energies);

    /// A pass over the bins of an area would have been made here.
    void passOver() { ++m_passes; }
    qint64 passes() const { return m_passes; }
    /// The identities (see FilePlaces.h) of the files that would be there and were asked for.
    const QSet<QString>& readBack() const { return m_readBack; }

  private:
    QHash<QString, Written> m_written;  // by identity
    mutable QSet<QString> m_readBack;
    qint64 m_passes = 0;
};
