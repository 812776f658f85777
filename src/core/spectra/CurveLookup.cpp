#include "spectra/CurveLookup.h"

#include <algorithm>
#include <cmath>

#include "base/Numbers.h"

CurveLookup::CurveLookup(const Spectrum& curve) : m_curve(curve) {
    const int n = curve.size();
    const auto ascends = [&](int i) { return curve.energy(i) < curve.energy(i + 1); };
    if (n < 2 || !std::isfinite(curve.energy(0)) || !std::isfinite(curve.energy(n - 1))) {
        return;
    }
    for (int i = 0; i + 1 < n; ++i) {
        if (!ascends(i)) {
            return;
        }
    }
    constexpr int StepsPerPoint = 2;
    const int steps = StepsPerPoint * n;
    const double first = curve.energy(0);
    const double perEv = steps / (curve.energy(n - 1) - first);
    if (!std::isfinite(perEv) || !(perEv > 0.0)) {
        return;
    }
    m_perEv = perEv;
    for (int i = 0; i + 1 < n; ++i) {
        const double e = curve.energy(i);
        const double y = curve.value(i);
        m_pieces.push_back({e, y, curve.value(i + 1) - y, curve.energy(i + 1) - e});
    }
    for (int step = 0, i = 0; step < steps; ++step) {
        const double e = first + step / m_perEv;
        while (i < n - 2 && curve.energy(i + 1) <= e) {
            ++i;
        }
        m_near.push_back(i);
    }
}

int CurveLookup::pieceAround(double e) const {
    const double step = (e - m_pieces.front().e) * m_perEv;
    const double last = static_cast<double>(m_near.size()) - 1.0;
    const lanes::Piece* const pieces = m_pieces.data();
    // The last piece goes on beyond the last point.
    return ::pairAround(
        static_cast<int>(m_pieces.size()) + 1, e, [pieces](int i) { return pieces[i].e; },
        m_near[step > 0.0 ? static_cast<std::size_t>(std::min(step, last)) : 0]);
}

double CurveLookup::valueAt(double e) const {
    if (m_pieces.empty() || std::isnan(e)) {
        return m_curve.valueAt(e);
    }
    const lanes::Piece& piece = m_pieces[static_cast<std::size_t>(pieceAround(e))];
    return piece.y + (e - piece.e) * piece.rise / piece.run;
}

lanes::Polyline CurveLookup::polyline() const {
    lanes::Polyline line;
    line.pieces = m_pieces.data();
    line.count = static_cast<int>(m_pieces.size());
    line.near = m_near.data();
    line.steps = static_cast<int>(m_near.size());
    line.stepsPerEv = m_perEv;
    return line;
}
