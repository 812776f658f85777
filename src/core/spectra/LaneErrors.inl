// The kernel of LaneErrors.h for one width of vector; included after LaneNoise.inl.

/// The part of a vector's spectra, those from l on, in what all of them have.
struct ErrorTask {
    const Fits& fits;
    const Lines& lines;
    int l;
    Stretch stretches[3];  // of the fit and of the lines
    Sections sections;
    double* perSpan;
    double* variance;
    double* perI0;

    ErrorTask(const Fits& f, const Lines& g, const ErrorSpace& space, int from)
        : fits(f),
          lines(g),
          l(from),
          stretches{{f.points, from}, {g.range[0], from}, {g.range[1], from}},
          sections(stretches[0], stretches[1], stretches[2]),
          perSpan(space.perSpan + from),
          variance(space.variance + from),
          perI0(space.perI0 + from) {}
};

/// sums[side][r][t]: of (G F')_r / span (1 - y or y) phi_t.
template <int N, int Terms>
using LineSums = Real[2][N + 1][Terms > 0 ? Terms : 1];

/// Adds a point to them, h the values of a row of G F'.
template <int N, int Terms>
[[gnu::always_inline]] inline void addToLines(const Real* h, const Real& perSpan, const Real& by,
                                              const double* phi, LineSums<N, Terms>& sums) {
    Real part[2][Terms];
    part[0][0] = perSpan - by;
    part[1][0] = by;
    for (int t = 1; t < Terms; ++t) {
        part[0][t] = part[0][0] * phi[t];
        part[1][t] = part[1][0] * phi[t];
    }
    for (int r = 0; r < N; ++r) {
        for (int side = 0; side < 2; ++side) {
            for (int t = 0; t < Terms; ++t) {
                sums[side][r][t] += h[r] * part[side][t];
            }
        }
    }
}

struct Goodness {
    Real chi2 = {}, rest = {}, square = {};

    template <bool Mixed>
    [[gnu::always_inline]] void add(const Mask& in, const Real& y, const Real& f, const Real& span,
                                    const Real& perAll) {
        const Real off = y - f;
        const Real inMuT = span * off;
        chi2 += only<Mixed>(in, inMuT * inMuT * perAll);
        rest += only<Mixed>(in, off * off);
        square += only<Mixed>(in, y * y);
    }
};

/// Works out what the counts do at energy i and keeps it in the space.
[[gnu::always_inline]] inline void keepNoise(const ErrorTask& task, int i, const Real& span,
                                             Noise& noise) {
    const Counts& counts = task.fits.counts;
    if (counts.sums != nullptr) {
        noiseAt(counts, i, task.l, span, noise);
    } else {
        noise = {1.0 / span, Real{} + 1.0, Real{} + 1.0, Real{}};
    }
    const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count;
    store(task.perSpan + place, noise.perSpan);
    store(task.variance + place, noise.variance);
    if (counts.i0Energies > 0) {
        store(task.perI0 + place, noise.perI0);
    }
}

/// The fit at energy i, of N terms at least: mostly of these, a loop of known length.
template <int N, bool Own>
[[gnu::always_inline]] inline void fitAt(const Fits& fits, const RowReader<Own>& basis, int i,
                                         int l, Real& f) {
    const double* const coefficients = fits.coefficients + l;
    f = Real{};
    for (int r = 0; r < N; ++r) {
        f += load(coefficients + r * Count) * basis.at(i, r);
    }
    for (int r = N; r < fits.basis.stride; ++r) {
        f += load(coefficients + r * Count) * basis.at(i, r);
    }
}

/// Fills the space in a section; of the points of the fit, sums up how good it is and what its
/// first N references feel through the lines.
template <int N, int Terms, bool Own, bool Mixed>
[[gnu::always_inline]] inline void lookAt(const ErrorTask& task, const Section& section,
                                          Goodness& total, LineSums<N, Terms>& lineTotal) {
    const Fits& fits = task.fits;
    const RowReader<Own> basis(fits.basis, task.l), response(fits.response, task.l);
    const bool isFitted = section.isFitted;
    Goodness good = total;
    LineSums<N, Terms> sums;
    std::memcpy(sums, lineTotal, sizeof sums);
    for (int i = section.from; i < section.to; ++i) {
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count + task.l;
        const Mask in = Mixed ? task.stretches[0].mask(i) : Mask{};
        Real span = Real{} + 1.0;
        if (Terms > 0 && isFitted) {
            span = Mixed ? (in ? load(fits.span + place) : span) : load(fits.span + place);
        }
        Noise noise;
        keepNoise(task, i, span, noise);
        if (!isFitted) {
            continue;
        }
        const Real y = load(fits.y + place);
        Real f;
        fitAt<N, Own>(fits, basis, i, task.l, f);
        good.add<Mixed>(in, y, f, span, noise.perAll);
        if constexpr (Terms > 0) {
            Real h[N];
            for (int r = 0; r < N; ++r) {
                h[r] = only<Mixed>(in, response.at(i, r));
            }
            addToLines<N, Terms>(h, only<Mixed>(in, noise.perSpan),
                                 only<Mixed>(in, noise.perSpan * y),
                                 task.lines.functions + i * Terms, sums);
        }
    }
    total = good;
    std::memcpy(lineTotal, sums, sizeof sums);
}

