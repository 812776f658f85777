#include "fitting/LaneFit.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>

#include "fitting/SpectrumErrors.h"

using lanes::Count;

LaneFit::LaneFit(const QVector<XafsSpectrum>& references, const FitRule& rule,
                 const std::vector<double>& energies, lanes::Units units)
    : m_fit(references, rule),
      m_rule(rule),
      m_energies(energies),
      m_kernels(lanes::kernels(units)),
      m_normaliser(energies, rule.sample, units),
      m_allPoints(energies.size()),
      m_shifted(m_fit, m_energies, rule.withErrors, units),
      m_corrected(energies.size()),
      m_y(energies.size() * Count),
      m_sums(static_cast<std::size_t>(m_fit.coefficientCount()) * Count),
      m_plain(m_sums.size()),
      m_solved(m_sums.size()),
      m_coefficients(static_cast<std::size_t>(m_fit.coefficientCount())),
      m_places(m_fit.referenceCount(), rule.withErrors) {
    std::iota(m_allPoints.begin(), m_allPoints.end(), 0);
    if (rule.withErrors) {
        m_errors = std::make_unique<CountingErrors>(energies, rule, referenceCount(), units);
        m_span.resize(m_y.size());
    }
}

void LaneFit::prepare(double correction) {
    if (m_prepared && correction == m_correction) {
        return;
    }
    for (std::size_t i = 0; i < m_energies.size(); ++i) {
        m_corrected[i] = m_energies[i] - correction;
    }
    m_fit.prepare(m_corrected);
    m_correction = correction;
    m_prepared = true;
}

void LaneFit::project(const double* y) {
    // The energies ascend, so that those in the range lie side by side.
    const std::vector<int>& points = m_fit.points();
    const int first = points.empty() ? 0 : points.front();
    m_kernels.projections(y + static_cast<std::ptrdiff_t>(first) * Count, m_fit.basis().data(),
                          m_fit.coefficientCount(), static_cast<int>(points.size()), m_sums.data());
    const LuDecomposition& equations = m_fit.solver().decomposition();
    m_kernels.substitute(equations.lu(), equations.row(), equations.size(), m_sums.data(),
                         m_plain.data());
}

void LaneFit::fit(const double* mu, const double* corrections, int count,
                  const lanes::Counts* counts, double* results) {
    const double* y = mu;
    if (m_rule.method == LinearFit::Lcf) {
        m_normaliser.normalise(mu, count, corrections);
        m_normaliser.doubleNormalised(mu, m_allPoints, m_y.data(),
                                      m_errors != nullptr ? m_span.data() : nullptr);
        y = m_y.data();
    }
    const bool isOneBasis = std::all_of(corrections, corrections + count,
                                        [&](double each) { return each == corrections[0]; });
    if (!isOneBasis && m_shifted.suits(corrections, count)) {
        fitTogether(y, corrections, count, results);
    } else {
        fitInTurn(y, corrections, isOneBasis, count, results);
    }
    if (m_errors != nullptr) {
        evaluateErrors(y, count, counts, results);
    }
}

/// Each with a basis of its own.
void LaneFit::fitTogether(const double* y, const double* corrections, int count, double* results) {
    m_shifted.fit(y, corrections, count);
    m_pack.fits.basis = m_shifted.basis();
    m_pack.fits.response = m_shifted.response();
    m_pack.fits.coefficients = m_shifted.coefficients().data();
    const lanes::Range& points = m_shifted.points();
    for (int l = 0; l < count; ++l) {
        m_pack.held[l] = m_shifted.held(l);
        m_pack.freedom[l] = m_shifted.freedom(l);
        m_pack.fits.points.first[l] = points.first[l];
        m_pack.fits.points.end[l] = points.end[l];
        finish(l, m_shifted.coefficients(), results);
    }
}

