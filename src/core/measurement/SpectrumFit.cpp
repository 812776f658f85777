#include "measurement/SpectrumFit.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <numeric>

#include "base/Globals.h"
#include "fitting/SpectrumErrors.h"
#include "measurement/EdgeJudgement.h"
#include "measurement/FitJudgement.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SpectrumFit)
};

std::vector<double> energiesOf(const XafsSpectrum& spectrum) {
    std::vector<double> energies;
    for (int i = 0; i < spectrum.size(); ++i) {
        energies.push_back(spectrum.energy(i));
    }
    return energies;
}

QString nameOf(const FileInput& file) {
    return QFileInfo(file.name).fileName();
}

/// The references that take part, as their files with what was set to them.
QVector<XafsSpectrum> takeParts(const Measurement& measurement, SpectrumFit* fit) {
    QVector<XafsSpectrum> spectra;
    int number = 0;
    for (const auto& reference : measurement.references()) {
        if (reference->takesPart()) {
            SpectrumFit::Part part;
            part.reference = number;
            part.input = reference->input();
            fit->parts.push_back(part);
            fit->isStandIn = fit->isStandIn || reference->isStandIn();
            spectra << reference->spectrum();
        }
        ++number;
    }
    return spectra;
}

/// What the coefficients make of the basis, point by point.
void takeCurves(const LinearFit& fit, const std::vector<double>& coefficients,
                const XafsSpectrum& sample, bool isLcf, SpectrumFit* into) {
    const std::size_t terms = coefficients.size();
    const std::size_t leading = terms - into->parts.size();
    const Spectrum& series = isLcf ? sample.doubleNormalizedPreBase() : sample;
    const double* f = fit.basis().data();
    for (const int k : fit.points()) {
        double fitted = 0.0;
        if (leading > 0) {
            into->line.push_back(std::inner_product(f, f + leading, coefficients.begin(), 0.0));
            fitted = into->line.back();
        }
        for (std::size_t i = 0; i < into->parts.size(); ++i) {
            const double value = f[leading + i] * coefficients[leading + i];
            into->parts[i].contribution.push_back(value);
            fitted += value;
        }
        into->energies.push_back(sample.energy(k));
        into->compared.push_back(series.value(k));
        into->fitted.push_back(fitted);
        f += terms;
    }
}

XafsSpectrum curveOf(const std::vector<double>& energies, const std::vector<double>& values) {
    XafsSpectrum curve;
    for (std::size_t i = 0; i < energies.size(); ++i) {
        curve.append(energies[i], values[i]);
    }
    return curve;
}

SpectrumPlot::Named namedCurve(const SpectrumFit& fit, const std::vector<double>& values,
                               const QString& name, int color) {
    return {curveOf(fit.energies, values), name, true, getColor(color), QString()};
}

std::ptrdiff_t pointsIn(const std::vector<double>& energies, double start, double end) {
    return std::lower_bound(energies.begin(), energies.end(), end) -
           std::lower_bound(energies.begin(), energies.end(), start);
}

/// Of a sample that has a common E0.
Outcome judgeCommonEdge(const std::vector<double>& energies, const SpectrumFit& fit) {
    const QString e0 = QString::number(fit.e0, 'f', 2);
    if (fit.e0 < energies.front() || fit.e0 > energies.back()) {
        return Outcome::failure(
            Texts::tr("E0 at %1 eV lies outside the energies of %2").arg(e0, nameOf(fit.sample)));
    }
    const BackgroundRanges& ranges = fit.inputs.ranges;
    const auto pre = pointsIn(energies, fit.e0 + ranges.preStart, fit.e0 + ranges.preEnd);
    const auto post = pointsIn(energies, fit.e0 + ranges.postStart, fit.e0 + ranges.postEnd);
    return std::min(pre, post) >= BackgroundRanges::FewestPoints
               ? Outcome()
               : Outcome::failure(Texts::tr("the background ranges around E0 at %1 eV hold fewer "
                                            "than 3 points of %2")
                                      .arg(e0, nameOf(fit.sample)));
}

/// Of a sample that has its own. Ranges as they are from the start are warned of, as with
/// references.
Outcome judgeOwnEdge(const NormalisedFile& file, const SpectrumFit& fit) {
    if (!(fit.inputs.ranges == BackgroundRanges()) && !file.lineFault().isEmpty()) {
        return Outcome::failure(file.lineFault());
    }
    const QString fault = file.edgeFault();
    return fault.isEmpty() ? Outcome() : Outcome::warning(fault);
}

