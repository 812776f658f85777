#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "drawing/ChCoord.h"
#include "drawing/DrawText.h"
#include "drawing/Letters.h"
#include "drawing/PlotCurve.h"

namespace {

/// The place at a side in which a box hides the least; the curves matter more than their
/// backgrounds.
QRectF emptiestPlace(const QSizeF& size, const QRectF& plot, const QVector<PlotCurve>& list,
                     const ChCoord& coord) {
    struct Step {
        QRectF box;
        int weight;
    };
    std::vector<Step> steps;
    for (const PlotCurve& curve : list) {
        const int weight = curve.style == Qt::SolidLine ? 4 : 1;
        QPointF before;
        for (const QPointF& p : curve.points) {
            const QPointF at(coord.r2sX(p.x()), coord.r2sY(p.y()));
            if (!before.isNull()) {
                steps.push_back({QRectF(before, at).normalized().adjusted(-1, -1, 1, 1), weight});
            }
            before = at;
        }
    }
    QRectF box;
    int hiddenLeast = std::numeric_limits<int>::max();
    for (int place = 0; place < 22 && hiddenLeast > 0; ++place) {  // from the lower right corner on
        const int tenths = 10 - place / 2;
        const QPointF side(place % 2 == 0 ? 1.0 : 0.0, tenths / 10.0);
        const QRectF tried(
            QPointF(plot.left() + 6 + side.x() * (plot.width() - size.width() - 12),
                    plot.top() + 6 + side.y() * (plot.height() - size.height() - 12)),
            size);
        int hidden = 0;
        for (const Step& step : steps) {
            hidden += tried.intersects(step.box) ? step.weight : 0;
        }
        if (hidden < hiddenLeast) {
            hiddenLeast = hidden;
            box = tried;
        }
    }
    return box;
}

/// In a plot that is too low for rows: the names beside each other, in the colours of their curves.
void paintInOneRow(QPainter& painter, const Letters& letters, const QRectF& plot,
                   const QVector<PlotCurve>& named, const ChCoord& coord, const QColor& veil) {
    constexpr double Gap = 10.0;
    const double most = (plot.width() - 12) / named.size() - Gap;
    double width = Gap;
    for (const PlotCurve& curve : named) {
        width += letters.width(curve.name) + Gap;
    }
    const bool isShort = width <= plot.width() - 12;
    const QSizeF size(std::min(width, plot.width() - 12), letters.height() + 2);
    const QRectF box = emptiestPlace(size, plot, named, coord);
    painter.fillRect(box, veil);
    double x = box.left() + Gap;
    for (const PlotCurve& curve : named) {
        const QString name = isShort ? curve.name : letters.elided(curve.name, most);
        painter.setPen(curve.color);
        drawText(painter, letters, QPointF(x, box.top() + 1), name, Qt::AlignLeft | Qt::AlignTop);
        x += letters.width(name) + Gap;
    }
}

}  // namespace

void paintLegend(QPainter& painter, const Letters& letters, const QRectF& plot,
                 const QVector<PlotCurve>& list, const ChCoord& coord, const PlotColors& colors) {
    const double height = std::round(letters.height());
    double widest = 0.0;
    QVector<PlotCurve> named;
    for (const PlotCurve& curve : list) {
        if (!curve.name.isEmpty()) {
            widest = std::max(widest, std::round(letters.width(curve.name)));
            named << curve;
        }
    }
    if (named.isEmpty()) {
        return;
    }
    QColor veil = colors.paper;
    veil.setAlpha(215);
    widest = std::min(widest, 0.45 * plot.width());
    const QSizeF size(widest + 38, named.size() * height + 6);
    if (size.height() > plot.height() - 12) {
        paintInOneRow(painter, letters, plot, named, coord, veil);
        return;
    }
    const QRectF box = emptiestPlace(size, plot, list, coord);
    painter.fillRect(box, veil);
    double y = box.top() + 3;
    for (const PlotCurve& curve : qAsConst(named)) {
        painter.setPen(QPen(curve.color, 2));
        painter.drawLine(QPointF(box.left() + 6, y + height / 2),
                         QPointF(box.left() + 26, y + height / 2));
        painter.setPen(colors.ink);
        drawText(painter, letters, QPointF(box.left() + 32, y),
                 letters.elided(curve.name, widest + 2), Qt::AlignLeft | Qt::AlignTop);
        y += height;
    }
}
