#include "spectra/LinearSolver.h"

#include <cmath>
#include <numeric>
#include <utility>

void LuDecomposition::decompose(const double* a, int n) {
    m_n = n;
    const std::size_t size = static_cast<std::size_t>(n);
    m_lu.assign(a, a + size * size);
    m_row.resize(size);
    m_work.resize(size);
    std::iota(m_row.begin(), m_row.end(), 0);
    for (int k = 0; k < n; ++k) {
        // The first of equal candidates wins; NaN never does, so that row k stays the choice of a
        // column without a number.
        int pivotRow = k;
        double largest = -1e300;
        for (int i = k; i < n; ++i) {
            const double candidate = std::abs(at(i, k));
            if (candidate > largest) {
                largest = candidate;
                pivotRow = i;
            }
        }
        if (pivotRow != k) {
            std::swap(m_row[static_cast<std::size_t>(k)],
                      m_row[static_cast<std::size_t>(pivotRow)]);
            for (int j = 0; j < n; ++j) {
                std::swap(at(k, j), at(pivotRow, j));
            }
        }
        if (at(k, k) == 0.0) {
            at(k, k) = 1.0;
        }
        const double pivot = at(k, k);
        for (int i = k + 1; i < n; ++i) {
            const double multiplier = at(i, k) / pivot;
            at(i, k) = multiplier;
            for (int j = k + 1; j < n; ++j) {
                at(i, j) -= multiplier * at(k, j);
            }
        }
    }
}

void LuDecomposition::solve(const double* b, double* x) const {
    for (int i = 0; i < m_n; ++i) {
        double z = b[m_row[static_cast<std::size_t>(i)]];
        for (int j = 0; j < i; ++j) {
            z -= at(i, j) * m_work[static_cast<std::size_t>(j)];
        }
        m_work[static_cast<std::size_t>(i)] = z;
    }
    for (int i = m_n - 1; i >= 0; --i) {
        double c = m_work[static_cast<std::size_t>(i)];
        for (int j = i + 1; j < m_n; ++j) {
            c -= at(i, j) * x[j];
        }
        x[i] = c / at(i, i);
    }
}

void solveLinear(const double* a, const double* b, int n, double* x) {
    LuDecomposition lu;
    lu.decompose(a, n);
    lu.solve(b, x);
}
