#include "measurement/EdgeJudgement.h"

#include <QCoreApplication>
#include <algorithm>
#include <optional>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(EdgeJudgement)
};

using Energies = std::vector<double>;

/// Energies with start <= E < end.
std::ptrdiff_t pointsIn(const Energies& energies, double start, double end) {
    return std::lower_bound(energies.begin(), energies.end(), end) -
           std::lower_bound(energies.begin(), energies.end(), start);
}

bool holdsLines(const Energies& energies, const BackgroundRanges& ranges, double e0) {
    return pointsIn(energies, e0 + ranges.preStart, e0 + ranges.preEnd) >=
               BackgroundRanges::FewestPoints &&
           pointsIn(energies, e0 + ranges.postStart, e0 + ranges.postEnd) >=
               BackgroundRanges::FewestPoints;
}

/// Whether there is an E0 inside the energies around which both ranges hold enough: what they hold
/// changes only where one of their ends passes an energy.
bool canHoldLines(const Energies& energies, const BackgroundRanges& ranges) {
    Energies changes{energies.front(), energies.back()};
    for (const double e : energies) {
        for (const double end :
             {ranges.preStart, ranges.preEnd, ranges.postStart, ranges.postEnd}) {
            changes.push_back(std::clamp(e - end, energies.front(), energies.back()));
        }
    }
    std::sort(changes.begin(), changes.end());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const double next = changes[std::min(i + 1, changes.size() - 1)];
        if (holdsLines(energies, ranges, changes[i]) ||
            holdsLines(energies, ranges, 0.5 * (changes[i] + next))) {
            return true;
        }
    }
    return false;
}

QString inEv(double energy) {
    return QString::number(energy, 'f', 2);
}

QString rangesText(const BackgroundRanges& ranges) {
    return QStringLiteral("%1 .. %2, %3 .. %4 eV")
        .arg(fieldText(ranges.preStart), fieldText(ranges.preEnd), fieldText(ranges.postStart),
             fieldText(ranges.postEnd));
}

Outcome ofSomeOrAll(int bins, int all, const QString& ofAll, const QString& ofSome) {
    return bins == 0     ? Outcome()
           : bins == all ? Outcome::failure(ofAll)
                         : Outcome::warning(ofSome.arg(bins).arg(all));
}

}  // namespace

Outcome judgeOwnE0s(int without, int bins, const BackgroundRanges& ranges) {
    return ofSomeOrAll(
        without, bins,
        Texts::tr("the background ranges (%1) hold fewer than 3 energies of the frames in all bins")
            .arg(rangesText(ranges)),
        Texts::tr("the background ranges hold fewer than 3 energies of the frames in %1 of %2 "
                  "bins"));
}

Outcome judgeRanges(Work work, const std::vector<double>& energies,
                    const std::vector<std::unique_ptr<Reference>>& references,
                    const Settings& settings) {
    Outcome outcome;
    const bool areStated = settings.ranges == BackgroundRanges();
    for (const auto& reference : references) {
        if (work == Work::Fit && !areStated && reference->takesPart() &&
            !reference->lineFault().isEmpty()) {
            outcome.failures << reference->lineFault();
        }
    }
    const bool hasLines =
        work == Work::Residual || (work == Work::Fit && settings.method == LinearFit::Lcf);
    const bool isJudged = settings.e0.kind == EdgeChoice::Kind::Each
                              ? !areStated
                              : settings.e0.kind == EdgeChoice::Kind::Mean;
    if (hasLines && isJudged && !energies.empty() && !canHoldLines(energies, settings.ranges)) {
        outcome.failures << Texts::tr(
                                "the background ranges (%1) hold fewer than 3 energies of "
                                "the frames, wherever E0 is")
                                .arg(rangesText(settings.ranges));
    }
    return outcome;
}

Outcome judgeCommonE0(double e0, const BackgroundRanges& ranges,
                      const std::vector<double>& energies, const BinRaster& raster,
                      const std::function<double(int x, int y)>& shiftAt) {
    const int all = raster.count();
    int outside = 0;
    int without = 0;
    std::optional<double> last;  // neighbours mostly have the same
    bool isInside = false;
    bool hasLines = false;
    for (int row = 0; row < raster.rows; ++row) {
        for (int column = 0; column < raster.columns; ++column) {
            if (!raster.holds(column, row)) {
                continue;
            }
            const double at = e0 + shiftAt(raster.x(column), raster.y(row));
            if (last != at) {
                isInside = at >= energies.front() && at <= energies.back();
                hasLines = isInside && holdsLines(energies, ranges, at);
                last = at;
            }
            outside += isInside ? 0 : 1;
            without += isInside && !hasLines ? 1 : 0;
        }
    }
    Outcome outcome = ofSomeOrAll(
        outside, all,
        Texts::tr("E0 at %1 eV lies outside the energies of the frames, %2 to %3 eV")
            .arg(inEv(e0), inEv(energies.front()), inEv(energies.back())),
        Texts::tr("with the shifts of the energy map, E0 lies outside the energies of the frames "
                  "in %1 of %2 bins"));
    outcome += ofSomeOrAll(
        without, all - outside,
        Texts::tr("the background ranges (%1) around E0 at %2 eV hold fewer than 3 energies of the "
                  "frames")
            .arg(rangesText(ranges), inEv(e0)),
        Texts::tr("the background ranges hold fewer than 3 energies of the frames in %1 of %2 "
                  "bins"));
    return outcome;
}
