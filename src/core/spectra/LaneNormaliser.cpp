#include "spectra/LaneNormaliser.h"

#include <algorithm>
#include <cmath>

#include "base/Numbers.h"
#include "spectra/LinearSolver.h"
#include "spectra/XafsSpectrum.h"

using lanes::Count;

namespace {

constexpr double EdgeFraction = 0.5;

bool isShort(const lanes::Range& range, int l) {
    return range.end[l] - range.first[l] < BackgroundRanges::FewestPoints;
}

}  // namespace

bool LaneNormaliser::suits(const std::vector<double>& energies) {
    for (std::size_t i = 0; i < energies.size(); ++i) {
        if (!std::isfinite(energies[i]) || (i > 0 && !(energies[i - 1] < energies[i]))) {
            return false;
        }
    }
    return energies.size() >= static_cast<std::size_t>(background::FewestPointsOfAll);
}

LaneNormaliser::LaneNormaliser(const std::vector<double>& energies, const Normalisation& rule,
                               lanes::Units units)
    : m_kind(background::kindOf(rule.background)),
      m_rule(rule),
      m_kernels(lanes::kernels(units)),
      m_energies(energies),
      m_preparedAt(energies.size() + 1) {
    background::visit(m_kind, [this](auto kind) { tabulate<decltype(kind)>(); });
    m_abscissae = {m_kind, m_x.data(), m_z.data()};
    std::fill(std::begin(m_ofPre.of), std::end(m_ofPre.of), -1);
    std::fill(std::begin(m_ofPost.of), std::end(m_ofPost.of), -1);
}

template <typename Kind>
void LaneNormaliser::tabulate() {
    m_terms = Kind::Terms;
    for (double e : m_energies) {
        const background::Abscissa at = Kind::at(e);
        double f[Kind::Terms];
        Kind::functions(at, f);
        m_x.push_back(at.x);
        m_z.push_back(at.z);
        m_functions.insert(m_functions.end(), f, f + Kind::Terms);
    }
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
    const std::size_t terms = static_cast<std::size_t>(m_terms);
    for (int i = first; i < end; ++i) {
        const double* const f = &m_functions[static_cast<std::size_t>(i) * terms];
        for (std::size_t j = 0; j < terms; ++j) {
            for (std::size_t k = 0; k < terms; ++k) {
                made.lu[j * terms + k] += f[j] * f[k];
            }
        }
    }
    decomposeInPlace(made.lu, made.row, m_terms);
    m_prepared.push_back(made);
    return index;
}

void LaneNormaliser::solve(const double* sums, const Decomposed& decomposed,
                           lanes::Curve* curve) const {
    double right[background::MaxTerms * Count];
    for (int k = 0; k < m_terms; ++k) {
        for (int l = 0; l < Count; ++l) {
            right[k * Count + l] = sums[decomposed.row[k][l] * Count + l];
        }
    }
    m_kernels.substituteOwn(decomposed.lu, m_terms, right, curve->c[0]);
    background::visit(m_kind, [&](auto kind) {
        for (int l = 0; l < Count; ++l) {
            double own[background::MaxTerms] = {};
            double c[background::MaxTerms] = {};
            for (int k = 0; k < m_terms; ++k) {
                own[k] = sums[k * Count + l];
            }
            const int points = m_prepared[static_cast<std::size_t>(decomposed.of[l])].points;
            if (decltype(kind)::isSettled(points, own, c)) {
                for (int k = 0; k < m_terms; ++k) {
                    curve->c[k][l] = c[k];
                }
            }
        }
    });
}

void LaneNormaliser::fit(const double* mu, const double* edges, double start, double end,
                         lanes::Curve* curve, lanes::Range* fitted, Decomposed* decomposed) {
    lanes::Range& range = *fitted;
    for (int l = 0; l < Count; ++l) {
        range.first[l] = lowerBound(edges[l] + start, l > 0 ? range.first[l - 1] : 0);
        range.end[l] = lowerBound(edges[l] + end, l > 0 ? range.end[l - 1] : 0);
        range.end[l] = std::max(range.first[l], range.end[l]);
        const int of = prepared(range.first[l], range.end[l]);
        if (of == decomposed->of[l]) {
            continue;
        }
        decomposed->of[l] = of;
        const Prepared& made = m_prepared[static_cast<std::size_t>(of)];
        for (int k = 0; k < m_terms; ++k) {
            decomposed->row[k][l] = made.row[k];
        }
        for (int k = 0; k < m_terms * m_terms; ++k) {
            decomposed->lu[k * Count + l] = made.lu[k];
        }
    }
    double sums[background::MaxTerms * Count];
    m_kernels.rangeSums(mu, m_kind, m_functions.data(), range, sums);
    solve(sums, *decomposed, curve);
}

