#pragma once

#include <QRectF>
#include <QString>
#include <QVector>
#include <array>
#include <optional>

#include "drawing/PlotCurve.h"
#include "spectra/Units.h"
#include "spectra/XafsSpectrum.h"

/// The texts of a plot. As they stand here they are those of saved pictures, which are in English
/// in every language; windows put translated ones in their place.
struct PlotTexts {
    std::array<QString, 5> ordinates{"mu-t", "Normalized", "Double normalized", "Post based",
                                     "Post based by span"};
    std::array<QString, 4> abscissas{"Energy [eV]", "Energy [keV]", "Wavelength [A]",
                                     "Bragg angle [deg]"};  // as UnitTable
    QString fit{"Fit"};
    QString residual{"Residual"};
    QString empty{"No spectrum"};
};

/// What a spectrum plot shows, as a plain value: the spectrum of a position or a sample, with the
/// standard, the references, the fitted curve and pinned spectra.
///
/// Energies are those that fits use: less the energy correction, with the references' offsets. The
/// fitted curve is drawn as it stands, and only over the double normalized spectra; then the
/// residual (sample minus fit) lies under the plot with its R factor.
struct SpectrumPlot {
    enum Ordinate { MuT, Normalized, DoubleNormalized, PostBased, PostBasedBySpan };
    enum Abscissa { ElectronVolts, KiloElectronVolts, Angstroms, Degrees };  // as UnitTable

    /// A spectrum with its name in windows and in saved pictures, the same one when empty.
    struct Named {
        XafsSpectrum spectrum;
        QString name;
        bool shown = true;
        QColor color = QColor();
        QString savedName = QString();
    };
    /// One of those that are to be seen.
    struct Shown {
        const XafsSpectrum* spectrum;
        QString name;
        QColor color;
        bool isFit;
    };

    std::optional<Named> sample;  ///< in the colour of the ink
    std::optional<Named> standard;
    std::optional<XafsSpectrum> fit;
    QVector<Named> references;
    QVector<Named> pinned;

    /// All spectra are what a fit has compared and are drawn as they stand, the fit over them
    /// whatever the ordinate, which only names the axis.
    bool asCompared = false;
    Ordinate ordinate = DoubleNormalized;
    Abscissa abscissa = ElectronVolts;
    double spacing = CrystalTable[0].spacing;  ///< of the crystal in angstrom, for degrees
    bool backgrounds = true;                   ///< under mu-t
    double raEnergy = 0.0;                     ///< eV, marked by a line; none when not above 0
    std::optional<double> frameEnergy;         ///< eV before any correction, marked by a line
    std::optional<QRectF> zoom;                ///< in units of the axes; everything without

    PlotColors colors;
    PlotTexts texts;

    bool hasSample() const { return sample && !sample->spectrum.isEmpty(); }
    /// Whether the fit is drawn: with a sample, over the ordinate of fits or as compared.
    bool showsFit() const;
    /// Sample, fit, standard, references and pinned ones, as far as they are shown and have points.
    QVector<Shown> shown() const;

    /// Energy in eV and sample minus fit at the fit's points; empty when no fit is drawn.
    QPolygonF residual() const;
    /// Sum of squares of the residual over that of the sample, at the fit's energies; nothing
    /// without a fit or when it is no number.
    std::optional<double> rFactor() const;

    /// An energy in eV in the unit of the abscissa.
    double abscissaOf(double energy) const;
    /// The energy in eV of a place on the abscissa.
    double energyOf(double abscissaValue) const;
    /// By how much (eV) the energies of frames lie above those of the sample as it is drawn.
    double correction() const { return hasSample() ? sample->spectrum.energyCorrection() : 0.0; }
    /// What is drawn, backgrounds among it, in the units of the axes.
    QVector<PlotCurve> curves() const;
    /// A colour that is seen on the paper: those of curves are made for neither light nor dark.
    QColor readable(const QColor& color) const;
    /// The same plot as it is saved: black on white, in English, without a mark of the frame.
    SpectrumPlot forSaving() const;
};