/// The same sums alone, for N references from firstOf on.
template <int N, int Terms, bool Own>
[[gnu::always_inline]] inline void lookAgain(const ErrorTask& task, int firstOf,
                                             LineSums<N, Terms>& sums) {
    const Stretch& fitted = task.stretches[0];
    const RowReader<Own> response(task.fits.response, task.l);
    for (int i = fitted.from; i < fitted.to; ++i) {
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count;
        const Mask in = fitted.mask(i);
        const Real perSpan = load(task.perSpan + place);
        const Real by = perSpan * load(task.fits.y + task.l + place);
        Real h[N];
        for (int r = 0; r < N; ++r) {
            const Real row = response.at(i, firstOf + r);
            h[r] = in ? row : Real{};
        }
        addToLines<N, Terms>(h, in ? perSpan : Real{}, in ? by : Real{},
                             task.lines.functions + i * Terms, sums);
    }
}

/// Turns the sums into the coefficients of phi that are taken off the derivatives of N references
/// and of the jump, in that order, because the lines follow mu-t.
template <int N, int Terms>
[[gnu::always_inline]] inline void solveLines(const Lines& lines, int l,
                                              LineSums<N, Terms>& change) {
    LineSums<N, Terms> sums;
    std::memcpy(sums, change, sizeof sums);
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
    Real by[2][N + 1] = {};  // of I0 energies `first` and the next

    [[gnu::always_inline]] void moveTo(int next, const Counts& counts, int l,
                                       Products<N>& products) {
        for (int steps = 0; steps < 2 && first < std::min(next, counts.i0Energies); ++steps) {
            const double* const raw = counts.i0 +
                                      static_cast<std::size_t>(first) * counts.i0Stride +
                                      counts.bin + static_cast<std::size_t>(l);
            products.add(by[0], load(raw) * counts.i0PerFrame[first]);
            for (int r = 0; r <= N; ++r) {
                by[0][r] = by[1][r];
                by[1][r] = Real{};
            }
            ++first;
        }
        first = next;
    }
    [[gnu::always_inline]] void add(const Real* derivative, const Real& perI0,
                                    const I0Share& share) {
        for (int side = 0; side < 2; ++side) {
            const Real weight = perI0 * share.shared[side];
            for (int r = 0; r <= N; ++r) {
                by[side][r] += derivative[r] * weight;
            }
        }
    }
};

/// Derivatives by mu-t at energy i of N references from firstOf on and of the jump.
template <int N, int Terms, bool Own, bool Mixed>
[[gnu::always_inline]] inline void derivativesAt(const ErrorTask& task, const Section& section,
                                                 const RowReader<Own>& response, int i, int firstOf,
                                                 const LineSums<N, Terms>& change, const Mask* in,
                                                 Real (&derivative)[N + 1]) {
    if (section.isFitted) {
        const Real perSpan = load(task.perSpan + static_cast<std::ptrdiff_t>(i) * Count);
        for (int r = 0; r < (Terms == 0 ? N + 1 : N); ++r) {
            const int column = r < N ? firstOf + r : task.fits.references;
            derivative[r] = only<Mixed>(in[0], response.at(i, column) * perSpan);
        }
    }
    for (int side = 0; side < 2 && Terms > 0; ++side) {
        if (!section.isIn[side]) {
            continue;
        }
        for (int r = 0; r <= N; ++r) {
            Real value = change[side][r][0];
            for (int t = 1; t < Terms; ++t) {
                value += change[side][r][t] * task.lines.functions[i * Terms + t];
            }
            derivative[r] -= only<Mixed>(in[side + 1], value);
        }
    }
}

