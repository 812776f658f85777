#include "spectra/LaneNormaliser.h"

#include <QDebug>
#include <algorithm>
#include <cmath>

#include "base/Numbers.h"
#include "spectra/Constants.h"
#include "spectra/LinearSolver.h"
#include "spectra/XafsSpectrum.h"

using lanes::Count;

namespace {

constexpr double EdgeFraction = 0.5;

}  // namespace

bool LaneNormaliser::suits(const std::vector<double>& energies) {
    for (std::size_t i = 0; i < energies.size(); ++i) {
        if (!std::isfinite(energies[i]) || (i > 0 && !(energies[i - 1] < energies[i]))) {
            return false;
        }
    }
    return energies.size() >= 4;
}

LaneNormaliser::LaneNormaliser(const std::vector<double>& energies, int backgroundType,
                               lanes::Units units)
    : m_victreen(backgroundType != XafsSpectrum::Simple),
      m_terms(m_victreen ? 3 : 2),
      m_kernels(lanes::kernels(units)),
      m_energies(energies),
      m_preparedAt(energies.size() + 1) {
    const XafsSpectrum fresh;
    m_preStart = fresh.preStart();
    m_preEnd = fresh.preEnd();
    m_postStart = fresh.postStart();
    m_postEnd = fresh.postEnd();
    for (double e : m_energies) {
        if (!m_victreen) {
            m_weights.insert(m_weights.end(), {e, 1.0});
            continue;
        }
        const double lambda = Hc / e;
        const double cube = lambda * lambda * lambda;
        m_lambdas.push_back(lambda);
        m_cubes.push_back(cube);
        m_weights.insert(m_weights.end(), {1.0, cube, cube * lambda});
    }
    m_abscissa = m_victreen ? lanes::Abscissa{m_lambdas.data(), m_cubes.data()}
                            : lanes::Abscissa{m_energies.data(), nullptr};
}

int LaneNormaliser::lowerBound(double e, int hint) const {
    const int n = static_cast<int>(m_energies.size());
    const auto at = [this](int i) { return m_energies[static_cast<std::size_t>(i)]; };
    if ((hint == 0 || at(hint - 1) < e) && (hint == n || !(at(hint) < e))) {
        return hint;
    }
    return static_cast<int>(std::lower_bound(m_energies.begin(), m_energies.end(), e) -
                            m_energies.begin());
}

int LaneNormaliser::prepared(int first, int end) {
    std::vector<int>& ofFirst = m_preparedAt[static_cast<std::size_t>(first)];
    if (ofFirst.empty()) {
        ofFirst.assign(m_energies.size() + 1, -1);
    }
    int& index = ofFirst[static_cast<std::size_t>(end)];
    if (index >= 0) {
        return index;
    }
    index = static_cast<int>(m_prepared.size());
    Prepared made;
    made.points = end - first;
    double n = 0.0;
    if (m_victreen) {
        double s3 = 0.0, s4 = 0.0, s6 = 0.0, s7 = 0.0, s8 = 0.0;
        for (std::size_t i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(end);
             ++i) {
            const double l3 = m_weights[3 * i + 1];
            const double l4 = m_weights[3 * i + 2];
            n += 1.0;
            s3 += l3;
            s4 += l4;
            s6 += l3 * l3;
            s7 += l3 * l4;
            s8 += l4 * l4;
        }
        const double a[] = {n, s3, s4, s3, s6, s7, s4, s7, s8};
        std::copy_n(a, 9, made.lu);
    } else {
        double sumE = 0.0, sumEE = 0.0;
        for (std::size_t i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(end);
             ++i) {
            const double e = m_energies[i];
            n += 1.0;
            sumE += e;
            sumEE += e * e;
        }
        const double a[] = {sumEE, sumE, sumE, n};
        std::copy_n(a, 4, made.lu);
    }
    decomposeInPlace(made.lu, made.row, m_terms);
    m_prepared.push_back(made);
    return index;
}

