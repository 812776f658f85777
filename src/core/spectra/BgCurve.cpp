#include "spectra/BgCurve.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "spectra/LinearSolver.h"

namespace {

/// Calls add(E, y) for the points with start <= E < end, in order.
template <typename Add>
void forRange(const Spectrum& spectrum, double start, double end, Add add) {
    const Spoint* const measured = spectrum.points();
    const double offset = spectrum.offset();
    const int size = spectrum.size();
    for (int i = 0; i < size; ++i) {
        const double e = measured[i].x - offset;
        if (e >= end) {
            break;
        }
        if (e >= start) {
            add(e, measured[i].y);
        }
    }
}

/// The sums of a least-squares fit, its matrix above the diagonal only. Written out index by index:
/// in registers, which a loop over an array would not be.
template <int N>
struct Sums {
    int points = 0;
    double normal[N * N] = {};
    double right[N] = {};

    void add(const double* f, double y) {
        ++points;
        addProducts(f, y, std::make_index_sequence<N * N>());
    }
    template <std::size_t... Place>
    void addProducts(const double* f, double y, std::index_sequence<Place...>) {
        (addProduct<Place / N, Place % N>(f, y), ...);
    }
    template <std::size_t Row, std::size_t Column>
    void addProduct(const double* f, double y) {
        if constexpr (Row <= Column) {
            normal[Row * N + Column] += f[Row] * f[Column];
        }
        if constexpr (Row == Column) {
            right[Row] += f[Row] * y;
        }
    }
};

}  // namespace

template <typename Kind>
void BgCurve::evaluate(const Spectrum& spectrum, const double* coefficients) {
    double c[Kind::Terms];
    std::copy_n(coefficients, Kind::Terms, c);
    const Spoint* const measured = spectrum.points();
    const double offset = spectrum.offset();
    const int size = spectrum.size();
    assignWith(size, [=](Spoint* points) {
        for (int i = 0; i < size; ++i) {
            const double e = measured[i].x - offset;
            const background::Abscissa at = Kind::at(e);
            double y;
            Kind::value(c, at.x, at.z, y);
            points[i] = {e, y};
        }
    });
}

template <typename Kind>
void BgCurve::fit(const Spectrum& spectrum, double start, double end) {
    constexpr int N = Kind::Terms;
    if (spectrum.size() < Kind::FewestPoints) {
        return;
    }
    Sums<N> sums;
    forRange(spectrum, start, end, [&](double e, double y) {
        double f[N];
        Kind::functions(Kind::at(e), f);
        sums.add(f, y);
    });
    double matrix[N * N];
    double right[N];
    for (int i = 0; i < N; ++i) {
        for (int j = 0; j < N; ++j) {
            matrix[i * N + j] = sums.normal[i <= j ? i * N + j : j * N + i];
        }
        right[i] = sums.right[i];
    }
    double c[N];
    if (!Kind::isSettled(sums.points, right, c)) {
        solveLinear(matrix, right, N, c);
    }
    for (int i = 0; i < N; ++i) {
        m_c[Kind::Names[i]] = c[i];
    }
    evaluate<Kind>(spectrum, c);
}

void BgCurve::fit(int kind, const Spectrum& spectrum, double start, double end) {
    m_kind = kind;
    m_start = start;
    m_end = end;
    background::visit(kind, [&](auto each) { this->fit<decltype(each)>(spectrum, start, end); });
}
