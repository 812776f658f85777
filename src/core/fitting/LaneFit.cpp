#include "fitting/LaneFit.h"

#include <algorithm>
#include <memory>
#include <numeric>

#include "fitting/ResultKinds.h"

using lanes::Count;

LaneFit::LaneFit(const QVector<XafsSpectrum>& references, const FitRule& rule,
                 const std::vector<double>& energies, lanes::Units units)
    : m_fit(references, rule),
      m_rule(rule),
      m_energies(energies),
      m_kernels(lanes::kernels(units)),
      m_normaliser(energies, rule.sample, units),
      m_allPoints(energies.size()),
      m_corrected(energies.size()),
      m_y(energies.size() * Count) {
    std::iota(m_allPoints.begin(), m_allPoints.end(), 0);
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
    m_sums.resize(static_cast<std::size_t>(m_fit.coefficientCount()) * Count);
    m_coefficients.resize(static_cast<std::size_t>(m_fit.coefficientCount()));
}

void LaneFit::fit(const double* mu, const double* corrections, int count, double* results) {
    const double* y = mu;
    if (m_rule.method == LinearFit::Lcf) {
        m_normaliser.normalise(mu, count, corrections);
        m_normaliser.doubleNormalised(mu, m_allPoints, m_y.data());
        y = m_y.data();
    }
    const auto project = [&] {
        // The energies ascend, so that those in the range lie side by side.
        const std::vector<int>& points = m_fit.points();
        const int first = points.empty() ? 0 : points.front();
        m_kernels.projections(y + static_cast<std::ptrdiff_t>(first) * Count, m_fit.basis().data(),
                              m_fit.coefficientCount(), static_cast<int>(points.size()),
                              m_sums.data());
    };
    for (int l = 0; l < count; ++l) {
        const bool alike = m_prepared && l > 0 && corrections[l] == m_correction;
        if (!alike) {
            prepare(corrections[l]);
            project();
        }
        finish(m_sums.data(), l,
               results + static_cast<std::ptrdiff_t>(l) * ReferenceKindCount * referenceCount());
    }
}

void LaneFit::finish(const double* sums, int l, double* results) {
    for (std::size_t k = 0; k < m_coefficients.size(); ++k) {
        m_coefficients[k] = sums[k * Count + static_cast<std::size_t>(l)];
    }
    m_fit.solve(m_coefficients.data());
    m_fit.shares(m_coefficients.data(), m_normaliser.dMut()[l], results + referenceCount(),
                 results);
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

RasterPass::Evaluate fitOneByOne(const BinRaster& raster, const QVector<XafsSpectrum>& references,
                                 const FitRule& rule, const std::vector<double>& energies,
                                 const CorrectionAt& correctionAt) {
    const auto fit = std::make_shared<LinearFit>(references, rule);
    return [=](const RasterPass::Pack& pack, double* values) {
        int withoutJump = 0;
        for (int l = 0; l < pack.count; ++l) {
            const XafsSpectrum spectrum(spectrumOf(energies, pack.mu, l), rule.sample,
                                        correctionAt(raster.x(pack.column + l), raster.y(pack.row)),
                                        XafsSpectrum::Quiet);
            fit->fit(spectrum);
            withoutJump += spectrum.dMut() == 0.0;
            values = std::copy(fit->dMuts().begin(), fit->dMuts().end(), values);
            values = std::copy(fit->ratios().begin(), fit->ratios().end(), values);
        }
        return withoutJump;
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
    return [=](const RasterPass::Pack& pack, double* values) {
        double corrections[Count];
        correctionsOf(pack, raster, correctionAt, corrections);
        fit->fit(pack.mu, corrections, pack.count, values);
        return fit->withoutJump();
    };
}

RasterPass::Evaluate curvesOneByOne(const BinRaster& raster, const std::vector<double>& energies,
                                    const Normalisation& sample, double e,
                                    const CorrectionAt& correctionAt) {
    return [=](const RasterPass::Pack& pack, double* values) {
        int withoutJump = 0;
        for (int l = 0; l < pack.count; ++l) {
            const XafsSpectrum spectrum(spectrumOf(energies, pack.mu, l), sample,
                                        correctionAt(raster.x(pack.column + l), raster.y(pack.row)),
                                        XafsSpectrum::Quiet);
            withoutJump += spectrum.dMut() == 0.0;
            *values++ = spectrum.preEdge().valueAt(e);
            *values++ = spectrum.postEdge().valueAt(e);
        }
        return withoutJump;
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
        return normaliser->withoutJump();
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
