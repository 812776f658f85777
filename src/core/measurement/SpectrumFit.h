#pragma once

#include "drawing/SpectrumPlot.h"
#include "measurement/Measurement.h"

// A spectrum file fitted with the references of a measurement, by the rule that its images are
// fitted by: method, background, ranges, constraints, scale of the references. No counts are known
// of it, so that the errors are those of the residual's variance, see fitWithErrors(). A common E0
// in eV is the sample's, too; that of the mean spectrum belongs to the image, and the sample then
// has its own.

struct SpectrumFit {
    /// What a reference has in the sample.
    struct Part {
        int reference = 0;  ///< its number
        ReferenceInput input;
        double share = 0.0;
        double shareError = 0.0;  ///< one sigma; NaN where there is none
        double jump = 0.0;        ///< mu-t
        double jumpError = 0.0;
        std::vector<double> contribution;  ///< at the energies used
    };

    FileInput sample;
    Outcome outcome;         ///< failed: there is nothing else but the rule
    bool isStandIn = false;  ///< of a rehearsal: the numbers mean nothing
    Inputs inputs;           ///< what the rule was taken from

    double e0 = 0.0;  ///< of the sample, eV
    double midE = 0.0;
    double edgeJump = 0.0;
    double totalJump = 0.0;  ///< LCF: the sample's; MLCF: of all references
    double totalJumpError = 0.0;

    std::vector<double> energies;  ///< used, in eV
    int energiesOfAll = 0;         ///< of the sample
    std::vector<double> compared;  ///< LCF: double normalized; MLCF: mu-t
    std::vector<double> fitted;
    std::vector<double> line;  ///< MLCF: constant and slope of the fit; else empty
    std::vector<Part> parts;

    double sum = 0.0;    ///< of the shares
    double r = 0.0;      ///< sum of (compared - fitted)^2 over that of compared^2
    double sigma = 0.0;  ///< of a point about the fit, mu-t
    int freedom = 0;     ///< points less parameters

    bool hasFit() const { return !parts.empty(); }
};

/// Reads and fits a file. Fails when the file is no spectrum and where a fit of an image with its
/// energies would, see judgeSpectrumFit(); warns of what was left out of it and of its edge.
SpectrumFit fitSpectrum(const Measurement& measurement, const QString& fileName);

/// Sample, fit, difference and what each reference has in it. The names are those of files.
SpectrumPlot plotOf(const SpectrumFit& fit);

/// Writes the fit as a table: "# key = value" lines, then energy, sample, fit, difference and what
/// each reference has in it. Nothing in it differs between two right runs; file names are relative
/// to the folder of the sample. It replaces neither the sample nor what the measurement was read
/// from.
Outcome saveTable(const Measurement& measurement, const SpectrumFit& fit, const QString& fileName);
/// The plot, as writePlotFile() does, with the same care.
Outcome savePlot(const Measurement& measurement, const SpectrumFit& fit, const QString& fileName);

/// Fits a file and saves the table and, unless its name is empty, the plot: neither where one of
/// them cannot be.
Outcome fitSpectrumFile(const Measurement& measurement, const QString& sample, const QString& table,
                        const QString& plot = QString());
