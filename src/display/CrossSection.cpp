#include "display/CrossSection.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "app/Globals.h"
#include "display/DrawText.h"
#include "display/ImageView.h"
#include "display/Ticks.h"

namespace {
constexpr double Margin = 6.0;
}

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

void CrossSection::setMarker(double position) {
    m_marker = position;
    update();
}

QString CrossSection::readOut() const {
    if (!m_hovered || m_view.isNull()) {
        return QString();
    }
    const ChCoord& image = m_view->coord();
    const double pixel =
        std::floor(m_orientation == Qt::Horizontal ? image.s2rX(m_mouse.current().x())
                                                   : image.s2rY(m_mouse.current().y()));
    if (!(pixel >= m_firstPixel && pixel - m_firstPixel < m_values.size())) {
        return QString();
    }
    const double value = m_values[static_cast<int>(pixel - m_firstPixel)];
    return QStringLiteral("(%1, %2)").arg(pixel, 0, 'f', 0).arg(value, 0, 'g', 6);
}

void CrossSection::mouseMoveEvent(QMouseEvent* event) {
    m_hovered = m_hovered || event->source() == Qt::MouseEventNotSynthesized;
    DispA::mouseMoveEvent(event);
}

void CrossSection::leaveEvent(QEvent* event) {
    DispA::leaveEvent(event);
    m_hovered = false;
    update();
}

void CrossSection::updateCoord() {
    if (m_view.isNull()) {
        return;
    }
    const ChCoord& image = m_view->coord();
    const bool across = m_orientation == Qt::Horizontal;
    const double from = across ? image.rx0 : image.ry0;
    const double to = across ? image.rx1 : image.ry1;
    double low = 1e300;
    double high = -1e300;
    for (int i = 0; i < m_values.size(); ++i) {
        const double pixel = m_firstPixel + i;
        if (pixel + 1 > from && pixel < to && std::isfinite(m_values[i])) {
            low = std::min(low, m_values[i]);
            high = std::max(high, m_values[i]);
        }
    }
    if (low > high) {
        low = 0.0;
        high = 1.0;
    } else if (low == high) {
        const double half = low == 0.0 ? 1.0 : std::abs(low) * 0.1;
        low -= half;
        high += half;
    }
    if (across) {
        m_coord.setScreen(image.sx0, image.sx1, height() - Margin, Margin);
        m_coord.setReal(image.rx0, image.rx1, low, high);
    } else {
        m_coord.setScreen(Margin, width() - Margin, image.sy0, image.sy1);
        m_coord.setReal(low, high, image.ry0, image.ry1);
    }
}

void CrossSection::paintTicks(QPainter& painter) const {
    const bool across = m_orientation == Qt::Horizontal;
    const QColor grid = palette().color(QPalette::Mid);
    const QRectF all(rect());
    const Ticks ticks =
        across ? ticksBetween(m_coord.ry0, m_coord.ry1) : ticksBetween(m_coord.rx0, m_coord.rx1);
    QRectF last;
    for (double value : ticks.values) {
        const double s = across ? m_coord.r2sY(value) : m_coord.r2sX(value);
        painter.setPen(QPen(grid, 0, Qt::DotLine));
        painter.drawLine(across ? QPointF(0, s) : QPointF(s, 0),
                         across ? QPointF(width(), s) : QPointF(s, height()));
        const QPointF anchor = across ? QPointF(2, s) : QPointF(s, 2);
        const QString text = tickText(value, ticks.step);
        const Qt::Alignment side =
            across ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignHCenter | Qt::AlignTop;
        const QRectF place = textPlace(painter.font(), anchor, text, side, all);
        if (!last.isNull() && place.adjusted(-8, -2, 8, 2).intersects(last)) {
            continue;
        }
        last = place;
        painter.setPen(palette().color(QPalette::WindowText));
        drawTextOnPaper(painter, anchor, text, side, all, palette().color(QPalette::Base));
    }
}

void CrossSection::paintBelow(QPainter& painter) {
    painter.fillRect(rect(), palette().color(QPalette::Base));
    updateCoord();
    if (m_values.isEmpty()) {
        return;
    }

    const bool across = m_orientation == Qt::Horizontal;
    const auto onScreen = [&](double pixel, double value) {
        return across ? QPointF(m_coord.r2sX(pixel), m_coord.r2sY(value))
                      : QPointF(m_coord.r2sX(value), m_coord.r2sY(pixel));
    };
    QPainterPath line;
    bool broken = true;
    for (int i = 0; i < m_values.size(); ++i) {
        if (!std::isfinite(m_values[i])) {
            broken = true;
            continue;
        }
        const QPointF from = onScreen(m_firstPixel + i, m_values[i]);
        broken ? line.moveTo(from) : line.lineTo(from);
        line.lineTo(onScreen(m_firstPixel + i + 1.0, m_values[i]));
        broken = false;
    }
    painter.setPen(QPen(getColor(2), 1));
    painter.drawPath(line);
    paintTicks(painter);

    if (m_marker >= 0.0) {
        painter.setPen(QPen(getColor(0), 1, Qt::DashLine));
        const double middle = std::floor(m_marker) + 0.5;
        const double s = across ? m_coord.r2sX(middle) : m_coord.r2sY(middle);
        painter.drawLine(across ? QPointF(s, 0) : QPointF(0, s),
                         across ? QPointF(s, height()) : QPointF(width(), s));
    }
    paintReadOut(painter);
}

void CrossSection::paintReadOut(QPainter& painter) const {
    const QString text = readOut();
    if (text.isEmpty()) {
        return;
    }
    const QRectF all = QRectF(rect()).adjusted(2, 2, -4, -2);
    painter.setPen(palette().color(QPalette::WindowText));
    drawTextOnPaper(painter, all.bottomRight(), text, Qt::AlignRight | Qt::AlignBottom, all,
                    palette().color(QPalette::Base));
}
