#include "fitting/CountingErrors.h"

#include <algorithm>
#include <cmath>
#include <limits>

using lanes::Count;

namespace {

constexpr double Blank = std::numeric_limits<double>::quiet_NaN();

double finiteOr(double value) {
    return std::isfinite(value) ? value : Blank;
}

/// Of a variance that rounding may have put below 0.
double sigma(double variance) {
    return finiteOr(std::sqrt(variance < 0.0 ? 0.0 : variance));
}

}  // namespace

CountingErrors::CountingErrors(const std::vector<double>& energies, const FitRule& rule,
                               int references, lanes::Units units)
    : m_rule(rule),
      m_places(references, true),
      m_hasLines(rule.method == FitRule::Lcf),
      m_kernel(lanes::errorKernel(units)),
      m_functions(background::kindOf(rule.sample.background), energies),
      m_perSpan(energies.size() * Count),
      m_variance(energies.size() * Count),
      m_perI0(energies.size() * Count),
      m_own(static_cast<std::size_t>(references) * Count),
      m_withJump(static_cast<std::size_t>(references) * Count) {
    m_lines.terms = m_hasLines ? m_functions.terms() : 0;
    m_lines.functions = m_functions.values();
}

void CountingErrors::setLines(const Pack& pack) {
    const int terms = m_functions.terms();
    for (int side = 0; side < 2; ++side) {
        const lanes::Range& range = pack.line[side];
        m_lines.range[side] = range;
        for (int l = 0; l < Count; ++l) {
            const double* const inverse = m_functions.inverse(range.first[l], range.end[l]);
            for (int t = 0; t < terms * terms; ++t) {
                m_lines.inverse[side][t * Count + l] = inverse[t];
            }
        }
    }
    for (int l = 0; l < Count; ++l) {
        double phi[background::MaxTerms];
        m_functions.at(pack.midE[l], phi);
        for (int t = 0; t < terms; ++t) {
            m_lines.middle[t * Count + l] = pack.midE[l] == 0.0 ? Blank : phi[t];
        }
    }
}

void CountingErrors::evaluate(const Pack& pack, int count, double* results) {
    if (m_hasLines) {
        setLines(pack);
    }
    const lanes::ErrorSpace space{m_perSpan.data(), m_variance.data(), m_perI0.data()};
    m_kernel(pack.fits, m_lines, space,
             {m_chi2, m_rest, m_square, m_own.data(), m_withJump.data(), m_jump});
    for (int l = 0; l < count; ++l) {
        finish(pack, l, results + static_cast<std::ptrdiff_t>(l) * m_places.count());
    }
}

void CountingErrors::finish(const Pack& pack, int l, double* values) const {
    double sum = 0.0;
    for (int r = 0; r < m_places.references; ++r) {
        sum += values[m_places.ratio(r)];
    }
    const bool isDetermined = pack.freedom[l] > 0;
    const double chi2 = isDetermined ? m_chi2[l] / pack.freedom[l] : Blank;
    values[m_places.r()] = isDetermined ? finiteOr(m_rest[l] / m_square[l]) : Blank;
    values[m_places.chi2Reduced()] = finiteOr(chi2);
    values[m_places.sum()] = finiteOr(sum);
    finishErrors(pack, l, chi2, values);
}

/// A coefficient that a constraint gives, alone or together with the others held at 0.
bool CountingErrors::isHeld(const Pack& pack, int l, int r) const {
    return r < 32 && ((pack.held[l] >> r) & 1U) != 0;
}

void CountingErrors::finishErrors(const Pack& pack, int l, double chi2, double* values) const {
    const int leading = pack.fits.basis.stride - m_places.references;
    const auto coefficient = [&](int r) {
        return pack.fits.coefficients[(leading + r) * Count + l];
    };
    int free = 0;
    double jump = 0.0;
    for (int r = 0; r < m_places.references; ++r) {
        free += isHeld(pack, l, r) ? 0 : 1;
        jump += coefficient(r);
    }
    const bool hasSum = m_hasLines && (m_rule.constraints == FitRule::Constraints::Sum1 ||
                                       m_rule.constraints == FitRule::Constraints::Both);
    const bool isGiven = hasSum && free == 1;  // that of the only free one
    if (m_hasLines) {
        jump = pack.midE[l] == 0.0 ? Blank : pack.dMut[l];
    }
    const double perJump = jump > 0.0 ? 1.0 / jump : Blank;
    const double ofJump = free > 0 || m_hasLines ? m_jump[l] : Blank;
    values[m_places.totalJump()] = finiteOr(jump);
    values[m_places.totalJumpError()] = sigma(ofJump * chi2);
    for (int r = 0; r < m_places.references; ++r) {
        const bool held = isHeld(pack, l, r);
        const double c = coefficient(r);
        const double own = held ? Blank : m_own[static_cast<std::size_t>(r * Count + l)];
        const double withJump = m_withJump[static_cast<std::size_t>(r * Count + l)];
        const double ratio = c * perJump;
        const double ofDMut =
            m_hasLines ? jump * jump * own + 2.0 * jump * c * withJump + c * c * ofJump : own;
        const double ofRatio =
            m_hasLines
                ? (isGiven ? Blank : own)
                : (own - 2.0 * ratio * withJump + ratio * ratio * ofJump) * (perJump * perJump);
        values[m_places.ratioError(r)] = sigma(ofRatio * chi2);
        values[m_places.dMutError(r)] = sigma(ofDMut * chi2);
    }
}
