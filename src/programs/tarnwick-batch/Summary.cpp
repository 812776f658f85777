#include "tarnwick-batch/Summary.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <limits>

#include "measurement/ResultParts.h"

namespace {

constexpr int Digits = 9;

struct Mean {
    double sum = 0.0;
    qint64 bins = 0;

    double value() const {
        return bins > 0 ? sum / static_cast<double>(bins)
                        : std::numeric_limits<double>::quiet_NaN();
    }
};

Mean meanOf(const Result& result) {
    Mean mean;
    const BinRaster raster = rasterOf(result);
    const BinValue value = valuesOf(result, true);
    for (int row = 0; row < raster.rows; ++row) {
        for (int column = 0; column < raster.columns; ++column) {
            const double of = value(column, row);
            if (std::isfinite(of)) {
                mean.sum += of;
                ++mean.bins;
            }
        }
    }
    return mean;
}

/// An item of a table separated by commas.
QString item(const QString& text) {
    const QChar quote(QLatin1Char('"'));
    const bool needsQuotes = std::any_of(text.begin(), text.end(), [quote](QChar c) {
        return c == QLatin1Char(',') || c == quote || c == QLatin1Char('\n') ||
               c == QLatin1Char('\r');
    });
    return needsQuotes ? quote + QString(text).replace(quote, QString(2, quote)) + quote : text;
}

QString number(double value) {
    return std::isfinite(value) ? QString::number(value, 'g', Digits) : QString();
}

}  // namespace

void takeFit(const Measurement& measurement, SummaryRow* row) {
    for (const Result* result : measurement.results()) {
        if (result->id != ResultId::Ratio || !result->tookPart() || result->reference < 0) {
            continue;
        }
        const Mean mean = meanOf(*result);
        const auto index = static_cast<std::size_t>(result->reference);
        if (row->meanFractions.size() <= index) {
            row->meanFractions.resize(index + 1, std::numeric_limits<double>::quiet_NaN());
        }
        row->meanFractions[index] = mean.value();
        row->bins = row->bins.value_or(mean.bins);
    }
}

QString summaryTable(const QVector<SummaryRow>& rows) {
    std::size_t most = 0;
    for (const SummaryRow& row : rows) {
        most = std::max(most, row.meanFractions.size());
    }
    QStringList names{"scan", "outcome", "bins", "seconds"};
    for (std::size_t i = 0; i < most; ++i) {
        names << QStringLiteral("mean_fraction_%1").arg(i + 1);
    }
    QString table = names.join(QLatin1Char(',')) + QLatin1Char('\n');
    for (const SummaryRow& row : rows) {
        QStringList items{item(row.scan), row.outcome,
                          row.bins ? QString::number(*row.bins) : QString(),
                          QString::number(row.seconds, 'f', 2)};
        for (std::size_t i = 0; i < most; ++i) {
            items << (i < row.meanFractions.size() ? number(row.meanFractions[i]) : QString());
        }
        table += items.join(QLatin1Char(',')) + QLatin1Char('\n');
    }
    return table;
}
