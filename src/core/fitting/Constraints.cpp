#include "fitting/Constraints.h"

#include <algorithm>
#include <limits>

using Constraints = FitRule::Constraints;

ConstrainedSolver::ConstrainedSolver(Constraints constraints, int leading)
    : m_isNonnegative(constraints == Constraints::Nonnegative || constraints == Constraints::Both),
      m_hasSum(constraints == Constraints::Sum1 || constraints == Constraints::Both),
      m_leading(leading) {}

void ConstrainedSolver::reset(const double* normal, int n, int points) {
    m_n = n;
    m_points = points;
    m_normal.assign(normal, normal + n * n);
    const int references = n - m_leading;
    const bool hasChoice = m_isNonnegative && references <= MostReferences;
    m_sets.resize(hasChoice ? std::size_t(1) << references : 1);
    for (Set& set : m_sets) {
        set.isDecomposed = false;
        set.isInverted = false;
    }
}

ConstrainedSolver::Set& ConstrainedSolver::at(unsigned held) {
    Set& set = m_sets[held];
    if (!set.isDecomposed) {
        decompose(held, set);
    }
    return set;
}

void ConstrainedSolver::decompose(unsigned held, Set& set) {
    set.isDecomposed = true;
    set.free.clear();
    for (int i = 0; i < m_n; ++i) {
        if (i < m_leading || i - m_leading >= 32 || ((held >> (i - m_leading)) & 1U) == 0) {
            set.free.push_back(i);
        }
    }
    m_part.clear();
    for (int i : set.free) {
        for (int j : set.free) {
            m_part.push_back(m_normal[static_cast<std::size_t>(i * m_n + j)]);
        }
    }
    set.lu.decompose(m_part.data(), static_cast<int>(set.free.size()));
    if (!m_hasSum) {
        return;
    }
    set.towardsSum.clear();
    for (int i : set.free) {
        set.towardsSum.push_back(i < m_leading ? 0.0 : 1.0);
    }
    set.lu.solve(set.towardsSum.data(), set.towardsSum.data());
    set.sumOfThese = 0.0;
    for (std::size_t k = 0; k < set.free.size(); ++k) {
        set.sumOfThese += set.free[k] < m_leading ? 0.0 : set.towardsSum[k];
    }
}

void ConstrainedSolver::invert(Set& set) {
    if (set.isInverted) {
        return;
    }
    set.isInverted = true;
    const std::size_t size = set.free.size();
    const auto n = static_cast<std::size_t>(m_n);
    m_part.clear();
    for (int i : set.free) {
        for (int j : set.free) {
            m_part.push_back(m_normal[static_cast<std::size_t>(i * m_n + j)]);
        }
    }
    set.isSingular = !invertPositive(m_part.data(), static_cast<int>(size), m_part.data());
    set.inverse.assign(n * n, 0.0);
    for (std::size_t k = 0; k < size && !set.isSingular; ++k) {
        for (std::size_t l = 0; l < size; ++l) {
            double value = m_part[k * size + l];
            if (m_hasSum) {
                value -= set.towardsSum[k] * set.towardsSum[l] / set.sumOfThese;
            }
            set.inverse[static_cast<std::size_t>(set.free[k]) * n +
                        static_cast<std::size_t>(set.free[l])] = value;
        }
    }
}

const double* ConstrainedSolver::inverse(unsigned held) {
    Set& set = at(held);
    invert(set);
    return set.isSingular ? nullptr : set.inverse.data();
}

int ConstrainedSolver::parameters(unsigned held) const {
    return static_cast<int>(m_sets[held].free.size()) - (m_hasSum ? 1 : 0);
}

void ConstrainedSolver::solveWith(unsigned held, double* c) {
    const Set& set = at(held);
    m_part.clear();
    for (int i : set.free) {
        m_part.push_back(m_right[static_cast<std::size_t>(i)]);
    }
    set.lu.solve(m_part.data(), m_part.data());
    double missing = 1.0;
    for (std::size_t k = 0; k < set.free.size(); ++k) {
        missing -= set.free[k] < m_leading ? 0.0 : m_part[k];
    }
    std::fill(c, c + m_n, 0.0);
    for (std::size_t k = 0; k < set.free.size(); ++k) {
        c[set.free[k]] =
            m_hasSum ? m_part[k] + set.towardsSum[k] * (missing / set.sumOfThese) : m_part[k];
    }
}

unsigned ConstrainedSolver::negatives(const double* c) const {
    unsigned bits = 0;
    for (int i = m_leading; i < m_n; ++i) {
        bits |= c[i] < 0.0 ? 1U << (i - m_leading) : 0U;
    }
    return bits;
}

/// The sum of squares, less that of y, halved.
double ConstrainedSolver::objective(const double* c) const {
    double sum = 0.0;
    for (int i = 0; i < m_n; ++i) {
        double product = 0.0;
        for (int j = 0; j < m_n; ++j) {
            product += m_normal[static_cast<std::size_t>(i * m_n + j)] * c[j];
        }
        sum += c[i] * (0.5 * product - m_right[static_cast<std::size_t>(i)]);
    }
    return sum;
}

void ConstrainedSolver::search(unsigned held) {
    const unsigned all = (1U << (m_n - m_leading)) - 1;
    if (m_isTried[held] || (m_hasSum && held == all)) {
        return;
    }
    m_isTried[held] = true;
    solveWith(held, m_trial.data());
    invert(m_sets[held]);
    const bool isSingular = m_sets[held].isSingular;
    const double value = objective(m_trial.data());
    unsigned next = negatives(m_trial.data());
    if (!isSingular && !(value < m_least)) {
        return;
    }
    if (next == 0 && value < m_least) {
        m_least = value;
        m_best = m_trial;
        m_bestHeld = held;
    }
    // One of many solutions says nothing about the others.
    next = isSingular ? all & ~held : next;
    for (int r = 0; next >> r != 0; ++r) {
        if (((next >> r) & 1U) != 0) {
            search(held | (1U << r));
        }
    }
}

bool ConstrainedSolver::isMetBy(const double* c, int stride, int n, int points) const {
    if (points == 0 || m_hasSum) {
        return false;
    }
    if (m_isNonnegative && n - m_leading > MostReferences) {
        return false;
    }
    for (int k = m_leading; m_isNonnegative && k < n; ++k) {
        if (c[k * stride] < 0.0) {
            return false;
        }
    }
    return true;
}

unsigned ConstrainedSolver::solve(double* right) {
    if (m_points == 0) {
        std::fill(right, right + m_n, 0.0);
        at(0);
        return 0;
    }
    if (!m_hasSum && !m_isNonnegative) {
        at(0).lu.solve(right, right);
        return 0;
    }
    m_right.assign(right, right + m_n);
    solveWith(0, right);
    if (m_isNonnegative && m_n - m_leading > MostReferences) {
        std::fill(right, right + m_n, std::numeric_limits<double>::quiet_NaN());
        return 0;
    }
    if (!m_isNonnegative || negatives(right) == 0) {
        return 0;
    }
    m_trial.resize(static_cast<std::size_t>(m_n));
    m_best.assign(right, right + m_n);
    m_isTried.assign(m_sets.size(), false);
    m_least = std::numeric_limits<double>::infinity();
    m_bestHeld = 0;
    search(0);
    std::copy(m_best.begin(), m_best.end(), right);
    return m_bestHeld;
}
