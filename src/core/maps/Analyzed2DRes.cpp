#include "maps/Analyzed2DRes.h"

#include <QImage>
#include <algorithm>
#include <cmath>
#include <limits>

#include "base/Numbers.h"
#include "maps/FillBin.h"
#include "maps/RobustRange.h"

namespace {

constexpr int RowsFollowed = 200;  // tell the range of values that come in

int sizeOf(const AnalysisGrid& grid) {
    const qint64 count = static_cast<qint64>(grid.width) * grid.height;
    return grid.width > 0 && grid.height > 0 && count <= std::numeric_limits<int>::max()
               ? static_cast<int>(count)
               : 0;
}

void widen(double value, double* min, double* max) {
    const bool isNumber = std::isfinite(value);
    *max = isNumber && *max < value ? value : *max;
    *min = isNumber && value < *min ? value : *min;
}

/// The low 16 bits of the value cut to an integer; 0 for what has none.
quint16 lowBits(double value) {
    constexpr double Limit = 9223372036854775808.0;  // 2^63
    if (!(value > -Limit && value < Limit)) {
        return 0;
    }
    return static_cast<quint16>(static_cast<qint64>(value) & 0xFFFF);
}

}  // namespace

Analyzed2DRes::Analyzed2DRes(QObject* parent) : QObject(parent) {}

Analyzed2DRes::~Analyzed2DRes() = default;

double Analyzed2DRes::at(const Array& array, qint64 x, qint64 y) const {
    if (array.isEmpty() || !m_grid.isInsideImage(x, y)) {
        return 0.0;
    }
    return array.constData()[y * m_grid.width + x];
}

const Analyzed2DRes::Array& Analyzed2DRes::procArray() const {
    if (m_proc.isEmpty() && !m_data.isEmpty()) {
        m_proc = Array::zeros(m_data.size());
    }
    return m_proc;
}

Analyzed2DRes::Range Analyzed2DRes::rangeInUse() const {
    if (m_fixedScale) {
        return {m_scaleMin, m_scaleMax};
    }
    if (!m_mask) {
        return m_showProc ? Range{m_procMin, m_procMax} : Range{m_dataMin, m_dataMax};
    }
    if (!m_visibleRange) {
        const Range left = visibleExtremes();
        m_visibleRange = left.min > left.max ? Range{0.0, 1.0} : left;
    }
    return *m_visibleRange;
}

double Analyzed2DRes::rangeMin() const {
    return rangeInUse().min;
}

double Analyzed2DRes::rangeMax() const {
    return rangeInUse().max;
}

MapValues Analyzed2DRes::visibleValues() const {
    MapValues values = shownArray();
    if (m_mask) {
        const std::size_t pixels =
            std::min(m_mask->size(), static_cast<std::size_t>(values.size()));
        double* const value = values.data();
        for (std::size_t i = 0; i < pixels; ++i) {
            value[i] = (*m_mask)[i] ? std::numeric_limits<double>::quiet_NaN() : value[i];
        }
    }
    return values;
}

double Analyzed2DRes::visibleValueAt(qint64 x, qint64 y) const {
    const bool blank =
        m_grid.isInsideImage(x, y) && isBlank(static_cast<std::size_t>(y * m_grid.width + x));
    return blank ? std::numeric_limits<double>::quiet_NaN() : shownValueAt(x, y);
}

void Analyzed2DRes::setMask(const Mask& mask) {
    if (mask || m_mask) {
        m_mask = mask;
        genImg();
    }
}

void Analyzed2DRes::setNoise(const Mask& noise) {
    m_noise = noise;
    m_robustRange.reset();
}

void Analyzed2DRes::takeVisible(const Analyzed2DRes& other) {
    startOver(other.grid());
    m_mask = other.m_mask;
    m_showProc = other.m_showProc;
    m_data = other.visibleValues();
    m_lastRow = other.m_lastRow;
    const Range left = other.visibleExtremes();
    m_dataMin = left.min;
    m_dataMax = left.max;
    if (m_showProc) {
        m_proc = m_data;
        setProcRange(m_dataMin, m_dataMax);
    }
}

/// Of the points of the grid: pixels beside the area hold no values.
Analyzed2DRes::Range Analyzed2DRes::visibleExtremes() const {
    Range range{1e300, -1e300};
    const Array& shown = shownArray();
    forEachPoint(m_grid, [&](int x, int y) {
        const std::ptrdiff_t pixel = std::ptrdiff_t{y} * m_grid.width + x;
        if (m_grid.isAnalysed(x, y) && !isBlank(static_cast<std::size_t>(pixel))) {
            widen(shown.isEmpty() ? 0.0 : shown[pixel], &range.min, &range.max);
        }
    });
    return range;
}

