#include "drawing/PlotPicture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/Globals.h"
#include "drawing/DrawText.h"
#include "drawing/Letters.h"
#include "drawing/LongLine.h"
#include "drawing/SpectrumPlot.h"
#include "files/PictureFile.h"

namespace {

constexpr double SavedLetters = 13.0;  // pixels
constexpr double ResidualSlack = 6.0;  // of its title beyond its box, in pixels
constexpr double LeastOfRow = 0.8;     // from one number to the next, in heights of a line
constexpr double Far = 1e6;            // further points would overflow the painter's own numbers

double nearBy(double v) {
    return std::max(-Far, std::min(v, Far));
}

/// Paints one plot.
class PlotPainter {
  public:
    PlotPainter(QPainter& painter, const SpectrumPlot& plot, const PlotLayout& layout,
                const Letters& letters)
        : m_painter(painter), m_plot(plot), m_layout(layout), m_letters(letters) {}

    void paint();

  private:
    void paintAxes();
    void paintAbscissa();
    void paintOrdinate();
    void paintMarks();
    void paintCurve(const PlotCurve& curve);
    void paintResidual();
    void paintDifferences();
    void text(const QPointF& anchor, const QString& text, Qt::Alignment alignment,
              const QRectF& inside, bool upright = false) {
        drawText(m_painter, m_letters, anchor, text, alignment, inside, upright);
    }

