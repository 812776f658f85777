#include "spectra/BgCurve.h"

#include "spectra/Constants.h"
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

template <typename Function>
void BgCurve::evaluate(const Spectrum& spectrum, Function function) {
    const Spoint* const measured = spectrum.points();
    const double offset = spectrum.offset();
    const int size = spectrum.size();
    assignWith(size, [=](Spoint* points) {
        for (int i = 0; i < size; ++i) {
            const double e = measured[i].x - offset;
            points[i] = {e, function(e)};
        }
    });
}

void BgCurve::fitLine(const Spectrum& spectrum, double start, double end) {
    m_victreen = false;
    const int size = spectrum.size();
    if (size < 3) {
        return;
    }
    double n = 0.0, sumE = 0.0, sumY = 0.0, sumEE = 0.0, sumEY = 0.0;
    forRange(spectrum, start, end, [&](double e, double y) {
        n += 1.0;
        sumE += e;
        sumY += y;
        sumEE += e * e;
        sumEY += e * y;
    });
    if (n < 2.0) {
        m_c3 = 0.0;
        m_c0 = n == 1.0 ? sumY : 0.0;
    } else {
        const double a[] = {sumEE, sumE, sumE, n};
        const double b[] = {sumEY, sumY};
        double c[2];
        solveLinear(a, b, 2, c);
        m_c3 = c[0];
        m_c0 = c[1];
    }
    evaluate(spectrum, [c0 = m_c0, c3 = m_c3](double e) { return c0 + c3 * e; });
}

void BgCurve::fitVictreen(const Spectrum& spectrum, double start, double end) {
    m_victreen = true;
    const int size = spectrum.size();
    if (size < 4) {
        return;
    }
    double n = 0.0, s3 = 0.0, s4 = 0.0, s6 = 0.0, s7 = 0.0, s8 = 0.0;
    double sumY = 0.0, sum3Y = 0.0, sum4Y = 0.0;
    forRange(spectrum, start, end, [&](double e, double y) {
        const double lambda = Hc / e;
        const double l3 = lambda * lambda * lambda;
        const double l4 = l3 * lambda;
        n += 1.0;
        s3 += l3;
        s4 += l4;
        s6 += l3 * l3;
        s7 += l3 * l4;
        s8 += l4 * l4;
        sumY += y;
        sum3Y += l3 * y;
        sum4Y += l4 * y;
    });
    const double a[] = {n, s3, s4, s3, s6, s7, s4, s7, s8};
    const double b[] = {sumY, sum3Y, sum4Y};
    double c[3];
    solveLinear(a, b, 3, c);
    m_c0 = c[0];
    m_c1 = c[1];
    m_c2 = c[2];
    evaluate(spectrum, [c0 = m_c0, c1 = m_c1, c2 = m_c2](double e) {
        const double lambda = Hc / e;
        return c0 + (c2 * lambda + c1) * (lambda * lambda * lambda);
    });
}