QRect Analyzed2DRes::filled() const {
    const BinRaster bins = m_grid.raster();
    if (bins.columns <= 0) {
        return {};
    }
    const qint64 right = qint64(bins.x(bins.columns - 1)) + bins.halfWidth;
    return QRect(QPoint(m_grid.x0, m_grid.y0), QPoint(static_cast<int>(right), m_lastRow))
        .intersected(QRect(0, 0, m_grid.width, m_grid.height));
}

std::pair<double, double> Analyzed2DRes::robustRange(int threads) const {
    if (m_robustRange) {
        return *m_robustRange;
    }
    const BinRaster bins = m_grid.raster();
    const double* const shown = shownArray().constData();
    int rows = 0;
    while (shown != nullptr && rows < bins.rows && bins.y(rows) <= m_lastRow) {
        ++rows;
    }
    const int step = m_follows ? std::max(1, rows / RowsFollowed) : 1;
    const unsigned char* leftOut = m_noise ? m_noise->data() : nullptr;
    const auto valuesOf = [&](int row, double* to) {
        const std::size_t line =
            static_cast<std::size_t>(bins.y(row * step)) * static_cast<std::size_t>(m_grid.width);
        int n = 0;
        for (int column = 0; column < bins.columns; ++column) {
            const std::size_t pixel = line + static_cast<std::size_t>(bins.x(column));
            const bool isShown = std::isfinite(shown[pixel]) && !isBlank(pixel) &&
                                 (leftOut == nullptr || leftOut[pixel] == 0);
            to[n] = shown[pixel];
            n += isShown && bins.holds(column, row * step) ? 1 : 0;
        }
        return n;
    };
    const Range all = m_showProc ? Range{m_procMin, m_procMax} : Range{m_dataMin, m_dataMax};
    const auto find = [&] {
        return ::robustRange({(rows + step - 1) / step, std::max(0, bins.columns), valuesOf}, 0.01,
                             all.min, all.max, threads);
    };
    auto found = find();
    if (!found && leftOut != nullptr) {
        leftOut = nullptr;
        found = find();
    }
    const bool isRange = found && found->first < found->second;
    const std::pair<double, double> range =
        isRange ? *found : std::make_pair(rangeMin(), rangeMax());
    m_robustRange = range;
    return range;
}

void Analyzed2DRes::setProcRange(double min, double max) {
    m_procMin = min;
    m_procMax = max;
}

void Analyzed2DRes::updateExtremes() {
    // Parts side by side: each waits for its own last comparison only.
    constexpr int Parts = 8;
    const std::ptrdiff_t part = m_data.size() / Parts;
    double min[Parts];
    double max[Parts];
    std::fill_n(min, Parts, 1e300);
    std::fill_n(max, Parts, -1e300);
    for (std::ptrdiff_t i = 0; i < part; ++i) {
        for (int p = 0; p < Parts; ++p) {
            widen(m_data[p * part + i], &min[p], &max[p]);
        }
    }
    m_dataMin = 1e300;
    m_dataMax = -1e300;
    for (int p = 0; p < Parts; ++p) {
        m_dataMin = std::min(m_dataMin, min[p]);
        m_dataMax = std::max(m_dataMax, max[p]);
    }
    for (std::ptrdiff_t i = Parts * part; i < m_data.size(); ++i) {
        widen(m_data[i], &m_dataMin, &m_dataMax);
    }
}

void Analyzed2DRes::clear() {
    m_grid.start();
    setProcRange(0.0, 1.0);
    m_dataMin = 1e300;
    m_dataMax = -1e300;
    m_lastRow = -1;
    dropPicture();
    m_proc = Array();
    m_data = Array::zeros(sizeOf(m_grid));
    if (m_grid.inside) {
        fill(std::numeric_limits<double>::quiet_NaN());
    }
}

void Analyzed2DRes::fill(double value) {
    std::fill_n(m_data.data(), m_data.size(), value);
}

void Analyzed2DRes::startOver(const AnalysisGrid& grid) {
    m_showProc = false;
    m_mask.reset();
    m_noise.reset();
    setGrid(grid);
    clear();
}

void Analyzed2DRes::setNo(int no) {
    m_no = no;
}
int Analyzed2DRes::no() const {
    return m_no;
}

void Analyzed2DRes::touch(qint64 first, qint64 last) {
    const bool none = m_firstNew >= m_endNew;
    m_firstNew = none ? first : std::min(m_firstNew, first);
    m_endNew = none ? last + 1 : std::max(m_endNew, last + 1);
    m_lastRow = std::max(m_lastRow, static_cast<int>(std::min(last, qint64(m_grid.height) - 1)));
}

