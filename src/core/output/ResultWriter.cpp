#include "output/ResultWriter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "files/WholeDevice.h"
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
    bool isAll(qint64 size) const { return first == 0 && step == 1 && count == size; }
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

/// The values that a save takes, row by row: one a pixel, or one a bin when as analysed. Never all
/// of them at once: a map may take half of the memory.
class SavedRows {
  public:
    SavedRows(const Analyzed2DRes& result, bool asAnalyzed)
        : at(positionsOf(result.grid(), asAnalyzed)),
          m_result(result),
          m_isWhole(at.columns.isAll(result.grid().width) && at.rows.isAll(result.grid().height)),
          m_row(static_cast<std::size_t>(std::max<qint64>(0, at.columns.count))) {}

    /// Valid until the next call.
    const double* row(qint64 row) {
        if (m_isWhole) {
            return m_result.shown() + row * at.columns.count;
        }
        for (qint64 column = 0; column < at.columns.count; ++column) {
            m_row[static_cast<std::size_t>(column)] =
                m_result.shownValueAt(at.columns.position(column), at.rows.position(row));
        }
        return m_row.data();
    }

    const Positions at;

  private:
    const Analyzed2DRes& m_result;
    const bool m_isWhole;  // the rows are those of the map
    std::vector<double> m_row;
};

/// A number of the same order as the value.
quint64 keyOf(double value) {
    constexpr quint64 Sign = quint64(1) << 63;
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return (bits & Sign) != 0 ? ~bits : bits | Sign;
}

double valueOf(quint64 key) {
    constexpr quint64 Sign = quint64(1) << 63;
    const quint64 bits = (key & Sign) != 0 ? key & ~Sign : ~key;
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Calls take(key) for the finite values.
template <class Take>
void forKeys(SavedRows* rows, Take take) {
    for (qint64 y = 0; y < rows->at.rows.count; ++y) {
        const double* const values = rows->row(y);
        for (qint64 x = 0; x < rows->at.columns.count; ++x) {
            if (std::isfinite(values[x])) {
                take(keyOf(values[x]));
            }
        }
    }
}

/// How many finite values have these upper bits, by the 16 bits below.
using Counts = std::vector<std::size_t>;
Counts countByKey(SavedRows* rows, quint64 upper, int shift) {
    Counts counts(std::size_t(1) << 16);
    forKeys(rows, [&counts, upper, shift](quint64 key) {
        key >>= shift;
        if (key >> 16 == upper) {
            ++counts[key & 0xFFFF];
        }
    });
    return counts;
}

/// As many numbers as are sorted at once.
constexpr std::size_t Few = std::size_t(1) << 17;

/// The finite value that has `place` others below it; some value where there are not as many.
/// @param counts of the 16 highest bits
double valueInOrder(SavedRows* rows, std::size_t place, Counts counts) {
    quint64 key = 0;
    for (int shift = 48;; shift -= 16) {
        std::size_t step = 0;
        while (step + 1 < counts.size() && place >= counts[step]) {
            place -= counts[step++];
        }
        key = key << 16 | step;
        if (shift == 0) {
            return valueOf(key);
        }
        if (place < counts[step] && counts[step] <= Few) {
            std::vector<quint64> left;
            left.reserve(counts[step]);
            forKeys(rows, [&left, key, shift](quint64 each) {
                if (each >> shift == key) {
                    left.push_back(each);
                }
            });
            const auto wanted = left.begin() + static_cast<std::ptrdiff_t>(place);
            std::nth_element(left.begin(), wanted, left.end());
            return valueOf(*wanted);
        }
        counts = countByKey(rows, key, shift - 16);
    }
}

double valueInOrder(std::vector<quint64>* keys, std::size_t place) {
    const auto wanted = keys->begin() + static_cast<std::ptrdiff_t>(place);
    std::nth_element(keys->begin(), wanted, keys->end());
    return valueOf(*wanted);
}

/// The values that a twentieth of the finite ones lies below, and above; none without such a value.
std::optional<TiffRange> middleOf(const Analyzed2DRes& result) {
    constexpr std::size_t Share = 20;
    SavedRows rows(result, true);
    if (result.grid().pointCount() <= static_cast<qint64>(Few)) {
        std::vector<quint64> keys;
        forKeys(&rows, [&keys](quint64 key) { keys.push_back(key); });
        const std::size_t outside = keys.size() / Share;
        return keys.empty()
                   ? std::nullopt
                   : std::optional<TiffRange>({valueInOrder(&keys, outside),
                                               valueInOrder(&keys, keys.size() - 1 - outside)});
    }
    const Counts counts = countByKey(&rows, 0, 48);
    const std::size_t n = std::accumulate(counts.begin(), counts.end(), std::size_t(0));
    return n == 0 ? std::nullopt
                  : std::optional<TiffRange>({valueInOrder(&rows, n / Share, counts),
                                              valueInOrder(&rows, n - 1 - n / Share, counts)});
}

}  // namespace

