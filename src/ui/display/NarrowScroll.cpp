#include "display/NarrowScroll.h"

#include <QEvent>
#include <QScrollBar>

NarrowScroll::NarrowScroll(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    setWidgetResizable(true);
}

QSize NarrowScroll::sizeHint() const {
    if (widget() == nullptr) {
        return QScrollArea::sizeHint();
    }
    const QSize inner = widget()->minimumSizeHint();
    const bool isLow = height() < inner.height();
    return QSize(inner.width() + (isLow ? verticalScrollBar()->sizeHint().width() : 0),
                 inner.height());
}

QSize NarrowScroll::minimumSizeHint() const {
    return QSize(sizeHint().width(), fontMetrics().height());
}

bool NarrowScroll::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}

void NarrowScroll::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    updateGeometry();
}
