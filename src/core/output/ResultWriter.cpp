#include "output/ResultWriter.h"

#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "files/WholeFile.h"
#include "frames/TiffFile.h"
#include "maps/AnalysisGrid.h"
#include "maps/Analyzed2DRes.h"

namespace {

constexpr int kDigits = 9;  // enough that a table keeps what 16-bit counts lose

QByteArray numberText(double value) {
    return QByteArray::number(value, 'g', kDigits);
}

QByteArray headerText(QVector<HeaderLine> lines, const Analyzed2DRes& result) {
    const AnalysisGrid& grid = result.grid();
    const struct {
        const char* name;
        int value;
    } numbers[] = {
        {"width", grid.width},
        {"height", grid.height},
        {"bin half width", grid.halfW},
        {"bin half height", grid.halfH},
        {"x0", grid.x0},
        {"x1", grid.x1},
        {"y0", grid.y0},
        {"y1", grid.y1},
    };
    for (const auto& number : numbers) {
        lines.append({QString::fromLatin1(number.name), QString::number(number.value)});
    }

    const double low = result.showsProc() ? result.procMin() : result.dataMin();
    const double high = result.showsProc() ? result.procMax() : result.dataMax();
    // Before the first value the range is turned inside out; that means nothing to a reader.
    const QString range = low <= high
                              ? QString::number(low) + QLatin1Char(' ') + QString::number(high)
                              : QStringLiteral("nan nan");
    lines.append({QStringLiteral("value range"), range});

    QString text;
    for (const HeaderLine& line : lines) {
        QString value = line.value;
        value.replace(QLatin1Char('\n'), QLatin1Char(' '));  // a file name may hold one
        text +=
            QStringLiteral("# ") + line.name + QStringLiteral(" = ") + value + QLatin1Char('\n');
    }
    return text.toUtf8();
}

QByteArray asComments(const QString& text) {
    QString comments;
    QStringList lines = text.split(QLatin1Char('\n'));
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    for (const QString& line : qAsConst(lines)) {
        comments += QLatin1Char('#');
        comments += line.isEmpty() ? line : QLatin1Char(' ') + line;
        comments += QLatin1Char('\n');
    }
    return comments.toUtf8();
}

/// The columns or rows that a table visits: count positions from first, step apart.
struct Raster {
    qint64 first = 0;
    qint64 step = 1;
    qint64 count = 0;

    qint64 position(qint64 i) const { return first + step * i; }
};

/// The positions of the values that are saved.
struct Positions {
    Raster columns;
    Raster rows;
};

Positions positionsOf(const AnalysisGrid& grid, bool asAnalyzed) {
    if (!asAnalyzed) {
        return {{0, 1, grid.width}, {0, 1, grid.height}};
    }
    return {{qint64(grid.x0) + grid.halfW, grid.stepX, grid.columns()},
            {qint64(grid.y0) + grid.halfH, grid.stepY, grid.rows()}};
}

QByteArray rowText(const double* values, qint64 y, const Raster& columns,
                   const TableOptions& options) {
    const char separator = options.separator == TableOptions::Separator::Comma ? ',' : ' ';
    const bool points = options.layout == TableOptions::Layout::Points;
    QByteArray text;
    for (qint64 i = 0; i < columns.count; ++i) {
        const qint64 x = columns.position(i);
        if (points) {
            text += QByteArray::number(x) + separator + QByteArray::number(y) + separator;
        }
        text += numberText(values[i]);
        const bool lineEnds = points || i + 1 == columns.count;
        text += lineEnds ? '\n' : separator;
    }
    return text;
}

/// The nearest float; beyond them all, infinity.
float nearestFloat(double value) {
    constexpr double Most = std::numeric_limits<float>::max();
    if (std::abs(value) <= Most || std::isnan(value)) {
        return static_cast<float>(value);
    }
    const float infinity = std::numeric_limits<float>::infinity();
    return value > 0.0 ? infinity : -infinity;
}

/// The n-th of the values in order; they are put out of order.
double nthOf(std::vector<double>* values, std::size_t n) {
    std::nth_element(values->begin(), values->begin() + static_cast<std::ptrdiff_t>(n),
                     values->end());
    return (*values)[n];
}

}  // namespace

