#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <random>

#include "DebugLines.h"
#include "SameBits.h"
#include "TestMain.h"
#include "TinyStacks.h"
#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "base/Numbers.h"
#include "fitting/LaneFit.h"
#include "fitting/SpectrumErrors.h"
#include "frames/DarkFrame.h"

namespace {

using Real = long double;
using Reals = std::vector<Real>;
using Energies = std::vector<double>;
using Constraints = FitRule::Constraints;

constexpr int Width = 19;
constexpr int Height = 2;

Energies evenly(double from, double to, double step) {
    Energies list;
    for (double e = from; e <= to; e += step) {
        list.push_back(e);
    }
    return list;
}

Energies joined(const std::vector<Energies>& parts) {
    Energies all;
    for (const Energies& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

double edge(double e, double at, double whiteLine) {
    const double t = 1.0 / (1.0 + std::exp((at - e) / 4.0));
    return t + whiteLine * 4.0 * t * (1.0 - t) + 0.05 * t * std::sin((e - at) / 11.0);
}

QVector<XafsSpectrum> references(int count, int background) {
    QVector<XafsSpectrum> list;
    for (int r = 0; r < count; ++r) {
        Spectrum points;
        for (double e : evenly(6995, 7296, 1.5)) {
            points.append(e, 0.2 + 1e-4 * (7100 - e) + 0.9 * edge(e, 7100 + 3 * r, 0.1 + 0.3 * r));
        }
        list.append(XafsSpectrum(points, background, 0.0));
    }
    return list;
}

/// Stacks of noisy counts: shares of two species, the first growing with x.
struct Scene {
    FrameSet i1, i0;
    std::optional<DarkFrame> dark;

    Scene(const Energies& energies, const Energies& i0Energies, bool hasDark, double beam = 9000,
          int width = Width, int height = Height) {
        std::mt19937 random(11);
        const int offset = hasDark ? 40 : 0;
        const auto counts = [&](double mean) {
            return static_cast<quint16>(std::poisson_distribution<int>(mean)(random) + offset);
        };
        i1 = tinyStack(width, height, energies, [&](int i, int x, int) {
            const double e = energies[static_cast<std::size_t>(i)];
            const double share = 0.2 + 0.6 * x / width;
            const double mu = 0.3 + 2e-4 * (7100 - e) +
                              0.8 * (share * edge(e, 7100, 0.1) + (1 - share) * edge(e, 7103, 0.4));
            return counts(beam * std::exp(-mu));
        });
        i0 = tinyStack(width, height, i0Energies, [&](int, int, int) { return counts(beam); });
        if (hasDark) {
            dark.emplace(tinyStack(width, height, {0}, [](int, int, int) { return 40; }), width,
                         height);
        }
    }
    AbsorptionSource source(int width = Width, int height = Height) const {
        return {i1, i0, width, height, dark ? &*dark : nullptr};
    }
};

/// From counts to results with ranges and midE as given: the whole way in dense algebra.
class Chain {
  public:
    Chain(const Energies& energies, const Energies& i0Energies, const FitRule& rule,
          const QVector<XafsSpectrum>& list, const XafsSpectrum& spectrum)
        : m_e(energies), m_i0Energies(i0Energies), m_isLcf(rule.method == FitRule::Lcf) {
        const double e0 = spectrum.findE(0.5, 0);
        m_midE = spectrum.midE();
        for (double e : energies) {
            const double at = e - spectrum.energyCorrection();
            m_in[0].push_back(e >= e0 + rule.sample.ranges.preStart && e < e0 - 10);
            m_in[1].push_back(e >= e0 + 10 && e < e0 + 1000);
            m_fitted.push_back(at >= list[0].energy(0) && at <= list[0].energy(list[0].size() - 1));
            Reals row;
            for (const XafsSpectrum& r : list) {
                row.push_back(m_isLcf ? r.doubleNormalizedPreBase(at) : r.normalized().valueAt(at));
            }
            if (!m_isLcf) {
                row.insert(row.end(), {1.0L, at - 7150.0L});
            }
            m_basis.push_back(row);
        }
        for (int t = 0; t < (rule.sample.background == 0 ? 2 : 3); ++t) {
            Reals column;
            for (double e : energies) {
                const Real lambda = 12398.0L / e;
                column.push_back(t == 0                        ? 1.0L
                                 : rule.sample.background == 0 ? Real(e)
                                 : t == 1                      ? lambda * lambda * lambda
                                                               : lambda * lambda * lambda * lambda);
            }
            m_columns.push_back(column);
        }
    }

    /// mu-t of I1 counts and then those of the I0 frames.
    Reals muT(const Reals& counts, Real dark) const {
        Reals mu;
        for (std::size_t k = 0; k < m_e.size(); ++k) {
            const Real s0 = m_i0Energies.empty() ? 1.0L : i0At(m_e[k], counts) - dark;
            mu.push_back(std::log(s0 / (counts[k] - dark)));
        }
        return mu;
    }

    /// Ratios, edge jumps, total jump, R and what chi2 sums up, as far as v goes.
    struct Found {
        Reals values;
        Real r;
        Reals squares;  // S^2 (y - f)^2
        int points;
        std::size_t parameters;
    };
    Found found(const Reals& mu) const {
        const Reals pre = line(mu, m_in[0]), post = line(mu, m_in[1]);
        const int pair = pairAround(static_cast<int>(m_e.size()), m_midE,
                                    [this](int i) { return m_e[static_cast<std::size_t>(i)]; });
        const auto at = static_cast<std::size_t>(pair);
        const Real t = (m_midE - m_e[at]) / (m_e[at + 1] - m_e[at]);
        const Real jump = (1 - t) * (post[at] - pre[at]) + t * (post[at + 1] - pre[at + 1]);
        const std::size_t n = m_basis[0].size();
        const std::size_t m = m_isLcf ? n : n - 2;
        Reals a(n * (n + 1)), y(mu.size()), span(mu.size(), 1.0L);
        Real square = 0, rest = 0;
        Found result{{}, 0, Reals(mu.size()), 0, n};
        for (std::size_t k = 0; k < mu.size(); ++k) {
            span[k] = m_isLcf ? post[k] - pre[k] : 1.0L;
            y[k] = m_isLcf ? (mu[k] - pre[k]) / span[k] : mu[k];
            for (std::size_t i = 0; i < n && m_fitted[k]; ++i) {
                for (std::size_t j = 0; j < n; ++j) {
                    a[i * (n + 1) + j] += m_basis[k][i] * m_basis[k][j];
                }
                a[i * (n + 1) + n] += m_basis[k][i] * y[k];
            }
        }
        const Reals c = solved(a, n);
        for (std::size_t k = 0; k < mu.size(); ++k) {
            if (m_fitted[k]) {
                const Real off =
                    y[k] - std::inner_product(c.begin(), c.end(), m_basis[k].begin(), 0.0L);
                rest += off * off;
                square += y[k] * y[k];
                result.squares[k] = span[k] * span[k] * off * off;
                ++result.points;
            }
        }
        const Real sum = std::accumulate(c.begin(), c.begin() + static_cast<long>(m), 0.0L);
        for (std::size_t i = 0; i < m; ++i) {
            result.values.push_back(m_isLcf ? c[i] : c[i] / sum);
        }
        for (std::size_t i = 0; i < m; ++i) {
            result.values.push_back(m_isLcf ? c[i] * jump : c[i]);
        }
        result.values.push_back(m_isLcf ? jump : sum);
        result.r = rest / square;
        return result;
    }

  private:
    Real i0At(double e, const Reals& counts) const {
        std::vector<std::pair<double, Real>> means;
        for (std::size_t f = 0; f < m_i0Energies.size(); ++f) {
            Real sum = 0;
            int frames = 0;
            for (std::size_t g = 0; g < m_i0Energies.size(); ++g) {
                if (m_i0Energies[g] == m_i0Energies[f]) {
                    sum += counts[m_e.size() + g];
                    ++frames;
                }
            }
            if (means.empty() || means.back().first != m_i0Energies[f]) {
                means.emplace_back(m_i0Energies[f], sum / frames);
            }
        }
        if (means.size() == 1) {
            return means[0].second;
        }
        std::size_t i = 0;
        while (i + 2 < means.size() && e >= means[i + 1].first) {
            ++i;
        }
        const Real t = (e - Real(means[i].first)) / (means[i + 1].first - means[i].first);
        return means[i].second + t * (means[i + 1].second - means[i].second);
    }
    /// Least squares over the points of a line, at all energies.
    Reals line(const Reals& mu, const std::vector<bool>& in) const {
        const auto product = [&](const Reals& a, const Reals& b) {
            Real sum = 0;
            for (std::size_t k = 0; k < a.size(); ++k) {
                sum += in[k] ? a[k] * b[k] : 0;
            }
            return sum;
        };
        std::vector<Reals> orthogonal;
        Reals curve(mu.size());
        for (Reals column : m_columns) {
            for (int twice = 0; twice < 2; ++twice) {
                for (const Reals& q : orthogonal) {
                    const Real part = product(q, column);
                    for (std::size_t k = 0; k < column.size(); ++k) {
                        column[k] -= part * q[k];
                    }
                }
            }
            const Real norm = std::sqrt(product(column, column));
            for (Real& value : column) {
                value /= norm;
            }
            const Real part = product(column, mu);
            for (std::size_t k = 0; k < column.size(); ++k) {
                curve[k] += part * column[k];
            }
            orthogonal.push_back(column);
        }
        return curve;
    }
    static Reals solved(Reals a, std::size_t n) {
        for (std::size_t k = 0; k < n; ++k) {
            for (std::size_t i = 0; i < n; ++i) {
                const Real factor = i == k ? 0 : a[i * (n + 1) + k] / a[k * (n + 1) + k];
                for (std::size_t j = k; j <= n; ++j) {
                    a[i * (n + 1) + j] -= factor * a[k * (n + 1) + j];
                }
            }
        }
        Reals c;
        for (std::size_t k = 0; k < n; ++k) {
            c.push_back(a[k * (n + 1) + n] / a[k * (n + 1) + k]);
        }
        return c;
    }

    Energies m_e, m_i0Energies;
    bool m_isLcf;
    double m_midE;
    std::vector<bool> m_in[2], m_fitted;
    std::vector<Reals> m_basis, m_columns;
};

double correctionAt(int x, int y) {
    return 0.7 * (x / 2) - y;
}

bool isNear(double a, Real b, double tolerance) {
    const double off = std::abs(a / static_cast<double>(b) - 1.0);
    if (!(off <= tolerance)) {
        qWarning("%.17g instead of %.17Lg: %.2g off", a, b, off);
    }
    return off <= tolerance;
}

struct Scheme {
    int method, background;
    Energies i0;
    bool hasDark, hasMap;
    int count = 2;
    Constraints constraints = Constraints::None;
};

}  // namespace

Q_DECLARE_METATYPE(Scheme)

/// Counting errors of fits, from counts to sigma.
class TestCounting : public QObject {
    Q_OBJECT

  private:
    Energies m_energies = evenly(7000, 7300, 6);
    Energies m_all = m_energies;
    Energies m_few = {6990, 7036, 7083, 7099, 7150, 7222, 7290};
    // Far enough for powers of the wavelength.
    Energies m_wide =
        joined({evenly(6500, 7080, 20), evenly(7090, 7130, 4), evenly(7140, 7900, 20)});

    const Energies& energiesOf(const Scheme& scheme) const {
        return scheme.background == 0 ? m_energies : m_wide;
    }

    void schemes(bool constrained) {
        QTest::addColumn<Scheme>("scheme");
        Energies twice = m_few;
        twice.insert(twice.end(), m_few.begin(), m_few.end());
        twice.push_back(7083);
        std::sort(twice.begin(), twice.end());
        const auto row = [](const char* name, const Scheme& scheme) {
            QTest::newRow(name) << scheme;
        };
        row("LCF, an I0 frame each", {0, 0, m_all, false, false});
        row("LCF, dark, map", {0, 0, m_all, true, true});
        row("LCF, few I0 frames, three references", {0, 0, m_few, false, false, 3});
        row("LCF, several of an energy, dark", {0, 0, twice, true, false});
        row("LCF, one I0 frame, map", {0, 0, {7100}, false, true});
        row("LCF, frames of one energy", {0, 0, {7100, 7100}, false, false});
        row("LCF, no I0", {0, 0, {}, false, false, 1});
        row("LCF, Victreen", {0, 1, m_wide, false, false});
        row("LCF, Victreen, few, dark, map",
            {0, 1, {6450, 6800, 7080, 7099, 7500, 8000}, true, true});
        row("MLCF", {1, 0, m_all, false, false});
        row("MLCF, several, dark, map", {1, 0, twice, true, true});
        if (constrained) {
            row("sum 1", {0, 0, m_few, true, true, 3, Constraints::Sum1});
            row("both", {0, 0, m_all, false, false, 5, Constraints::Both});
            row("both, map", {0, 1, m_wide, false, true, 3, Constraints::Both});
            row("not negative", {1, 0, m_few, false, false, 7, Constraints::Nonnegative});
            row("not negative, map", {1, 0, m_few, false, true, 7, Constraints::Nonnegative});
            row("not negative, few, map", {0, 0, m_all, false, true, 3, Constraints::Nonnegative});
        }
    }
    static FitRule ruleOf(const Scheme& scheme, bool withErrors = true) {
        FitRule rule(static_cast<FitRule::Method>(scheme.method), scheme.background);
        rule.withErrors = withErrors;
        rule.constraints = scheme.constraints;
        rule.sample.ranges.preStart = scheme.background == 0 ? -100 : -550;
        return rule;
    }
    static std::vector<double> valuesOf(const Scene& scene, const FitRule& rule, int references,
                                        const QVector<XafsSpectrum>& list, bool hasMap,
                                        int threads = 2) {
        const AbsorptionSource source = scene.source();
        const BinRaster raster{0, 1, Width, 0, 1, Height, 0, 0};
        const int perBin = FitValues(references, rule.withErrors).count();
        RasterPass pass(
            source, raster, perBin,
            fitEvaluators(threads, raster, list, rule, source.energies(),
                          [hasMap](int x, int y) { return hasMap ? correctionAt(x, y) : 0.0; }));
        std::vector<double> values;
        for (auto row = pass.take(); row.values != nullptr; row = pass.take()) {
            values.insert(values.end(), row.values, row.values + Width * perBin);
        }
        return values;
    }

  private slots:
    /// Against derivatives of the whole way by every count, taken by trying.
    void asTheDerivativesSay_data() { schemes(false); }
    void asTheDerivativesSay() {
        QFETCH(Scheme, scheme);
        const Scene scene(energiesOf(scheme), scheme.i0, scheme.hasDark);
        const FitRule rule = ruleOf(scheme);
        const QVector<XafsSpectrum> list = references(scheme.count, scheme.background);
        const std::vector<double> all = valuesOf(scene, rule, scheme.count, list, scheme.hasMap);
        const FitValues at(scheme.count, true);
        for (int x : {3, 10, 18}) {
            const double* const bin = &all[static_cast<std::size_t>(x * at.count())];
            const XafsSpectrum spectrum(scene.source().spectrumAt(x, 0, 0, 0), rule.sample,
                                        scheme.hasMap ? correctionAt(x, 0) : 0.0);
            const Chain chain(energiesOf(scheme), scheme.i0, rule, list, spectrum);
            Reals counts;
            for (const FrameSet* set : {&scene.i1, &scene.i0}) {
                for (int i = 0; i < set->size(); ++i) {
                    counts.push_back(set->at(i)->rows[0][x]);
                }
            }
            const Real dark = scheme.hasDark ? 40 : 0;
            const Chain::Found found = chain.found(chain.muT(counts, dark));
            Reals variances(found.values.size()), v(energiesOf(scheme).size());
            const bool isSingle = !scheme.i0.empty() && scheme.i0.front() == scheme.i0.back();
            for (std::size_t j = 0; j < counts.size(); ++j) {
                const Real h = 1e-4L * counts[j];
                Reals more = counts, less = counts;
                more[j] += h;
                less[j] -= h;
                const Reals up = chain.muT(more, dark), down = chain.muT(less, dark);
                const Reals a = chain.found(up).values, b = chain.found(down).values;
                for (std::size_t i = 0; i < a.size(); ++i) {
                    variances[i] += std::pow((a[i] - b[i]) / (2 * h), 2) * counts[j];
                }
                for (std::size_t k = 0; k < v.size() && (j < v.size() || !isSingle); ++k) {
                    v[k] += std::pow((up[k] - down[k]) / (2 * h), 2) * counts[j];
                }
            }
            Real chi2 = 0;
            for (std::size_t k = 0; k < v.size(); ++k) {
                chi2 += found.squares[k] / v[k] / (found.points - Real(found.parameters));
            }
            const auto sigma = [&](int i) {
                return std::sqrt(variances[static_cast<std::size_t>(i)] * chi2);
            };
            for (int r = 0; r < scheme.count; ++r) {
                const Real share = std::max(0.0L, found.values[static_cast<std::size_t>(r)]);
                QVERIFY(share == 0 || isNear(bin[at.ratio(r)], share, 1e-6));
                QVERIFY(isNear(bin[at.ratioError(r)], sigma(r), 1e-6));
                QVERIFY(isNear(bin[at.dMutError(r)], sigma(scheme.count + r), 1e-6));
            }
            QVERIFY(isNear(bin[at.chi2Reduced()], chi2, 1e-6));
            QVERIFY(isNear(bin[at.r()], found.r, 1e-6));
            QVERIFY(isNear(bin[at.totalJump()], found.values.back(), 1e-6));
            QVERIFY(isNear(bin[at.totalJumpError()], sigma(2 * scheme.count), 1e-6));
            const Real sum = std::accumulate(bin + at.ratio(0), bin + at.ratioError(0), 0.0L);
            QVERIFY(isNear(bin[at.sum()], sum, 1e-12));
        }
    }

    /// In packs of any neighbours, units and threads as alone; the values as without errors.
    void besideOthersAsAlone_data() { schemes(true); }
    void besideOthersAsAlone() {
        QFETCH(Scheme, scheme);
        const Scene scene(energiesOf(scheme), scheme.i0, scheme.hasDark, 300);
        const FitRule rule = ruleOf(scheme);
        const QVector<XafsSpectrum> list = references(scheme.count, scheme.background);
        const FitValues at(scheme.count, true);
        const auto all = valuesOf(scene, rule, scheme.count, list, scheme.hasMap);
        const auto fewer =
            valuesOf(scene, ruleOf(scheme, false), scheme.count, list, scheme.hasMap, 3);
        const AbsorptionSource source = scene.source();
        LinearFit alone(list, rule);
        SpectrumErrors errors(rule, scheme.count);
        std::vector<double> values(static_cast<std::size_t>(at.count() * lanes::Count));
        int held = 0;
        for (int p = 0; p < Width * Height; ++p) {
            const int x = p % Width, y = p / Width;
            const double correction = scheme.hasMap ? correctionAt(x, y) : 0.0;
            const XafsSpectrum spectrum(source.spectrumAt(x, y, 0, 0), rule.sample, correction);
            BinRowSpectra one(source, x, 1, x + 1, 0, 0);
            one.sum(y, 0, 1);
            const lanes::Counts counts = one.counts(0);
            alone.fit(spectrum);
            held += alone.held() != 0;
            std::copy(alone.dMuts().begin(), alone.dMuts().end(), values.begin());
            std::copy(alone.ratios().begin(), alone.ratios().end(), values.begin() + scheme.count);
            errors.take(0, alone, spectrum);
            errors.evaluate(1, &counts, values.data());
            for (int i = 0; i < at.count(); ++i) {
                const double expected = all[static_cast<std::size_t>(p * at.count() + i)];
                QVERIFY(same(values[static_cast<std::size_t>(i)], expected));
                QVERIFY(i >= 2 * scheme.count ||
                        same(fewer[static_cast<std::size_t>(p * 2 * scheme.count + i)], expected));
            }
        }
        for (lanes::Units units : {lanes::Units::Baseline, lanes::Units::Wide4}) {
            LaneFit fit(list, rule, energiesOf(scheme), units);
            BinRowSpectra row(source, 0, 1, Width, 0, 0);
            row.sum(1, 0, Width);
            for (int x = 0; x < Width; x += lanes::Count) {
                std::vector<double> mu(energiesOf(scheme).size() * lanes::Count);
                bool lacksCounts[lanes::Count];
                row.formPack(x, mu.data(), lacksCounts);
                const int count = std::min(lanes::Count, Width - x);
                double corrections[lanes::Count] = {};
                for (int l = 0; scheme.hasMap && l < count; ++l) {
                    corrections[l] = correctionAt(x + l, 1);
                }
                const lanes::Counts counts = row.counts(x);
                fit.fit(mu.data(), corrections, count, &counts, values.data());
                for (int i = 0; i < count * at.count(); ++i) {
                    QVERIFY(same(values[static_cast<std::size_t>(i)],
                                 all[static_cast<std::size_t>((Width + x) * at.count() + i)]));
                }
            }
        }
        const bool canHold =
            scheme.constraints != Constraints::None && scheme.constraints != Constraints::Sum1;
        QCOMPARE(held > 0, canHold);
    }

    /// Four points, two in each line, two references that share them; every number by hand.
    void fourPointsByHand() {
        FitRule rule(FitRule::Lcf, XafsSpectrum::Simple);
        rule.withErrors = true;
        CountingErrors errors({1, 2, 3, 4}, rule, 2);
        const double basis[] = {1, 0, 0, 1, 1, 0, 0, 1};
        const double response[] = {.5, 0, 0, .5, .5, 0, 0, .5};
        const double given[] = {0, .5, .5, 1};
        std::vector<double> y(4 * lanes::Count), span(4 * lanes::Count, 1.0),
            counts(lanes::Count, 100.0), coefficients(2 * lanes::Count);
        CountingErrors::Pack pack;
        for (int l = 0; l < lanes::Count; ++l) {
            for (int k = 0; k < 4; ++k) {
                y[static_cast<std::size_t>(k * lanes::Count + l)] = given[k];
            }
            coefficients[static_cast<std::size_t>(l)] = .25;
            coefficients[static_cast<std::size_t>(lanes::Count + l)] = .75;
            pack.fits.points.end[l] = 4;
            pack.line[0].end[l] = pack.line[1].first[l] = 2;
            pack.line[1].end[l] = 4;
            pack.midE[l] = 2.5;
            pack.dMut[l] = 2;
            pack.freedom[l] = 2;
        }
        lanes::I0Share own;
        own.weight[0] = own.all[0] = own.own[0] = 1;
        own.isPlain = own.hasOwn = true;
        const std::vector<lanes::Sums> sums(4,
                                            {counts.data(), counts.data(), nullptr, nullptr, 0, 0});
        const std::vector<lanes::I0Share> shares(4, own);
        pack.fits.y = y.data();
        pack.fits.span = span.data();
        pack.fits.basis = {basis, 2, 0, false};
        pack.fits.response = {response, 2, 0, false};
        pack.fits.coefficients = coefficients.data();
        pack.fits.references = 2;
        pack.fits.counts = {sums.data(), shares.data()};
        // M of the first: .25 -.5 .25 0, of the second: 0 .25 -.5 .25, D: .5 -1.5 1.5 -.5.
        const double expected[] = {.5,
                                   1.5,
                                   .25,
                                   .75,
                                   std::sqrt(.02 * .375 * 6.25),
                                   std::sqrt(.02 * .375 * 6.25),
                                   std::sqrt(.06125 * 6.25),
                                   std::sqrt((4 * .0075 - 4 * .75 * .025 + .5625 * .1) * 6.25),
                                   1 / 6.,
                                   6.25,
                                   1,
                                   2,
                                   std::sqrt(.1 * 6.25)};
        double values[13] = {.5, 1.5, .25, .75};
        errors.evaluate(pack, 1, values);
        for (int i = 0; i < 13; ++i) {
            QVERIFY2(isNear(values[i], expected[i], 1e-13), qPrintable(QString::number(i)));
        }
    }

    /// What has no number.
    void blanks_data() {
        columns<QString, bool, bool, bool>("what", "hasRatioErrors", "hasJump", "hasChi2");
        QTest::newRow("nothing amiss") << "" << true << true << true;
        QTest::newRow("no counts in the post-edge line") << "in line" << false << true << false;
        QTest::newRow("no counts at an energy in no range") << "unused" << false << true << false;
        QTest::newRow("no crossing of the middle") << "no edge" << true << false << true;
        QTest::newRow("references alike") << "alike" << false << true << false;
        QTest::newRow("one point before the edge") << "one point" << false << true << true;
        QTest::newRow("no freedom") << "no freedom" << false << true << false;
    }
    void blanks() {
        QFETCH(QString, what);
        QFETCH(bool, hasRatioErrors);
        QFETCH(bool, hasJump);
        QFETCH(bool, hasChi2);
        const DebugLines quiet;
        Energies energies = m_energies;
        energies.insert(energies.begin(), 6900);  // in no range
        if (what == "one point") {
            energies = {7080, 7094, 7098, 7101, 7104, 7120, 7150, 7200, 7250, 7290};
        } else if (what == "no freedom") {
            energies = {7010, 7040, 7070, 7097, 7102, 7107, 7150, 7220};
        }
        const Scene counts(energies, energies, false);
        FrameSet i1 = tinyStack(Width, Height, energies, [&](int i, int x, int y) {
            const bool isEmpty = (what == "in line" && i == 40) || (what == "unused" && i == 0);
            return isEmpty ? 0
                   : what == "no edge"
                       ? 60000 * std::exp(-2e-5 * (energies[std::size_t(i)] - 7000) *
                                          (energies[std::size_t(i)] - 7000))
                       : counts.i1.at(i)->rows[std::size_t(y)][x];
        });
        Scene scene(energies, energies, false);
        scene.i1 = std::move(i1);
        const int count = what == "no freedom" ? 8 : 2;
        QVector<XafsSpectrum> list = references(count, 0);
        if (what == "alike") {
            list[1] = list[0];
        }
        const std::vector<double> all =
            valuesOf(scene, ruleOf({0, 0, {}, false, false}), count, list, false);
        const FitValues at(count, true);
        const double* const bin = &all[static_cast<std::size_t>(5 * at.count())];
        QCOMPARE(!std::isnan(bin[at.ratioError(0)]), hasRatioErrors);
        QCOMPARE(!std::isnan(bin[at.dMutError(1)]), hasRatioErrors && hasJump);
        QCOMPARE(!std::isnan(bin[at.totalJump()]), hasJump);
        QCOMPARE(!std::isnan(bin[at.totalJumpError()]), hasRatioErrors && hasJump);
        QCOMPARE(!std::isnan(bin[at.chi2Reduced()]), hasChi2);
        QVERIFY(!std::isnan(bin[at.sum()]));
    }

    /// Two thirds of all bins lie within a sigma of what they are without noise.
    void oneSigmaCovers() {
        constexpr int Side = 36;
        const Energies energies = evenly(7000, 7300, 4);
        const Scene noisy(energies, evenly(6990, 7310, 16), false, 3000, Side, Side);
        const QVector<XafsSpectrum> list = references(2, 0);
        const BinRaster raster{0, 1, Side, 0, 1, Side, 0, 0};
        const FitValues at(2, true);
        const AbsorptionSource source = noisy.source(Side, Side);
        RasterPass pass(source, raster, at.count(),
                        fitEvaluators(2, raster, list, ruleOf({0, 0, {}, false, false}), energies,
                                      [](int, int) { return 0.0; }));
        std::vector<double> values;
        for (auto row = pass.take(); row.values != nullptr; row = pass.take()) {
            values.insert(values.end(), row.values, row.values + Side * at.count());
        }
        const int pairs[][2] = {{at.ratio(0), at.ratioError(0)},
                                {at.dMut(1), at.dMutError(1)},
                                {at.totalJump(), at.totalJumpError()}};
        for (const auto& pair : pairs) {
            int within = 0;
            for (int x = 0; x < Side; ++x) {
                const auto value = [&](int y, int i) {
                    return values[static_cast<std::size_t>((y * Side + x) * at.count() + i)];
                };
                double mean = 0;
                for (int y = 0; y < Side; ++y) {
                    mean += value(y, pair[0]) / Side;
                }
                for (int y = 0; y < Side; ++y) {
                    within += std::abs(value(y, pair[0]) - mean) <= value(y, pair[1]);
                }
            }
            const double share = static_cast<double>(within) / (Side * Side);
            QVERIFY2(share > 0.60 && share < 0.76, qPrintable(QString::number(share)));
        }
    }
};

TARNWICK_TEST_MAIN(QCoreApplication, TestCounting)
#include "tst_counting.moc"
