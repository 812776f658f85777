// The kernels of LaneErrors.h for one width of vector; included after LaneKernels.inl.

/// Where the points of a range lie for the spectra of a vector: for none of them, some or all.
struct Stretch {
    enum State { None, Some, All };
    int from, to, allFrom, allTo;
    Real first, end;

    [[gnu::always_inline]] Stretch(const Range& range, int l)
        : from(smallest(range.first + l)),
          to(largest(range.end + l)),
          allFrom(largest(range.first + l)),
          allTo(smallest(range.end + l)),
          first(indices(range.first + l)),
          end(indices(range.end + l)) {}

    [[gnu::always_inline]] State at(int i) const {
        return i < from || i >= to ? None : i >= allFrom && i < allTo ? All : Some;
    }
    [[gnu::always_inline]] Mask mask(int i) const {
        const double index = i;
        return (first <= index) & (index < end);
    }
    [[gnu::always_inline]] Real only(State state, int i, const Real& value) const {
        return state == All ? value : mask(i) ? value : Real{};
    }
};

/// Row of energy i: number r for the spectra from l on.
template <bool Own>
struct Row {
    const double* values;

    [[gnu::always_inline]] Row(const Rows& rows, int i, int l)
        : values(rows.values + static_cast<std::ptrdiff_t>(Own ? i : i - rows.first) * rows.stride *
                                   (Own ? Count : 1) +
                 (Own ? l : 0)) {}
    [[gnu::always_inline]] Real at(int r) const {
        if constexpr (Own) {
            return load(values + r * Count);
        } else {
            return Real{} + values[r];
        }
    }
};

/// What the counts at an energy do.
struct Noise {
    Real perSpan;   ///< 1 / span
    Real variance;  ///< of mu-t, from counts that reach no other energy
    Real perAll;    ///< 1 / variance of mu-t
    Real perI0;     ///< 1 / s0
};

[[gnu::always_inline]] inline void noiseAt(const Counts& counts, int i, int l, const Real& span,
                                           Noise& noise) {
    const Sums& sums = counts.sums[i];
    const I0Share& share = counts.shares[i];
    const std::size_t bin = counts.bin + static_cast<std::size_t>(l);
    const Real raw1 = load(sums.i1 + bin);
    Real s1 = raw1;
    Real s0;
    i0At(sums, bin, s0);
    Real all = {}, own = {};
    if (sums.before != nullptr) {
        const Real before = load(sums.before + bin);
        all = share.all[0] * before;
        own = share.own[0] * before;
        if (share.weight[1] != 0.0) {
            const Real after = load(sums.after + bin);
            all += share.all[1] * after;
            own += share.own[1] * after;
        }
    }
    takeDark(sums, bin, s1, s0);
    // One division for all reciprocals: it takes longer than everything else here.
    const Real product = s1 * s0;
    const Real square1 = s1 * s1;
    const Real from1 = raw1 * (s0 * s0);
    all = from1 + all * square1;
    own = from1 + own * square1;
    const Real both = product * all;
    const Real quotient = 1.0 / (span * both);
    const Real perBoth = quotient * span;
    const Real perProduct = perBoth * all;
    const Mask usable = (s0 < s1 ? s0 : s1) > 0.0;
    const Real blank = Real{} + std::numeric_limits<double>::quiet_NaN();
    noise.perSpan = quotient * both;
    noise.variance = usable ? own * (perProduct * perProduct) : blank;
    noise.perAll = usable ? (product * product) * (product * perBoth) : blank;
    noise.perI0 = perProduct * s1;
}

template <bool Own>
[[gnu::always_inline]] inline void goodnessOf(const Fits& fits, const Lines& lines,
                                              const ErrorSpace& space, int l, double* chi2,
                                              double* rest, double* square) {
    const Stretch fitted(fits.points, l), before(lines.range[0], l), after(lines.range[1], l);
    const int from = std::min({fitted.from, before.from, after.from});
    const int to = std::max({fitted.to, before.to, after.to});
    const int terms = fits.basis.stride;
    Real sumOfChi2 = {}, sumOfRests = {}, sumOfSquares = {};
    for (int i = from; i < to; ++i) {
        const Stretch::State state = fitted.at(i);
        if (state == Stretch::None && before.at(i) == Stretch::None &&
            after.at(i) == Stretch::None) {
            continue;
        }
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count + l;
        Real span = Real{} + 1.0;
        if (state != Stretch::None && fits.span != nullptr) {
            span = load(fits.span + place);
            if (state == Stretch::Some) {
                span = fitted.mask(i) ? span : Real{} + 1.0;
            }
        }
        Noise noise = {1.0 / span, Real{} + 1.0, Real{} + 1.0, Real{}};
        if (fits.counts.sums != nullptr) {
            noiseAt(fits.counts, i, l, span, noise);
        }
        store(space.perSpan + place, noise.perSpan);
        store(space.variance + place, noise.variance);
        store(space.perI0 + place, noise.perI0);
        if (state == Stretch::None) {
            continue;
        }
        const Real y = load(fits.y + place);
        const Row<Own> row(fits.basis, i, l);
        Real f = {};
        for (int r = 0; r < terms; ++r) {
            f += load(fits.coefficients + r * Count + l) * row.at(r);
        }
        const Real off = y - f;
        const Real inMuT = span * off;
        sumOfChi2 += fitted.only(state, i, inMuT * inMuT * noise.perAll);
        sumOfRests += fitted.only(state, i, off * off);
        sumOfSquares += fitted.only(state, i, y * y);
    }
    store(chi2 + l, sumOfChi2);
    store(rest + l, sumOfRests);
    store(square + l, sumOfSquares);
}

