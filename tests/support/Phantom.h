#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QVector>
#include <functional>

/// A small measurement with known fractions, written to a temporary directory.
///
/// Two species a and b have the same edge step of 0.8 and exactly straight pre- and post-edge
/// lines, so that a mixture normalises to the mixture of the normalised references: what comes
/// back differs from the fractions only by the rounding of the counts to integers.
class Phantom {
  public:
    struct Options {
        int width = 12;
        int height = 8;
        int energies = 61;
        int i0Energies = 61;
        std::function<double(int x, int y)> fractionOfA;            ///< the rest is b
        std::function<double(int x, int y)> energyShift = nullptr;  ///< eV, later edge when > 0
        std::function<int(int x, int y)> dark = nullptr;            ///< counts added to every frame
    };

    explicit Phantom(const Options& options);

    QString dir() const { return m_dir.path(); }
    QString file(const QString& name) const { return m_dir.filePath(name); }

    /// Writes three frames whose mean is these counts, none of them alike; their files.
    QStringList writeDarkFrames(int width, int height,
                                const std::function<int(int x, int y)>& dark) const;

    /// mu-t of the pure species.
    static double muA(double e);
    static double muB(double e);

    /// The batch lines that load both stacks with single-pixel bins and set both references.
    QStringList loadAndSetReferences() const;

  private:
    void writeStacks(const Options& options);

    QTemporaryDir m_dir;
};
