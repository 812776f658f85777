#include "display/CrossSection.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <vector>

#include "base/Globals.h"
#include "display/ImageView.h"
#include "drawing/DrawText.h"
#include "drawing/Ticks.h"

namespace {
constexpr double Margin = 6.0;
constexpr std::size_t FewOfSeen = 33;  // values at either end that may be wild: 3 per cent
constexpr double FarOut = 30.0;        // times what the others span
}  // namespace

CrossSection::CrossSection(Qt::Orientation orientation, QWidget* parent)
    : DispA(parent), m_orientation(orientation) {
    setToolTip(orientation == Qt::Horizontal
                   ? tr("Values along the row of the position, mean over the bin's height")
                   : tr("Values along the column of the position, mean over the bin's width"));
}

void CrossSection::follow(const ImageView* view) {
    m_view = view;
    connect(view, &ImageView::viewChanged, this, [this] { update(); });
}

void CrossSection::setProfile(const QVector<double>& values, int firstPixel) {
    m_values = values;
    m_firstPixel = firstPixel;
    update();
}

void CrossSection::setValueRange(double low, double high) {
    const bool isRange = high > low && std::isfinite(high - low);
    m_valueRange = isRange ? std::make_optional(qMakePair(low, high)) : std::nullopt;
    update();
}

void CrossSection::setMarker(double position) {
    m_marker = position;
    update();
}

void CrossSection::visibleIndices(int* first, int* end) const {
    const double from = isAcross() ? m_coord.rx0 : m_coord.ry0;
    const double to = isAcross() ? m_coord.rx1 : m_coord.ry1;
    *first = toClampedInt(std::floor(from) - m_firstPixel, 0, m_values.size());
    *end = toClampedInt(std::ceil(to) - m_firstPixel, 0, m_values.size());
}

/// Of the finite values that are seen, or some range around them when they are all equal. A few
/// values that lie far out of what all others span do not flatten the line; it runs out of sight
/// there.
QPair<double, double> CrossSection::rangeOfSeen() const {
    int first = 0;
    int end = 0;
    visibleIndices(&first, &end);
    std::vector<double> seen;
    std::copy_if(m_values.begin() + first, m_values.begin() + end, std::back_inserter(seen),
                 [](double value) { return std::isfinite(value); });
    if (seen.empty()) {
        return {0.0, 1.0};
    }
    std::sort(seen.begin(), seen.end());
    double low = seen.front();
    double high = seen.back();
    const std::size_t few = seen.size() / FewOfSeen;
    const double usualLow = seen[few];
    const double usualHigh = seen[seen.size() - 1 - few];
    const double span = usualHigh - usualLow;
    if (span > 0.0 && usualLow - low > FarOut * span) {
        low = usualLow - span;
    }
    if (span > 0.0 && high - usualHigh > FarOut * span) {
        high = usualHigh + span;
    }
    if (!(high - low > std::max(1e-200, 1e-12 * std::max(std::abs(low), std::abs(high))))) {
        const double half = low == 0.0 ? 1.0 : std::max(std::abs(low) * 0.1, 1e-100);
        low -= half;
        high += half;
    }
    constexpr double Limit = 1e300;  // spans stay finite
    return {std::max(low, -Limit), std::min(high, Limit)};
}

void CrossSection::updateCoord() {
    if (m_view == nullptr) {
        return;
    }
    const bool across = isAcross();
    const ChCoord& image = m_view->coord();
    // Both are laid out side by side, but their frames may differ.
    const QPoint shift = window() == m_view->window()
                             ? m_view->mapTo(window(), QPoint()) - mapTo(window(), QPoint())
                             : QPoint();
    if (across) {
        m_coord.setScreen(image.sx0 + shift.x(), image.sx1 + shift.x(), height() - Margin, Margin);
        m_coord.setReal(image.rx0, image.rx1, 0, 1);
    } else {
        m_coord.setScreen(Margin, width() - Margin, image.sy0 + shift.y(), image.sy1 + shift.y());
        m_coord.setReal(0, 1, image.ry0, image.ry1);
    }
    const auto [low, high] = m_valueRange ? *m_valueRange : rangeOfSeen();
    if (across) {
        m_coord.setReal(image.rx0, image.rx1, low, high);
    } else {
        m_coord.setReal(low, high, image.ry0, image.ry1);
    }
}