void goodness(const Fits& fits, const Lines& lines, const ErrorSpace& space, double* chi2,
              double* rest, double* square) {
    for (int l = 0; l < Count; l += Width) {
        if (fits.basis.areOwn) {
            goodnessOf<true>(fits, lines, space, l, chi2, rest, square);
        } else {
            goodnessOf<false>(fits, lines, space, l, chi2, rest, square);
        }
    }
}

/// What a change of mu-t does to the lines as N references and the jump feel them:
/// change[side][r][t], the coefficients of phi that are taken off their derivatives.
template <int N, int Terms, bool Own>
[[gnu::always_inline]] inline void feltThroughLines(const Fits& fits, const Lines& lines,
                                                    const ErrorSpace& space, int l, int firstOf,
                                                    Real (*change)[N + 1][Terms]) {
    const Stretch fitted(fits.points, l);
    Real sums[2][N + 1][Terms] = {};
    for (int i = fitted.from; i < fitted.to; ++i) {
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count + l;
        const Stretch::State state = fitted.at(i);
        const Real perSpan = fitted.only(state, i, load(space.perSpan + place));
        const Real by = fitted.only(state, i, load(space.perSpan + place) * load(fits.y + place));
        Real part[2][Terms] = {};
        part[0][0] = perSpan - by;
        part[1][0] = by;
        for (int t = 1; t < Terms; ++t) {
            const double phi = lines.functions[i * Terms + t];
            part[0][t] = part[0][0] * phi;
            part[1][t] = part[1][0] * phi;
        }
        const Row<Own> row(fits.response, i, l);
        for (int r = 0; r < N; ++r) {
            const Real h = row.at(firstOf + r);
            for (int side = 0; side < 2; ++side) {
                for (int t = 0; t < Terms; ++t) {
                    sums[side][r][t] += h * part[side][t];
                }
            }
        }
    }
    for (int t = 0; t < Terms; ++t) {
        const Real middle = load(lines.middle + t * Count + l);
        sums[0][N][t] = middle;
        sums[1][N][t] = -middle;
    }
    for (int side = 0; side < 2; ++side) {
        for (int r = 0; r <= N; ++r) {
            for (int t = 0; t < Terms; ++t) {
                Real sum = {};
                for (int u = 0; u < Terms; ++u) {
                    sum += load(lines.inverse[side] + (t * Terms + u) * Count + l) *
                           sums[side][r][u];
                }
                change[side][r][t] = sum;
            }
        }
    }
}

/// Sums of products for N references and the jump.
template <int N>
struct Products {
    Real own[N + 1] = {};
    Real withJump[N] = {};

    [[gnu::always_inline]] void add(const Real* derivative, const Real& variance) {
        for (int r = 0; r <= N; ++r) {
            const Real weighed = derivative[r] * variance;
            own[r] += derivative[r] * weighed;
            if (r < N) {
                withJump[r] += derivative[N] * weighed;
            }
        }
    }
};

/// Gathers what each of the I0 energies that several points share does to N references and the
/// jump. The numbers of the energies ascend from point to point.
template <int N>
struct SharedI0 {
    int first = 0;
    Real by[2][N + 1] = {};
    const double* raw[2] = {};
    double perFrame[2] = {};

    /// Begins with I0 energies `next` and `next` + 1.
    [[gnu::always_inline]] void moveTo(int next, std::size_t bin, Products<N>& products) {
        for (; first < next && (raw[0] != nullptr || raw[1] != nullptr); ++first) {
            if (raw[0] != nullptr) {
                products.add(by[0], load(raw[0] + bin) * perFrame[0]);
            }
            for (int r = 0; r <= N; ++r) {
                by[0][r] = by[1][r];
                by[1][r] = Real{};
            }
            raw[0] = raw[1];
            perFrame[0] = perFrame[1];
            raw[1] = nullptr;
        }
        first = next;
    }
    [[gnu::always_inline]] void add(const Sums& sums, const I0Share& share, const Real* derivative,
                                    const Real& perI0) {
        for (int side = 0; side < 2; ++side) {
            if (!share.isShared[side]) {
                continue;
            }
            raw[side] = side == 0 ? sums.before : sums.after;
            perFrame[side] = share.perFrame[side];
            const Real weight = perI0 * share.weight[side];
            for (int r = 0; r <= N; ++r) {
                by[side][r] += derivative[r] * weight;
            }
        }
    }
};

