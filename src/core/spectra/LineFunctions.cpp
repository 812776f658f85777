#include "spectra/LineFunctions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "base/Numbers.h"
#include "spectra/LinearSolver.h"

LineFunctions::LineFunctions(int kind, const std::vector<double>& energies)
    : m_energies(energies), m_inverseOf(energies.size() + 1) {
    background::visit(kind, [this](auto each) { tabulate<decltype(each)>(); });
}

template <typename Kind>
void LineFunctions::tabulate() {
    constexpr std::size_t Terms = Kind::Terms;
    m_terms = Kind::Terms;
    m_isStraight = std::is_same_v<Kind, background::Simple>;
    m_values.resize(m_energies.size() * Terms);
    // The constant comes first, wherever the kind has it.
    const auto constant = static_cast<std::size_t>(
        std::find(std::begin(Kind::Names), std::end(Kind::Names), 0) - std::begin(Kind::Names));
    for (std::size_t i = 0; i < m_energies.size(); ++i) {
        double f[Terms];
        Kind::functions(Kind::at(m_energies[i]), f);
        std::swap(f[0], f[constant]);
        std::copy_n(f, Terms, &m_values[i * Terms]);
    }
    for (std::size_t t = 1; t < Terms; ++t) {
        for (std::size_t before = 0; before < t; ++before) {
            double product = 0.0;
            double square = 0.0;
            for (std::size_t i = 0; i < m_energies.size(); ++i) {
                const double* const f = &m_values[i * Terms];
                product += f[t] * f[before];
                square += f[before] * f[before];
            }
            const double part = square > 0.0 ? product / square : 0.0;
            m_mean = part;
            for (std::size_t i = 0; i < m_energies.size(); ++i) {
                m_values[i * Terms + t] -= part * m_values[i * Terms + before];
            }
        }
    }
}

const double* LineFunctions::inverse(int first, int end) {
    std::vector<int>& ofFirst = m_inverseOf[static_cast<std::size_t>(first)];
    if (ofFirst.empty()) {
        ofFirst.assign(m_energies.size() + 1, -1);
    }
    int& place = ofFirst[static_cast<std::size_t>(end)];
    if (place < 0) {
        place = static_cast<int>(m_inverses.size());
        append(first, end);
    }
    return &m_inverses[static_cast<std::size_t>(place)];
}

void LineFunctions::append(int first, int end) {
    const auto terms = static_cast<std::size_t>(m_terms);
    std::vector<double> a(terms * terms);
    std::vector<double> inverse(terms * terms);
    for (auto i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(end); ++i) {
        const double* const f = &m_values[i * terms];
        for (std::size_t t = 0; t < terms; ++t) {
            for (std::size_t u = 0; u < terms; ++u) {
                a[t * terms + u] += f[t] * f[u];
            }
        }
    }
    if (!invertPositive(a.data(), m_terms, inverse.data())) {
        inverse.assign(inverse.size(), std::numeric_limits<double>::quiet_NaN());
    }
    m_inverses.insert(m_inverses.end(), inverse.begin(), inverse.end());
}

void LineFunctions::at(double e, double* phi) const {
    const auto terms = static_cast<std::size_t>(m_terms);
    if (m_isStraight) {
        phi[0] = 1.0;
        phi[1] = e - m_mean;
        return;
    }
    const int pair = pairAround(static_cast<int>(m_energies.size()), e,
                                [this](int i) { return m_energies[static_cast<std::size_t>(i)]; });
    const auto low = static_cast<std::size_t>(pair);
    for (std::size_t t = 0; t < terms; ++t) {
        phi[t] = interpolate(e, m_energies[low], m_values[low * terms + t], m_energies[low + 1],
                             m_values[(low + 1) * terms + t]);
    }
}
