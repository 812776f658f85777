#include "fitting/LinearFit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

/// Those of the rule that the method has.
FitRule::Constraints constraintsOf(const FitRule& rule) {
    using Constraints = FitRule::Constraints;
    const bool hasSum =
        rule.constraints == Constraints::Sum1 || rule.constraints == Constraints::Both;
    if (rule.method == FitRule::Lcf || !hasSum) {
        return rule.constraints;
    }
    return rule.constraints == Constraints::Both ? Constraints::Nonnegative : Constraints::None;
}

/// Basis functions that belong to no reference.
int leadingOf(const FitRule& rule) {
    return rule.method == FitRule::Mlcf ? 2 : 0;
}

}  // namespace

LinearFit::LinearFit(QVector<XafsSpectrum> references, const FitRule& rule)
    : m_references(std::move(references)),
      m_rule(rule),
      m_solver(constraintsOf(rule), leadingOf(rule)) {
    for (const XafsSpectrum& s : std::as_const(m_references)) {
        if (m_rule.referenceScale == FitRule::ReferenceScale::None) {
            Spectrum values(static_cast<const Spectrum&>(s));  // its points alone
            values.setShiftOn(false);  // as a normalised series, which is moved as a whole
            m_drawnSeries.emplace_back(s, values);
            m_basisSeries.emplace_back(s, values);
            continue;
        }
        m_drawnSeries.emplace_back(s, s.doubleNormalizedPreBase());
        m_basisSeries.emplace_back(
            s, m_rule.method == Mlcf ? s.normalized() : s.doubleNormalizedPreBase());
    }
}

int LinearFit::coefficientCount() const {
    return referenceCount() + leadingOf(m_rule);
}

void LinearFit::commonRange(double* from, double* to) const {
    *from = 0.0;
    *to = 1e100;
    for (const XafsSpectrum& s : m_references) {
        *from = std::max(*from, s.energy(0));
        *to = std::min(*to, s.energy(s.size() - 1));
    }
}

std::vector<lanes::Polyline> LinearFit::basisCurves() const {
    std::vector<lanes::Polyline> curves;
    for (const ReferenceSeries& series : m_basisSeries) {
        lanes::Polyline line = series.curve.polyline();
        if (line.count == 0) {
            return {};
        }
        line.shifts[0] = series.referenceIsShifted ? series.referenceShift : 0.0;
        line.shifts[1] = series.isShifted ? series.shift : 0.0;
        curves.push_back(line);
    }
    return curves;
}

void LinearFit::prepare(const std::vector<double>& energies) {
    const std::size_t size = energies.size();
    if (size > 0 && m_allEnergies == energies) {
        return;
    }
    m_allEnergies = energies;

    m_curveValid = false;
    double from = 0.0;
    double to = 0.0;
    commonRange(&from, &to);
    m_energies.clear();
    m_points.clear();
    m_basis.clear();
    for (std::size_t k = 0; k < size; ++k) {
        const double e = m_allEnergies[k];
        if (e < from || e > to) {
            continue;
        }
        m_energies.push_back(e);
        m_points.push_back(static_cast<int>(k));
        if (m_rule.method == Mlcf) {
            m_basis.push_back(1.0);
            m_basis.push_back(e);
        }
        for (const ReferenceSeries& series : m_basisSeries) {
            m_basis.push_back(series.at(e));
        }
    }

    const auto n = static_cast<std::size_t>(coefficientCount());
    m_normal.assign(n * n, 0.0);
    for (const double* f = m_basis.data(); f != m_basis.data() + m_energies.size() * n; f += n) {
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j <= i; ++j) {
                m_normal[i * n + j] += f[i] * f[j];
            }
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            m_normal[j * n + i] = m_normal[i * n + j];
        }
    }
    m_solver.reset(m_normal.data(), static_cast<int>(n), static_cast<int>(m_points.size()));
    for (Response& response : m_responses) {
        response.isMade = false;
    }
}