template <int N, int Terms, bool Own>
[[gnu::always_inline]] inline void covariancesOf(const Fits& fits, const Lines& lines,
                                                 const ErrorSpace& space, int l, int firstOf,
                                                 double* own, double* withJump, double* jump) {
    const Stretch fitted(fits.points, l);
    const Stretch line[2] = {{lines.range[0], l}, {lines.range[1], l}};
    [[maybe_unused]] Real change[2][N + 1][std::max(1, Terms)];
    if constexpr (Terms > 0) {
        feltThroughLines<N, Terms, Own>(fits, lines, space, l, firstOf, change);
    }
    const int from = std::min({fitted.from, line[0].from, line[1].from});
    const int to = std::max({fitted.to, line[0].to, line[1].to});
    const std::size_t bin = fits.counts.bin + static_cast<std::size_t>(l);
    Products<N> products;
    SharedI0<N> shared;
    for (int i = from; i < to; ++i) {
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count + l;
        const Stretch::State state = fitted.at(i);
        const Stretch::State at[2] = {line[0].at(i), line[1].at(i)};
        if (state == Stretch::None && at[0] == Stretch::None && at[1] == Stretch::None) {
            continue;
        }
        Real derivative[N + 1] = {};
        if (state != Stretch::None) {
            const Row<Own> row(fits.response, i, l);
            const Real perSpan = fitted.only(state, i, load(space.perSpan + place));
            for (int r = 0; r < N; ++r) {
                derivative[r] = row.at(firstOf + r) * perSpan;
            }
            if constexpr (Terms == 0) {
                derivative[N] = row.at(fits.references) * perSpan;
            }
        }
        if constexpr (Terms > 0) {
            for (int side = 0; side < 2; ++side) {
                if (at[side] == Stretch::None) {
                    continue;
                }
                for (int r = 0; r <= N; ++r) {
                    Real value = change[side][r][0];
                    for (int t = 1; t < Terms; ++t) {
                        value += change[side][r][t] * lines.functions[i * Terms + t];
                    }
                    derivative[r] -= line[side].only(at[side], i, value);
                }
            }
        }
        Real variance = load(space.variance + place);
        Real perI0 = load(space.perI0 + place);
        if (state != Stretch::All && at[0] != Stretch::All && at[1] != Stretch::All) {
            const Mask used = fitted.mask(i) | line[0].mask(i) | line[1].mask(i);
            variance = used ? variance : Real{};
            perI0 = used ? perI0 : Real{};
        }
        products.add(derivative, variance);
        if (fits.counts.sums != nullptr) {
            const I0Share& share = fits.counts.shares[i];
            if (share.isShared[0] || share.isShared[1]) {
                shared.moveTo(share.first, bin, products);
                shared.add(fits.counts.sums[i], share, derivative, perI0);
            }
        }
    }
    shared.moveTo(std::numeric_limits<int>::max(), bin, products);
    for (int r = 0; r < N; ++r) {
        store(own + (firstOf + r) * Count + l, products.own[r]);
        store(withJump + (firstOf + r) * Count + l, products.withJump[r]);
    }
    store(jump + l, products.own[N]);
}

template <int Terms, bool Own>
void covariancesWith(const Fits& fits, const Lines& lines, const ErrorSpace& space, double* own,
                     double* withJump, double* jump) {
    for (int l = 0; l < Count; l += Width) {
        int r = 0;
        for (; r + 4 <= fits.references; r += 4) {
            covariancesOf<4, Terms, Own>(fits, lines, space, l, r, own, withJump, jump);
        }
        switch (fits.references - r) {
            case 3:
                covariancesOf<3, Terms, Own>(fits, lines, space, l, r, own, withJump, jump);
                break;
            case 2:
                covariancesOf<2, Terms, Own>(fits, lines, space, l, r, own, withJump, jump);
                break;
            case 1:
                covariancesOf<1, Terms, Own>(fits, lines, space, l, r, own, withJump, jump);
                break;
            default:
                break;
        }
    }
}

template <int Terms>
void covariancesWith(const Fits& fits, const Lines& lines, const ErrorSpace& space, double* own,
                     double* withJump, double* jump) {
    if (fits.response.areOwn) {
        covariancesWith<Terms, true>(fits, lines, space, own, withJump, jump);
    } else {
        covariancesWith<Terms, false>(fits, lines, space, own, withJump, jump);
    }
}

void covariances(const Fits& fits, const Lines& lines, const ErrorSpace& space, double* own,
                 double* withJump, double* jump) {
    if (lines.terms == 2) {
        covariancesWith<2>(fits, lines, space, own, withJump, jump);
    } else if (lines.terms == 3) {
        covariancesWith<3>(fits, lines, space, own, withJump, jump);
    } else {
        covariancesWith<0>(fits, lines, space, own, withJump, jump);
    }
}

constexpr ErrorKernels AllErrors = {goodness, covariances};
