#pragma once

#include <QString>
#include <algorithm>
#include <array>
#include <tuple>

#include "spectra/Constants.h"

/// The curves that are fitted below and above an edge: one struct a kind, which the fit of one
/// spectrum and that of packs of them both go by, and one row of what people call it.
///
/// A kind is a sum of coefficients times functions of the energy,
/// - `Terms`: how many; `FewestPoints`: spectra of fewer points get no curve,
/// - at(): two numbers of an energy (eV) that its functions are made of,
/// - functions(): its functions, in the order of the coefficients,
/// - value(): the curve, for one number or for several side by side (Real) at one energy or at as
///   many (At),
/// - isSettled(): whether so few points lie in the range that the least-squares system is not
/// asked;
///   then it sets the coefficients. right[k] is the sum of function k times value,
/// - Names: which of BgCurve::c0() .. c3() each coefficient is.
namespace background {

struct Abscissa {
    double x = 0.0;
    double z = 0.0;
};

/// slope E + constant.
struct Simple {
    static constexpr int Terms = 2;
    static constexpr int FewestPoints = 3;
    static constexpr int Names[Terms] = {3, 0};

    static Abscissa at(double e) { return {e, 0.0}; }
    static void functions(const Abscissa& at, double* f) {
        f[0] = at.x;
        f[1] = 1.0;
    }
    template <typename Real, typename At>
    [[gnu::always_inline]] static void value(const Real* c, const At& x, const At&, Real& y) {
        y = c[1] + c[0] * x;
    }
    /// One point gives its value, none gives 0.
    static bool isSettled(int points, const double* right, double* c) {
        if (points < 2) {
            c[0] = 0.0;
            c[1] = right[1];
        }
        return points < 2;
    }
};

/// c0 + c1 lambda^3 + c2 lambda^4 with lambda = Hc / E in angstrom (the Victreen form). Fewer than
/// three points in the range make the system singular, whose solution is then arbitrary.
struct Victreen {
    static constexpr int Terms = 3;
    static constexpr int FewestPoints = 4;
    static constexpr int Names[Terms] = {0, 1, 2};

    static Abscissa at(double e) {
        const double lambda = Hc / e;
        return {lambda, lambda * lambda * lambda};
    }
    static void functions(const Abscissa& at, double* f) {
        f[0] = 1.0;
        f[1] = at.z;
        f[2] = at.z * at.x;
    }
    template <typename Real, typename At>
    [[gnu::always_inline]] static void value(const Real* c, const At& x, const At& z, Real& y) {
        y = c[0] + (c[2] * x + c[1]) * z;
    }
    static bool isSettled(int, const double*, double*) { return false; }
};

/// All kinds; the number of a kind is its place.
using Kinds = std::tuple<Simple, Victreen>;
constexpr int Count = static_cast<int>(std::tuple_size_v<Kinds>);
constexpr int MaxTerms =
    std::apply([](auto... kind) { return std::max({decltype(kind)::Terms...}); }, Kinds());

/// So many points are enough for every kind.
constexpr int FewestPointsOfAll =
    std::apply([](auto... kind) { return std::max({decltype(kind)::FewestPoints...}); }, Kinds());

/// The kind of a background type: numbers that are none count as Victreen.
constexpr int kindOf(int type) {
    return type >= 0 && type < Count ? type : 1;
}

/// Calls f with the struct of a kind.
template <typename Function>
void visit(int kind, Function f) {
    int i = 0;
    std::apply([&](auto... each) { ((i++ == kind ? f(each) : void()), ...); }, Kinds());
}

struct Row {
    const char* title;
    const char* batchWord;  ///< in capitals; empty: what is no other kind's
};
const std::array<Row, Count>& rows();

/// The kind that the last word of a reference's batch line asks for: that of its word; nothing or
/// another number above 0 is Victreen, all else a straight line.
int fromBatchWord(const QString& word);
/// A word that asks for the kind there.
QString batchWordOf(int kind);

}  // namespace background
