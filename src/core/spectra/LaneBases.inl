// The kernels of LaneBases.h for one width of vector; included after LaneNoise.inl.

/// The piece that an energy lies in.
inline int pieceAt(const Polyline& line, double e) {
    const double step = (e - line.pieces[0].e) * line.stepsPerEv;
    int piece =
        step > 0.0 ? line.near[step < line.steps ? static_cast<int>(step) : line.steps - 1] : 0;
    while (piece + 1 < line.count && line.pieces[piece + 1].e <= e) {
        ++piece;
    }
    while (piece > 0 && e < line.pieces[piece].e) {
        --piece;
    }
    return piece;
}

/// The pieces of the spectra of a vector.
struct PiecesOfVector {
    Real e, y, rise, run;

    [[gnu::always_inline]] explicit PiecesOfVector(const Piece& all)
        : e(broadcast(all.e)),
          y(broadcast(all.y)),
          rise(broadcast(all.rise)),
          run(broadcast(all.run)) {}

    [[gnu::always_inline]] void set(const Mask& where, const Piece& piece) {
        e = where ? broadcast(piece.e) : e;
        y = where ? broadcast(piece.y) : y;
        rise = where ? broadcast(piece.rise) : rise;
        run = where ? broadcast(piece.run) : run;
    }
    [[gnu::always_inline]] void valueAt(const Real& energy, double* to) const {
        store(to, y + (energy - e) * rise / run);
    }
};

/// The curve at energies that lie in many pieces.
[[gnu::noinline]] inline void valuesFarApart(const Polyline& line, const double* e, double* to) {
    for (int l = 0; l < Width; ++l) {
        const Piece& piece = line.pieces[pieceAt(line, e[l])];
        to[l] = piece.y + (e[l] - piece.e) * piece.rise / piece.run;
    }
}

/// The curve at energies between `least` and `most`, not yet shifted.
[[gnu::always_inline]] inline void valuesAt(const Polyline& line, const Real& given, double least,
                                            double most, double* to) {
    // The energies of neighbours mostly lie in one piece, or in a few side by side.
    constexpr int Few = 12;
    const Real e = given + line.shifts[0] + line.shifts[1];
    most = most + line.shifts[0] + line.shifts[1];
    const int first = pieceAt(line, least + line.shifts[0] + line.shifts[1]);
    PiecesOfVector of(line.pieces[first]);
    const int end = std::min(line.count, first + Few);
    int next = first + 1;
    for (; next < end && line.pieces[next].e <= most; ++next) {
        of.set(e >= line.pieces[next].e, line.pieces[next]);
    }
    if (next < line.count && line.pieces[next].e <= most) {
        double energies[Width];
        store(energies, e);
        valuesFarApart(line, energies, to);
        return;
    }
    of.valueAt(e, to);
}

void basisRows(const OwnBases& bases, double* rows) {
    const int terms = bases.terms();
    for (int l = 0; l < Count; l += Width) {
        const Stretch points(bases.points, l);
        const Real corrections = load(bases.corrections + l);
        const double* const own = bases.corrections + l;
        const double largestOf = *std::max_element(own, own + Width);
        const double smallestOf = *std::min_element(own, own + Width);
        for (int i = points.from; i < points.to; ++i) {
            double* row = rows + static_cast<std::ptrdiff_t>(i) * terms * Count + l;
            const Real e = bases.energies[i] - corrections;
            if (bases.leading == 2) {
                store(row, Real{} + 1.0);
                store(row + Count, e);
                row += 2 * Count;
            }
            const double least = bases.energies[i] - largestOf;
            const double most = bases.energies[i] - smallestOf;
            for (int r = 0; r < bases.references; ++r) {
                valuesAt(bases.curves[r], e, least, most, row + r * Count);
            }
        }
    }
}

/// Calls add(i, mixed) for the points of a vector's spectra, in order; mixed: not of all of them.
template <typename Add>
[[gnu::always_inline]] inline void forPoints(const Stretch& points, Add add) {
    int i = points.from;
    for (; i < std::min(points.allFrom, points.to); ++i) {
        add(i, std::true_type());
    }
    for (; i < points.allTo; ++i) {
        add(i, std::false_type());
    }
    for (; i < points.to; ++i) {
        add(i, std::true_type());
    }
}

