#include "spectra/LiveCounts.h"

#include <QDebug>
#include <atomic>

namespace {
std::atomic<qint64> storedPoints{0};  // those in buffers; the extremes follow from the spectra
std::atomic<qint64> spectra{0};
std::atomic<qint64> xafsSpectra{0};
}  // namespace

qint64 liveSpoints() {
    constexpr qint64 Extremes = 2;  // a spectrum holds two points of its own
    return storedPoints.load(std::memory_order_relaxed) + Extremes * liveSpectra();
}
qint64 liveSpectra() {
    return spectra.load(std::memory_order_relaxed);
}
qint64 liveXafsSpectra() {
    return xafsSpectra.load(std::memory_order_relaxed);
}

void logObjectCounts() {
    qDebug().noquote() << "object count : Spoint : " << liveSpoints();
    qDebug().noquote() << "object count : Spectrum : " << liveSpectra();
    qDebug().noquote() << "Count : Xafs Spectrum : " << liveXafsSpectra();
}

namespace livecounts {
void addSpoints(qint64 n) {
    storedPoints.fetch_add(n, std::memory_order_relaxed);
}
void addSpectra(qint64 n) {
    spectra.fetch_add(n, std::memory_order_relaxed);
}
void addXafsSpectra(qint64 n) {
    xafsSpectra.fetch_add(n, std::memory_order_relaxed);
}
}  // namespace livecounts
