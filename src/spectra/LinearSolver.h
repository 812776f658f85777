#pragma once

#include <vector>

/// LU decomposition with partial pivoting of a small dense matrix (textbook Doolittle form, rows
/// exchanged through a permutation). A pivot that is exactly 0 is replaced by 1.0, so that a
/// singular system has some solution instead of an error; NaN runs through.
class LuDecomposition {
  public:
    LuDecomposition() = default;

    /// Decomposes the n x n matrix given row by row.
    void decompose(const double* a, int n);

    /// Solves A x = b for the matrix decomposed last; x may be b.
    void solve(const double* b, double* x) const;

    int size() const { return m_n; }

  private:
    double& at(int row, int column) {
        return m_lu[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_n) +
                    static_cast<std::size_t>(column)];
    }
    double at(int row, int column) const {
        return const_cast<LuDecomposition*>(this)->at(row, column);
    }

    int m_n = 0;
    std::vector<double> m_lu;  // L below the diagonal, U on and above it, rows in pivot order
    std::vector<int> m_row;    // m_row[k]: row of the matrix that became row k
    mutable std::vector<double> m_work;
};

/// Decomposes and solves in one go.
void solveLinear(const double* a, const double* b, int n, double* x);
