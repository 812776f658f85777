#include "display/HistogramView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {
constexpr double Reach = 8.0;  // of a handle, in pixels
constexpr double KeyStep = 0.01;
constexpr double Margin = 6.0;
}  // namespace

HistogramView::HistogramView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Histogram of the map with the range of its colours"));
    setToolTip(
        tr("Drag a handle to change the range of the colours; the arrow keys move the upper "
           "one, with Shift the lower one"));
}

QSize HistogramView::sizeHint() const {
    return {40 * fontMetrics().averageCharWidth(), 8 * fontMetrics().height()};
}

QSize HistogramView::minimumSizeHint() const {
    return {20 * fontMetrics().averageCharWidth(), 4 * fontMetrics().height()};
}

void HistogramView::setHistogram(const Histogram& histogram) {
    m_histogram = histogram;
    update();
}

void HistogramView::setRange(double low, double high) {
    m_low = low;
    m_high = high;
    update();
}

/// The lower part is for the values at the ends.
QRectF HistogramView::plot() const {
    return QRectF(rect()).adjusted(Margin, 2, -Margin, -fontMetrics().height() - 2);
}

double HistogramView::valueAt(double x) const {
    const double part = std::clamp((x - plot().left()) / std::max(1.0, plot().width()), 0.0, 1.0);
    return m_histogram.low + part * (m_histogram.high - m_histogram.low);
}

double HistogramView::placeOf(double value) const {
    const double span = m_histogram.high - m_histogram.low;
    const double part = span > 0.0 ? (value - m_histogram.low) / span : 0.5;
    return plot().left() + std::clamp(part, 0.0, 1.0) * plot().width();
}

HistogramView::Handle HistogramView::handleAt(double x) const {
    const double low = std::abs(x - placeOf(m_low));
    const double high = std::abs(x - placeOf(m_high));
    if (!hasRange() || std::min(low, high) > Reach) {
        return Handle::None;
    }
    return low < high ? Handle::Low : Handle::High;
}

void HistogramView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = plot();
    painter.fillRect(area, palette().base());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(area);
    const std::vector<int>& counts = m_histogram.counts;
    if (counts.empty()) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
        painter.drawText(area, Qt::AlignCenter, tr("No values"));
        return;
    }
    const double most = *std::max_element(counts.begin(), counts.end());
    const double width = (m_histogram.high - m_histogram.low) / static_cast<double>(counts.size());
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double left = placeOf(m_histogram.low + static_cast<double>(i) * width);
        const double right = placeOf(m_histogram.low + static_cast<double>(i + 1) * width);
        const double height = area.height() * counts[i] / most;
        painter.fillRect(QRectF(left, area.bottom() - height, std::max(1.0, right - left), height),
                         palette().color(QPalette::Text));
    }
    if (hasRange()) {
        QColor beside = palette().color(QPalette::Window);
        beside.setAlpha(150);
        const double low = placeOf(m_low);
        const double high = placeOf(m_high);
        painter.fillRect(QRectF(area.topLeft(), QPointF(low, area.bottom())), beside);
        painter.fillRect(QRectF(QPointF(high, area.top()), area.bottomRight()), beside);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 3));
        painter.drawLine(QLineF(low, area.top(), low, area.bottom()));
        painter.drawLine(QLineF(high, area.top(), high, area.bottom()));
    }
    painter.setPen(palette().color(QPalette::WindowText));
    const QRectF below(area.left(), area.bottom() + 1, area.width(), fontMetrics().height());
    painter.drawText(below, Qt::AlignLeft, QString::number(m_histogram.low, 'g', 4));
    painter.drawText(below, Qt::AlignRight, QString::number(m_histogram.high, 'g', 4));
}

void HistogramView::put(Handle handle, double value) {
    const double least = (m_histogram.high - m_histogram.low) / 1000.0;
    if (!hasRange() || handle == Handle::None) {
        return;
    }
    if (m_aboutZero) {
        m_high = std::max(handle == Handle::Low ? -value : value, least);
        m_low = -m_high;
    } else if (handle == Handle::Low) {
        m_low = std::min(value, m_high - least);
    } else {
        m_high = std::max(value, m_low + least);
    }
    update();
    emit rangeDragged(m_low, m_high);
}

void HistogramView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        m_dragged = handleAt(event->localPos().x());
    }
}

void HistogramView::mouseMoveEvent(QMouseEvent* event) {
    const double x = event->localPos().x();
    setCursor(m_dragged != Handle::None || handleAt(x) != Handle::None ? Qt::SizeHorCursor
                                                                       : Qt::ArrowCursor);
    if (m_dragged != Handle::None) {
        put(m_dragged, valueAt(x));
    }
}

void HistogramView::mouseReleaseEvent(QMouseEvent*) {
    m_dragged = Handle::None;
}

void HistogramView::keyPressEvent(QKeyEvent* event) {
    const int way = (event->key() == Qt::Key_Right) - (event->key() == Qt::Key_Left);
    if (way == 0) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool isLow = event->modifiers() & Qt::ShiftModifier;
    put(isLow ? Handle::Low : Handle::High,
        (isLow ? m_low : m_high) + way * KeyStep * (m_histogram.high - m_histogram.low));
}