/// One after the other, with what is prepared for the one before wherever it serves.
void LaneFit::fitInTurn(const double* y, const double* corrections, bool isOneBasis, int count,
                        double* results) {
    for (int l = 0; l < count; ++l) {
        const bool alike = m_prepared && l > 0 && corrections[l] == m_correction;
        if (!alike) {
            prepare(corrections[l]);
            project(y);
        }
        solve(l);
        finish(l, m_solved, results);
        if (m_errors != nullptr && !isOneBasis) {
            keepRows(l);
        }
    }
    if (m_errors != nullptr) {
        m_pack.fits.coefficients = m_solved.data();
        shareRows(isOneBasis, count);
    }
}

/// Solves for the coefficients of spectrum l.
void LaneFit::solve(int l) {
    const auto lane = static_cast<std::size_t>(l);
    const int points = static_cast<int>(m_fit.points().size());
    const bool isPlain =
        m_fit.solver().isMetBy(&m_plain[lane], Count, m_fit.coefficientCount(), points);
    const std::vector<double>& given = isPlain ? m_plain : m_sums;
    for (std::size_t k = 0; k < m_coefficients.size(); ++k) {
        m_coefficients[k] = given[k * Count + lane];
    }
    m_pack.held[l] = isPlain ? 0 : m_fit.solver().solve(m_coefficients.data());
    for (std::size_t k = 0; k < m_coefficients.size(); ++k) {
        m_solved[k * Count + lane] = m_coefficients[k];
    }
    if (m_errors != nullptr) {
        m_pack.freedom[l] = m_fit.freedom(m_pack.held[l]);
        m_pack.fits.points.first[l] = m_fit.points().empty() ? 0 : m_fit.points().front();
        m_pack.fits.points.end[l] = m_fit.points().empty() ? 0 : m_fit.points().back() + 1;
    }
}

/// Turns the coefficients of spectrum l of a pack into its results.
void LaneFit::finish(int l, const std::vector<double>& coefficients, double* results) {
    const auto lane = static_cast<std::size_t>(l);
    double* const own = results + static_cast<std::ptrdiff_t>(l) * m_places.count();
    for (std::size_t k = 0; k < m_coefficients.size(); ++k) {
        m_coefficients[k] = coefficients[k * Count + lane];
    }
    m_fit.shares(m_coefficients.data(), m_normaliser.dMut()[l], own + referenceCount(), own);
    m_pack.midE[l] = m_normaliser.midE()[l];
    m_pack.dMut[l] = m_normaliser.dMut()[l];
}

/// Puts the rows of the fit of spectrum l, which rest on what is prepared, beside the others'.
void LaneFit::keepRows(int l) {
    const auto copy = [&](const std::vector<double>& rows, int stride, std::vector<double>* own) {
        const auto width = static_cast<std::size_t>(stride);
        own->resize(m_energies.size() * width * Count);
        double* to =
            own->data() + static_cast<std::size_t>(m_pack.fits.points.first[l]) * width * Count + l;
        for (double value : rows) {
            *to = value;
            to += Count;
        }
    };
    copy(m_fit.basis(), m_fit.coefficientCount(), &m_ownBasis);
    copy(m_fit.response(m_pack.held[l]), m_fit.responseStride(), &m_ownResponse);
}

/// Lets errors go by what is prepared or, where it is not that of all, by the rows of each.
void LaneFit::shareRows(bool isOneBasis, int count) {
    const unsigned held = m_pack.held[0];
    const bool areAlike = isOneBasis && std::all_of(m_pack.held, m_pack.held + count,
                                                    [held](unsigned each) { return each == held; });
    lanes::Fits& fits = m_pack.fits;
    const int terms = m_fit.coefficientCount();
    const int stride = m_fit.responseStride();
    if (areAlike) {
        fits.basis = {m_fit.basis().data(), terms, fits.points.first[0], false};
        fits.response = {m_fit.response(held).data(), stride, fits.points.first[0], false};
        return;
    }
    for (int l = 0; isOneBasis && l < count; ++l) {
        keepRows(l);
    }
    fits.basis = {m_ownBasis.data(), terms, 0, true};
    fits.response = {m_ownResponse.data(), stride, 0, true};
}

