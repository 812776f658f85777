#include "spectra/BgCurve.h"

#include <algorithm>

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
            points[i].x = e;
            Kind::value(c, at.x, at.z, points[i].y);
        }
    });
}

template <typename Kind>
void BgCurve::fit(const Spectrum& spectrum, double start, double end) {
    constexpr int N = Kind::Terms;
    if (spectrum.size() < Kind::FewestPoints) {
        return;
    }
    int points = 0;
    double normal[N * N] = {};
    double right[N] = {};
    forRange(spectrum, start, end, [&](double e, double y) {
        double f[N];
        Kind::functions(Kind::at(e), f);
        ++points;
        for (int i = 0; i < N; ++i) {
            for (int j = i; j < N; ++j) {
                normal[i * N + j] += f[i] * f[j];
            }
            right[i] += f[i] * y;
        }
    });
    for (int i = 1; i < N; ++i) {
        for (int j = 0; j < i; ++j) {
            normal[i * N + j] = normal[j * N + i];
        }
    }
    double c[N];
    if (!Kind::isSettled(points, right, c)) {
        solveLinear(normal, right, N, c);
    }
    for (int i = 0; i < N; ++i) {
        m_c[Kind::Names[i]] = c[i];
    }
    evaluate<Kind>(spectrum, c);
}

void BgCurve::fit(int kind, const Spectrum& spectrum, double start, double end) {
    m_kind = kind;
    background::visit(kind, [&](auto each) { this->fit<decltype(each)>(spectrum, start, end); });
}
