#pragma once

#include <memory>

#include "measurement/Inputs.h"
#include "measurement/Outcome.h"
#include "measurement/Rehearsal.h"
#include "measurement/ResultSet.h"
#include "spectra/XafsSpectrum.h"

/// The file with its digest (none when it cannot be read) and a new revision.
FileInput fileInput(const QString& fileName);

/// A spectrum file, taken and normalised, with its name and digest: a reference's or the standard.
struct NormalisedFile {
    FileInput file;
    XafsSpectrum spectrum;
    QString whyNot;          ///< the last file was not taken, with its name; empty: it was
    QStringList warnings;    ///< what was left out of it
    bool isStandIn = false;  ///< of a rehearsal: only its energies are those of the file
    const Rehearsal* rehearsal = nullptr;  ///< what has not been written stands for itself
    BackgroundRanges ranges;
    bool needsLines = true;  ///< false: its values count as they are

    /// Replaces the spectrum by the file's, see takeSpectrumFile(); failed, and empty with a new
    /// revision, when it is not taken.
    Outcome read(const QString& fileName, int background);
    void forget();

    void normalise(int background);

    /// What makes the normalisation worthless, with the file's name: there is no edge (midE is 0),
    /// or a lineFault(). Empty: nothing, or it is not needed.
    QString edgeFault() const;
    /// That the pre-edge or post-edge line rests on fewer than three points.
    QString lineFault() const;
};

/// One reference of the fits: its spectrum with background and energy offset, and its result
/// images.
class Reference {
  public:
    enum Kind {
        DMut = static_cast<int>(ResultId::DMut),
        Ratio = static_cast<int>(ResultId::Ratio),
        KindCount = ReferenceKindCount
    };

    explicit Reference(int index, const Rehearsal* rehearsal = nullptr);

    /// At least one point has been read.
    bool hasSpectrum() const { return !m_file.spectrum.isEmpty(); }
    bool takesPart() const { return m_use && hasSpectrum(); }
    const XafsSpectrum& spectrum() const { return m_file.spectrum; }
    const FileInput& file() const { return m_file.file; }
    bool isUsed() const { return m_use; }
    /// Energy offset in eV: it is compared at E + offset.
    double deltaE() const { return m_deltaE; }
    int background() const { return m_background; }
    /// Another whenever a fit would find something else.
    quint64 revision() const { return m_revision; }
    ReferenceInput input() const;

    /// Failed when the file is not taken: then there is no spectrum.
    Outcome read(const QString& fileName);
    /// As before the first file, but for use, offset and background.
    void forget();
    /// Why the file given last was not taken; empty: it was, or none was given.
    const QString& whyNot() const { return m_file.whyNot; }
    bool isStandIn() const { return m_file.isStandIn; }
    /// See NormalisedFile.
    QString edgeFault() const { return m_file.edgeFault(); }
    QString lineFault() const { return m_file.lineFault(); }
    /// What was left out of the file, and what is wrong with its edge as it is normalised now.
    QStringList warnings() const;
    void setUse(bool use);
    void setDeltaE(double deltaE);
    void setBackground(int background);
    void setRanges(const BackgroundRanges& ranges);
    /// See FitRule::ReferenceScale; without lines there is no fault in them.
    void setNeedsLines(bool needsLines);

    /// The edge jump for a kind that there is not.
    Result& result(int kind) const { return *m_results.find(idOf(kind)); }
    const ResultSet& results() const { return m_results; }

  private:
    static ResultId idOf(int kind) {
        return static_cast<ResultId>(kind > 0 && kind < KindCount ? kind : 0);
    }
    void normalise();
    void applyShift();

    NormalisedFile m_file;
    bool m_use = false;
    double m_deltaE = 0.0;
    int m_background = XafsSpectrum::Simple;
    quint64 m_revision = 0;
    ResultSet m_results;
};
