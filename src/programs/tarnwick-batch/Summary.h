#pragma once

#include <QString>
#include <QVector>
#include <optional>
#include <vector>

#include "measurement/Measurement.h"

/// What a batch made of one scan: a row of the summary.
struct SummaryRow {
    QString scan;     ///< the name of its folder
    QString outcome;  ///< "done", "warning" or "failed"
    /// Of the last fit, by references from 0: over the bins that are numbers and not masked, as the
    /// maps are shown; not a number for a reference that took no part.
    std::vector<double> meanFractions;
    std::optional<qint64> bins;  ///< that went into the first mean; none without a fit
    double seconds = 0.0;
};

/// Fills in what the last fit of a measurement has found; nothing without one.
void takeFit(const Measurement& measurement, SummaryRow* row);

/// The rows as a table, separated by commas, behind a line of names: scan, outcome, bins, seconds,
/// mean_fraction_1 and so on, as many as the row with the most references needs. Tables are
/// joined by these names. What is not known is empty.
QString summaryTable(const QVector<SummaryRow>& rows);
