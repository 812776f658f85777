#include "display/ColorBar.h"

#include <QKeyEvent>
#include <QLineEdit>
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
    setToolTip(
        tr("Drag an end or click its value to fix the range of the frames; double click for each "
           "frame's own"));
    m_editor = new QLineEdit(this);
    m_editor->hide();
    m_editor->installEventFilter(this);
    connect(m_editor, &QLineEdit::editingFinished, this, [this] {
        if (m_edited != End::None) {
            acceptEditor();
        }
    });
}

QSize ColorBar::minimumSizeHint() const {
    return QSize(fontMetrics().horizontalAdvance(QStringLiteral("-0.000123456")) + 8,
                 6 * fontMetrics().height());
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
    // One line above for the high end; two below for the low end and "Auto".
    const double line = fontMetrics().height();
    return QRectF(6.0, line + 4.0, BarWidth, std::max(1.0, height() - 3 * line - 8.0));
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
        drawText(painter, QPointF(bar.left(), all.bottom()), tr("Auto"),
                 Qt::AlignLeft | Qt::AlignBottom, all);
    }
}

void ColorBar::moveEnd(End end, double value) {
    if (end == End::High) {
        fix(std::min(rangeMin(), value), value);
    } else if (end == End::Low) {
        fix(value, std::max(rangeMax(), value));
    }
}

void ColorBar::openEditor(End end) {
    m_edited = end;
    m_editor->setText(QString::number(end == End::High ? rangeMax() : rangeMin(), 'g', 6));
    const int h = m_editor->sizeHint().height();
    const int below = std::min(static_cast<int>(barRect().bottom()), height() - h);
    m_editor->setGeometry(0, end == End::High ? 0 : below, width(), h);
    m_editor->show();
    m_editor->selectAll();
    m_editor->setFocus();
}

void ColorBar::acceptEditor() {
    const End end = m_edited;
    m_edited = End::None;  // hiding takes the focus away and comes back here
    m_editor->hide();
    bool isNumber = false;
    const double value = m_editor->text().toDouble(&isNumber);
    if (isNumber && canBeDragged() && m_editor->isModified()) {
        moveEnd(end, value);
    }
}

bool ColorBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_editor && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        m_edited = End::None;
        m_editor->hide();
        return true;
    }
    return DispA::eventFilter(watched, event);
}

void ColorBar::mousePressEvent(QMouseEvent* event) {
    DispA::mousePressEvent(event);
    if (!canBeDragged() || event->button() != Qt::LeftButton) {
        return;
    }
    const QRectF bar = barRect();
    const double y = event->localPos().y();
    if (y < bar.top() - 1 || y > bar.bottom() + 1) {
        openEditor(y < bar.top() ? End::High : End::Low);
        return;
    }
    m_drag = y < bar.center().y() ? End::High : End::Low;
    m_dragStart = y;
    m_dragMin = rangeMin();
    m_dragMax = rangeMax();
}

void ColorBar::mouseMoveEvent(QMouseEvent* event) {
    DispA::mouseMoveEvent(event);
    if (m_drag == End::None || event->source() != Qt::MouseEventNotSynthesized) {
        return;
    }
    // By the scale at the press: the range that follows the mouse would change it on the way. An
    // end stops at the other one.
    const double moved =
        (m_dragStart - event->localPos().y()) / barRect().height() * (m_dragMax - m_dragMin);
    if (m_drag == End::High) {
        fix(m_dragMin, std::max(m_dragMin, m_dragMax + moved));
    } else {
        fix(std::min(m_dragMax, m_dragMin + moved), m_dragMax);
    }
}

void ColorBar::mouseReleaseEvent(QMouseEvent* event) {
    DispA::mouseReleaseEvent(event);
    m_drag = End::None;
}

void ColorBar::mouseDoubleClickEvent(QMouseEvent* event) {
    DispA::mouseDoubleClickEvent(event);
    m_drag = End::None;
    if (canBeDragged()) {
        setAuto(true);
    }
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
