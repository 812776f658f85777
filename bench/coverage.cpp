// How often a fitted fraction lies within its counting error of what the same beam would have given
// without noise: the table of docs/numbers.md. Every row is a field of 15,000 bins of one mixture
// of two iron species, with its own counts, camera and number of incident frames.
//
//     coverage [--rows N] > table

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "AbsorptionModel.h"
#include "Measurement.h"
#include "RandomCounts.h"
#include "absorption/AbsorptionSource.h"
#include "absorption/RasterPass.h"
#include "base/Globals.h"
#include "fitting/LaneFit.h"
#include "frames/FrameSet.h"

namespace {

constexpr int Columns = 150;
constexpr int Rows = 100;
constexpr int Energies = 120;
constexpr double Fraction = 0.35;  // of metal; the rest is the 3+ oxide
constexpr double E0 = 7119.0;      // eV, for all bins

/// What differs from row to row.
struct Field {
    const char* name;
    double counts;  // of the beam in a bin
    double edgeJump = 1.0;
    double gain = 1.0;     // counts a photon
    double readNoise = 0;  // counts rms a pixel
    int i0Frames = Energies;
    double third = 0.0;  // share of a species that no reference stands for
    FitRule::Method method = FitRule::Lcf;
    bool eachE0 = false;  // of every bin and reference its own
};

const std::vector<Field> Fields = {
    {"100 counts", 100},
    {"1,000 counts", 1000},
    {"10,000 counts", 10000},
    {"30,000 counts", 30000},
    {"130,000 counts", 130000},
    {"10,000 counts, 4 counts a photon", 10000, 1.0, 4.0},
    {"10,000 counts, read noise of 30 counts", 10000, 1.0, 1.0, 30.0},
    {"10,000 counts, 20 I0 frames", 10000, 1.0, 1.0, 0.0, 20},
    {"10,000 counts, 80 I0 frames", 10000, 1.0, 1.0, 0.0, 80},
    {"10,000 counts, one I0 frame", 10000, 1.0, 1.0, 0.0, 1},
    {"10,000 counts, edge jump 0.1", 10000, 0.1},
    {"10,000 counts, a reference missing (10 %)", 10000, 1.0, 1.0, 0.0, Energies, 0.1},
    {"10,000 counts, MLCF", 10000, 1.0, 1.0, 0.0, Energies, 0.0, FitRule::Mlcf},
    {"1,000 counts, every bin its own E0", 1000, 1.0, 1.0, 0.0, Energies, 0.0, FitRule::Lcf, true},
    {"10,000 counts, every bin its own E0", 10000, 1.0, 1.0, 0.0, Energies, 0.0, FitRule::Lcf,
     true},
    {"130,000 counts, every bin its own E0", 130000, 1.0, 1.0, 0.0, Energies, 0.0, FitRule::Lcf,
     true},
};

const samples::AbsorptionModel& model() {
    static const samples::AbsorptionModel made;
    return made;
}

double muT(const Field& field, double e) {
    const double known =
        (1.0 - field.third) * (Fraction * model().value(samples::Metal, e) +
                               (1.0 - Fraction) * model().value(samples::Oxide3, e));
    return field.edgeJump * (known + field.third * model().value(samples::Oxide2, e));
}

/// Pixels side by side that make a bin: so many that a pixel stays below 65535 counts.
int binSide(const Field& field) {
    int side = 1;
    while (field.counts / (side * side) > 40000.0) {
        side += 2;
    }
    return side;
}

/// A frame of counts of one mean, or the mean itself as far as whole numbers can say it.
std::unique_ptr<TiffData> frameOf(const Field& field, double e, double mean, std::uint64_t seed) {
    const int side = binSide(field);
    samples::RandomCounts random(seed);
    auto frame = std::make_unique<TiffData>();
    frame->width = static_cast<quint32>(Columns * side);
    frame->height = static_cast<quint32>(Rows * side);
    frame->energy = e;
    frame->makeRows(frame->width * sizeof(quint16));
    for (quint16* row : frame->rows) {
        for (quint32 x = 0; x < frame->width; ++x) {
            double counts =
                field.gain * static_cast<double>(random.poisson(mean / field.gain / side / side));
            if (field.readNoise > 0.0) {
                // Twelve uniform numbers less six: near enough to a normal one.
                double sum = -6.0;
                for (int i = 0; i < 12; ++i) {
                    sum += random.uniform();
                }
                counts += field.readNoise * sum;
            }
            row[x] = static_cast<quint16>(std::clamp(std::round(counts), 0.0, 65535.0));
        }
    }
    return frame;
}

XafsSpectrum reference(int species, const Normalisation& rule) {
    Spectrum points;
    for (double e : samples::edgeScan(Energies)) {
        points.append(e, model().value(species, e));
    }
    return XafsSpectrum(points, rule, 0.0);
}

struct Value {
    double estimate;
    double error;
};

/// The share of values within one error of their median, half the width of their middle 68 %, and
/// the median error: a few wild values of a dark field do not count for more than others.
struct Coverage {
    double share = 0.0;
    double spread = 0.0;
    double error = 0.0;
};

double quantile(std::vector<double> values, double q) {
    const auto at =
        values.begin() + static_cast<std::ptrdiff_t>(q * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

Coverage coverageOf(const std::vector<Value>& values) {
    std::vector<double> estimates;
    std::vector<double> errors;
    for (const Value& value : values) {
        estimates.push_back(value.estimate);
        errors.push_back(value.error);
    }
    Coverage found;
    const double middle = quantile(estimates, 0.5);
    found.spread = 0.5 * (quantile(estimates, 0.841) - quantile(estimates, 0.159));
    found.error = quantile(errors, 0.5);
    const auto within = std::count_if(values.begin(), values.end(), [middle](const Value& value) {
        return std::abs(value.estimate - middle) <= value.error;
    });
    found.share = static_cast<double>(within) / static_cast<double>(values.size());
    return found;
}

void run(const Field& field, std::uint64_t seed) {
    FrameSet i1;
    FrameSet i0;
    for (double e : samples::edgeScan(Energies)) {
        i1.append(frameOf(field, e, field.counts * std::exp(-muT(field, e)), seed++));
    }
    const std::vector<double> beam = field.i0Frames == Energies ? samples::edgeScan(Energies)
                                     : field.i0Frames == 1      ? std::vector<double>{7120.0}
                                                                : samples::beamScan(field.i0Frames);
    for (double e : beam) {
        i0.append(frameOf(field, e, field.counts, seed++));
    }
    const int side = binSide(field);
    const AbsorptionSource source(i1, i0, Columns * side, Rows * side);
    FitRule rule(field.method);
    rule.withErrors = true;
    if (!field.eachE0) {
        rule.sample.e0 = E0;
    }
    const QVector<XafsSpectrum> references{reference(samples::Metal, rule.sample),
                                           reference(samples::Oxide3, rule.sample)};
    const BinRaster raster{side / 2, side, Columns, side / 2, side, Rows, side / 2, side / 2};
    const FitValues at(references.size(), true);
    RasterPass pass(source, raster, at.count(),
                    fitEvaluators(2, raster, references, rule, source.energies(),
                                  [](int, int) { return 0.0; }));
    std::vector<Value> fractions;
    std::vector<Value> jumps;
    std::vector<double> chi2;
    for (RasterPass::Row row = pass.take(); row.values != nullptr; row = pass.take()) {
        for (int c = 0; c < Columns; ++c) {
            const double* const v = row.values + c * at.count();
            if (std::isfinite(v[at.ratioError(0)])) {
                fractions.push_back({v[at.ratio(0)], v[at.ratioError(0)]});
                jumps.push_back({v[at.dMut(0)], v[at.dMutError(0)]});
                chi2.push_back(v[at.chi2Reduced()]);
            }
        }
    }
    const Coverage fraction = coverageOf(fractions);
    const Coverage jump = coverageOf(jumps);
    std::printf("| %s | %zu | %.4f | %.4f | %.2f | %.2f | %.2f |\n", field.name, fractions.size(),
                fraction.spread, fraction.error, fraction.share, jump.share, quantile(chi2, 0.5));
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    initGlobals();
    std::printf(
        "| counts of the beam in a bin | bins | spread of the fraction | its error | "
        "within one error: fraction | edge jump | reduced chi-square |\n"
        "|---|---|---|---|---|---|---|\n");
    std::uint64_t seed = 1;
    for (const Field& field : Fields) {
        run(field, seed);
        seed += 1000;
    }
    return 0;
}
