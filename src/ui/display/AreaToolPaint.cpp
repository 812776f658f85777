// How the selected area looks: its outline with handles and size, and a polygon being drawn.

#include <QCoreApplication>
#include <QPainter>

#include "display/AreaTool.h"
#include "display/Outlined.h"
#include "drawing/ChCoord.h"

namespace {

constexpr double HandleSize = 6.0;          // of screen pixels
constexpr std::size_t MostOutlined = 5000;  // lines with a dark edge; more of them take their time
const QColor Light(255, 225, 225);          // red is hard to read on dark pictures

class AreaTexts {
    Q_DECLARE_TR_FUNCTIONS(AreaTool)
};

QPointF onScreen(const ChCoord& coord, const QPointF& real) {
    return {coord.r2sX(real.x()), coord.r2sY(real.y())};
}

void paintHandle(QPainter& painter, const QPointF& at, const QColor& color) {
    QRectF square(0, 0, HandleSize, HandleSize);
    square.moveCenter(at);
    painter.setPen(QColor(0, 0, 0, 150));
    painter.setBrush(color);
    painter.drawRect(square);
    painter.setBrush(Qt::NoBrush);
}

}  // namespace

QString AreaTool::sizeText() const {
    const QSizeF size = box().size();
    return AreaTexts::tr("%1 x %2, bins: %3")
        .arg(size.width(), 0, 'f', 0)
        .arg(size.height(), 0, 'f', 0)
        .arg(m_bins);
}

void AreaTool::paintOutline(QPainter& painter, const ChCoord& coord, const QColor& color) const {
    const QRectF corners(
        onScreen(coord, QPointF(std::min(m_area.x0, m_area.x1), std::min(m_area.y0, m_area.y1))),
        onScreen(coord, QPointF(std::max(m_area.x0, m_area.x1), std::max(m_area.y0, m_area.y1))));
    for (const QPen& pen : {QPen(QColor(0, 0, 0, 90), 3), QPen(color, 1)}) {
        painter.setPen(pen);
        if (m_area.shape == AreaShape::Rectangle) {
            painter.drawRect(corners);
        } else if (m_area.shape == AreaShape::Ellipse) {
            painter.drawEllipse(corners);
        } else if (pen.width() == 1 || m_lines.size() <= MostOutlined) {
            paintLines(painter, coord);
        }
    }
}

/// Some at a time: there may be more than one of Qt's arrays holds.
void AreaTool::paintLines(QPainter& painter, const ChCoord& coord) const {
    QVector<QLineF> lines;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        lines.append({onScreen(coord, m_lines[i].p1()), onScreen(coord, m_lines[i].p2())});
        if (static_cast<std::size_t>(lines.size()) == MostOutlined || i + 1 == m_lines.size()) {
            painter.drawLines(lines);
            lines.clear();
        }
    }
}

void AreaTool::paintDrawing(QPainter& painter, const ChCoord& coord, const QColor& color,
                            const QRectF& inside) const {
    QPolygonF line;
    for (const QPoint& vertex : m_vertices) {
        line.append(onScreen(coord, vertex));
    }
    if (!line.isEmpty()) {
        line.append(onScreen(coord, m_mouse));
    }
    for (const QPen& pen : {QPen(QColor(0, 0, 0, 90), 3), QPen(color, 1)}) {
        painter.setPen(pen);
        painter.drawPolyline(line);
    }
    for (int i = 0; i + 1 < line.size(); ++i) {
        paintHandle(painter, line.at(i), color);
    }
    const QPointF top(inside.center().x(), inside.top() + 2 * painter.fontMetrics().height());
    drawLabel(painter, top,
              AreaTexts::tr("Click the corners; double click or Enter closes the polygon"),
              Qt::AlignHCenter | Qt::AlignTop, inside, Light);
}

void AreaTool::paint(QPainter& painter, const ChCoord& coord, const QColor& color,
                     const QRectF& inside) const {
    if (hasArea()) {
        paintOutline(painter, coord, color);
        const QVector<QPointF> places = handles();
        for (const QPointF& place : places) {
            paintHandle(painter, onScreen(coord, place), color);
        }
        const QPointF below = onScreen(coord, box().bottomLeft()) + QPointF(2, HandleSize);
        drawLabel(painter, below, sizeText(), Qt::AlignLeft | Qt::AlignTop, inside, Light);
    }
    if (m_isDrawing) {
        paintDrawing(painter, coord, color, inside);
    }
}
