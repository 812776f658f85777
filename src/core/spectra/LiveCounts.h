#pragma once

#include <QtGlobal>

// Exact numbers of live spectrum objects, for diagnostics: exact whenever no other thread is making
// or dropping spectra. Every thread keeps a count of its own, without any locked operation, and
// points are counted with the buffers that hold them, a whole buffer at a time. Every spectrum
// holds two more, its extremes.

qint64 liveSpoints();
qint64 liveSpectra();
qint64 liveXafsSpectra();

/// Three debug lines with the counts.
void logObjectCounts();

namespace livecounts {
void addSpoints(qint64 n);  ///< points in buffers, without the extremes of spectra
void addSpectra(qint64 n);
void addXafsSpectra(qint64 n);
}  // namespace livecounts