void LaneNormaliser::findEdges(const double* mu, int count, const double* corrections,
                               double* edges) const {
    if (!m_rule.e0) {
        m_kernels.risingEdge(mu, m_energies.data(), static_cast<int>(m_energies.size()),
                             EdgeFraction, edges);
        return;
    }
    for (int l = 0; l < Count; ++l) {
        edges[l] = *m_rule.e0 + (corrections != nullptr && l < count ? corrections[l] : 0.0);
    }
}

void LaneNormaliser::findMiddle(const double* mu, const double* edges) {
    if (m_rule.e0) {
        std::copy_n(edges, Count, m_midE);
        return;
    }
    const int n = static_cast<int>(m_energies.size());
    lanes::Range range;
    for (int l = 0; l < Count; ++l) {
        const double from = edges[l] + m_rule.ranges.preEnd;
        int first = lowerBound(from, l > 0 ? range.first[l - 1] : 0);
        while (first < n && !(m_energies[static_cast<std::size_t>(first)] > from)) {
            ++first;
        }
        range.first[l] = first;
        range.end[l] = std::min(
            n - 1, lowerBound(edges[l] + m_rule.ranges.postStart, l > 0 ? range.end[l - 1] : 0));
    }
    m_kernels.middle(mu, m_energies.data(), m_abscissae, m_pre, m_post, range, m_midE);
}

void LaneNormaliser::findJumps() {
    lanes::Bracket bracket;
    for (int l = 0; l < Count; ++l) {
        const auto pair = static_cast<std::size_t>(pairAround(m_midE[l]));
        bracket.at[l] = m_midE[l];
        for (std::size_t side = 0; side < 2; ++side) {
            bracket.e[side][l] = m_energies[pair + side];
            bracket.x[side][l] = m_x[pair + side];
            bracket.z[side][l] = m_z[pair + side];
        }
    }
    m_kernels.jump(m_kind, bracket, m_pre, m_post, m_dMut);
}

void LaneNormaliser::normalise(const double* mu, int count, const double* corrections) {
    double edges[Count];
    findEdges(mu, count, corrections, edges);
    fit(mu, edges, m_rule.ranges.preStart, m_rule.ranges.preEnd, &m_pre, &m_preRange, &m_ofPre);
    fit(mu, edges, m_rule.ranges.postStart, m_rule.ranges.postEnd, &m_post, &m_postRange,
        &m_ofPost);
    findMiddle(mu, edges);
    findJumps();
    m_withoutJump = 0;
    m_withoutLines = 0;
    for (int l = 0; l < count; ++l) {
        m_withoutJump |= m_dMut[l] == 0.0 ? 1u << l : 0u;
        m_withoutLines |= isShort(m_preRange, l) || isShort(m_postRange, l) ? 1u << l : 0u;
    }
}

int LaneNormaliser::pairAround(double e) const {
    const double* const energies = m_energies.data();
    m_nearPair = ::pairAround(
        static_cast<int>(m_energies.size()), e, [energies](int i) { return energies[i]; },
        m_nearPair);
    return m_nearPair;
}

double LaneNormaliser::curveAt(const lanes::Curve& curve, int i, int l) const {
    const std::size_t point = static_cast<std::size_t>(i);
    double c[background::MaxTerms] = {};
    for (int k = 0; k < m_terms; ++k) {
        c[k] = curve.c[k][l];
    }
    double y = 0.0;
    background::visit(m_kind,
                      [&](auto kind) { decltype(kind)::value(c, m_x[point], m_z[point], y); });
    return y;
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

void LaneNormaliser::doubleNormalised(const double* mu, const std::vector<int>& points, double* y,
                                      double* span) const {
    m_kernels.doubleNormalised(mu, m_abscissae, m_pre, m_post, points.data(),
                               static_cast<int>(points.size()), y, span);
}