void Analyzed2DRes::setData(int ix, int iy, int xw, int yw, double t) {
    widen(t, &m_dataMin, &m_dataMax);
    touch(qint64(iy) - yw, qint64(iy) + yw);
    if (!m_data.isEmpty()) {
        fillBin(m_data.data(), m_grid, ix, iy, xw, yw, t);
    }
}

void Analyzed2DRes::setRow(int x, int step, int y, int xw, int yw, const double* values,
                           std::ptrdiff_t stride, int count) {
    const bool isPixels = xw == 0 && yw == 0 && !m_data.isEmpty() && x >= 0 && y >= 0 &&
                          y < m_grid.height && step > 0 && count > 0 &&
                          qint64(x) + qint64(step) * (count - 1) < m_grid.width;
    if (!isPixels) {
        for (int i = 0; i < count; ++i) {
            setData(x + i * step, y, xw, yw, values[i * stride]);
        }
        return;
    }
    touch(y, y);
    double* const first = m_data.data() + static_cast<std::ptrdiff_t>(y) * m_grid.width + x;
    double min = m_dataMin;
    double max = m_dataMax;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const double value = values[i * stride];
        widen(value, &min, &max);
        first[i * step] = value;
    }
    m_dataMin = min;
    m_dataMax = max;
}

quint16* Analyzed2DRes::tiffDataForSave(bool fixedScale, double scaleMin, double scaleMax,
                                        bool asAnalyzed) {
    m_count = 0;
    if (m_data.isEmpty()) {
        return nullptr;
    }
    const auto pixels = static_cast<std::size_t>(m_data.size());
    const auto n = asAnalyzed ? static_cast<std::size_t>(m_grid.pointCount()) : pixels;
    auto* values = new quint16[std::max(pixels, n)]();
    fillTiffData(fixedScale, scaleMin, scaleMax, asAnalyzed, 0, n, values);
    m_count = static_cast<int>(n);
    return values;
}

void Analyzed2DRes::fillTiffData(bool fixedScale, double scaleMin, double scaleMax, bool asAnalyzed,
                                 quint64 first, std::size_t count, quint16* to) const {
    const Array& source = shownArray();
    const double min = fixedScale ? scaleMin : (m_showProc ? m_procMin : m_dataMin);
    const double max = fixedScale ? scaleMax : (m_showProc ? m_procMax : m_dataMax);
    if (!asAnalyzed) {
        const double* const values = source.constData() + first;
        for (std::size_t i = 0; i < count; ++i) {
            to[i] = lowBits((values[i] - min) / (max - min) * 65535);
        }
        return;
    }
    const qint64 columns = m_grid.columns();
    const qint64 firstX = qint64(m_grid.x0) + m_grid.halfW;
    const qint64 firstY = qint64(m_grid.y0) + m_grid.halfH;
    for (std::size_t i = 0; i < count; ++i) {
        const auto point = static_cast<qint64>(first + i);
        const double value = at(source, firstX + point % columns * m_grid.stepX,
                                firstY + point / columns * m_grid.stepY);
        const double clamped = value < min ? min : (value > max ? max : value);
        to[i] = lowBits((clamped - min) / (max - min) * 65535);
    }
}

void Analyzed2DRes::setDeglitchConds(double f, double r) {
    m_deglitchFactor = f;
    m_deglitchRatio = r;
}

void Analyzed2DRes::selectProcImg(bool on) {
    m_showProc = on;
    genImg();
}

MapToProcess Analyzed2DRes::toProcess() const {
    return {m_grid, m_data, m_dataMin, m_dataMax};
}

void Analyzed2DRes::takeProcessed(const Processed& made) {
    m_proc = made.values;
    setProcRange(made.min, made.max);
    if (m_showProc) {
        genImg();
    }
}

void Analyzed2DRes::deglitch() {
    if (!m_data.isEmpty()) {
        takeProcessed(*deglitched(toProcess(), m_deglitchFactor, m_deglitchRatio, {}));
    }
}

void Analyzed2DRes::deglitch2(double limit) {
    if (!m_data.isEmpty()) {
        takeProcessed(*smoothed(toProcess(), limit, {}));
    }
}

void Analyzed2DRes::copyProc2Data() {
    if (m_data.isEmpty()) {
        return;
    }
    qDebug("copy");
    m_data = procArray();
    m_dataMin = m_procMin;
    m_dataMax = m_procMax;
}

void Analyzed2DRes::setFixedScale(bool on) {
    m_fixedScale = on;
    genImg();
}

void Analyzed2DRes::setScale(double min, double max) {
    m_scaleMin = min;
    m_scaleMax = max;
    genImg();
}
