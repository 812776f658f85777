#pragma once

#include <cstring>
#include <limits>

/// ln(x) - extra ln 2 of positive, finite and not subnormal numbers; extra is a whole number.
template <typename Real, typename Bits>
[[gnu::always_inline]] inline void logarithmOfNormal(const Real& x, const Real& extra, Real& ln) {
    // Adding this to the bits of a number carries into its exponent from sqrt(2) on.
    constexpr unsigned long long One = 0x3FF0000000000000;
    constexpr unsigned long long RootOfHalf = 0x3FE6A09E00000000;
    constexpr unsigned long long Mantissa = 0x000FFFFFFFFFFFFF;
    constexpr unsigned long long TwoTo52 = 0x4330000000000000;
    constexpr double Ln2High = 0x1.62e42fefa38p-1;  // times any exponent: exact
    constexpr double Ln2Low = 0x1.ef35793c7673p-45;

    Bits bits;
    std::memcpy(&bits, &x, sizeof bits);
    bits += One - RootOfHalf;
    const Bits exponentBits = (bits >> 52) | TwoTo52;
    const Bits mantissaBits = (bits & Mantissa) + RootOfHalf;
    Real k;
    Real m;
    std::memcpy(&k, &exponentBits, sizeof k);
    std::memcpy(&m, &mantissaBits, sizeof m);
    k = k - (0x1p52 + 1023.0) - extra;

    const Real f = m - 1.0;
    const Real s = f / (2.0 + f);
    const Real z = s * s;
    // In pairs: each step of a single chain would wait for the one before.
    const Real z2 = z * z;
    const Real r01 = 0x1.55555555555d6p-1 + z * 0x1.999999996e3d6p-2;
    const Real r23 = 0x1.2492494f0603dp-2 + z * 0x1.c71c48bbac40fp-3;
    const Real r45 = 0x1.7467f6103bf7bp-3 + z * 0x1.397937675f7b5p-3;
    const Real r = z * (r01 + z2 * (r23 + z2 * (r45 + z2 * 0x1.307ffc23ea06ap-3)));
    const Real half = 0.5 * f * f;
    ln = k * Ln2High - ((half - (s * (half + r) + k * Ln2Low)) - f);
}

/// Natural logarithm for one number or for several side by side, with the same bits for both: Real
/// is double or a vector of doubles, Bits the unsigned 64-bit integers of the same number. The
/// error stays below one unit in the last place. Nothing in it depends on the machine: additions,
/// multiplications and one division, each rounded for itself.
///
/// ln(x) = k ln 2 + ln(1 + f) with x = 2^k (1 + f) and 1 + f between sqrt(1/2) and sqrt(2). With
/// s = f / (2 + f), ln(1 + f) = ln((1 + s) / (1 - s)) = 2 s + s R(s^2); since 2 s = f - s f and
/// s f = f^2 / 2 - s f^2 / 2, this is f - (f^2 / 2 - s (f^2 / 2 + R)), whose leading term carries
/// no rounding error. R is a polynomial of minimal largest error (2.4e-19 in s R).
///
/// Puts it into ln: a vector returned would depend on the caller's units. 0 gives minus infinity,
/// infinity itself; negative numbers have no meaning here, and what is not a number stays so.
template <typename Real, typename Bits>
[[gnu::always_inline]] inline void logarithmOf(const Real& x, Real& ln) {
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    constexpr double SmallestNormal = std::numeric_limits<double>::min();
    const Real none = x - x;  // zeros of the right kind
    const Real normal = x < SmallestNormal ? x * 0x1p54 : x;
    const Real extra = x < SmallestNormal ? none + 54.0 : none;
    Real result;
    logarithmOfNormal<Real, Bits>(normal, extra, result);
    const Real orInfinite = x < Infinity ? result : x;
    ln = x == 0.0 ? none - Infinity : orInfinite;
}

/// ln(x) of one number.
inline double logarithm(double x) {
    double ln;
    logarithmOf<double, unsigned long long>(x, ln);
    return ln;
}
