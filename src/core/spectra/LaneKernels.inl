// The kernels of Lanes.h for one width of vector: included once for each, inside a namespace that
// has `Width`, the doubles of one vector, and any(mask), and where the compiler may use the units
// for it. What is included before must bring every header that this needs.

using Real = double __attribute__((vector_size(Width * 8)));
using Bits = unsigned long long __attribute__((vector_size(Width * 8)));
using Mask = decltype(Real() < Real());

constexpr const background::Kinds* AllKinds = nullptr;
constexpr double SmallestNormal = std::numeric_limits<double>::min();
constexpr double LargestNumber = std::numeric_limits<double>::max();

[[gnu::always_inline]] inline Real load(const double* p) {
    Real v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

[[gnu::always_inline]] inline void store(double* p, const Real& v) {
    std::memcpy(p, &v, sizeof v);
}

/// Indices as doubles, to be compared with a broadcast index.
[[gnu::always_inline]] inline Real indices(const int* p) {
    Real v;
    for (int l = 0; l < Width; ++l) {
        v[l] = p[l];
    }
    return v;
}

[[gnu::always_inline]] inline int smallest(const int* p) {
    return *std::min_element(p, p + Width);
}

[[gnu::always_inline]] inline int largest(const int* p) {
    return *std::max_element(p, p + Width);
}

void fromCounts(const unsigned short* counts, std::ptrdiff_t n, double* out) {
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        out[i] = counts[i];
    }
}

/// s0 before dark counts are taken off.
[[gnu::always_inline]] inline void i0At(const Sums& sums, std::size_t bin, Real& s0) {
    // Counts are finite, so that a difference of 0 to the frame before leaves its sum as it is.
    const bool atFrame = sums.after == nullptr || (sums.fromBefore == 0.0 && sums.span > 1e-100);
    s0 = Real{} + 1.0;
    if (sums.before != nullptr) {
        s0 = load(sums.before + bin);
        if (!atFrame) {
            const Real after = load(sums.after + bin);
            s0 = sums.span == 0.0 ? 0.5 * (s0 + after)
                                  : sums.fromBefore * ((after - s0) / sums.span) + s0;
        }
    }
}

[[gnu::always_inline]] inline void takeDark(const Sums& sums, std::size_t bin, Real& s1, Real& s0) {
    if (sums.dark != nullptr) {
        const Real dark = load(sums.dark + bin);
        s1 -= dark;
        s0 = sums.before != nullptr ? s0 - dark : s0;
    }
}

[[gnu::always_inline]] inline void muTAt(const Sums& sums, std::size_t bin, double* mu,
                                         Real* least) {
    for (std::size_t l = 0; l < Count; l += Width) {
        Real s1 = load(sums.i1 + bin + l);
        Real s0;
        i0At(sums, bin + l, s0);
        takeDark(sums, bin + l, s1, s0);
        const Real ratio = s0 / s1;
        Real ln;
        if (any((ratio < SmallestNormal) | (ratio > LargestNumber) | (ratio != ratio))) {
            logarithmOf<Real, Bits>(ratio, ln);
        } else {
            logarithmOfNormal<Real, Bits>(ratio, Real{}, ln);
        }
        const Real lower = s0 < s1 ? s0 : s1;
        Real& lowest = least[l / Width];
        lowest = lower < lowest ? lower : lowest;
        store(mu + l, lower > 0.0 ? ln : Real{} + 1.0);
    }
}

void muT(const Sums* sums, int energies, std::size_t bin, double* mu, bool* lacksCounts) {
    Real least[Count / Width];
    std::fill(least, least + Count / Width, Real{} + LargestNumber);
    for (int i = 0; i < energies; ++i) {
        muTAt(sums[i], bin, mu + i * Count, least);
    }
    for (int l = 0; l < Count; ++l) {
        lacksCounts[l] = !(least[l / Width][l % Width] > 0.0);
    }
}

void risingEdge(const double* mu, const double* e, int n, double fraction, double* edge) {
    for (int l = 0; l < Count; l += Width) {
        const double* const y = mu + l;
        Real low = Real{} + 1e300;
        Real high = Real{} - 1e300;
        for (int i = 0; i < n; ++i) {
            const Real v = load(y + i * Count);
            low = v < low ? v : low;
            high = v > high ? v : high;
        }
        const Real level = low + fraction * (high - low);
        Mask open = ~Mask{};
        Real result = Real{} + e[0];
        Real before = load(y);
        for (int i = 0; i + 1 < n; ++i) {
            const Real after = load(y + (i + 1) * Count);
            const Mask here = (before < level) & (after >= level) & open;
            if (any(here)) {
                const Real at = e[i] + (level - before) * (e[i + 1] - e[i]) / (after - before);
                result = here ? at : result;
                open &= ~here;
                if (!any(open)) {
                    break;
                }
            }
            before = after;
        }
        store(edge + l, result);
    }
}

