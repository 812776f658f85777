#include "display/CrossSection.h"

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

void CrossSection::updateCoord() {
    if (m_view == nullptr) {
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
    double last = -1e300;
    for (double value : ticks.values) {
        const double s = across ? m_coord.r2sY(value) : m_coord.r2sX(value);
        painter.setPen(QPen(grid, 0, Qt::DotLine));
        painter.drawLine(across ? QPointF(0, s) : QPointF(s, 0),
                         across ? QPointF(width(), s) : QPointF(s, height()));
        if (std::abs(s - last) < (across ? 1.4 : 3.0) * fontMetrics().height()) {
            continue;
        }
        last = s;
        painter.setPen(palette().color(QPalette::WindowText));
        drawText(painter, across ? QPointF(2, s) : QPointF(s, 2), tickText(value, ticks.step),
                 across ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignHCenter | Qt::AlignTop, all);
    }
}

void CrossSection::paintBelow(QPainter& painter) {
    painter.fillRect(rect(), palette().color(QPalette::Base));
    updateCoord();
    if (m_values.isEmpty()) {
        return;
    }
    paintTicks(painter);

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

    if (m_marker >= 0.0) {
        painter.setPen(QPen(getColor(0), 1, Qt::DashLine));
        const double middle = std::floor(m_marker) + 0.5;
        const double s = across ? m_coord.r2sX(middle) : m_coord.r2sY(middle);
        painter.drawLine(across ? QPointF(s, 0) : QPointF(0, s),
                         across ? QPointF(s, height()) : QPointF(width(), s));
    }
}
