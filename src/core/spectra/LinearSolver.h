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

    /// Solves A x = b for the matrix decomposed last; x may be b. Several threads may solve with
    /// one decomposition at a time.
    void solve(const double* b, double* x) const;

    int size() const { return m_n; }
    /// As substitute() takes them.
    const double* lu() const { return m_lu.data(); }
    const int* row() const { return m_row.data(); }

  private:
    int m_n = 0;
    std::vector<double> m_lu;  // L below the diagonal, U on and above it, rows in pivot order
    std::vector<int> m_row;    // m_row[k]: row of the matrix that became row k
};

/// Decomposes and solves in one go; x must not overlap b.
void solveLinear(const double* a, const double* b, int n, double* x);

// The two steps on plain memory, for those who keep many small decompositions.

/// Decomposes the n x n matrix at lu in place; row gets the matrix's rows in pivot order.
void decomposeInPlace(double* lu, int* row, int n);
/// Forward and back substitution; x must not be b.
void substitute(const double* lu, const int* row, int n, const double* b, double* x);

/// Inverse of a symmetric, positive definite n x n matrix, such as that of normal equations. False,
/// with nothing written, where it is singular: where in the Cholesky decomposition of the matrix,
/// scaled to ones on its diagonal, a squared pivot is below 1e-12, so that a column is a sum of
/// those before it but for rounding.
bool invertPositive(const double* a, int n, double* inverse);