/// The whole matrix in one go.
template <int N>
void normalOf(const double* rows, const Range& range, const double* y, double* normal,
              double* right) {
    for (int l = 0; l < Count; l += Width) {
        const Stretch points(range, l);
        Real sums[N][N] = {};
        Real ofY[N] = {};
        forPoints(points, [&](int i, auto mixed) {
            constexpr bool Mixed = decltype(mixed)::value;
            const Mask in = Mixed ? points.mask(i) : Mask{};
            const double* const row = rows + static_cast<std::ptrdiff_t>(i) * N * Count + l;
            const Real value =
                only<Mixed>(in, load(y + static_cast<std::ptrdiff_t>(i) * Count + l));
            Real f[N];
            for (int r = 0; r < N; ++r) {
                f[r] = only<Mixed>(in, load(row + r * Count));
                ofY[r] += f[r] * value;
                for (int s = 0; s <= r; ++s) {
                    sums[r][s] += f[r] * f[s];
                }
            }
        });
        for (int r = 0; r < N; ++r) {
            store(right + r * Count + l, ofY[r]);
            for (int s = 0; s <= r; ++s) {
                store(normal + (r * N + s) * Count + l, sums[r][s]);
                store(normal + (s * N + r) * Count + l, sums[r][s]);
            }
        }
    }
}

/// The products of one function and the N from another on.
template <int N>
[[gnu::always_inline]] inline void productsOf(const double* of, std::ptrdiff_t step,
                                              const double* with, std::ptrdiff_t stride,
                                              const Stretch& points, double* sums) {
    Real sum[N] = {};
    forPoints(points, [&](int i, auto mixed) {
        constexpr bool Mixed = decltype(mixed)::value;
        const Mask in = Mixed ? points.mask(i) : Mask{};
        const Real value = only<Mixed>(in, load(of + i * step));
        for (int r = 0; r < N; ++r) {
            sum[r] += value * only<Mixed>(in, load(with + i * stride + r * Count));
        }
    });
    for (int r = 0; r < N; ++r) {
        store(sums + r * Count, sum[r]);
    }
}

/// The same for any number of functions.
void normalOfMany(const double* rows, int terms, const Range& range, const double* y,
                  double* normal, double* right) {
    const std::ptrdiff_t stride = terms * Count;
    for (int l = 0; l < Count; l += Width) {
        const Stretch points(range, l);
        const double* const own = rows + l;
        const auto products = [&](const double* of, std::ptrdiff_t step, int end, double* sums) {
            int s = 0;
            for (; s + 4 <= end; s += 4) {
                productsOf<4>(of, step, own + s * Count, stride, points, sums + s * Count);
            }
            for (; s < end; ++s) {
                productsOf<1>(of, step, own + s * Count, stride, points, sums + s * Count);
            }
        };
        products(y + l, Count, terms, right + l);
        for (int r = 0; r < terms; ++r) {
            products(own + r * Count, stride, r + 1, normal + r * stride + l);
            for (int s = 0; s < r; ++s) {
                store(normal + s * stride + r * Count + l,
                      load(normal + r * stride + s * Count + l));
            }
        }
    }
}

void normalEquations(const double* rows, int terms, const Range& points, const double* y,
                     double* normal, double* right) {
    switch (terms) {
        case 1:
            return normalOf<1>(rows, points, y, normal, right);
        case 2:
            return normalOf<2>(rows, points, y, normal, right);
        case 3:
            return normalOf<3>(rows, points, y, normal, right);
        case 4:
            return normalOf<4>(rows, points, y, normal, right);
        case 5:
            return normalOf<5>(rows, points, y, normal, right);
        default:
            return normalOfMany(rows, terms, points, y, normal, right);
    }
}

[[gnu::always_inline]] inline void exchange(const Mask& where, double* a, double* b) {
    const Real before = load(a);
    const Real after = load(b);
    store(a, where ? after : before);
    store(b, where ? before : after);
}

/// Brings the row with the largest value in column k to its place, each spectrum its own; see
/// decomposeInPlace() for those that are equal or no number.
[[gnu::always_inline]] inline void exchangeRows(int n, int k, double* a, double* b) {
    Real largestYet = Real{} - 1e300;
    Real chosen = Real{} + static_cast<double>(k);
    for (int i = k; i < n; ++i) {
        const Real value = load(a + (i * n + k) * Count);
        const Real size = value < 0.0 ? -value : value;
        const Mask larger = size > largestYet;
        const double index = i;
        chosen = larger ? Real{} + index : chosen;
        largestYet = larger ? size : largestYet;
    }
    for (int i = k + 1; i < n; ++i) {
        const Mask where = chosen == static_cast<double>(i);
        if (any(where)) {
            for (int j = 0; j < n; ++j) {
                exchange(where, a + (k * n + j) * Count, a + (i * n + j) * Count);
            }
            exchange(where, b + k * Count, b + i * Count);
        }
    }
}

