#include "display/ColorBar.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "app/Globals.h"
#include "display/DrawText.h"
#include "display/Ticks.h"

namespace {
constexpr double BarWidth = 20.0;
constexpr double WheelStep = 1.1;
}  // namespace

ColorBar::ColorBar(QWidget* parent) : DispA(parent) {
    setToolTip(tr("Drag an end to fix the range of the frames; double click for each frame's own"));
}

double ColorBar::rangeMin() const {
    return m_table == Grey && !m_auto ? m_fixedMin : m_min;
}
double ColorBar::rangeMax() const {
    return m_table == Grey && !m_auto ? m_fixedMax : m_max;
}

void ColorBar::setTable(Table table) {
    m_table = table;
    update();
}

void ColorBar::setDataRange(double min, double max) {
    setRange(min, max);
}

void ColorBar::setRange(double min, double max) {
    m_min = min;
    m_max = max;
    update();
}

void ColorBar::setAuto(bool on) {
    if (on != m_auto) {
        m_auto = on;
        emit newBar();
        update();
    }
}

void ColorBar::fix(double min, double max) {
    if (!std::isfinite(min) || !std::isfinite(max)) {
        return;
    }
    m_auto = false;
    m_fixedMin = min;
    m_fixedMax = max;
    emit newBar();
    update();
}

QRectF ColorBar::barRect() const {
    const double margin = fontMetrics().height() + 4.0;
    return QRectF(6.0, margin, BarWidth, std::max(1.0, height() - 2 * margin));
}

void ColorBar::paintBelow(QPainter& painter) {
    const QRectF bar = barRect();
    const int steps = static_cast<int>(bar.height());
    for (int i = 0; i < steps; ++i) {
        const double t = 1.0 - i / std::max(1.0, bar.height() - 1);
        const uchar* c = m_table == Grey ? greyOf(t) : colorOf(t);
        painter.fillRect(QRectF(bar.left(), bar.top() + i, bar.width(), 1.0),
                         m_table == Grey ? QColor(*c, *c, *c) : QColor(c[0], c[1], c[2]));
    }
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawRect(bar);

    const double low = rangeMin();
    const double high = rangeMax();
    const QRectF all(rect());
    const QRectF top = drawText(painter, QPointF(bar.left(), bar.top() - 2),
                                high >= low ? QString::number(high, 'g', 6) : QString(),
                                Qt::AlignLeft | Qt::AlignBottom, all);
    const QRectF bottom = drawText(painter, QPointF(bar.left(), bar.bottom() + 2),
                                   high >= low ? QString::number(low, 'g', 6) : QString(),
                                   Qt::AlignLeft | Qt::AlignTop, all);
    m_coord.setScreen(0, 1, bar.bottom(), bar.top());
    m_coord.setReal(0, 1, low, high);
    const Ticks ticks = ticksBetween(low, high);
    for (double value : ticks.values) {
        const double y = m_coord.r2sY(value);
        if (y < top.bottom() + 4 || y > bottom.top() - 4) {
            continue;
        }
        painter.drawLine(QPointF(bar.right(), y), QPointF(bar.right() + 4, y));
        drawText(painter, QPointF(bar.right() + 6, y), tickText(value, ticks.step),
                 Qt::AlignLeft | Qt::AlignVCenter, all);
    }
    if (m_table == Grey && m_auto) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
        drawText(painter, all.bottomRight(), tr("Auto"), Qt::AlignRight | Qt::AlignBottom, all);
    }
}

void ColorBar::mousePressEvent(QMouseEvent* event) {
    DispA::mousePressEvent(event);
    if (canBeDragged() && event->button() == Qt::LeftButton) {
        m_drag = event->localPos().y() < barRect().center().y() ? Drag::High : Drag::Low;
    }
}

void ColorBar::mouseMoveEvent(QMouseEvent* event) {
    const double before = m_mouse.current().y();
    DispA::mouseMoveEvent(event);
    if (m_drag == Drag::None || event->source() != Qt::MouseEventNotSynthesized) {
        return;
    }
    const double moved =
        (before - event->localPos().y()) / barRect().height() * (rangeMax() - rangeMin());
    if (m_drag == Drag::High) {
        fix(rangeMin(), rangeMax() + moved);
    } else {
        fix(rangeMin() + moved, rangeMax());
    }
}

void ColorBar::mouseReleaseEvent(QMouseEvent* event) {
    DispA::mouseReleaseEvent(event);
    m_drag = Drag::None;
}

void ColorBar::mouseDoubleClickEvent(QMouseEvent* event) {
    DispA::mouseDoubleClickEvent(event);
    m_drag = Drag::None;
    setAuto(true);
}

void ColorBar::wheelEvent(QWheelEvent* event) {
    DispA::wheelEvent(event);
    if (canBeDragged() && event->angleDelta().y() != 0) {
        const double factor = event->angleDelta().y() > 0 ? 1 / WheelStep : WheelStep;
        const double middle = 0.5 * (rangeMin() + rangeMax());
        const double half = 0.5 * (rangeMax() - rangeMin()) * factor;
        fix(middle - half, middle + half);
    }
}
