#include "spectra/XafsSpectrum.h"

#include <QDebug>

#include "spectra/LiveCounts.h"
#include "spectra/StorageCache.h"

namespace {
// Curves and series of one set of results. Copies of a spectrum share them, and yet each counts
// as having its own.
constexpr qint64 SpectraInResults = 6;
}  // namespace

XafsSpectrum::Results::Results(const Results& other)
    : preEdge(other.preEdge),
      postEdge(other.postEdge),
      midE(other.midE),
      dMut(other.dMut),
      postBased(other.postBased),
      postBasedBySpan(other.postBasedBySpan),
      normalized(other.normalized),
      doubleNormalized(other.doubleNormalized) {}

void* XafsSpectrum::Results::operator new(std::size_t bytes) {
    return storagecache::take(bytes);
}
void XafsSpectrum::Results::operator delete(void* memory, std::size_t bytes) {
    storagecache::give(memory, bytes);
}

XafsSpectrum::Results* XafsSpectrum::share() const {
    m_results->ref.fetch_add(1, std::memory_order_relaxed);
    livecounts::addSpectra(SpectraInResults);
    return m_results;
}

void XafsSpectrum::release(Results* results) {
    if (results->ref.fetch_sub(1, std::memory_order_acq_rel) > 1) {
        livecounts::addSpectra(-SpectraInResults);
    } else {
        delete results;
    }
}

XafsSpectrum::XafsSpectrum() : m_results(new Results) {
    livecounts::addXafsSpectra(1);
}

XafsSpectrum::XafsSpectrum(const Spectrum& measured, const Normalisation& rule,
                           double energyCorrection, Debug debug)
    : Spectrum(measured),
      m_results(new Results),
      m_backgroundType(rule.background),
      m_ranges(rule.ranges),
      m_commonE0(rule.e0),
      m_energyCorrection(energyCorrection) {
    livecounts::addXafsSpectra(1);
    normalise(rule.background, debug);
}

XafsSpectrum::XafsSpectrum(const XafsSpectrum& other)
    : Spectrum(other),
      m_results(other.share()),
      m_not9809(other.m_not9809),
      m_backgroundType(other.m_backgroundType),
      m_ranges(other.m_ranges),
      m_commonE0(other.m_commonE0),
      m_energyCorrection(other.m_energyCorrection) {
    livecounts::addXafsSpectra(1);
}

XafsSpectrum& XafsSpectrum::operator=(const XafsSpectrum& other) {
    if (this == &other) {
        return *this;
    }
    Results* const old = m_results;
    m_results = other.share();
    release(old);
    Spectrum::operator=(other);
    m_not9809 = other.m_not9809;
    m_backgroundType = other.m_backgroundType;
    m_ranges = other.m_ranges;
    m_commonE0 = other.m_commonE0;
    m_energyCorrection = other.m_energyCorrection;
    return *this;
}

XafsSpectrum::~XafsSpectrum() {
    release(m_results);
    livecounts::addXafsSpectra(-1);
}

void XafsSpectrum::setPreRange(double start, double end) {
    m_ranges.preStart = start;
    m_ranges.preEnd = end;
}

void XafsSpectrum::setPostRange(double start, double end) {
    m_ranges.postStart = start;
    m_ranges.postEnd = end;
}

void XafsSpectrum::normalise(int backgroundType, Debug debug) {
    if (isEmpty()) {
        return;
    }
    m_backgroundType = backgroundType;
    // Acquire: whoever shared the results has finished reading them before they are made anew.
    if (m_results->ref.load(std::memory_order_acquire) != 1) {
        auto* const own = new Results(*m_results);
        release(m_results);
        m_results = own;
    }
    const double e0 = m_commonE0 ? *m_commonE0 + m_energyCorrection : findE(0.5, 0);
    const int kind = background::kindOf(backgroundType);
    m_results->preEdge.fit(kind, *this, e0 + m_ranges.preStart, e0 + m_ranges.preEnd);
    m_results->postEdge.fit(kind, *this, e0 + m_ranges.postStart, e0 + m_ranges.postEnd);
    findMidEandDMut(e0, debug);
    fillSeries();
}

namespace {

/// The values of a curve under the points of a spectrum; a curve that could not be fitted counts
/// as 0.
class Under {
  public:
    explicit Under(const BgCurve& curve) : m_points(curve.points()), m_size(curve.size()) {}
    double operator[](int i) const { return i < m_size ? m_points[i].y : 0.0; }

  private:
    const Spoint* m_points;
    int m_size;
};

/// The same number of two points.
using Pair = double __attribute__((vector_size(2 * sizeof(double))));

void store(Spoint* series, int first, int second, Pair e, Pair value) {
    series[first] = {e[0], value[0]};
    series[second] = {e[1], value[1]};
}

}  // namespace

double XafsSpectrum::crossingAround(double e0) const {
    const double from = e0 + m_ranges.preEnd;
    const double to = e0 + m_ranges.postStart;
    const Under preEdge(m_results->preEdge);
    const Under postEdge(m_results->postEdge);
    double sum = 0.0;
    int crossings = 0;
    for (int i = 0; i + 1 < size(); ++i) {
        const double e = energy(i);
        if (!(e > from && e < to)) {
            continue;
        }
        const double pre = preEdge[i];
        const double mid = pre + 0.5 * (postEdge[i] - pre);
        const double mu0 = value(i);
        const double mu1 = value(i + 1);
        if ((mu0 - mid) * (mu1 - mid) <= 0.0) {
            const double next = energy(i + 1);
            sum += mu1 == mu0 ? 0.5 * (e + next) : e + (mid - mu0) / (mu1 - mu0) * (next - e);
            ++crossings;
        }
    }
    return crossings > 0 ? sum / crossings : 0.0;
}

void XafsSpectrum::findMidEandDMut(double e0, Debug debug) {
    m_results->midE = m_commonE0 ? e0 : crossingAround(e0);
    m_results->dMut =
        m_results->postEdge.valueAt(m_results->midE) - m_results->preEdge.valueAt(m_results->midE);
    if (m_results->dMut == 0.0 && debug == Talkative) {
        qDebug() << "dMut_ is 0 in findMidEandDMut";
    }
}

void XafsSpectrum::fillSeries() {
    const Spoint* const measured = points();
    const double shift = offset();
    const int n = size();
    const Under preEdge(m_results->preEdge);
    const Under postEdge(m_results->postEdge);
    const double jump = m_results->dMut;
    const auto fill = [=](Spoint* const* series) {
        Spoint* const normalized = series[0];
        Spoint* const doubleNormalized = series[1];
        Spoint* const postBased = series[2];
        Spoint* const bySpan = series[3];
        // Two points at once: the divisions take most of the time, and one instruction divides two.
        for (int i = 0; i < n; i += 2) {
            const int next = i + 1 < n ? i + 1 : i;
            const Pair e = Pair{measured[i].x, measured[next].x} - shift;
            const Pair mu{measured[i].y, measured[next].y};
            const Pair pre{preEdge[i], preEdge[next]};
            const Pair post{postEdge[i], postEdge[next]};
            const Pair abovePost = mu - post;
            const Pair span = post - pre;
            const Pair inJumps = abovePost / jump;
            store(normalized, i, next, e, inJumps + 1.0);
            store(doubleNormalized, i, next, e, (mu - pre) / span);
            store(postBased, i, next, e, inJumps);
            store(bySpan, i, next, e, abovePost / span);
        }
    };
    assignTogether({&m_results->normalized, &m_results->doubleNormalized, &m_results->postBased,
                    &m_results->postBasedBySpan},
                   n, fill);
}