void LaneFit::evaluateErrors(const double* y, int count, const lanes::Counts* counts,
                             double* results) {
    lanes::Fits& fits = m_pack.fits;
    for (int l = count; l < Count; ++l) {
        fits.points.first[l] = fits.points.first[0];
        fits.points.end[l] = fits.points.end[0];
    }
    fits.y = y;
    fits.span = m_rule.method == LinearFit::Lcf ? m_span.data() : nullptr;
    fits.references = referenceCount();
    fits.counts = counts != nullptr ? *counts : lanes::Counts{};
    m_pack.line[0] = m_normaliser.preRange();
    m_pack.line[1] = m_normaliser.postRange();
    m_errors->evaluate(m_pack, count, results);
}

namespace {

/// Bin l of a pack as a spectrum of its own.
Spectrum spectrumOf(const std::vector<double>& energies, const double* mu, int l) {
    Spectrum spectrum;
    spectrum.assignWith(static_cast<int>(energies.size()), [&](Spoint* points) {
        for (std::size_t i = 0; i < energies.size(); ++i) {
            points[i] = {energies[i], mu[i * Count + static_cast<std::size_t>(l)]};
        }
    });
    return spectrum;
}

bool lacksLines(const std::vector<double>& energies, const XafsSpectrum& spectrum) {
    const auto isShort = [&energies](const BgCurve& curve) {
        return std::count_if(energies.begin(), energies.end(), [&curve](double e) {
                   return e >= curve.start() && e < curve.end();
               }) < BackgroundRanges::FewestPoints;
    };
    return isShort(spectrum.preEdge()) || isShort(spectrum.postEdge());
}

/// What a thread works out of the spectra of a raster.
template <typename Make>
std::vector<RasterPass::Evaluate> ofEachThread(int threads, Make make) {
    std::vector<RasterPass::Evaluate> evaluators;
    evaluators.reserve(static_cast<std::size_t>(std::max(0, threads)));
    for (int t = 0; t < threads; ++t) {
        evaluators.push_back(make());
    }
    return evaluators;
}

/// A bin without counts at some energy has no errors, wherever that energy lies.
void blankErrors(const RasterPass::Pack& pack, const FitValues& places, double* values) {
    constexpr double Blank = std::numeric_limits<double>::quiet_NaN();
    for (int l = 0; places.withErrors && l < pack.count; ++l) {
        double* const bin = values + static_cast<std::ptrdiff_t>(l) * places.count();
        if (pack.lacksCounts[l]) {
            std::fill(bin + places.ratioError(0), bin + places.r(), Blank);
            bin[places.chi2Reduced()] = Blank;
            bin[places.totalJumpError()] = Blank;
        }
    }
}

unsigned bitOf(int spectrum, bool isSet) {
    return isSet ? 1u << spectrum : 0u;
}

RasterPass::Evaluate fitOneByOne(const BinRaster& raster, const QVector<XafsSpectrum>& references,
                                 const FitRule& rule, const std::vector<double>& energies,
                                 const CorrectionAt& correctionAt) {
    const auto fit = std::make_shared<LinearFit>(references, rule);
    const auto errors = rule.withErrors ? std::make_shared<SpectrumErrors>(rule, references.size())
                                        : std::shared_ptr<SpectrumErrors>();
    const FitValues places(references.size(), rule.withErrors);
    return [=](const RasterPass::Pack& pack, double* values) {
        RasterPass::Found found;
        double* bin = values;
        for (int l = 0; l < pack.count; ++l) {
            const XafsSpectrum spectrum(spectrumOf(energies, pack.mu, l), rule.sample,
                                        correctionAt(raster.x(pack.column + l), raster.y(pack.row)),
                                        XafsSpectrum::Quiet);
            fit->fit(spectrum);
            found.withoutJump |= bitOf(l, spectrum.dMut() == 0.0);
            found.withoutLines |=
                bitOf(l, rule.method == LinearFit::Lcf && lacksLines(energies, spectrum));
            std::copy(fit->dMuts().begin(), fit->dMuts().end(), bin);
            std::copy(fit->ratios().begin(), fit->ratios().end(), bin + places.ratio(0));
            bin += places.count();
            if (errors != nullptr) {
                errors->take(l, *fit, spectrum);
            }
        }
        if (errors != nullptr) {
            errors->evaluate(pack.count, &pack.counts, values);
        }
        blankErrors(pack, places, values);
        return found;
    };
}

/// The energy corrections of a pack's bins.
void correctionsOf(const RasterPass::Pack& pack, const BinRaster& raster,
                   const CorrectionAt& correctionAt, double* corrections) {
    for (int l = 0; l < pack.count; ++l) {
        corrections[l] = correctionAt(raster.x(pack.column + l), raster.y(pack.row));
    }
}

RasterPass::Evaluate fitPacks(const BinRaster& raster, const QVector<XafsSpectrum>& references,
                              const FitRule& rule, const std::vector<double>& energies,
                              const CorrectionAt& correctionAt) {
    const auto fit = std::make_shared<LaneFit>(references, rule, energies);
    const FitValues places(references.size(), rule.withErrors);
    return [=](const RasterPass::Pack& pack, double* values) {
        double corrections[Count];
        correctionsOf(pack, raster, correctionAt, corrections);
        fit->fit(pack.mu, corrections, pack.count, &pack.counts, values);
        blankErrors(pack, places, values);
        return RasterPass::Found{fit->withoutJump(), fit->withoutLines()};
    };
}

RasterPass::Evaluate curvesOneByOne(const BinRaster& raster, const std::vector<double>& energies,
                                    const Normalisation& sample, double e,
                                    const CorrectionAt& correctionAt) {
    return [=](const RasterPass::Pack& pack, double* values) {
        RasterPass::Found found;
        for (int l = 0; l < pack.count; ++l) {
            const XafsSpectrum spectrum(spectrumOf(energies, pack.mu, l), sample,
                                        correctionAt(raster.x(pack.column + l), raster.y(pack.row)),
                                        XafsSpectrum::Quiet);
            found.withoutJump |= bitOf(l, spectrum.dMut() == 0.0);
            found.withoutLines |= bitOf(l, lacksLines(energies, spectrum));
            *values++ = spectrum.preEdge().valueAt(e);
            *values++ = spectrum.postEdge().valueAt(e);
        }
        return found;
    };
}

RasterPass::Evaluate curvesOfPacks(const BinRaster& raster, const std::vector<double>& energies,
                                   const Normalisation& sample, double e,
                                   const CorrectionAt& correctionAt) {
    const auto normaliser = std::make_shared<LaneNormaliser>(energies, sample);
    return [=](const RasterPass::Pack& pack, double* values) {
        double corrections[Count];
        correctionsOf(pack, raster, correctionAt, corrections);
        normaliser->normalise(pack.mu, pack.count, corrections);
        for (int l = 0; l < pack.count; ++l) {
            *values++ = normaliser->preAt(e, l);
            *values++ = normaliser->postAt(e, l);
        }
        return RasterPass::Found{normaliser->withoutJump(), normaliser->withoutLines()};
    };
}

}  // namespace

std::vector<RasterPass::Evaluate> fitEvaluators(int threads, const BinRaster& raster,
                                                const QVector<XafsSpectrum>& references,
                                                const FitRule& rule,
                                                const std::vector<double>& energies,
                                                const CorrectionAt& correctionAt) {
    const auto make = LaneNormaliser::suits(energies) ? fitPacks : fitOneByOne;
    return ofEachThread(threads,
                        [&] { return make(raster, references, rule, energies, correctionAt); });
}

std::vector<RasterPass::Evaluate> backgroundEvaluators(int threads, const BinRaster& raster,
                                                       const std::vector<double>& energies,
                                                       const Normalisation& sample, double e,
                                                       const CorrectionAt& correctionAt) {
    const auto make = LaneNormaliser::suits(energies) ? curvesOfPacks : curvesOneByOne;
    return ofEachThread(threads, [&] { return make(raster, energies, sample, e, correctionAt); });
}