    QPainter& m_painter;
    const SpectrumPlot& m_plot;
    const PlotLayout& m_layout;
    const Letters& m_letters;
    const QPen m_grid{QColor(128, 128, 128, 60), 1};
};

void PlotPainter::paint() {
    m_painter.fillRect(m_layout.all, m_plot.colors.paper);
    if (!m_layout.hasRoom) {
        return;
    }
    if (m_layout.curves.isEmpty()) {
        m_painter.setPen(m_plot.colors.faint);
        text(m_layout.all.center(), m_plot.texts.empty, Qt::AlignCenter, m_layout.all);
        return;
    }
    paintAxes();
    m_painter.save();
    m_painter.setClipRect(m_layout.axes);
    m_painter.setRenderHint(QPainter::Antialiasing);
    paintMarks();
    for (const PlotCurve& curve : m_layout.curves) {
        paintCurve(curve);
    }
    m_painter.restore();
    paintLegend(m_painter, m_letters, m_layout.axes, m_layout.curves, m_layout.coord,
                m_plot.colors);
    if (!m_layout.residual.isEmpty()) {
        paintResidual();
    }
}

void PlotPainter::paintAxes() {
    paintAbscissa();
    paintOrdinate();
    m_painter.setPen(m_plot.colors.ink);
    m_painter.drawRect(m_layout.axes);
    const QRectF& all = m_layout.all;
    const QPointF middle = m_layout.axes.center();
    text(QPointF(middle.x(), all.bottom() - 2), m_plot.texts.abscissas[m_plot.abscissa],
         Qt::AlignHCenter | Qt::AlignBottom, all);
    const QRectF above(all.left(), all.top(), all.width(), m_layout.axes.bottom() - all.top());
    text(QPointF(all.left() + 2, middle.y()),
         m_layout.residual.isEmpty()
             ? m_plot.texts.ordinates[m_plot.ordinate]
             : m_letters.elided(m_plot.texts.ordinates[m_plot.ordinate], above.height()),
         Qt::AlignLeft | Qt::AlignVCenter, m_layout.residual.isEmpty() ? all : above, true);
}

void PlotPainter::paintAbscissa() {
    const double foot = m_layout.foot();
    double end = -1e300;
    for (double value : m_layout.xTicks.values) {
        const double x = m_layout.coord.r2sX(value);
        m_painter.setPen(m_grid);
        m_painter.drawLine(QPointF(x, m_layout.axes.top()), QPointF(x, foot));
        const QString number = tickText(value, m_layout.xTicks.step);
        const double half = 0.5 * m_letters.width(number);
        if (x - half < end + 6) {
            continue;
        }
        end = x + half;
        m_painter.setPen(m_plot.colors.ink);
        m_painter.drawLine(QPointF(x, foot), QPointF(x, foot + 4));
        text(QPointF(x, foot + 5), number, Qt::AlignHCenter | Qt::AlignTop, m_layout.all);
    }
}

void PlotPainter::paintOrdinate() {
    const QRectF& axes = m_layout.axes;
    const double least = LeastOfRow * m_letters.height();
    double last = 1e300;
    for (double value : m_layout.yTicks.values) {
        const double y = m_layout.coord.r2sY(value);
        m_painter.setPen(m_grid);
        m_painter.drawLine(QPointF(axes.left(), y), QPointF(axes.right(), y));
        m_painter.setPen(m_plot.colors.ink);
        m_painter.drawLine(QPointF(axes.left() - 4, y), QPointF(axes.left(), y));
        if (y > last - least) {
            continue;  // no room for its number
        }
        last = y;
        text(QPointF(axes.left() - 6, y), tickText(value, m_layout.yTicks.step),
             Qt::AlignRight | Qt::AlignVCenter, m_layout.all);
    }
}

void PlotPainter::paintMarks() {
    const QRectF& axes = m_layout.axes;
    const auto line = [&](double energy, const QColor& color, Qt::PenStyle style = Qt::DotLine) {
        const double x = m_layout.coord.r2sX(m_plot.abscissaOf(energy));
        if (energy > 0.0 && std::isfinite(x)) {
            m_painter.setPen(QPen(color, 1, style));
            m_painter.drawLine(QPointF(x, axes.top()), QPointF(x, axes.bottom()));
        }
    };
    if (m_plot.sample) {
        const XafsSpectrum& sample = m_plot.sample->spectrum;
        line(sample.midE() - sample.energyCorrection(), QColor(110, 110, 110));
    }
    if (m_plot.frameEnergy) {
        line(*m_plot.frameEnergy - m_plot.correction(), m_plot.readable(QColor(230, 130, 20)),
             Qt::SolidLine);
    }
    line(m_plot.raEnergy, getColor(6));
    const double x = m_layout.coord.r2sX(m_plot.abscissaOf(m_plot.raEnergy));
    if (m_plot.raEnergy > 0.0 && x > axes.left() && x < axes.right()) {
        text(QPointF(x + 3, axes.top() + 2), QStringLiteral("RA"), Qt::AlignLeft | Qt::AlignTop,
             axes);
    }
}

void PlotPainter::paintCurve(const PlotCurve& curve) {
    m_painter.setPen(QPen(curve.color, curve.style == Qt::SolidLine ? 1.6 : 1.0, curve.style));
    QPolygonF line;
    line.reserve(curve.points.size());
    for (const QPointF& p : curve.points) {
        const QPointF at(m_layout.coord.r2sX(p.x()), m_layout.coord.r2sY(p.y()));
        if (std::isfinite(at.x()) && std::isfinite(at.y())) {
            line.append(QPointF(nearBy(at.x()), nearBy(at.y())));
            continue;
        }
        drawLongLine(m_painter, line);  // a gap
        line.clear();
    }
    drawLongLine(m_painter, line);
}

void PlotPainter::paintResidual() {
    const QRectF& box = m_layout.residual;
    m_painter.save();
    m_painter.setClipRect(box);
    paintDifferences();
    m_painter.restore();

    m_painter.setPen(m_plot.colors.ink);
    m_painter.drawRect(box);
    const double largest = m_layout.largestDifference();
    for (double v : {largest, -largest}) {
        text(QPointF(box.left() - 6, m_layout.residualToY(v)), QString::number(v, 'g', 2),
             Qt::AlignRight | Qt::AlignVCenter, m_layout.all);
    }
    if (m_letters.width(m_plot.texts.residual) <= box.height() + ResidualSlack) {
        text(QPointF(m_layout.all.left() + 2, box.center().y()), m_plot.texts.residual,
             Qt::AlignLeft | Qt::AlignVCenter, m_layout.all, true);
    }
}

void PlotPainter::paintDifferences() {
    const QRectF& box = m_layout.residual;
    const double zero = m_layout.residualToY(0);
    m_painter.setPen(QPen(QColor(128, 128, 128, 140), 1));
    m_painter.drawLine(QPointF(box.left(), zero), QPointF(box.right(), zero));
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(QPen(m_plot.readable(getColor(0)), 1.2));
    QPolygonF line;
    for (const QPointF& p : m_layout.differences) {
        const double x = m_layout.coord.r2sX(p.x());
        if (std::isfinite(x) && std::isfinite(p.y()) && std::abs(x) < Far) {
            line.append(QPointF(x, nearBy(m_layout.residualToY(p.y()))));
        } else {
            drawLongLine(m_painter, line);
            line.clear();
        }
    }
    drawLongLine(m_painter, line);
}

}  // namespace

PlotLetters plotLettersOf(const Letters& letters) {
    // Whole pixels: the lines of the axes are crisp then.
    return {std::round(letters.height()), std::round(letters.width(QStringLiteral("-0.000"))),
            std::round(letters.width(QStringLiteral("-0.00000")))};
}

PlotLayout paintPlot(QPainter& painter, const SpectrumPlot& plot, const QRectF& all,
                     const Letters& letters) {
    PlotLayout layout(plot, all, plotLettersOf(letters));
    PlotPainter(painter, plot, layout, letters).paint();
    return layout;
}

bool writePlot(const QString& fileName, const SpectrumPlot& plot, const QSize& size) {
    return writeDrawing(fileName, size, [&](QPainter& painter) {
        paintPlot(painter, plot.forSaving(), QRectF(QPointF(), size),
                  Letters::ofPictures(SavedLetters));
    });
}
