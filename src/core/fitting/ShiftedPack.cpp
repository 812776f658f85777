#include "fitting/ShiftedPack.h"

#include <algorithm>
#include <cmath>
#include <limits>

using lanes::Count;

namespace {

constexpr auto Lanes = static_cast<std::size_t>(Count);

}  // namespace

ShiftedPack::ShiftedPack(const LinearFit& fit, const std::vector<double>& energies, bool withErrors,
                         lanes::Units units)
    : m_energies(energies),
      m_kernels(lanes::basisKernels(units)),
      m_withErrors(withErrors),
      m_curves(fit.basisCurves()),
      m_solver(fit.solver()),
      m_terms(fit.coefficientCount()),
      m_responseStride(fit.responseStride()) {
    if (m_curves.empty()) {
        return;
    }
    fit.commonRange(&m_from, &m_to);
    const auto terms = static_cast<std::size_t>(m_terms);
    m_rows.resize(energies.size() * terms * Lanes);
    m_normal.resize(terms * terms * Lanes);
    m_coefficients.resize(terms * Lanes);
    m_right.resize(m_coefficients.size());
    m_ownNormal.resize(terms * terms);
    m_ownRight.resize(terms);
    if (withErrors) {
        m_inverse.resize(m_normal.size());
        m_response.resize(energies.size() * static_cast<std::size_t>(m_responseStride) * Lanes);
    }
    m_bases.energies = energies.data();
    m_bases.corrections = m_corrections;
    m_bases.references = fit.referenceCount();
    m_bases.leading = m_terms - fit.referenceCount();
    m_bases.curves = m_curves.data();
}

bool ShiftedPack::suits(const double* corrections, int count) const {
    return !m_curves.empty() && std::all_of(corrections, corrections + count,
                                            [](double each) { return std::isfinite(each); });
}

void ShiftedPack::findPoints() {
    const int n = static_cast<int>(m_energies.size());
    const auto at = [this](int i, int l) {
        return m_energies[static_cast<std::size_t>(i)] - m_corrections[l];
    };
    for (int l = 0; l < Count; ++l) {
        // Neighbours begin and end near each other.
        int& first = m_bases.points.first[l];
        int& end = m_bases.points.end[l];
        first = l > 0 ? m_bases.points.first[l - 1] : std::min(first, n);
        end = l > 0 ? m_bases.points.end[l - 1] : std::min(end, n);
        while (first > 0 && !(at(first - 1, l) < m_from)) {
            --first;
        }
        while (first < n && at(first, l) < m_from) {
            ++first;
        }
        while (end > 0 && at(end - 1, l) > m_to) {
            --end;
        }
        while (end < n && !(at(end, l) > m_to)) {
            ++end;
        }
        end = std::max(first, end);
    }
}

void ShiftedPack::fit(const double* y, const double* corrections, int count) {
    std::copy_n(corrections, count, m_corrections);
    std::fill(m_corrections + count, m_corrections + Count, corrections[0]);
    findPoints();
    m_kernels.rows(m_bases, m_rows.data());
    m_kernels.normal(m_rows.data(), m_terms, m_bases.points, y, m_normal.data(), m_right.data());
    m_usedNormal = m_normal;
    m_usedRight = m_right;
    m_kernels.solve(m_terms, m_usedNormal.data(), m_usedRight.data(), m_coefficients.data());
    const bool areInverted = m_withErrors && m_terms <= lanes::MostInverted;
    bool isSingular[Count] = {};
    if (areInverted) {
        m_kernels.invert(m_terms, m_normal.data(), m_inverse.data(), isSingular);
    }
    for (int l = 0; l < count; ++l) {
        const int ofThese = m_bases.points.end[l] - m_bases.points.first[l];
        m_held[l] = 0;
        m_freedom[l] = isSingular[l] ? 0 : ofThese - m_terms;
        if ((m_withErrors && !areInverted) ||
            !m_solver.isMetBy(&m_coefficients[static_cast<std::size_t>(l)], Count, m_terms,
                              ofThese)) {
            solveAlone(l);
        }
    }
    if (m_withErrors) {
        m_kernels.response(m_rows.data(), m_terms, m_bases.leading, m_bases.points,
                           m_inverse.data(), m_response.data());
    }
}

void ShiftedPack::solveAlone(int l) {
    const auto lane = static_cast<std::size_t>(l);
    for (std::size_t k = 0; k < m_ownNormal.size(); ++k) {
        m_ownNormal[k] = m_normal[k * Lanes + lane];
    }
    for (std::size_t k = 0; k < m_ownRight.size(); ++k) {
        m_ownRight[k] = m_right[k * Lanes + lane];
    }
    const int points = m_bases.points.end[l] - m_bases.points.first[l];
    m_solver.reset(m_ownNormal.data(), m_terms, points);
    m_held[l] = m_solver.solve(m_ownRight.data());
    for (std::size_t k = 0; k < m_ownRight.size(); ++k) {
        m_coefficients[k * Lanes + lane] = m_ownRight[k];
    }
    if (!m_withErrors) {
        return;
    }
    const double* const inverse = m_solver.inverse(m_held[l]);
    m_freedom[l] = inverse == nullptr ? 0 : points - m_solver.parameters(m_held[l]);
    for (std::size_t k = 0; k < m_ownNormal.size(); ++k) {
        m_inverse[k * Lanes + lane] =
            inverse == nullptr ? std::numeric_limits<double>::quiet_NaN() : inverse[k];
    }
}
