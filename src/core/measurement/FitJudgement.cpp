#include "measurement/FitJudgement.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "measurement/EdgeJudgement.h"
#include "measurement/SettingWords.h"

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(FitJudgement)
};

constexpr double EnoughInside = 0.9;
constexpr double LargestCondition = 100.0;

using Taking = std::vector<const Reference*>;

QString nameOf(const Reference& reference) {
    return QFileInfo(reference.file().name).fileName();
}
double firstOf(const Reference& reference) {
    return reference.spectrum().energy(0);
}
double lastOf(const Reference& reference) {
    return reference.spectrum().energy(reference.spectrum().size() - 1);
}

QString rangeText(double from, double to) {
    return Texts::tr("%1 to %2 eV").arg(from, 0, 'f', 1).arg(to, 0, 'f', 1);
}

/// The references that end within the energies: those whose ends the fit goes by.
QString limits(const std::vector<double>& energies, const Taking& taking) {
    const auto lowest =
        *std::max_element(taking.begin(), taking.end(),
                          [](const auto* a, const auto* b) { return firstOf(*a) < firstOf(*b); });
    const auto highest =
        *std::min_element(taking.begin(), taking.end(),
                          [](const auto* a, const auto* b) { return lastOf(*a) < lastOf(*b); });
    Taking named;
    if (firstOf(*lowest) > energies.front()) {
        named.push_back(lowest);
    }
    if (lastOf(*highest) < energies.back() && (named.empty() || highest != lowest)) {
        named.push_back(highest);
    }
    QStringList texts;
    for (const Reference* reference : named) {
        texts << Texts::tr("%1 covers %2")
                     .arg(nameOf(*reference), rangeText(firstOf(*reference), lastOf(*reference)));
    }
    return texts.join(QStringLiteral(", "));
}

/// Takes off a column what the columns of an orthonormal set make of it.
void takeOff(const std::vector<std::vector<double>>& set, std::vector<double>* column) {
    for (const std::vector<double>& unit : set) {
        double share = 0.0;
        for (std::size_t k = 0; k < unit.size(); ++k) {
            share += unit[k] * (*column)[k];
        }
        for (std::size_t k = 0; k < unit.size(); ++k) {
            (*column)[k] -= share * unit[k];
        }
    }
}

void scaleToUnit(std::vector<double>* column) {
    double sum = 0.0;
    for (const double value : *column) {
        sum += value * value;
    }
    for (double& value : *column) {
        value /= std::sqrt(sum);
    }
}

/// The references' columns of the fit, see judgeFit().
std::vector<std::vector<double>> columnsOf(const LinearFit& fit) {
    const auto unknowns = static_cast<std::size_t>(fit.coefficientCount());
    const std::size_t others = unknowns - static_cast<std::size_t>(fit.referenceCount());
    std::vector<std::vector<double>> columns(unknowns);
    for (std::size_t i = 0; i < fit.basis().size(); ++i) {
        columns[i % unknowns].push_back(fit.basis()[i]);
    }
    std::vector<std::vector<double>> line;
    for (std::size_t i = 0; i < unknowns; ++i) {
        // Twice: what rounding has left of a slope of large energies is seen beside a small rest.
        takeOff(line, &columns[i]);
        takeOff(line, &columns[i]);
        scaleToUnit(&columns[i]);
        if (i < others) {
            line.push_back(columns[i]);
        }
    }
    columns.erase(columns.begin(), columns.begin() + static_cast<std::ptrdiff_t>(others));
    return columns;
}

QStringList lookAlikes(const LinearFit& fit, const Taking& taking) {
    QStringList texts;
    const std::vector<std::vector<double>> columns = columnsOf(fit);
    for (std::size_t b = 0; b < columns.size(); ++b) {
        for (std::size_t a = 0; a < b; ++a) {
            double cosine = 0.0;
            for (std::size_t k = 0; k < columns[a].size(); ++k) {
                cosine += columns[a][k] * columns[b][k];
            }
            cosine = std::abs(cosine);
            const bool isKnown = !taking[a]->isStandIn() && !taking[b]->isStandIn();
            if (isKnown && 1.0 + cosine >= LargestCondition * LargestCondition * (1.0 - cosine)) {
                texts << Texts::tr("%1 and %2 cannot be told apart by the fit")
                             .arg(nameOf(*taking[a]), nameOf(*taking[b]));
            }
        }
    }
    return texts;
}

/// What is fitted, in texts.
enum class Fitted { Image, Spectrum };

