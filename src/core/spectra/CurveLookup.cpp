#include "spectra/CurveLookup.h"

#include <algorithm>
#include <cmath>

#include "base/Numbers.h"

CurveLookup::CurveLookup(const Spectrum& curve) : m_curve(curve) {
    const int n = curve.size();
    const auto ascends = [&](int i) { return curve.energy(i) < curve.energy(i + 1); };
    if (n < 2 || !std::isfinite(curve.energy(0)) || !std::isfinite(curve.energy(n - 1))) {
        return;
    }
    for (int i = 0; i + 1 < n; ++i) {
        if (!ascends(i)) {
            return;
        }
    }
    constexpr int StepsPerPoint = 2;
    const int steps = StepsPerPoint * n;
    const double first = curve.energy(0);
    const double perEv = steps / (curve.energy(n - 1) - first);
    if (!std::isfinite(perEv)) {
        return;
    }
    m_perEv = perEv;
    for (int i = 0; i < n; ++i) {
        m_energies.push_back(curve.energy(i));
        m_values.push_back(curve.value(i));
    }
    for (int step = 0, i = 0; step < steps; ++step) {
        const double e = first + step / m_perEv;
        while (i < n - 2 && curve.energy(i + 1) <= e) {
            ++i;
        }
        m_pairs.push_back(i);
    }
}

int CurveLookup::pairAround(double e) const {
    const int n = static_cast<int>(m_energies.size());
    if (e < m_energies.front()) {
        return 0;
    }
    if (e >= m_energies.back()) {
        return n - 2;
    }
    const double step = (e - m_energies.front()) * m_perEv;
    const double* const energies = m_energies.data();
    const int nearBy = m_pairs[static_cast<std::size_t>(
        std::min(step, static_cast<double>(m_pairs.size()) - 1.0))];
    return ::pairAround(
        n, e, [energies](int i) { return energies[i]; }, nearBy);
}

double CurveLookup::valueAt(double e) const {
    if (m_energies.empty() || std::isnan(e)) {
        return m_curve.valueAt(e);
    }
    const std::size_t low = static_cast<std::size_t>(pairAround(e));
    return interpolate(e, m_energies[low], m_values[low], m_energies[low + 1], m_values[low + 1]);
}
