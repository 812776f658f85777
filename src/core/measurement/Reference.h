#pragma once

#include "measurement/Inputs.h"
#include "measurement/Result.h"
#include "spectra/XafsSpectrum.h"

/// The file with its digest (none when it cannot be read) and a new revision.
FileInput fileInput(const QString& fileName);

/// A spectrum file, read and normalised, with its name and digest: a reference's or the standard.
struct NormalisedFile {
    FileInput file;
    XafsSpectrum spectrum;

    /// Replaces the spectrum by the file's; false, and empty with a new revision, when it cannot be
    /// read.
    bool read(const QString& fileName, int background);
    void forget();
};

/// One reference of the fits: its spectrum with background and energy offset, and its two result
/// images.
class Reference {
  public:
    enum Kind { DMut = 0, Ratio = 1, KindCount = 2 };

    explicit Reference(int index);

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

    /// False when the file cannot be read: then there is no spectrum.
    bool read(const QString& fileName);
    void setUse(bool use);
    void setDeltaE(double deltaE);
    void setBackground(int background);

    Result& result(int kind) { return kind == Ratio ? m_ratio : m_dMut; }
    const Result& result(int kind) const { return kind == Ratio ? m_ratio : m_dMut; }

  private:
    void applyShift();

    NormalisedFile m_file;
    bool m_use = false;
    double m_deltaE = 0.0;
    int m_background = XafsSpectrum::Simple;
    quint64 m_revision = 0;
    Result m_dMut;
    Result m_ratio;
};
