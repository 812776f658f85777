#pragma once

#include <vector>

#include "fitting/FitRule.h"
#include "spectra/LinearSolver.h"

/// Solves the normal equations F'F c = b of a least-squares fit with its coefficients held to
/// FitRule::Constraints, exactly: the coefficients that are not held at 0 solve the equations of
/// their own, and of all choices of what is held that leave none below 0 the one with the least
/// sum of squares is taken. It is found from the free fit down: where coefficients come out below
/// 0, at least one of them is 0 in the optimum (the problem is convex), so that only these need be
/// tried, and no choice whose sum of squares is above the best has a better one among its parts.
///
/// What depends on the basis alone is kept until the next reset(). For one thread.
class ConstrainedSolver {
  public:
    /// Of references; with more, a fit that must not go below 0 has no solution (NaN).
    static constexpr int MostReferences = 8;

    /// The first `leading` coefficients belong to no reference and stay free.
    ConstrainedSolver(FitRule::Constraints constraints, int leading);

    /// Another basis of n functions over so many points: F'F.
    void reset(const double* normal, int n, int points);

    int size() const { return m_n; }
    /// Whether c, number k of it at c[k * stride], is what solve() makes of a basis of n functions
    /// over so many points, when it solves the equations as they are.
    bool isMetBy(const double* c, int stride, int n, int points) const;
    /// The equations without constraints, decomposed.
    const LuDecomposition& decomposition() { return at(0).lu; }

    /// Turns b into c. Returns which references are held at 0, a bit each; with none held and no
    /// sum given, c is what LuDecomposition gives. No points: all 0.
    unsigned solve(double* right);

    /// The coefficients' dependence on b where those are held: (F'F)^-1 of the free ones, with
    /// zeros for the others and less what a given sum takes away; n x n. Null where F'F of the free
    /// ones is singular.
    const double* inverse(unsigned held);
    /// Free parameters there: coefficients not held, less one for a given sum.
    int parameters(unsigned held) const;

  private:
    struct Set {
        bool isDecomposed = false;
        bool isInverted = false;
        bool isSingular = false;
        std::vector<int> free;  // numbers of the coefficients
        LuDecomposition lu;
        std::vector<double> towardsSum;  // (F'F)^-1 times 1 for each reference
        double sumOfThese = 0.0;
        std::vector<double> inverse;
    };

    Set& at(unsigned held);
    void decompose(unsigned held, Set& set);
    void invert(Set& set);
    double objective(const double* c) const;
    unsigned negatives(const double* c) const;
    void solveWith(unsigned held, double* c);
    void search(unsigned held);

    bool m_isNonnegative;
    bool m_hasSum;
    int m_leading;
    int m_n = 0;
    int m_points = 0;
    std::vector<double> m_normal;
    std::vector<Set> m_sets;  // by what is held

    std::vector<double> m_right;  // b of the fit being solved
    std::vector<double> m_part;
    std::vector<double> m_trial;
    std::vector<bool> m_isTried;
    std::vector<double> m_best;
    double m_least = 0.0;
    unsigned m_bestHeld = 0;
};
