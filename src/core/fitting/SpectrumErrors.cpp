#include "fitting/SpectrumErrors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

using lanes::Count;

namespace {

constexpr std::size_t FewestEnergies = 2;

double valueUnder(const Spectrum& series, int k) {
    return k < series.size() ? series.value(k) : 0.0;
}

}  // namespace

SpectrumErrors::SpectrumErrors(const FitRule& rule, int references)
    : m_rule(rule), m_references(references) {}

void SpectrumErrors::setEnergies(const XafsSpectrum& sample) {
    std::vector<double> energies(static_cast<std::size_t>(sample.size()));
    for (std::size_t k = 0; k < energies.size(); ++k) {
        energies[k] = sample.energy(static_cast<int>(k));
    }
    if (energies == m_energies) {
        return;
    }
    m_energies = energies;
    m_order.clear();
    for (std::size_t k = 0; k < energies.size(); ++k) {
        if (std::isfinite(energies[k])) {
            m_order.push_back(static_cast<int>(k));
        }
    }
    const auto energyOf = [&](int k) { return m_energies[static_cast<std::size_t>(k)]; };
    std::stable_sort(m_order.begin(), m_order.end(),
                     [&](int a, int b) { return energyOf(a) < energyOf(b); });
    m_places.assign(energies.size(), -1);
    std::vector<double> ascending;
    for (std::size_t p = 0; p < m_order.size(); ++p) {
        m_places[static_cast<std::size_t>(m_order[p])] = static_cast<int>(p);
        ascending.push_back(energyOf(m_order[p]));
    }
    m_errors.reset();
    if (ascending.size() >= FewestEnergies) {
        m_errors = std::make_unique<CountingErrors>(ascending, m_rule, m_references);
    }
    m_y.assign(ascending.size() * Count, 0.0);
    m_span.assign(ascending.size() * Count, 0.0);
}

/// Points of a line, as BgCurve takes them.
std::vector<int> SpectrumErrors::pointsOf(const BgCurve& line, const XafsSpectrum& sample) const {
    std::vector<int> points;
    for (int k = 0; k < sample.size() && !(sample.energy(k) >= line.end()); ++k) {
        if (sample.energy(k) >= line.start()) {
            points.push_back(k);
        }
    }
    return points;
}

/// False where the points do not lie side by side.
bool SpectrumErrors::setRange(const std::vector<int>& points, int l, lanes::Range* range) const {
    range->first[l] = range->end[l] = 0;
    if (points.empty()) {
        return true;
    }
    int first = std::numeric_limits<int>::max();
    int last = -1;
    for (int k : points) {
        const int place = m_places[static_cast<std::size_t>(k)];
        if (place < 0) {
            return false;
        }
        first = std::min(first, place);
        last = std::max(last, place);
    }
    if (last - first + 1 != static_cast<int>(points.size())) {
        return false;
    }
    range->first[l] = first;
    range->end[l] = last + 1;
    return true;
}

void SpectrumErrors::takeRows(int l, LinearFit& fit) {
    const auto lane = static_cast<std::size_t>(l);
    const auto terms = static_cast<std::size_t>(fit.coefficientCount());
    const auto stride = static_cast<std::size_t>(fit.responseStride());
    m_basis.resize(m_order.size() * terms * Count);
    m_response.resize(m_order.size() * stride * Count);
    const std::vector<double>& rows = fit.response(fit.held());
    for (std::size_t i = 0; i < fit.points().size(); ++i) {
        const int place = m_places[static_cast<std::size_t>(fit.points()[i])];
        const auto p = static_cast<std::size_t>(std::max(0, place));
        for (std::size_t r = 0; place >= 0 && r < terms; ++r) {
            m_basis[(p * terms + r) * Count + lane] = fit.basis()[i * terms + r];
        }
        for (std::size_t r = 0; place >= 0 && r < stride; ++r) {
            m_response[(p * stride + r) * Count + lane] = rows[i * stride + r];
        }
    }
}

void SpectrumErrors::take(int l, LinearFit& fit, const XafsSpectrum& sample) {
    if (l == 0) {
        setEnergies(sample);
        m_pack = {};
    }
    const auto lane = static_cast<std::size_t>(l);
    const bool isLcf = m_rule.method == FitRule::Lcf;
    const auto terms = static_cast<std::size_t>(fit.coefficientCount());
    m_coefficients.resize(terms * Count);
    for (std::size_t p = 0; p < m_order.size(); ++p) {
        const int k = m_order[p];
        m_y[p * Count + lane] =
            isLcf ? valueUnder(sample.doubleNormalizedPreBase(), k) : sample.value(k);
        m_span[p * Count + lane] =
            valueUnder(sample.postEdge(), k) - valueUnder(sample.preEdge(), k);
    }
    takeRows(l, fit);
    for (std::size_t r = 0; r < terms; ++r) {
        m_coefficients[r * Count + lane] = fit.coefficients()[r];
    }
    bool isOrdered = setRange(fit.points(), l, &m_pack.fits.points);
    if (isLcf) {
        isOrdered &= setRange(pointsOf(sample.preEdge(), sample), l, &m_pack.line[0]);
        isOrdered &= setRange(pointsOf(sample.postEdge(), sample), l, &m_pack.line[1]);
    }
    m_pack.midE[l] = sample.midE();
    m_pack.dMut[l] = sample.dMut();
    m_pack.held[l] = fit.held();
    m_pack.freedom[l] = isOrdered ? fit.freedom(fit.held()) : 0;
}

void SpectrumErrors::evaluate(int count, const lanes::Counts* counts, double* results) {
    const FitValues values(m_references, true);
    if (m_errors == nullptr) {
        for (int l = 0; l < count; ++l) {
            double* const bin = results + static_cast<std::ptrdiff_t>(l) * values.count();
            std::fill(bin + values.ratioError(0), bin + values.count(),
                      std::numeric_limits<double>::quiet_NaN());
            bin[values.sum()] =
                std::accumulate(bin + values.ratio(0), bin + values.ratioError(0), 0.0);
        }
        return;
    }
    lanes::Fits& fits = m_pack.fits;
    const int terms = static_cast<int>(m_coefficients.size()) / Count;
    const int stride = m_rule.method == FitRule::Lcf ? m_references : m_references + 1;
    fits.y = m_y.data();
    fits.span = m_rule.method == FitRule::Lcf ? m_span.data() : nullptr;
    fits.basis = {m_basis.data(), terms, 0, true};
    fits.coefficients = m_coefficients.data();
    fits.response = {m_response.data(), stride, 0, true};
    fits.references = m_references;
    if (counts != nullptr && counts->sums != nullptr) {
        m_sums.clear();
        m_shares.clear();
        for (int k : m_order) {
            m_sums.push_back(counts->sums[k]);
            m_shares.push_back(counts->shares[k]);
        }
        fits.counts = *counts;
        fits.counts.sums = m_sums.data();
        fits.counts.shares = m_shares.data();
    }
    m_errors->evaluate(m_pack, count, results);
}

std::vector<double> fitWithErrors(LinearFit& fit, const FitRule& rule, const XafsSpectrum& sample) {
    fit.fit(sample);
    const FitValues places(fit.referenceCount(), true);
    std::vector<double> values(static_cast<std::size_t>(places.count()));
    std::copy(fit.dMuts().begin(), fit.dMuts().end(), values.begin());
    std::copy(fit.ratios().begin(), fit.ratios().end(), values.begin() + places.ratio(0));
    SpectrumErrors errors(rule, fit.referenceCount());
    errors.take(0, fit, sample);
    errors.evaluate(1, nullptr, values.data());
    return values;
}