template <typename Kind>
[[gnu::always_inline]] inline void rangeSumsOf(const double* mu, const double* functions,
                                               const Range& range, double* sums) {
    constexpr int Terms = Kind::Terms;
    for (int l = 0; l < Count; l += Width) {
        Real sum[Terms] = {};
        const int from = smallest(range.first + l);
        const int to = largest(range.end + l);
        const int allFrom = largest(range.first + l);
        const int allTo = smallest(range.end + l);
        const Real first = indices(range.first + l);
        const Real end = indices(range.end + l);
        const auto add = [&](int i, bool all) {
            const Real y = load(mu + i * Count + l);
            const double index = i;
            for (int k = 0; k < Terms; ++k) {
                const Real term = functions[i * Terms + k] * y;
                // Adding 0.0 leaves a sum that began with 0.0 as it is.
                sum[k] += all ? term : (((first <= index) & (index < end)) ? term : Real{});
            }
        };
        int i = from;
        for (; i < std::min(allFrom, to); ++i) {
            add(i, false);
        }
        for (; i < allTo; ++i) {
            add(i, true);
        }
        for (; i < to; ++i) {
            add(i, false);
        }
        for (int k = 0; k < Terms; ++k) {
            store(sums + k * Count + l, sum[k]);
        }
    }
}

template <typename... Kinds>
[[gnu::always_inline]] inline void rangeSumsOfKind(const std::tuple<Kinds...>*, int kind,
                                                   const double* mu, const double* functions,
                                                   const Range& range, double* sums) {
    int i = 0;
    ((i++ == kind ? rangeSumsOf<Kinds>(mu, functions, range, sums) : void()), ...);
}

void rangeSums(const double* mu, int kind, const double* functions, const Range& range,
               double* sums) {
    rangeSumsOfKind(AllKinds, kind, mu, functions, range, sums);
}

/// The coefficients of the spectra from l on.
template <int Terms>
[[gnu::always_inline]] inline void loadCurve(const Curve& curve, int l, Real* c) {
    for (int k = 0; k < Terms; ++k) {
        c[k] = load(curve.c[k] + l);
    }
}

template <typename Kind>
[[gnu::always_inline]] inline void middleOf(const double* mu, const double* e, const Abscissae& at,
                                            const Curve& pre, const Curve& post, const Range& range,
                                            double* midE) {
    for (int l = 0; l < Count; l += Width) {
        Real a[Kind::Terms], b[Kind::Terms];
        loadCurve<Kind::Terms>(pre, l, a);
        loadCurve<Kind::Terms>(post, l, b);
        const Real first = indices(range.first + l);
        const Real end = indices(range.end + l);
        const int to = largest(range.end + l);
        Real sum = {};
        Real crossings = {};
        for (int i = smallest(range.first + l); i < to; ++i) {
            Real below, above;
            Kind::value(a, at.x[i], at.z[i], below);
            Kind::value(b, at.x[i], at.z[i], above);
            const Real middle = below + 0.5 * (above - below);
            const Real mu0 = load(mu + i * Count + l);
            const Real mu1 = load(mu + (i + 1) * Count + l);
            const double index = i;
            const Mask here =
                ((mu0 - middle) * (mu1 - middle) <= 0.0) & (first <= index) & (index < end);
            if (any(here)) {
                const Real slope = (middle - mu0) / (mu1 - mu0) * (e[i + 1] - e[i]);
                const double mean = 0.5 * (e[i] + e[i + 1]);
                const Real crossing = mu1 == mu0 ? Real{} + mean : e[i] + slope;
                sum = here ? sum + crossing : sum;
                crossings = here ? crossings + 1.0 : crossings;
            }
        }
        const Real mean = sum / crossings;
        store(midE + l, crossings > 0.0 ? mean : Real{});
    }
}

template <typename... Kinds>
[[gnu::always_inline]] inline void middleOfKind(const std::tuple<Kinds...>*, const double* mu,
                                                const double* e, const Abscissae& at,
                                                const Curve& pre, const Curve& post,
                                                const Range& range, double* midE) {
    int i = 0;
    ((i++ == at.kind ? middleOf<Kinds>(mu, e, at, pre, post, range, midE) : void()), ...);
}

void middle(const double* mu, const double* e, const Abscissae& at, const Curve& pre,
            const Curve& post, const Range& range, double* midE) {
    middleOfKind(AllKinds, mu, e, at, pre, post, range, midE);
}

template <typename Kind>
[[gnu::always_inline]] inline void doubleNormalisedOf(const double* mu, const Abscissae& at,
                                                      const Curve& pre, const Curve& post,
                                                      const int* points, int count, double* y,
                                                      double* span) {
    for (int l = 0; l < Count; l += Width) {
        Real a[Kind::Terms], b[Kind::Terms];
        loadCurve<Kind::Terms>(pre, l, a);
        loadCurve<Kind::Terms>(post, l, b);
        for (int p = 0; p < count; ++p) {
            const int i = points[p];
            Real below, above;
            Kind::value(a, at.x[i], at.z[i], below);
            Kind::value(b, at.x[i], at.z[i], above);
            const Real jump = above - below;
            store(y + p * Count + l, (load(mu + i * Count + l) - below) / jump);
            if (span != nullptr) {
                store(span + p * Count + l, jump);
            }
        }
    }
}