/// As decomposeInPlace(), b in the order of the rows then.
template <int Known>
[[gnu::always_inline]] inline void decomposeOf(int terms, double* a, double* b) {
    const int n = Known > 0 ? Known : terms;
    for (int k = 0; k < n; ++k) {
        exchangeRows(n, k, a, b);
        Real pivot = load(a + (k * n + k) * Count);
        pivot = pivot == 0.0 ? Real{} + 1.0 : pivot;
        store(a + (k * n + k) * Count, pivot);
        for (int i = k + 1; i < n; ++i) {
            const Real multiplier = load(a + (i * n + k) * Count) / pivot;
            store(a + (i * n + k) * Count, multiplier);
            for (int j = k + 1; j < n; ++j) {
                double* const place = a + (i * n + j) * Count;
                store(place, load(place) - multiplier * load(a + (k * n + j) * Count));
            }
        }
    }
}

void solveEquations(int terms, double* normal, double* right, double* solution) {
    for (int l = 0; l < Count; l += Width) {
        if (terms == 2) {
            decomposeOf<2>(terms, normal + l, right + l);
        } else if (terms == 3) {
            decomposeOf<3>(terms, normal + l, right + l);
        } else {
            decomposeOf<0>(terms, normal + l, right + l);
        }
    }
    substituteOwn(normal, terms, right, solution);
}

/// Reciprocals of square roots.
[[gnu::always_inline]] inline void perRoot(const Real& square, Real& result) {
    double roots[Width];
    store(roots, square);
    for (double& root : roots) {
        root = std::sqrt(root);
    }
    result = 1.0 / load(roots);
}

/// See decomposePositive() of LinearSolver.cpp. Takes those that are singular out of `regular`.
[[gnu::always_inline]] inline void decomposeScaled(int n, const double* a, const Real* scale,
                                                   Real* lower, Mask& regular) {
    constexpr double LeastPivot = 1e-12;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j <= i; ++j) {
            Real sum = load(a + (i * n + j) * Count) * scale[i] * scale[j];
            for (int k = 0; k < j; ++k) {
                sum -= lower[i * n + k] * lower[j * n + k];
            }
            if (i == j) {
                regular &= sum >= LeastPivot;
                perRoot(sum >= LeastPivot ? sum : Real{} + 1.0, lower[i * n + i]);
            } else {
                lower[i * n + j] = sum * lower[j * n + j];
            }
        }
    }
}

/// As invertPositive(), for so many terms at most.
[[gnu::always_inline]] inline void invertOf(int n, const double* a, double* inverse,
                                            Mask& regular) {
    Real scale[MostInverted], lower[MostInverted * MostInverted];
    for (int i = 0; i < n; ++i) {
        const Real square = load(a + (i * n + i) * Count);
        const Mask usable = (square > 0.0) & (square <= LargestNumber);
        regular &= usable;
        perRoot(usable ? square : Real{} + 1.0, scale[i]);
    }
    decomposeScaled(n, a, scale, lower, regular);
    for (int j = 0; j < n; ++j) {
        for (int i = j + 1; i < n; ++i) {
            Real sum = {};
            for (int k = j; k < i; ++k) {
                sum -= lower[i * n + k] * lower[k * n + j];
            }
            lower[i * n + j] = sum * lower[i * n + i];
        }
    }
    const Real blank = Real{} + std::numeric_limits<double>::quiet_NaN();
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j <= i; ++j) {
            Real sum = {};
            for (int k = i; k < n; ++k) {
                sum += lower[k * n + i] * lower[k * n + j];
            }
            const Real value = regular ? sum * scale[i] * scale[j] : blank;
            store(inverse + (i * n + j) * Count, value);
            store(inverse + (j * n + i) * Count, value);
        }
    }
}

void invertMatrices(int terms, const double* normal, double* inverse, bool* isSingular) {
    for (int l = 0; l < Count; l += Width) {
        Mask regular = ~Mask{};
        invertOf(terms, normal + l, inverse + l, regular);
        for (int each = 0; each < Width; ++each) {
            isSingular[l + each] = regular[each] == 0;
        }
    }
}

void responseRows(const double* rows, int terms, int leading, const Range& range,
                  const double* inverse, double* out) {
    const int stride = terms - leading + (leading > 0 ? 1 : 0);
    for (int l = 0; l < Count; l += Width) {
        const Stretch points(range, l);
        for (int i = points.from; i < points.to; ++i) {
            const double* const row = rows + static_cast<std::ptrdiff_t>(i) * terms * Count + l;
            double* to = out + static_cast<std::ptrdiff_t>(i) * stride * Count + l;
            Real all = {};
            for (int r = leading; r < terms; ++r) {
                Real sum = {};
                for (int j = 0; j < terms; ++j) {
                    sum += load(inverse + (r * terms + j) * Count + l) * load(row + j * Count);
                }
                store(to, sum);
                to += Count;
                all += sum;
            }
            if (leading > 0) {
                store(to, all);
            }
        }
    }
}

constexpr BasisKernels Bases = {basisRows, normalEquations, solveEquations, invertMatrices,
                                responseRows};