void CrossSection::paintProfileOnTicks(QPainter& painter) const {
    const bool across = m_orientation == Qt::Horizontal;
    const QColor grid = palette().color(QPalette::Mid);
    const QRectF all(rect());
    const Ticks ticks =
        across ? ticksBetween(m_coord.ry0, m_coord.ry1) : ticksBetween(m_coord.rx0, m_coord.rx1);
    for (double value : ticks.values) {
        const double s = across ? m_coord.r2sY(value) : m_coord.r2sX(value);
        painter.setPen(QPen(grid, 0, Qt::DotLine));
        painter.drawLine(across ? QPointF(0, s) : QPointF(s, 0),
                         across ? QPointF(width(), s) : QPointF(s, height()));
    }
    paintProfile(painter);
    // The numbers last, on paper of their own: a noisy line would hide them.
    QColor paper = palette().color(QPalette::Base);
    paper.setAlpha(200);
    double taken = -1.0;  // by labels, from the low end of the widget on
    for (double value : ticks.values) {
        const double s = across ? m_coord.r2sY(value) : m_coord.r2sX(value);
        const QString text = tickText(value, ticks.step);
        const double size =
            across ? fontMetrics().height() : fontMetrics().horizontalAdvance(text) + 6;
        const double room = across ? height() : width();
        const double at = across ? height() - s : s;
        const double begin = std::max(0.0, std::min(at - size / 2, room - size));
        if (begin < taken) {
            continue;
        }
        taken = begin + size;
        const QPointF anchor = across ? QPointF(2, s) : QPointF(s, 2);
        const Qt::Alignment side =
            across ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignHCenter | Qt::AlignTop;
        painter.setPen(Qt::NoPen);
        painter.fillRect(drawText(painter, anchor, text, side, all), paper);
        painter.setPen(palette().color(QPalette::WindowText));
        drawText(painter, anchor, text, side, all);
    }
}

void CrossSection::paintBelow(QPainter& painter) {
    painter.fillRect(rect(), palette().color(QPalette::Base));
    if (m_view == nullptr || m_values.isEmpty()) {
        return;
    }
    updateCoord();
    paintProfileOnTicks(painter);
    if (m_marker >= 0.0) {
        const double middle = std::floor(m_marker) + 0.5;
        const double s = isAcross() ? m_coord.r2sX(middle) : m_coord.r2sY(middle);
        painter.setPen(QPen(getColor(0), 1, Qt::DashLine));
        painter.drawLine(isAcross() ? QPointF(s, 0) : QPointF(0, s),
                         isAcross() ? QPointF(s, height()) : QPointF(width(), s));
    }
    paintReadOut(painter);
}

void CrossSection::paintProfile(QPainter& painter) const {
    const auto onScreen = [this](double pixel, double value) {
        return isAcross() ? QPointF(m_coord.r2sX(pixel), m_coord.r2sY(value))
                          : QPointF(m_coord.r2sX(value), m_coord.r2sY(pixel));
    };
    int first = 0;
    int end = 0;
    visibleIndices(&first, &end);
    const double low = isAcross() ? m_coord.ry0 : m_coord.rx0;
    const double high = isAcross() ? m_coord.ry1 : m_coord.rx1;
    QPainterPath line;
    bool broken = true;
    for (int i = first; i < end; ++i) {
        if (!std::isfinite(m_values[i])) {
            broken = true;
            continue;
        }
        // What lies out of sight stays near it, for the painter's numbers are small.
        const double value = std::max(2 * low - high, std::min(m_values[i], 2 * high - low));
        const QPointF from = onScreen(m_firstPixel + i, value);
        broken ? line.moveTo(from) : line.lineTo(from);
        line.lineTo(onScreen(m_firstPixel + i + 1.0, value));
        broken = false;
    }
    const bool isDark = palette().color(QPalette::Base).lightness() < 128;
    painter.setPen(QPen(isDark ? getColor(8) : getColor(2), 1));
    painter.drawPath(line);
}

QString CrossSection::readOut() const {
    const int index = m_hovered - m_firstPixel;
    if (m_hovered < 0 || index < 0 || index >= m_values.size()) {
        return QString();
    }
    return QStringLiteral("(%1, %2)")
        .arg(QString::number(m_hovered), QString::number(m_values[index], 'g', 6));
}

void CrossSection::paintReadOut(QPainter& painter) const {
    const QString text = readOut();
    if (text.isEmpty()) {
        return;
    }
    const QRectF all = QRectF(rect()).adjusted(2, 2, -2, -2);
    const QPointF anchor = isAcross() ? all.topRight() : all.bottomRight();
    const Qt::Alignment corner = Qt::AlignRight | (isAcross() ? Qt::AlignTop : Qt::AlignBottom);
    painter.setPen(Qt::NoPen);
    const QRectF place = drawText(painter, anchor, text, corner, all);
    painter.fillRect(place, palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::WindowText));
    drawText(painter, anchor, text, corner, all);
}

void CrossSection::mouseMoveEvent(QMouseEvent* event) {
    if (event->source() == Qt::MouseEventNotSynthesized) {
        updateCoord();
        const double pixel =
            isAcross() ? m_coord.s2rX(event->localPos().x()) : m_coord.s2rY(event->localPos().y());
        m_hovered = toClampedInt(std::floor(pixel), -1, std::numeric_limits<int>::max());
    }
    DispA::mouseMoveEvent(event);
}

void CrossSection::leaveEvent(QEvent* event) {
    DispA::leaveEvent(event);
    m_hovered = -1;
    update();
}
