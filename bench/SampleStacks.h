#pragma once

#include <QStringList>
#include <QTemporaryDir>

#include "frames/FrameSet.h"

/// Two stacks of an absorption edge with counting noise on disk, and spectra of two references.
/// They are written once and taken away with the object.
class SampleStacks {
  public:
    SampleStacks(int width, int height, int frames);

    int width() const { return m_width; }
    int height() const { return m_height; }
    int frames() const { return m_frames; }
    qint64 pixels() const { return qint64(m_width) * m_height; }
    double energy(int frame) const { return 7000.0 + 300.0 * frame / (m_frames - 1); }

    const QStringList& i1() const { return m_i1; }
    const QStringList& i0() const { return m_i0; }
    QString reference(int i) const { return m_dir.filePath(QStringLiteral("ref%1.dat").arg(i)); }

    /// The frames of a list of files with their energies.
    FrameSet load(const QStringList& files) const;

  private:
    void writeReferences() const;

    int m_width;
    int m_height;
    int m_frames;
    QTemporaryDir m_dir;
    QStringList m_i1;
    QStringList m_i0;
};

/// Resident memory of this process in bytes, without what has been freed; 0 where the system does
/// not say.
qint64 residentBytes();