template <typename... Kinds>
[[gnu::always_inline]] inline void doubleNormalisedOfKind(const std::tuple<Kinds...>*,
                                                          const double* mu, const Abscissae& at,
                                                          const Curve& pre, const Curve& post,
                                                          const int* points, int count, double* y,
                                                          double* span) {
    int i = 0;
    ((i++ == at.kind ? doubleNormalisedOf<Kinds>(mu, at, pre, post, points, count, y, span)
                     : void()),
     ...);
}

void doubleNormalised(const double* mu, const Abscissae& at, const Curve& pre, const Curve& post,
                      const int* points, int count, double* y, double* span) {
    doubleNormalisedOfKind(AllKinds, mu, at, pre, post, points, count, y, span);
}

template <int Terms>
[[gnu::always_inline]] inline void projectionsOf(const double* y, const double* f, int stride,
                                                 int count, double* sums) {
    for (int l = 0; l < Count; l += Width) {
        Real sum[Terms] = {};
        for (int p = 0; p < count; ++p) {
            const Real value = load(y + p * Count + l);
            for (int r = 0; r < Terms; ++r) {
                sum[r] += f[p * stride + r] * value;
            }
        }
        for (int r = 0; r < Terms; ++r) {
            store(sums + r * Count + l, sum[r]);
        }
    }
}

void projections(const double* y, const double* f, int stride, int count, double* sums) {
    int r = 0;
    for (; r + 4 <= stride; r += 4) {
        projectionsOf<4>(y, f + r, stride, count, sums + r * Count);
    }
    for (; r + 2 <= stride; r += 2) {
        projectionsOf<2>(y, f + r, stride, count, sums + r * Count);
    }
    if (r < stride) {
        projectionsOf<1>(y, f + r, stride, count, sums + r * Count);
    }
}

/// The curve's value in a bracket, interpolated.
template <typename Kind>
[[gnu::always_inline]] inline void interpolated(const Bracket& bracket, const Curve& curve, int l,
                                                Real& y) {
    Real c[Kind::Terms], ends[2];
    loadCurve<Kind::Terms>(curve, l, c);
    for (int side = 0; side < 2; ++side) {
        Kind::value(c, load(bracket.x[side] + l), load(bracket.z[side] + l), ends[side]);
    }
    const Real e = load(bracket.e[0] + l);
    y = ends[0] + (load(bracket.at + l) - e) * (ends[1] - ends[0]) / (load(bracket.e[1] + l) - e);
}

template <typename... Kinds>
[[gnu::always_inline]] inline void jumpOfKind(const std::tuple<Kinds...>*, int kind,
                                              const Bracket& bracket, const Curve& pre,
                                              const Curve& post, double* jump) {
    for (int l = 0; l < Count; l += Width) {
        Real above = {}, below = {};
        int i = 0;
        ((i++ == kind ? (interpolated<Kinds>(bracket, post, l, above),
                         interpolated<Kinds>(bracket, pre, l, below))
                      : void()),
         ...);
        store(jump + l, above - below);
    }
}

void jump(int kind, const Bracket& bracket, const Curve& pre, const Curve& post, double* jump) {
    jumpOfKind(AllKinds, kind, bracket, pre, post, jump);
}

/// Element (i, k) of the matrices of the spectra from l on.
template <bool Own>
[[gnu::always_inline]] inline void element(const double* lu, int place, int l, Real& value) {
    if constexpr (Own) {
        value = load(lu + place * Count + l);
    } else {
        value = lu[place] - Real{};
    }
}

template <int Known, bool Own>
[[gnu::always_inline]] inline void substituteOf(const double* lu, const int* row, int terms,
                                                const double* b, double* x) {
    const int n = Known > 0 ? Known : terms;
    for (int l = 0; l < Count; l += Width) {
        Real factor;
        for (int i = 0; i < n; ++i) {
            Real z = load(b + (Own ? i : row[i]) * Count + l);
            for (int k = 0; k < i; ++k) {
                element<Own>(lu, i * n + k, l, factor);
                z -= factor * load(x + k * Count + l);
            }
            store(x + i * Count + l, z);
        }
        for (int i = n - 1; i >= 0; --i) {
            Real c = load(x + i * Count + l);
            for (int k = i + 1; k < n; ++k) {
                element<Own>(lu, i * n + k, l, factor);
                c -= factor * load(x + k * Count + l);
            }
            element<Own>(lu, i * n + i, l, factor);
            store(x + i * Count + l, c / factor);
        }
    }
}

template <bool Own>
void substituteAny(const double* lu, const int* row, int n, const double* b, double* x) {
    if (n == 2) {
        substituteOf<2, Own>(lu, row, n, b, x);
    } else if (n == 3) {
        substituteOf<3, Own>(lu, row, n, b, x);
    } else {
        substituteOf<0, Own>(lu, row, n, b, x);
    }
}

void substituteOwn(const double* lu, int n, const double* b, double* x) {
    substituteAny<true>(lu, nullptr, n, b, x);
}

constexpr Kernels All = {
    fromCounts,       muT,         risingEdge,           rangeSums,    middle, jump,
    doubleNormalised, projections, substituteAny<false>, substituteOwn};
