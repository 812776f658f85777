// The kernels of LaneErrors.h for one width of vector; included after LaneKernels.inl.

[[gnu::always_inline]] inline Real broadcast(double value) {
    // Taking 0.0 off changes no number, so that nothing of it is left in the program.
    return value - Real{};
}

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
    /// The next index above i at which the state may change.
    [[gnu::always_inline]] int next(int i, int most) const {
        for (int cut : {from, allFrom, allTo, to}) {
            most = cut > i && cut < most ? cut : most;
        }
        return most;
    }
    [[gnu::always_inline]] Mask mask(int i) const {
        const double index = i;
        return (first <= index) & (index < end);
    }
};

/// Points in a row with the same states: in the fit and in the lines before and after the edge.
struct Section {
    int from, to;
    bool isFitted, isIn[2];  // for some at least
    bool isMixed;            // not alike for all
};

/// The sections in which a spectrum of a vector has use for its points, ascending.
struct Sections {
    static constexpr int Most = 14;
    int count = 0;
    Section list[Most];

    Sections(const Stretch& fitted, const Stretch& before, const Stretch& after) {
        const int to = std::max({fitted.to, before.to, after.to});
        int i = std::min({fitted.from, before.from, after.from});
        while (i < to) {
            const int next = after.next(i, before.next(i, fitted.next(i, to)));
            const Stretch::State of[3] = {fitted.at(i), before.at(i), after.at(i)};
            const bool isMixed =
                of[0] == Stretch::Some || of[1] == Stretch::Some || of[2] == Stretch::Some;
            if (of[0] != Stretch::None || of[1] != Stretch::None || of[2] != Stretch::None) {
                list[count++] = {i,
                                 next,
                                 of[0] != Stretch::None,
                                 {of[1] != Stretch::None, of[2] != Stretch::None},
                                 isMixed};
            }
            i = next;
        }
    }
};

/// Rows of the spectra from l on: number r of energy i.
template <bool Own>
struct RowReader {
    const double* values;
    std::ptrdiff_t stride;