QString tooFewText(Fitted fitted) {
    return fitted == Fitted::Image
               ? Texts::tr(
                     "%1 of %2 energies of the frames (%3) lie inside all references, "
                     "the fit needs %4")
               : Texts::tr(
                     "%1 of %2 energies of the spectrum (%3) lie inside all references, "
                     "the fit needs %4");
}

QString onlySomeText(Fitted fitted) {
    return fitted == Fitted::Image
               ? Texts::tr("only %1 of %2 energies of the frames (%3) were used: %4")
               : Texts::tr("only %1 of %2 energies of the spectrum (%3) were used: %4");
}

/// Stated and sometimes meant, but mostly a word that was left out of a batch line.
QStringList otherBackgrounds(const std::vector<std::unique_ptr<Reference>>& references,
                             int background, Fitted fitted) {
    const QString text =
        fitted == Fitted::Image
            ? Texts::tr("%1 is normalised with %2 curves, the image with %3 ones")
            : Texts::tr("%1 is normalised with %2 curves, the sample with %3 ones");
    QStringList texts;
    for (const auto& reference : references) {
        if (reference->takesPart() && reference->background() != background) {
            texts << text.arg(nameOf(*reference), backgroundWord(reference->background()),
                              backgroundWord(background));
        }
    }
    return texts;
}

/// Constraints and mask against the rest of the settings.
Outcome judgeRule(const std::vector<std::unique_ptr<Reference>>& references,
                  const Settings& settings) {
    using Constraints = FitRule::Constraints;
    constexpr int MostConstrained = 8;
    Outcome outcome;
    const auto taking = std::count_if(references.begin(), references.end(),
                                      [](const auto& each) { return each->takesPart(); });
    if (settings.constraints != Constraints::None && taking > MostConstrained) {
        outcome.failures << Texts::tr("constraints are for at most %1 references, not for %2")
                                .arg(MostConstrained)
                                .arg(taking);
    }
    if (settings.method == LinearFit::Mlcf &&
        (settings.constraints == Constraints::Sum1 || settings.constraints == Constraints::Both)) {
        outcome.failures << Texts::tr("MLCF has no sum of 1: its coefficients are edge jumps");
    }
    if (settings.mask > 0.0 && !settings.errorMaps) {
        outcome.warnings << Texts::tr("no mask without error maps: run again with error maps");
    }
    return outcome;
}

}  // namespace

Outcome judgeDifference(const std::vector<double>& energies, double from, double to) {
    if (energies.empty() || !(energies.front() < energies.back())) {
        return Outcome::failure(Texts::tr("the frames have one energy only"));
    }
    for (const double e : {from, to}) {
        if (e < energies.front() || e > energies.back()) {
            return Outcome::failure(
                Texts::tr("the energy %1 eV lies outside those of the frames (%2)")
                    .arg(QString::number(e, 'g', 10),
                         rangeText(energies.front(), energies.back())));
        }
    }
    return from != to
               ? Outcome()
               : Outcome::failure(Texts::tr("the two energies of the difference are the same"));
}

namespace {

Outcome judgeEnergies(const std::vector<double>& energies,
                      const std::vector<std::unique_ptr<Reference>>& references,
                      const FitRule& rule, Fitted fitted) {
    Taking taking;
    QVector<XafsSpectrum> spectra;
    Outcome outcome;
    for (const auto& reference : references) {
        if (reference->takesPart()) {
            taking.push_back(reference.get());
            spectra << reference->spectrum();
            const QString fault = reference->edgeFault();
            outcome.warnings += fault.isEmpty() ? QStringList() : QStringList(fault);
        } else if (reference->isUsed()) {
            const auto index = &reference - references.data();
            outcome.warnings
                << Texts::tr("reference %1 (Ref%2) is in use but holds no spectrum: left out")
                       .arg(index)
                       .arg(index + 1);
        }
    }
    if (taking.empty()) {
        return Outcome::failure(Texts::tr("no reference is in use"));
    }
    LinearFit fit(spectra, rule);
    fit.prepare(energies);
    const int inside = static_cast<int>(fit.points().size());
    const int all = static_cast<int>(energies.size());
    const int needed = fit.coefficientCount() + 2;
    const QString frames = all > 0 ? rangeText(energies.front(), energies.back()) : QString();
    if (inside < needed) {
        const QString text = tooFewText(fitted).arg(inside).arg(all).arg(frames).arg(needed);
        const QString limiting = all > 0 ? limits(energies, taking) : QString();
        return Outcome::failure(limiting.isEmpty() ? text : text + QStringLiteral(": ") + limiting);
    }
    if (inside < EnoughInside * all) {
        outcome.warnings << onlySomeText(fitted).arg(inside).arg(all).arg(frames,
                                                                          limits(energies, taking));
    }
    outcome.warnings += lookAlikes(fit, taking);
    return outcome;
}

}  // namespace

