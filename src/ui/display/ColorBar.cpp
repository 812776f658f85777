#include "display/ColorBar.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "drawing/BarScale.h"
#include "drawing/DrawText.h"
#include "drawing/Letters.h"

namespace {
constexpr double BarWidth = 20.0;
constexpr double MarkHeight = 9.0;
constexpr double WheelStep = 1.1;
constexpr double KeyStep = 0.01;  // of the range
}  // namespace

ColorBar::ColorBar(QWidget* parent) : DispA(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Colour bar"));
    m_editor = new QLineEdit(this);
    m_editor->setAccessibleName(tr("End of the range"));
    m_editor->hide();
    m_editor->installEventFilter(this);
    connect(m_editor, &QLineEdit::editingFinished, this, &ColorBar::takeTyped);
    describe();
}

double ColorBar::rangeMin() const {
    return m_of == Of::Map ? m_coloring.low : (m_auto ? m_min : m_fixedMin);
}
double ColorBar::rangeMax() const {
    return m_of == Of::Map ? m_coloring.high : (m_auto ? m_max : m_fixedMax);
}

const ViewColors& ColorBar::chosenColors() const {
    return m_of == Of::Map ? m_view.colors : m_frameColors;
}

const ColorScale& ColorBar::colors() const {
    return m_of == Of::Map ? *m_coloring.colors : m_frameColors.inPlaceOf(frameColors());
}

bool ColorBar::isAbout0() const {
    return colors().isDiverging && (m_of == Of::Map || rangeMin() == -rangeMax());
}

void ColorBar::use(Of of) {
    if (of != m_of) {
        m_drag = End::None;
        m_typed = End::None;
        m_editor->hide();
        m_of = of;
        describe();
    }
    update();
}

void ColorBar::describe() {
    setToolTip(
        m_of == Of::Map
            ? tr("Drag an end or click on its value to fix the range of these maps, turn the "
                 "wheel to widen or narrow it; right click for other ranges and colours, "
                 "double click for percentiles 1-99")
            : tr("Drag an end or click on its value to fix the range, turn the wheel to "
                 "widen or narrow it; right click for more, double click for each frame's "
                 "own"));
}

void ColorBar::showFrames(const ViewColors& colors) {
    m_frameColors = colors;
    use(Of::Frames);
}

void ColorBar::showMap(const MapView& view, const MapColoring& coloring, bool isFixedScale) {
    m_view = view;
    m_coloring = coloring;
    m_isFixedScale = isFixedScale;
    use(Of::Map);
}

void ColorBar::showLegend(const CompositeNames& names) {
    m_names = names;
    use(Of::Composite);
}

void ColorBar::setDataRange(double min, double max) {
    m_min = min;
    m_max = max;
    setWholeRange(min, max);
    update();
}

void ColorBar::setWholeRange(double min, double max) {
    m_wholeMin = min;
    m_wholeMax = max;
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
    if (!(max > min) || !std::isfinite(max - min) || isOfComposite()) {
        return;
    }
    if (m_of == Of::Map) {
        m_coloring.low = min;
        m_coloring.high = max;
        choose(MapRange{MapRange::Kind::Fixed, min, max});
        return;
    }
    m_auto = false;
    m_fixedMin = min;
    m_fixedMax = max;
    emit newBar();
    update();
}

void ColorBar::choose(const MapRange& range) {
    m_view.range = range;
    emit rangeChosen(range);
    update();
}

void ColorBar::choose(const ViewColors& colors) {
    (m_of == Of::Map ? m_view.colors : m_frameColors) = colors;
    emit colorsChosen(colors);
    update();
}

/// The ends never meet: a step closes at most nine tenths of what is left. Those of a range about 0
/// move together.
void ColorBar::moveEnd(End end, double by) {
    const bool isAbout0 = this->isAbout0();
    const double most = (isAbout0 ? 0.45 : 0.9) * (rangeMax() - rangeMin());
    const double high = end == End::High ? rangeMax() + std::max(by, -most) : rangeMax();
    const double low = end == End::Low ? rangeMin() + std::min(by, most) : rangeMin();
    if (isAbout0) {
        const double half = end == End::High ? high : -low;
        fix(-half, half);
    } else {
        fix(low, high);
    }
}

void ColorBar::reset() {
    if (isOfComposite()) {
        return;
    }
    if (m_of == Of::Map) {
        choose(MapRange{MapRange::Kind::Robust, 0.0, 1.0});
    } else {
        setAuto(true);
    }
}

QString ColorBar::rangeText() const {
    if (m_of == Of::Frames) {
        return m_auto ? tr("Auto") : tr("Fixed");
    }
    if (m_isFixedScale && m_view.range.kind != MapRange::Kind::Fixed) {
        return tr("Analyzer");
    }
    switch (m_view.range.kind) {
        case MapRange::Kind::Stated:
            return tr("Stated");
        case MapRange::Kind::Full:
            return tr("Full");
        case MapRange::Kind::Robust:
            return tr("1-99 %");
        case MapRange::Kind::Fixed:
            return tr("Fixed");
    }
    return QString();
}

QRectF ColorBar::barRect() const {
    // Room for a value above, a value and the word "Auto" below.
    const double line = fontMetrics().height() + 4.0;
    const double marks = m_of == Of::Map && m_coloring.marksOutside ? MarkHeight : 0.0;
    return QRectF(6.0, line + marks, BarWidth, std::max(1.0, height() - 3 * line - 2 * marks));
}

