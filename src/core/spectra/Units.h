#pragma once

#include <QObject>
#include <QString>
#include <array>

/// A unit of the abscissa and the printf format of values in it.
struct Unit {
    const char* name;
    const char* format;
};

/// eV, keV, angstrom, degrees.
constexpr std::array<Unit, 4> UnitTable{
    {{"eV", "% 8.2f"}, {"keV", "% 8.5f"}, {"A", "% 8.5f"}, {"deg", "% 8.5f"}}};

/// A monochromator crystal and its lattice spacing in angstrom.
struct Crystal {
    const char* name;
    double spacing;
};

constexpr std::array<Crystal, 5> CrystalTable{{{"Si(111)", 3.1355316},
                                               {"Si(311)", 1.637478},
                                               {"Si(333)", 1.0451772},
                                               {"Ge(111)", 3.2663822},
                                               {"Ge(333)", 1.0887941}}};

/// The place in its table of a unit, or of a crystal, of that name in any case; -1 for none.
int unitOfName(const QString& name);
int crystalOfName(const QString& name);

/// Wavelength in angstrom of an energy in eV.
double wavelengthOf(double energy);

/// Bragg angle in degrees of an energy in eV for a spacing in angstrom; -1.0 when there is none.
double braggAngle(double energy, double spacing);

/// Energy in eV of a Bragg angle in degrees for a spacing in angstrom.
double energyOfAngle(double angle, double spacing);

/// Carries a lattice spacing in angstrom.
class Units : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;
    double d() const { return m_d; }

  public slots:
    void setD(double d) { m_d = d; }

  private:
    double m_d = CrystalTable[0].spacing;
};
