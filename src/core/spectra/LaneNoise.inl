// What the kernels of LaneErrors.inl are made of, for one width of vector; included after
// LaneKernels.inl.

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

/// A value for the spectra that have the point, 0 for the others; Mixed: not all have it.
template <bool Mixed>
[[gnu::always_inline]] inline Real only(const Mask& in, const Real& value) {
    return Mixed ? (in ? value : Real{}) : value;
}

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

[[gnu::always_inline]] inline void anyNoise(const Sums& sums, const I0Share& share, std::size_t bin,
                                            const Real& raw1, const Real& span, Noise& noise,
                                            Real& s1, Real& s0) {
    Real all = {}, own = {};
    s0 = Real{} + 1.0;
    if (sums.before != nullptr) {
        const Real before = load(sums.before + bin);
        s0 = share.weight[0] * before;
        all = share.all[0] * before;
        own = share.own[0] * before;
        if (share.weight[1] != 0.0) {
            const Real after = load(sums.after + bin);
            s0 += share.weight[1] * after;
            all += share.all[1] * after;
            own += share.own[1] * after;
        }
    }
    takeDark(sums, bin, s1, s0);
    const Real product = s1 * s0;
    const Real square1 = s1 * s1;
    const Real from1 = raw1 * (s0 * s0);
    all = from1 + all * square1;
    own = share.hasOwn ? from1 + own * square1 : from1;
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
    const I0Share& share = counts.shares[i];
    const std::size_t bin = counts.bin + static_cast<std::size_t>(l);
    const Real raw1 = load(sums.i1 + bin);
    Real s1 = raw1;
    Real s0;
    if (share.isPlain && sums.dark == nullptr) {
        s0 = load(sums.before + bin);
        plainNoise(s1, s0, span, noise);
    } else {
        anyNoise(sums, share, bin, raw1, span, noise, s1, s0);
    }
    const Mask usable = (s0 < s1 ? s0 : s1) > 0.0;
    const Real blank = Real{} + std::numeric_limits<double>::quiet_NaN();
    noise.variance = usable ? noise.variance : blank;
    noise.perAll = usable ? noise.perAll : blank;
}

/// The end of the points from i on that lie between the same I0 energies.
inline int endOfBracket(const I0Share* shares, int i, int end) {
    const int first = shares[i].first;
    while (++i < end && shares[i].first == first) {
    }
    return i;
}