QRectF ColorBar::valueRect(End end) const {
    const double line = fontMetrics().height() + 4.0;
    return end == End::High ? QRectF(0, 0, width(), line)
                            : QRectF(0, height() - 2 * line, width(), line);
}

void ColorBar::paintBelow(QPainter& painter) {
    if (isOfComposite()) {
        painter.setPen(palette().color(QPalette::WindowText));
        paintCompositeLegend(painter, Letters(font()), QRectF(rect()).adjusted(4, 4, -4, -4),
                             m_names);
        return;
    }
    const QRectF bar = barRect();
    paintBar(painter, bar);
    if (rangeMax() >= rangeMin()) {
        paintEnds(painter, bar);
        paintBarTicks(painter, Letters(font()), bar, rangeMin(), rangeMax(),
                      fontMetrics().height() / 2.0, QRectF(rect()));
    }
    painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
    drawText(painter, QPointF(bar.left(), height() - 2.0), rangeText(),
             Qt::AlignLeft | Qt::AlignBottom, QRectF(rect()));
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
        painter.drawRect(valueRect(m_chosen).adjusted(1, 1, -1, -1));
    }
}

void ColorBar::paintBar(QPainter& painter, const QRectF& bar) const {
    paintBarColors(painter, bar, colors(), rangeMin(), rangeMax());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawRect(bar.adjusted(-1, -1, 0, 0));
    if (m_of == Of::Map && m_coloring.marksOutside) {
        paintBarMarks(painter, bar, colors(), MarkHeight);
    }
}

void ColorBar::paintEnds(QPainter& painter, const QRectF& bar) const {
    const QRectF all(rect());
    drawText(painter, QPointF(bar.left(), valueRect(End::High).bottom() - 3),
             QString::number(rangeMax(), 'g', 6), Qt::AlignLeft | Qt::AlignBottom, all);
    drawText(painter, QPointF(bar.left(), valueRect(End::Low).top() + 2),
             QString::number(rangeMin(), 'g', 6), Qt::AlignLeft | Qt::AlignTop, all);
}

void ColorBar::startTyping(End end) {
    if (isOfComposite()) {
        return;
    }
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
    if (isAbout0()) {
        fix(-std::abs(value), std::abs(value));
    } else if (end == End::High) {
        fix(rangeMin(), value);
    } else {
        fix(value, rangeMax());
    }
}

/// The keys that end typing, which would begin it anew or go to the window.
bool ColorBar::eventFilter(QObject* object, QEvent* event) {
    const int key = object == m_editor && event->type() == QEvent::KeyPress
                        ? static_cast<QKeyEvent*>(event)->key()
                        : 0;
    if (key != Qt::Key_Return && key != Qt::Key_Enter && key != Qt::Key_Escape) {
        return DispA::eventFilter(object, event);
    }
    if (key == Qt::Key_Escape) {
        m_typed = End::None;
    }
    setFocus();
    takeTyped();
    return true;
}

void ColorBar::mousePressEvent(QMouseEvent* event) {
    DispA::mousePressEvent(event);
    m_dragged = false;
    if (event->button() == Qt::LeftButton && !isOfComposite()) {
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
    moveEnd(m_drag,
            (before - event->localPos().y()) / barRect().height() * (rangeMax() - rangeMin()));
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
    reset();
}

void ColorBar::wheelEvent(QWheelEvent* event) {
    DispA::wheelEvent(event);
    if (hasRange() && event->angleDelta().y() != 0) {
        const double factor = event->angleDelta().y() > 0 ? 1 / WheelStep : WheelStep;
        const double middle = 0.5 * (rangeMin() + rangeMax());
        const double half = 0.5 * (rangeMax() - rangeMin()) * factor;
        fix(middle - half, middle + half);
    }
}

void ColorBar::keyPressEvent(QKeyEvent* event) {
    const double step = (rangeMax() - rangeMin()) * KeyStep;
    const double coarse = event->modifiers() & Qt::ShiftModifier ? 10.0 : 1.0;
    switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Right:
            moveEnd(m_chosen, coarse * step);
            break;
        case Qt::Key_Down:
        case Qt::Key_Left:
            moveEnd(m_chosen, -coarse * step);
            break;
        case Qt::Key_PageUp:
            moveEnd(m_chosen, 10.0 * step);
            break;
        case Qt::Key_PageDown:
            moveEnd(m_chosen, -10.0 * step);
            break;
        case Qt::Key_Space:
            m_chosen = m_chosen == End::High ? End::Low : End::High;
            update();
            break;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            startTyping(m_chosen);
            break;
        case Qt::Key_Home:
        case Qt::Key_Delete:
            reset();
            break;
        default:
            DispA::keyPressEvent(event);
            return;
    }
}

void ColorBar::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) {
        m_chosen = event->reason() == Qt::TabFocusReason ? End::High : End::Low;
    }
    setAccessibleDescription(tr("From %1 to %2").arg(rangeMin()).arg(rangeMax()));
    update();
    DispA::focusInEvent(event);
}

void ColorBar::focusOutEvent(QFocusEvent* event) {
    update();
    DispA::focusOutEvent(event);
}

/// Both ends have the focus one after the other.
bool ColorBar::focusNextPrevChild(bool next) {
    if (hasFocus() && m_chosen == (next ? End::High : End::Low)) {
        m_chosen = next ? End::Low : End::High;
        update();
        return true;
    }
    return DispA::focusNextPrevChild(next);
}
