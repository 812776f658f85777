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

}  // namespace

void paintLegend(QPainter& painter, const Letters& letters, const QRectF& plot,
                 const QVector<PlotCurve>& list, const ChCoord& coord, const PlotColors& colors) {
    const double height = std::round(letters.height());
    double widest = 0.0;
    int rows = 0;
    for (const PlotCurve& curve : list) {
        if (!curve.name.isEmpty()) {
            widest = std::max(widest, std::round(letters.width(curve.name)));
            ++rows;
        }
    }
    if (rows == 0) {
        return;
    }
    // In a low plot its rows go on in further columns.
    const int most = std::max(1, static_cast<int>((plot.height() - 18) / height));
    const int columns = (rows + most - 1) / most;
    const int rowsOfOne = (rows + columns - 1) / columns;
    widest = std::min(widest, (columns > 1 ? 0.85 : 0.45) * plot.width() / columns);
    const QSizeF size((widest + 38) * columns, rowsOfOne * height + 6);
    const QRectF box = emptiestPlace(size, plot, list, coord);
    QColor veil = colors.paper;
    veil.setAlpha(215);
    painter.fillRect(box, veil);
    int row = 0;
    for (const PlotCurve& curve : list) {
        if (curve.name.isEmpty()) {
            continue;
        }
        const double x = box.left() + (row / rowsOfOne) * (widest + 38);
        const double y = box.top() + 3 + (row % rowsOfOne) * height;
        painter.setPen(QPen(curve.color, 2));
        painter.drawLine(QPointF(x + 6, y + height / 2), QPointF(x + 26, y + height / 2));
        painter.setPen(colors.ink);
        drawText(painter, letters, QPointF(x + 32, y), letters.elided(curve.name, widest + 2),
                 Qt::AlignLeft | Qt::AlignTop);
        ++row;
    }
}
