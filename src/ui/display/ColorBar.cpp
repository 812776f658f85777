#include "display/ColorBar.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "drawing/BarScale.h"
#include "drawing/DrawText.h"
#include "drawing/Letters.h"

namespace {
constexpr double BarWidth = 20.0;
constexpr double WheelStep = 1.1;
}  // namespace

ColorBar::ColorBar(QWidget* parent) : DispA(parent) {
    setToolTip(
        tr("Frames: drag an end or click on its value to fix the range, turn the wheel to "
           "widen or narrow it; right click for more, double click for each frame's own. "
           "Results: the Analyzer sets the range"));
    m_editor = new QLineEdit(this);
    m_editor->hide();
    connect(m_editor, &QLineEdit::editingFinished, this, &ColorBar::takeTyped);
}

double ColorBar::rangeMin() const {
    return canBeChanged() && !m_auto ? m_fixedMin : m_min;
}
double ColorBar::rangeMax() const {
    return canBeChanged() && !m_auto ? m_fixedMax : m_max;
}

void ColorBar::use(Of of, const ColorScale& colors) {
    if (of != m_of) {
        m_drag = End::None;
        m_typed = End::None;
        m_editor->hide();
    }
    m_of = of;
    m_colors = &colors;
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
        m_fixedMin = m_min;
        m_fixedMax = m_max;
        m_auto = on;
        emit newBar();
        update();
    }
}

void ColorBar::fix(double min, double max) {
    if (!(max > min) || !std::isfinite(max - min)) {
        return;
    }
    m_auto = false;
    m_fixedMin = min;
    m_fixedMax = max;
    emit newBar();
    update();
}

QRectF ColorBar::barRect() const {
    // Room for a value above, a value and the word "Auto" below.
    const double line = fontMetrics().height() + 4.0;
    return QRectF(6.0, line, BarWidth, std::max(1.0, height() - 3 * line));
}

QRectF ColorBar::valueRect(End end) const {
    const QRectF bar = barRect();
    return end == End::High ? QRectF(0, 0, width(), bar.top())
                            : QRectF(0, bar.bottom(), width(), bar.top());
}

void ColorBar::paintBelow(QPainter& painter) {
    const QRectF bar = barRect();
    paintBar(painter, bar);
    if (rangeMax() >= rangeMin()) {
        paintEnds(painter, bar);
        paintBarTicks(painter, Letters(font()), bar, rangeMin(), rangeMax(),
                      fontMetrics().height() / 2.0, QRectF(rect()));
    }
    if (canBeChanged()) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
        drawText(painter, QPointF(bar.left(), height() - 2.0), m_auto ? tr("Auto") : tr("Fixed"),
                 Qt::AlignLeft | Qt::AlignBottom, QRectF(rect()));
    }
}

void ColorBar::paintBar(QPainter& painter, const QRectF& bar) const {
    paintBarColors(painter, bar, *m_colors, rangeMin(), rangeMax());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawRect(bar.adjusted(-1, -1, 0, 0));
}

void ColorBar::paintEnds(QPainter& painter, const QRectF& bar) const {
    const QRectF all(rect());
    drawText(painter, QPointF(bar.left(), bar.top() - 3), QString::number(rangeMax(), 'g', 6),
             Qt::AlignLeft | Qt::AlignBottom, all);
    drawText(painter, QPointF(bar.left(), bar.bottom() + 2), QString::number(rangeMin(), 'g', 6),
             Qt::AlignLeft | Qt::AlignTop, all);
}

void ColorBar::startTyping(End end) {
    const double value = end == End::High ? rangeMax() : rangeMin();
    m_typed = end;
    m_editor->setText(QString::number(value, 'g', 6));
    m_editor->setGeometry(valueRect(end).toAlignedRect());
    m_editor->selectAll();
    m_editor->show();
    m_editor->setFocus();
}

void ColorBar::takeTyped() {
    const End end = m_typed;
    m_typed = End::None;  // hiding the field ends its editing once more
    m_editor->hide();
    bool isNumber = false;
    const double value = m_editor->text().trimmed().toDouble(&isNumber);
    const QString before = QString::number(end == End::High ? rangeMax() : rangeMin(), 'g', 6);
    if (end == End::None || !isNumber || m_editor->text() == before) {
        return;
    }
    if (end == End::High) {
        fix(rangeMin(), value);
    } else {
        fix(value, rangeMax());
    }
}

void ColorBar::mousePressEvent(QMouseEvent* event) {
    DispA::mousePressEvent(event);
    m_dragged = false;
    if (canBeChanged() && event->button() == Qt::LeftButton) {
        m_drag = event->localPos().y() < barRect().center().y() ? End::High : End::Low;
    }
}

void ColorBar::mouseMoveEvent(QMouseEvent* event) {
    const double before = m_mouse.current().y();
    DispA::mouseMoveEvent(event);
    if (m_drag == End::None || event->source() != Qt::MouseEventNotSynthesized) {
        return;
    }
    m_dragged = true;
    if (!hasRange()) {
        return;
    }
    // The ends never meet: a step closes at most nine tenths of what is left.
    const double span = rangeMax() - rangeMin();
    const double moved = (before - event->localPos().y()) / barRect().height() * span;
    if (m_drag == End::High) {
        fix(rangeMin(), rangeMax() + std::max(moved, -0.9 * span));
    } else {
        fix(rangeMin() + std::min(moved, 0.9 * span), rangeMax());
    }
}

void ColorBar::mouseReleaseEvent(QMouseEvent* event) {
    DispA::mouseReleaseEvent(event);
    const End end = m_drag;
    m_drag = End::None;
    if (end != End::None && !m_dragged && valueRect(end).contains(event->localPos())) {
        startTyping(end);
    }
}

void ColorBar::mouseDoubleClickEvent(QMouseEvent* event) {
    DispA::mouseDoubleClickEvent(event);
    m_drag = End::None;
    if (canBeChanged()) {
        setAuto(true);
    }
}

void ColorBar::wheelEvent(QWheelEvent* event) {
    DispA::wheelEvent(event);
    if (canBeChanged() && hasRange() && event->angleDelta().y() != 0) {
        const double factor = event->angleDelta().y() > 0 ? 1 / WheelStep : WheelStep;
        const double middle = 0.5 * (rangeMin() + rangeMax());
        const double half = 0.5 * (rangeMax() - rangeMin()) * factor;
        fix(middle - half, middle + half);
    }
}

void ColorBar::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (canBeChanged()) {
        menu->addAction(tr("Percentile 1-99"), this, &ColorBar::percentilesAsked);
        menu->addAction(tr("Whole range"), this, [this] { fix(m_min, m_max); });
        QAction* own = menu->addAction(tr("Each frame's own"));
        own->setCheckable(true);
        own->setChecked(m_auto);
        connect(own, &QAction::toggled, this, &ColorBar::setAuto);
    } else {
        menu->addAction(tr("The range of results is set in the Analyzer"))->setEnabled(false);
    }
    menu->popup(event->globalPos());
}