const std::vector<double>& LinearFit::response(unsigned held) {
    if (m_responses.size() <= held) {
        m_responses.resize(held + 1);
    }
    Response& response = m_responses[held];
    if (response.isMade) {
        return response.rows;
    }
    response.isMade = true;
    const auto n = static_cast<std::size_t>(m_solver.size());
    const auto leading = static_cast<std::size_t>(leadingOf(m_rule));
    const auto stride = static_cast<std::size_t>(responseStride());
    const double* const inverse = m_solver.inverse(held);
    response.rows.assign(m_points.size() * stride, std::numeric_limits<double>::quiet_NaN());
    for (std::size_t p = 0; inverse != nullptr && p < m_points.size(); ++p) {
        const double* const f = &m_basis[p * n];
        double* const row = &response.rows[p * stride];
        double all = 0.0;
        for (std::size_t r = leading; r < n; ++r) {
            double sum = 0.0;
            for (std::size_t j = 0; j < n; ++j) {
                sum += inverse[r * n + j] * f[j];
            }
            row[r - leading] = sum;
            all += sum;
        }
        if (stride > n - leading) {
            row[n - leading] = all;
        }
    }
    return response.rows;
}

int LinearFit::freedom(unsigned held) {
    if (m_solver.inverse(held) == nullptr) {
        return 0;
    }
    return static_cast<int>(m_points.size()) - m_solver.parameters(held);
}

void LinearFit::fit(const XafsSpectrum& sample) {
    if (m_curveType != sample.backgroundType()) {
        m_curveType = sample.backgroundType();
        m_curveValid = false;
    }
    m_given.resize(static_cast<std::size_t>(sample.size()));
    for (std::size_t k = 0; k < m_given.size(); ++k) {
        m_given[k] = sample.correctedEnergy(static_cast<int>(k));
    }
    prepare(m_given);

    const std::size_t n = static_cast<std::size_t>(m_solver.size());
    m_right.assign(n, 0.0);
    std::vector<double>& right = m_right;
    const Spectrum& normalised = sample.doubleNormalizedPreBase();
    const double* f = m_basis.data();
    for (int k : m_points) {
        const double y = m_rule.method == Mlcf   ? sample.value(k)
                         : k < normalised.size() ? normalised.value(k)
                                                 : 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            right[i] += f[i] * y;
        }
        f += n;
    }
    m_held = m_solver.solve(right.data());
    m_ratios.resize(static_cast<std::size_t>(m_references.size()));
    m_dMuts.resize(m_ratios.size());
    shares(right.data(), sample.dMut(), m_ratios.data(), m_dMuts.data());
}

void LinearFit::shares(const double* coefficients, double edgeJump, double* ratios,
                       double* dMuts) const {
    const int n = referenceCount();
    if (m_rule.method == Lcf) {
        const double jump = std::fmax(0.0, edgeJump);
        for (int i = 0; i < n; ++i) {
            ratios[i] = coefficients[i];
            dMuts[i] = coefficients[i] * jump;
        }
        return;
    }
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        const double c = coefficients[i + 2];
        sum += c;
        dMuts[i] = c < 0.0 ? 0.0 : c;
    }
    const double divisor = std::fmax(0.0, sum);
    for (int i = 0; i < n; ++i) {
        ratios[i] = dMuts[i] / divisor;
    }
}

const XafsSpectrum& LinearFit::fittedCurve(const std::vector<double>& shares) {
    if (m_curveValid && shares == m_curveShares) {
        return m_curve;
    }
    Spectrum points;
    points.assignWith(static_cast<int>(m_energies.size()), [&](Spoint* out) {
        for (std::size_t k = 0; k < m_energies.size(); ++k) {
            double value = 0.0;
            for (std::size_t i = 0; i < shares.size(); ++i) {
                value += m_drawnSeries[i].at(m_energies[k]) * shares[i];
            }
            out[k] = {m_energies[k], value};
        }
    });
    Normalisation rule = m_rule.sample;
    rule.background = m_curveType;
    m_curve = XafsSpectrum(points, rule, 0.0);
    m_curveShares = shares;
    m_curveValid = true;
    return m_curve;
}