Outcome judgeFit(const std::vector<double>& energies,
                 const std::vector<std::unique_ptr<Reference>>& references, const FitRule& rule) {
    return judgeEnergies(energies, references, rule, Fitted::Image);
}

Outcome judgeSpectrumFit(const std::vector<double>& energies,
                         const std::vector<std::unique_ptr<Reference>>& references,
                         const Settings& settings) {
    FitRule rule(settings.method);
    rule.referenceScale = settings.referenceScale;
    Outcome outcome = judgeEnergies(energies, references, rule, Fitted::Spectrum);
    Settings withoutMask = settings;
    withoutMask.mask = 0.0;
    outcome += judgeRule(references, withoutMask);
    if (rule.referenceScale == FitRule::ReferenceScale::Jump) {
        outcome.notes += otherBackgrounds(references, settings.targetBackground, Fitted::Spectrum);
    }
    return outcome;
}

Outcome judgeShiftedFit(const std::vector<double>& energies,
                        const std::vector<std::unique_ptr<Reference>>& references,
                        LinearFit::Method method, const BinRaster& raster,
                        const std::function<double(int x, int y)>& shiftAt) {
    double from = 0.0;
    double to = 1e100;
    std::ptrdiff_t needed = method == LinearFit::Mlcf ? 4 : 2;
    for (const auto& reference : references) {
        if (reference->takesPart()) {
            from = std::max(from, firstOf(*reference));
            to = std::min(to, lastOf(*reference));
            ++needed;
        }
    }
    const int all = raster.count();
    int without = 0;
    for (int row = 0; row < raster.rows; ++row) {
        for (int column = 0; column < raster.columns; ++column) {
            if (!raster.holds(column, row)) {
                continue;
            }
            const double shift = shiftAt(raster.x(column), raster.y(row));
            const auto first = std::partition_point(energies.begin(), energies.end(),
                                                    [&](double e) { return e - shift < from; });
            const auto end = std::partition_point(first, energies.end(),
                                                  [&](double e) { return e - shift <= to; });
            without += end - first < needed ? 1 : 0;
        }
    }
    if (without == 0) {
        return {};
    }
    const QString text =
        Texts::tr(
            "with the shifts of the energy map, %1 of %2 bins have too few energies inside "
            "the references")
            .arg(without)
            .arg(all);
    return without == all ? Outcome::failure(text) : Outcome::warning(text);
}

Outcome judgeResidual(const std::vector<double>& energies, double at) {
    return energies.empty() || (at >= energies.front() && at <= energies.back())
               ? Outcome()
               : Outcome::warning(
                     Texts::tr("the energy %1 eV of the residual absorption lies outside those of "
                               "the frames (%2)")
                         .arg(at)
                         .arg(rangeText(energies.front(), energies.back())));
}

Outcome judgeBefore(Work work, const std::vector<double>& energies,
                    const std::vector<std::unique_ptr<Reference>>& references,
                    const Settings& settings) {
    if (work == Work::Fit) {
        FitRule rule(settings.method);
        rule.referenceScale = settings.referenceScale;
        Outcome outcome = judgeFit(energies, references, rule);
        outcome += judgeRule(references, settings);
        if (rule.referenceScale == FitRule::ReferenceScale::Jump) {
            outcome.notes += otherBackgrounds(references, settings.targetBackground, Fitted::Image);
        }
        return outcome;
    }
    if (work == Work::Difference) {
        return judgeDifference(energies, settings.differenceFrom, settings.differenceTo);
    }
    return work == Work::Residual ? judgeResidual(energies, settings.raEnergy) : Outcome();
}

Outcome judgeAfter(const Run& run) {
    if (run.tally.withoutJump > 0) {
        qDebug("dMut_ is 0 in findMidEandDMut: %d of %d bins", run.tally.withoutJump,
               run.tally.bins);
    }
    Outcome outcome;
    outcome.warnings = run.warnings;
    if (run.tally.withoutCounts > 0) {
        outcome.warnings << Texts::tr("%1 of %2 bins have no counts at some energy")
                                .arg(run.tally.withoutCounts)
                                .arg(run.tally.bins);
    }
    if (run.inputs.e0.kind == EdgeChoice::Kind::Each &&
        !(run.inputs.ranges == BackgroundRanges())) {
        outcome += judgeOwnE0s(run.tally.withoutLines, run.tally.bins, run.inputs.ranges);
    }
    return outcome;
}