TiffRange rangeInTiff(const Analyzed2DRes& result, const TiffOptions& options) {
    if (options.fixedScale) {
        return {options.scaleMin, options.scaleMax};
    }
    return result.showsProc() ? TiffRange{result.procMin(), result.procMax()}
                              : TiffRange{result.dataMin(), result.dataMax()};
}

std::optional<int> stepsInTiff(const Analyzed2DRes& result, const TiffOptions& options) {
    // One value a bin: pixels outside the area are no result.
    if (!result.hasData()) {
        return std::nullopt;
    }
    const std::optional<TiffRange> middle = middleOf(result);
    if (!middle || middle->low == middle->high) {
        return std::nullopt;
    }
    double low = middle->low;
    double high = middle->high;
    const TiffRange range = rangeInTiff(result, options);
    if (options.asAnalyzed && range.low < range.high) {  // values beyond are cut
        low = std::clamp(low, range.low, range.high);
        high = std::clamp(high, range.low, range.high);
    }
    constexpr double Highest = 65535.0;
    const double steps = (high - low) / std::abs(range.high - range.low) * Highest;
    return range.low == range.high ? 0 : int(std::min(steps, Highest));
}

bool writeResultTiff(const QString& fileName, const Analyzed2DRes& result,
                     const TiffOptions& options, const QString& origin) {
    if (!result.hasData()) {
        return false;
    }
    const auto fill = [&](quint64 first, std::size_t count, quint16* to) {
        result.fillTiffData(options.fixedScale, options.scaleMin, options.scaleMax,
                            options.asAnalyzed, first, count, to);
    };
    const AnalysisGrid& grid = result.grid();
    const qint64 width = options.asAnalyzed ? grid.columns() : grid.width;
    const qint64 height = options.asAnalyzed ? grid.rows() : grid.height;
    return writeTiff(fileName, quint32(width), int(height), fill, origin) && noteSaved(fileName);
}

bool writeResultFloat(const QString& fileName, const Analyzed2DRes& result, bool asAnalyzed,
                      const QString& origin) {
    if (!result.hasData()) {
        return false;
    }
    const Positions at = positionsOf(result.grid(), asAnalyzed);
    const auto fill = [&](quint64 first, std::size_t count, float* to) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto point = static_cast<qint64>(first + i);
            to[i] = nearestFloat(result.shownValueAt(at.columns.position(point % at.columns.count),
                                                     at.rows.position(point / at.columns.count)));
        }
    };
    return writeFloatTiff(fileName, QSize(int(at.columns.count), int(at.rows.count)), fill,
                          origin) &&
           noteSaved(fileName);
}

bool writeResultTable(const QString& fileName, const Analyzed2DRes& result,
                      const TableOptions& options, const QVector<HeaderLine>& header,
                      const QString& origin) {
    if (!result.hasData()) {
        return false;
    }
    SavedRows rows(result, options.asAnalyzed);
    WholeDevice file(fileName);
    if (!file.open()) {
        return false;
    }
    file.write(headerText(header, result));
    file.write(asComments(origin));
    for (qint64 i = 0; i < rows.at.rows.count; ++i) {
        file.write(rowText(rows.row(i), rows.at.rows.position(i), rows.at.columns, options));
    }
    return file.putInPlace() && noteSaved(fileName);
}