    [[gnu::always_inline]] RowReader(const Rows& rows, int l)
        : values(rows.values + (Own ? l : 0)), stride(rows.stride) {
        values -= Own ? 0 : rows.first * stride;
    }
    [[gnu::always_inline]] Real at(int i, int r) const {
        if constexpr (Own) {
            return load(values + (i * stride + r) * Count);
        } else {
            return broadcast(values[i * stride + r]);
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

/// Without dark counts, with the sums of one frame each: raw counts are the sums themselves.
[[gnu::always_inline]] inline void plainNoise(const Real& s1, const Real& s0, const Real& span,
                                              Noise& noise) {
    const Real product = s1 * s0;
    const Real sum = s1 + s0;
    const Real both = product * sum;
    const Real quotient = 1.0 / (span * both);
    const Real perBoth = quotient * span;
    const Real perProduct = perBoth * sum;
    noise.perSpan = quotient * both;
    noise.variance = sum * perProduct;
    noise.perAll = product * (product * perBoth);
    noise.perI0 = perProduct * s1;
}

[[gnu::always_inline]] inline void anyNoise(const Counts& counts, int i, std::size_t bin,
                                            const Real& raw1, const Real& s1, const Real& s0,
                                            const Real& span, Noise& noise) {
    const Sums& sums = counts.sums[i];
    const I0Share& share = counts.shares[i];
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
    const Real product = s1 * s0;
    const Real square1 = s1 * s1;
    const Real from1 = raw1 * (s0 * s0);
    all = from1 + all * square1;
    own = from1 + own * square1;
    const Real both = product * all;
    const Real quotient = 1.0 / (span * both);
    const Real perBoth = quotient * span;
    const Real perProduct = perBoth * all;
    noise.perSpan = quotient * both;
    noise.variance = own * (perProduct * perProduct);
    noise.perAll = (product * product) * (product * perBoth);
    noise.perI0 = perProduct * s1;
}

/// One division for all reciprocals: it takes longer than everything else here.
[[gnu::always_inline]] inline void noiseAt(const Counts& counts, int i, int l, const Real& span,
                                           Noise& noise) {
    const Sums& sums = counts.sums[i];
    const std::size_t bin = counts.bin + static_cast<std::size_t>(l);
    const Real raw1 = load(sums.i1 + bin);
    Real s1 = raw1;
    Real s0;
    if (counts.shares[i].isPlain && sums.dark == nullptr) {
        s0 = load(sums.before + bin);
        plainNoise(s1, s0, span, noise);
    } else {
        i0At(sums, bin, s0);
        takeDark(sums, bin, s1, s0);
        anyNoise(counts, i, bin, raw1, s1, s0, span, noise);
    }
    const Mask usable = (s0 < s1 ? s0 : s1) > 0.0;
    const Real blank = Real{} + std::numeric_limits<double>::quiet_NaN();
    noise.variance = usable ? noise.variance : blank;
    noise.perAll = usable ? noise.perAll : blank;
}

/// What an error space holds, and the sums of goodness(), for the spectra from l on.
struct Goodness {
    double* perSpan;
    double* variance;
    double* perI0;
    Real chi2 = {}, rest = {}, square = {};
};

template <bool Own, bool Mixed>
[[gnu::always_inline]] inline void goodnessIn(const Section& section, const Fits& fits,
                                              const Stretch* stretches, int l, Goodness& good) {
    const RowReader<Own> basis(fits.basis, l);
    const double* const coefficients = fits.coefficients + l;
    const double* const ys = fits.y + l;
    const double* const spans = fits.span != nullptr ? fits.span + l : nullptr;
    const Counts counts = fits.counts;
    const int terms = fits.basis.stride;
    const bool isFitted = section.isFitted;
    Real chi2 = good.chi2, rest = good.rest, square = good.square;
    for (int i = section.from; i < section.to; ++i) {
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count;
        const Mask in = Mixed ? stretches[0].mask(i) : Mask{};
        Real span = Real{} + 1.0;
        if (isFitted && spans != nullptr) {
            span = Mixed ? (in ? load(spans + place) : span) : load(spans + place);
        }
        Noise noise;
        if (counts.sums != nullptr) {
            noiseAt(counts, i, l, span, noise);
        } else {
            noise = {1.0 / span, Real{} + 1.0, Real{} + 1.0, Real{}};
        }
        store(good.perSpan + place, noise.perSpan);
        store(good.variance + place, noise.variance);
        if (counts.haveSharedI0) {
            store(good.perI0 + place, noise.perI0);
        }
        if (!isFitted) {
            continue;
        }
        const Real y = load(ys + place);
        Real f = {};
        for (int r = 0; r < terms; ++r) {
            f += load(coefficients + r * Count) * basis.at(i, r);
        }
        const Real off = y - f;
        const Real inMuT = span * off;
        const Real part[3] = {inMuT * inMuT * noise.perAll, off * off, y * y};
        chi2 += Mixed ? (in ? part[0] : Real{}) : part[0];
        rest += Mixed ? (in ? part[1] : Real{}) : part[1];
        square += Mixed ? (in ? part[2] : Real{}) : part[2];
    }
    good.chi2 = chi2;
    good.rest = rest;
    good.square = square;
}

template <bool Own>
void goodnessOf(const Fits& fits, const Lines& lines, const ErrorSpace& space, int l, double* chi2,
                double* rest, double* square) {
    const Stretch stretches[3] = {{fits.points, l}, {lines.range[0], l}, {lines.range[1], l}};
    const Sections sections(stretches[0], stretches[1], stretches[2]);
    Goodness good{space.perSpan + l, space.variance + l, space.perI0 + l};
    for (int s = 0; s < sections.count; ++s) {
        if (sections.list[s].isMixed) {
            goodnessIn<Own, true>(sections.list[s], fits, stretches, l, good);
        } else {
            goodnessIn<Own, false>(sections.list[s], fits, stretches, l, good);
        }
    }
    store(chi2 + l, good.chi2);
    store(rest + l, good.rest);
    store(square + l, good.square);
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

/// sums[side][r][t] += sum over a section of (G F')_r / span (1 - y or y) phi_t.
template <int N, int Terms, bool Own, bool Mixed>
[[gnu::always_inline]] inline void lineSumsIn(const Section& section, const Fits& fits,
                                              const Lines& lines, const double* perSpans,
                                              const Stretch& fitted, int l, int firstOf,
                                              Real (&total)[2][N + 1][Terms]) {
    const RowReader<Own> response(fits.response, l);
    const double* const ys = fits.y + l;
    const double* const functions = lines.functions;
    Real sums[2][N + 1][Terms];
    std::memcpy(sums, total, sizeof sums);
    for (int i = section.from; i < section.to; ++i) {
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count;
        const Mask in = Mixed ? fitted.mask(i) : Mask{};
        Real perSpan = load(perSpans + place);
        Real by = perSpan * load(ys + place);
        perSpan = Mixed ? (in ? perSpan : Real{}) : perSpan;
        by = Mixed ? (in ? by : Real{}) : by;
        Real part[2][Terms];
        part[0][0] = perSpan - by;
        part[1][0] = by;
        for (int t = 1; t < Terms; ++t) {
            const double phi = functions[i * Terms + t];
            part[0][t] = part[0][0] * phi;
            part[1][t] = part[1][0] * phi;
        }
        for (int r = 0; r < N; ++r) {
            const Real row = response.at(i, firstOf + r);
            const Real h = Mixed ? (in ? row : Real{}) : row;
            for (int side = 0; side < 2; ++side) {
                for (int t = 0; t < Terms; ++t) {
                    sums[side][r][t] += h * part[side][t];
                }
            }
        }
    }
    std::memcpy(total, sums, sizeof sums);
}

/// change[side][r][t]: the coefficients of phi that are taken off the derivatives of N references
/// and of the jump, in that order, because the lines follow mu-t.
template <int N, int Terms, bool Own>
[[gnu::always_inline]] inline void throughLines(const Fits& fits, const Lines& lines,
                                                const double* perSpans, const Sections& sections,
                                                const Stretch& fitted, int l, int firstOf,
                                                Real (&change)[2][N + 1][Terms]) {
    Real sums[2][N + 1][Terms] = {};
    for (int s = 0; s < sections.count; ++s) {
        const Section& section = sections.list[s];
        if (section.isFitted && section.isMixed) {
            lineSumsIn<N, Terms, Own, true>(section, fits, lines, perSpans, fitted, l, firstOf,
                                            sums);
        } else if (section.isFitted) {
            lineSumsIn<N, Terms, Own, false>(section, fits, lines, perSpans, fitted, l, firstOf,
                                             sums);
        }
    }
    for (int t = 0; t < Terms; ++t) {
        const Real middle = load(lines.middle + t * Count + l);
        sums[0][N][t] = middle;
        sums[1][N][t] = -middle;
    }
    for (int side = 0; side < 2; ++side) {
        for (int t = 0; t < Terms; ++t) {
            for (int r = 0; r <= N; ++r) {
                change[side][r][t] = Real{};
            }
            for (int u = 0; u < Terms; ++u) {
                const Real inverse = load(lines.inverse[side] + (t * Terms + u) * Count + l);
                for (int r = 0; r <= N; ++r) {
                    change[side][r][t] += inverse * sums[side][r][u];
                }
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

template <int N, int Terms, bool Own, bool Mixed>
[[gnu::always_inline]] inline void covariancesIn(const Section& section, const Fits& fits,
                                                 const Lines& lines, const ErrorSpace& space,
                                                 const Stretch* stretches, int l, int firstOf,
                                                 const Real (*change)[N + 1][std::max(1, Terms)],
                                                 Products<N>& products, SharedI0<N>& shared) {
    const RowReader<Own> response(fits.response, l);
    const double* const perSpans = space.perSpan + l;
    const double* const variances = space.variance + l;
    const double* const perI0s = space.perI0 + l;
    const double* const functions = lines.functions;
    const Counts counts = fits.counts;
    const std::size_t bin = counts.bin + static_cast<std::size_t>(l);
    const bool isFitted = section.isFitted;
    Products<N> sums = products;
    for (int i = section.from; i < section.to; ++i) {
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count;
        Mask in[3] = {};
        if (Mixed) {
            for (int s = 0; s < 3; ++s) {
                in[s] = stretches[s].mask(i);
            }
        }
        Real derivative[N + 1] = {};
        if (isFitted) {
            const Real perSpan = load(perSpans + place);
            for (int r = 0; r < (Terms == 0 ? N + 1 : N); ++r) {
                const Real value = response.at(i, r < N ? firstOf + r : fits.references) * perSpan;
                derivative[r] = Mixed ? (in[0] ? value : Real{}) : value;
            }
        }
        for (int side = 0; side < 2 && Terms > 0; ++side) {
            if (!section.isIn[side]) {
                continue;
            }
            for (int r = 0; r <= N; ++r) {
                Real value = change[side][r][0];
                for (int t = 1; t < Terms; ++t) {
                    value += change[side][r][t] * functions[i * Terms + t];
                }
                derivative[r] -= Mixed ? (in[side + 1] ? value : Real{}) : value;
            }
        }
        Real variance = load(variances + place);
        const Mask used = in[0] | in[1] | in[2];
        variance = Mixed ? (used ? variance : Real{}) : variance;
        sums.add(derivative, variance);
        if (counts.haveSharedI0) {
            Real perI0 = load(perI0s + place);
            perI0 = Mixed ? (used ? perI0 : Real{}) : perI0;
            shared.moveTo(counts.shares[i].first, bin, sums);
            shared.add(counts.sums[i], counts.shares[i], derivative, perI0);
        }
    }
    products = sums;
}

template <int N, int Terms, bool Own>
void covariancesOf(const Fits& fits, const Lines& lines, const ErrorSpace& space, int l,
                   int firstOf, double* own, double* withJump, double* jump) {
    const Stretch stretches[3] = {{fits.points, l}, {lines.range[0], l}, {lines.range[1], l}};
    const Sections sections(stretches[0], stretches[1], stretches[2]);
    Real change[2][N + 1][std::max(1, Terms)];
    if constexpr (Terms > 0) {
        throughLines<N, Terms, Own>(fits, lines, space.perSpan + l, sections, stretches[0], l,
                                    firstOf, change);
    }
    Products<N> products;
    SharedI0<N> shared;
    for (int s = 0; s < sections.count; ++s) {
        if (sections.list[s].isMixed) {
            covariancesIn<N, Terms, Own, true>(sections.list[s], fits, lines, space, stretches, l,
                                               firstOf, change, products, shared);
        } else {
            covariancesIn<N, Terms, Own, false>(sections.list[s], fits, lines, space, stretches, l,
                                                firstOf, change, products, shared);
        }
    }
    shared.moveTo(std::numeric_limits<int>::max(), fits.counts.bin + static_cast<std::size_t>(l),
                  products);
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
