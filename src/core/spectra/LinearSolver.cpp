#include "spectra/LinearSolver.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

void decomposeInPlace(double* lu, int* row, int n) {
    std::iota(row, row + n, 0);
    for (int k = 0; k < n; ++k) {
        // The first of equal candidates wins; NaN never does, so that row k stays the choice of a
        // column without a number.
        int pivotRow = k;
        double largest = -1e300;
        for (int i = k; i < n; ++i) {
            const double candidate = std::abs(lu[i * n + k]);
            if (candidate > largest) {
                largest = candidate;
                pivotRow = i;
            }
        }
        if (pivotRow != k) {
            std::swap(row[k], row[pivotRow]);
            std::swap_ranges(lu + k * n, lu + (k + 1) * n, lu + pivotRow * n);
        }
        double& pivot = lu[k * n + k];
        if (pivot == 0.0) {
            pivot = 1.0;
        }
        for (int i = k + 1; i < n; ++i) {
            const double multiplier = lu[i * n + k] / pivot;
            lu[i * n + k] = multiplier;
            for (int j = k + 1; j < n; ++j) {
                lu[i * n + j] -= multiplier * lu[k * n + j];
            }
        }
    }
}

namespace {

[[gnu::always_inline]] inline void substituteIn(const double* lu, const int* row, int n,
                                                const double* b, double* x) {
    for (int i = 0; i < n; ++i) {
        double z = b[row[i]];
        for (int j = 0; j < i; ++j) {
            z -= lu[i * n + j] * x[j];
        }
        x[i] = z;
    }
    for (int i = n - 1; i >= 0; --i) {
        double c = x[i];
        for (int j = i + 1; j < n; ++j) {
            c -= lu[i * n + j] * x[j];
        }
        x[i] = c / lu[i * n + i];
    }
}

}  // namespace

void substitute(const double* lu, const int* row, int n, const double* b, double* x) {
    // Known sizes are unrolled: two or three unknowns are solved for every spectrum.
    if (n == 2) {
        substituteIn(lu, row, 2, b, x);
    } else if (n == 3) {
        substituteIn(lu, row, 3, b, x);
    } else {
        substituteIn(lu, row, n, b, x);
    }
}

void LuDecomposition::decompose(const double* a, int n) {
    m_n = n;
    const std::size_t size = static_cast<std::size_t>(n);
    m_lu.assign(a, a + size * size);
    m_row.resize(size);
    decomposeInPlace(m_lu.data(), m_row.data(), n);
}

void LuDecomposition::solve(const double* b, double* x) const {
    constexpr int Few = 16;
    double few[Few] = {};
    std::vector<double> many;
    if (b == x) {
        double* copy = few;
        if (m_n > Few) {
            many.resize(static_cast<std::size_t>(m_n));
            copy = many.data();
        }
        std::copy_n(b, m_n, copy);
        b = copy;
    }
    substitute(m_lu.data(), m_row.data(), m_n, b, x);
}

void solveLinear(const double* a, const double* b, int n, double* x) {
    // A spectrum needs two solutions of two or three unknowns: not worth an allocation.
    constexpr int Few = 4;
    if (n <= Few) {
        double lu[Few * Few];
        int row[Few];
        std::copy_n(a, n * n, lu);
        decomposeInPlace(lu, row, n);
        substitute(lu, row, n, b, x);
        return;
    }
    LuDecomposition lu;
    lu.decompose(a, n);
    lu.solve(b, x);
}

namespace {

/// Lower triangle of the scaled decomposition, with 1 / pivot on its diagonal.
bool decomposePositive(const double* a, const double* scale, int n, double* lower) {
    constexpr double LeastPivot = 1e-12;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j <= i; ++j) {
            double sum = a[i * n + j] * scale[i] * scale[j];
            for (int k = 0; k < j; ++k) {
                sum -= lower[i * n + k] * lower[j * n + k];
            }
            if (i == j) {
                if (!(sum >= LeastPivot)) {
                    return false;
                }
                lower[i * n + i] = 1.0 / std::sqrt(sum);
            } else {
                lower[i * n + j] = sum * lower[j * n + j];
            }
        }
    }
    return true;
}

}  // namespace

bool invertPositive(const double* a, int n, double* inverse) {
    constexpr int Few = 12;
    double few[Few * Few + Few] = {};
    std::vector<double> many;
    double* lower = few;
    if (n > Few) {
        many.resize(static_cast<std::size_t>(n) * static_cast<std::size_t>(n + 1));
        lower = many.data();
    }
    double* const scale = lower + n * n;
    for (int i = 0; i < n; ++i) {
        scale[i] = 1.0 / std::sqrt(a[i * n + i]);
        if (!std::isfinite(scale[i])) {
            return false;
        }
    }
    if (!decomposePositive(a, scale, n, lower)) {
        return false;
    }
    // The inverse of the triangle in its own place, then its transpose times itself.
    for (int j = 0; j < n; ++j) {
        for (int i = j + 1; i < n; ++i) {
            double sum = 0.0;
            for (int k = j; k < i; ++k) {
                sum -= lower[i * n + k] * lower[k * n + j];
            }
            lower[i * n + j] = sum * lower[i * n + i];
        }
    }
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j <= i; ++j) {
            double sum = 0.0;
            for (int k = i; k < n; ++k) {
                sum += lower[k * n + i] * lower[k * n + j];
            }
            inverse[i * n + j] = inverse[j * n + i] = sum * scale[i] * scale[j];
        }
    }
    return true;
}