/// Adds the points of a section to the covariances of N references from firstOf on, those together
/// that lie between the same shared I0 energies.
template <int N, int Terms, bool Own, bool Mixed, bool Shared>
[[gnu::always_inline]] inline void covariancesIn(const ErrorTask& task, const Section& section,
                                                 int firstOf, const LineSums<N, Terms>& change,
                                                 Products<N>& products, SharedI0<N>& shared) {
    const RowReader<Own> response(task.fits.response, task.l);
    const I0Share* const shares = task.fits.counts.shares;
    Products<N> sums = products;
    SharedI0<N> gathered = shared;
    int endOfThese = Shared ? section.from : section.to;
    for (int i = section.from; i < section.to; ++i) {
        if (Shared && i == endOfThese) {
            endOfThese = endOfBracket(shares, i, section.to);
            gathered.moveTo(shares[i].first, task.fits.counts, task.l, sums);
        }
        const std::ptrdiff_t place = static_cast<std::ptrdiff_t>(i) * Count;
        Mask in[3] = {};
        for (int s = 0; s < 3 && Mixed; ++s) {
            in[s] = task.stretches[s].mask(i);
        }
        const Mask used = in[0] | in[1] | in[2];
        Real derivative[N + 1] = {};
        derivativesAt<N, Terms, Own, Mixed>(task, section, response, i, firstOf, change, in,
                                            derivative);
        sums.add(derivative, only<Mixed>(used, load(task.variance + place)));
        if constexpr (Shared) {
            gathered.add(derivative, only<Mixed>(used, load(task.perI0 + place)), shares[i]);
        }
    }
    products = sums;
    shared = gathered;
}

template <int N, int Terms, bool Own>
[[gnu::always_inline]] inline void covariancesOf(const ErrorTask& task, int firstOf,
                                                 const LineSums<N, Terms>& change,
                                                 const ErrorSums& out) {
    Products<N> products;
    SharedI0<N> shared;
    for (int s = 0; s < task.sections.count; ++s) {
        const Section& section = task.sections.list[s];
        const auto add = [&](auto mixed, auto sharing) {
            covariancesIn<N, Terms, Own, decltype(mixed)::value, decltype(sharing)::value>(
                task, section, firstOf, change, products, shared);
        };
        const bool isSharing = task.fits.counts.i0Energies > 0;
        if (section.isMixed) {
            isSharing ? add(std::true_type(), std::true_type())
                      : add(std::true_type(), std::false_type());
        } else {
            isSharing ? add(std::false_type(), std::true_type())
                      : add(std::false_type(), std::false_type());
        }
    }
    shared.moveTo(std::numeric_limits<int>::max(), task.fits.counts, task.l, products);
    for (int r = 0; r < N; ++r) {
        store(out.own + (firstOf + r) * Count + task.l, products.own[r]);
        store(out.withJump + (firstOf + r) * Count + task.l, products.withJump[r]);
    }
    store(out.jump + task.l, products.own[N]);
}

/// N references from firstOf on, 0 for the first of them.
template <int N, int Terms, bool Own>
void errorsOfReferences(const ErrorTask& task, int firstOf, const ErrorSums& out) {
    LineSums<N, Terms> change = {};
    if (firstOf == 0) {
        Goodness good;
        for (int s = 0; s < task.sections.count; ++s) {
            const Section& section = task.sections.list[s];
            if (section.isMixed) {
                lookAt<N, Terms, Own, true>(task, section, good, change);
            } else {
                lookAt<N, Terms, Own, false>(task, section, good, change);
            }
        }
        store(out.chi2 + task.l, good.chi2);
        store(out.rest + task.l, good.rest);
        store(out.square + task.l, good.square);
    } else if constexpr (Terms > 0) {
        lookAgain<N, Terms, Own>(task, firstOf, change);
    }
    if constexpr (Terms > 0) {
        solveLines<N, Terms>(task.lines, task.l, change);
    }
    covariancesOf<N, Terms, Own>(task, firstOf, change, out);
}

template <int Terms, bool Own>
void errorsWith(const Fits& fits, const Lines& lines, const ErrorSpace& space,
                const ErrorSums& out) {
    for (int l = 0; l < Count; l += Width) {
        const ErrorTask task(fits, lines, space, l);
        for (int r = 0; r < fits.references; r += 4) {
            switch (std::min(4, fits.references - r)) {
                case 4:
                    errorsOfReferences<4, Terms, Own>(task, r, out);
                    break;
                case 3:
                    errorsOfReferences<3, Terms, Own>(task, r, out);
                    break;
                case 2:
                    errorsOfReferences<2, Terms, Own>(task, r, out);
                    break;
                default:
                    errorsOfReferences<1, Terms, Own>(task, r, out);
                    break;
            }
        }
    }
}

template <int Terms>
void errorsWith(const Fits& fits, const Lines& lines, const ErrorSpace& space,
                const ErrorSums& out) {
    if (fits.response.areOwn) {
        errorsWith<Terms, true>(fits, lines, space, out);
    } else {
        errorsWith<Terms, false>(fits, lines, space, out);
    }
}

void fitErrors(const Fits& fits, const Lines& lines, const ErrorSpace& space,
               const ErrorSums& out) {
    if (lines.terms == 2) {
        errorsWith<2>(fits, lines, space, out);
    } else if (lines.terms == 3) {
        errorsWith<3>(fits, lines, space, out);
    } else {
        errorsWith<0>(fits, lines, space, out);
    }
}
