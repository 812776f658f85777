#include "output/ResultWriter.h"

#include <QSaveFile>
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

QByteArray rowText(const Analyzed2DRes& result, qint64 y, const Raster& columns,
                   const TableOptions& options) {
    const char separator = options.separator == TableOptions::Separator::Comma ? ',' : ' ';
    const bool points = options.layout == TableOptions::Layout::Points;
    QByteArray text;
    for (qint64 i = 0; i < columns.count; ++i) {
        const qint64 x = columns.position(i);
        if (points) {
            text += QByteArray::number(x) + separator + QByteArray::number(y) + separator;
        }
        text += numberText(result.shownValueAt(x, y));
        const bool lineEnds = points || i + 1 == columns.count;
        text += lineEnds ? '\n' : separator;
    }
    return text;
}

}  // namespace

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

bool writeResultTable(const QString& fileName, const Analyzed2DRes& result,
                      const TableOptions& options, const QVector<HeaderLine>& header,
                      const QString& origin) {
    if (!result.hasData()) {
        return false;
    }
    const AnalysisGrid& grid = result.grid();
    Raster columns{0, 1, grid.width};
    Raster rows{0, 1, grid.height};
    if (options.asAnalyzed) {
        columns = {qint64(grid.x0) + grid.halfW, grid.stepX, grid.columns()};
        rows = {qint64(grid.y0) + grid.halfH, grid.stepY, grid.rows()};
    }

    QSaveFile file(fileName);
    if (!openBeside(file)) {
        return false;
    }
    file.write(headerText(header, result));
    file.write(asComments(origin));
    for (qint64 i = 0; i < rows.count; ++i) {
        file.write(rowText(result, rows.position(i), columns, options));
    }
    return putInPlace(file);
}