SavedValues savedValues(const Analyzed2DRes& result, bool asAnalyzed) {
    if (!result.hasData()) {
        return {};
    }
    const Positions at = positionsOf(result.grid(), asAnalyzed);
    SavedValues saved;
    saved.size = QSize(int(at.columns.count), int(at.rows.count));
    saved.values.reserve(std::size_t(at.columns.count) * std::size_t(at.rows.count));
    for (qint64 row = 0; row < at.rows.count; ++row) {
        for (qint64 column = 0; column < at.columns.count; ++column) {
            saved.values.push_back(
                result.shownValueAt(at.columns.position(column), at.rows.position(row)));
        }
    }
    return saved;
}

TiffRange rangeInTiff(const Analyzed2DRes& result, const TiffOptions& options) {
    if (options.fixedScale) {
        return {options.scaleMin, options.scaleMax};
    }
    return result.showsProc() ? TiffRange{result.procMin(), result.procMax()}
                              : TiffRange{result.dataMin(), result.dataMax()};
}

std::optional<int> stepsInTiff(const Analyzed2DRes& result, const TiffOptions& options) {
    // One value a bin: pixels outside the area are no result.
    std::vector<double> values = savedValues(result, true).values;
    values.erase(std::remove_if(values.begin(), values.end(),
                                [](double value) { return !std::isfinite(value); }),
                 values.end());
    if (values.empty()) {
        return std::nullopt;
    }
    const std::size_t outside = values.size() / 20;  // on either side
    double low = nthOf(&values, outside);
    double high = nthOf(&values, values.size() - 1 - outside);
    if (low == high) {
        return std::nullopt;
    }
    const TiffRange range = rangeInTiff(result, options);
    if (options.asAnalyzed && range.low < range.high) {  // values beyond are cut
        low = std::clamp(low, range.low, range.high);
        high = std::clamp(high, range.low, range.high);
    }
    constexpr double Highest = 65535.0;
    const double steps = (high - low) / std::abs(range.high - range.low) * Highest;
    return range.low == range.high ? 0 : int(std::min(steps, Highest));
}

bool writeResultTiff(const QString& fileName, Analyzed2DRes& result, const TiffOptions& options,
                     const QString& origin) {
    const std::unique_ptr<quint16[]> counts(result.tiffDataForSave(
        options.fixedScale, options.scaleMin, options.scaleMax, options.asAnalyzed));
    if (!counts) {
        return false;
    }
    const AnalysisGrid& grid = result.grid();
    const qint64 width = options.asAnalyzed ? grid.columns() : grid.width;
    const qint64 height = options.asAnalyzed ? grid.rows() : grid.height;
    return writeTiff(fileName, quint32(width), int(height), counts.get(), origin) &&
           noteSaved(fileName);
}

bool writeResultFloat(const QString& fileName, const Analyzed2DRes& result, bool asAnalyzed,
                      const QString& origin) {
    const SavedValues saved = savedValues(result, asAnalyzed);
    std::vector<float> floats(saved.values.size());
    std::transform(saved.values.begin(), saved.values.end(), floats.begin(), nearestFloat);
    return writeFloatTiff(fileName, saved.size, floats, origin) && noteSaved(fileName);
}

bool writeResultTable(const QString& fileName, const Analyzed2DRes& result,
                      const TableOptions& options, const QVector<HeaderLine>& header,
                      const QString& origin) {
    if (!result.hasData()) {
        return false;
    }
    const Positions at = positionsOf(result.grid(), options.asAnalyzed);
    const SavedValues saved = savedValues(result, options.asAnalyzed);

    QSaveFile file(fileName);
    if (!openBeside(file)) {
        return false;
    }
    file.write(headerText(header, result));
    file.write(asComments(origin));
    for (qint64 i = 0; i < at.rows.count; ++i) {
        file.write(rowText(saved.values.data() + i * at.columns.count, at.rows.position(i),
                           at.columns, options));
    }
    return putInPlace(file);
}