/// All that can be said without a fit.
Outcome judge(const Measurement& measurement, const NormalisedFile& file, const SpectrumFit& fit) {
    const Settings& settings = measurement.settings();
    const std::vector<double> energies = energiesOf(file.spectrum);
    Outcome outcome;
    outcome.warnings = file.warnings;
    outcome += judgeSpectrumFit(energies, measurement.references(), settings);
    outcome += judgeRanges(Work::Fit, {}, measurement.references(), settings);
    if (fit.inputs.method == LinearFit::Lcf) {  // else the sample needs no lines
        outcome += fit.inputs.e0.kind == EdgeChoice::Kind::Energy ? judgeCommonEdge(energies, fit)
                                                                  : judgeOwnEdge(file, fit);
    }
    return outcome;
}

void work(const QVector<XafsSpectrum>& references, const XafsSpectrum& sample, SpectrumFit* into) {
    const FitRule rule = fitRule(into->inputs);
    const bool isLcf = rule.method == FitRule::Lcf;
    LinearFit fit(references, rule);
    const std::vector<double> values = fitWithErrors(fit, rule, sample);
    const FitValues at(fit.referenceCount(), true);
    const auto value = [&](int place) { return values[static_cast<std::size_t>(place)]; };
    int number = 0;
    for (SpectrumFit::Part& part : into->parts) {
        part.share = value(at.ratio(number));
        part.shareError = value(at.ratioError(number));
        part.jump = value(at.dMut(number));
        part.jumpError = value(at.dMutError(number));
        ++number;
    }
    into->sum = value(at.sum());
    into->r = value(at.r());
    into->totalJump = value(at.totalJump());
    into->totalJumpError = value(at.totalJumpError());
    into->sigma = std::sqrt(value(at.chi2Reduced()));
    into->freedom = fit.freedom(fit.held());
    takeCurves(fit, fit.coefficients(), sample, isLcf, into);
}

}  // namespace

SpectrumFit fitSpectrum(const Measurement& measurement, const QString& fileName) {
    SpectrumFit fit;
    fit.inputs = measurement.inputs();
    NormalisedFile file;
    file.rehearsal = measurement.rehearsal();
    file.ranges = fit.inputs.ranges;
    const Outcome taken = file.read(fileName, fit.inputs.background);
    fit.sample = file.file;
    if (taken.failed()) {
        fit.sample.name = fileName;
        fit.sample.path = QFileInfo(fileName).absoluteFilePath();
        fit.outcome = taken;
        return fit;
    }
    Normalisation rule = sampleRule(fit.inputs);
    if (fit.inputs.method == LinearFit::Mlcf) {
        rule.e0.reset();
    }
    fit.e0 = rule.e0.value_or(file.spectrum.findE(0.5, 0));
    fit.outcome = judge(measurement, file, fit);
    if (fit.outcome.failed()) {
        return fit;
    }
    const XafsSpectrum sample(file.spectrum, rule, 0.0);
    fit.midE = sample.midE();
    fit.edgeJump = sample.dMut();
    fit.energiesOfAll = sample.size();
    fit.isStandIn = file.isStandIn;
    const QVector<XafsSpectrum> references = takeParts(measurement, &fit);
    work(references, sample, &fit);
    if (fit.inputs.e0.kind == EdgeChoice::Kind::Mean && fit.inputs.method == LinearFit::Lcf) {
        fit.outcome.notes << Texts::tr(
                                 "the E0 of the mean spectrum is that of the image: %1 has its own")
                                 .arg(nameOf(fit.sample));
    }
    return fit;
}

SpectrumPlot plotOf(const SpectrumFit& fit) {
    SpectrumPlot plot;
    plot.asCompared = true;
    const bool isLcf = fit.inputs.method == LinearFit::Lcf;
    plot.ordinate = isLcf ? SpectrumPlot::DoubleNormalized : SpectrumPlot::MuT;
    if (!fit.hasFit()) {
        return plot;
    }
    plot.sample = {curveOf(fit.energies, fit.compared), nameOf(fit.sample)};
    plot.fit = curveOf(fit.energies, fit.fitted);
    constexpr int FirstColor = 1;  // after that of the fit
    int color = FirstColor;
    for (const SpectrumFit::Part& part : fit.parts) {
        plot.references.append(
            namedCurve(fit, part.contribution, nameOf(part.input.file), color++));
    }
    if (!fit.line.empty()) {
        SpectrumPlot::Named line =
            namedCurve(fit, fit.line, Texts::tr("constant and slope"), color);
        line.savedName = QStringLiteral("constant and slope");
        plot.references.append(line);
    }
    return plot;
}