void LaneNormaliser::solve(const Prepared& prepared, const double* sums, int l,
                           lanes::Curve* curve) const {
    double b[3];
    double x[3] = {};
    for (int k = 0; k < m_terms; ++k) {
        b[k] = sums[k * Count + l];
    }
    if (!m_victreen && prepared.points < 2) {
        curve->c0[l] = prepared.points == 1 ? b[1] : 0.0;
        curve->c1[l] = 0.0;
        return;
    }
    substitute(prepared.lu, prepared.row, m_terms, b, x);
    curve->c0[l] = m_victreen ? x[0] : x[1];
    curve->c1[l] = m_victreen ? x[1] : x[0];
    curve->c2[l] = x[2];
}

void LaneNormaliser::fit(const double* mu, const double* edges, double start, double end,
                         lanes::Curve* curve) {
    lanes::Range range;
    int of[Count];
    for (int l = 0; l < Count; ++l) {
        range.first[l] = lowerBound(edges[l] + start, l > 0 ? range.first[l - 1] : 0);
        range.end[l] = lowerBound(edges[l] + end, l > 0 ? range.end[l - 1] : 0);
        range.end[l] = std::max(range.first[l], range.end[l]);
        of[l] = prepared(range.first[l], range.end[l]);
    }
    double sums[3 * Count];
    m_kernels.rangeSums(mu, m_weights.data(), m_terms, range, sums);
    for (int l = 0; l < Count; ++l) {
        solve(m_prepared[static_cast<std::size_t>(of[l])], sums, l, curve);
    }
}

void LaneNormaliser::normalise(const double* mu, int count) {
    const int n = static_cast<int>(m_energies.size());
    double edges[Count];
    m_kernels.risingEdge(mu, m_energies.data(), n, EdgeFraction, edges);
    fit(mu, edges, m_preStart, m_preEnd, &m_pre);
    fit(mu, edges, m_postStart, m_postEnd, &m_post);

    lanes::Range range;
    for (int l = 0; l < Count; ++l) {
        const double from = edges[l] + m_preEnd;
        int first = lowerBound(from, l > 0 ? range.first[l - 1] : 0);
        while (first < n && !(m_energies[static_cast<std::size_t>(first)] > from)) {
            ++first;
        }
        range.first[l] = first;
        range.end[l] =
            std::min(n - 1, lowerBound(edges[l] + m_postStart, l > 0 ? range.end[l - 1] : 0));
    }
    m_kernels.middle(mu, m_energies.data(), m_abscissa, m_pre, m_post, range, m_midE);
    for (int l = 0; l < Count; ++l) {
        const int pair = pairAround(m_midE[l]);
        m_dMut[l] =
            interpolatedAt(m_post, m_midE[l], pair, l) - interpolatedAt(m_pre, m_midE[l], pair, l);
        if (l < count && m_dMut[l] == 0.0) {
            qDebug() << "dMut_ is 0 in findMidEandDMut";
        }
    }
}

int LaneNormaliser::pairAround(double e) const {
    const double* const energies = m_energies.data();
    return ::pairAround(static_cast<int>(m_energies.size()), e,
                        [energies](int i) { return energies[i]; });
}

double LaneNormaliser::curveAt(const lanes::Curve& curve, int i, int l) const {
    const std::size_t point = static_cast<std::size_t>(i);
    return m_victreen
               ? curve.c0[l] + (curve.c2[l] * m_lambdas[point] + curve.c1[l]) * m_cubes[point]
               : curve.c0[l] + curve.c1[l] * m_energies[point];
}

double LaneNormaliser::interpolatedAt(const lanes::Curve& curve, double e, int pair, int l) const {
    const std::size_t low = static_cast<std::size_t>(pair);
    return interpolate(e, m_energies[low], curveAt(curve, pair, l), m_energies[low + 1],
                       curveAt(curve, pair + 1, l));
}

double LaneNormaliser::preAt(double e, int l) const {
    return interpolatedAt(m_pre, e, pairAround(e), l);
}

double LaneNormaliser::postAt(double e, int l) const {
    return interpolatedAt(m_post, e, pairAround(e), l);
}

void LaneNormaliser::doubleNormalised(const double* mu, const std::vector<int>& points,
                                      double* y) const {
    m_kernels.doubleNormalised(mu, m_abscissa, m_pre, m_post, points.data(),
                               static_cast<int>(points.size()), y);
}
