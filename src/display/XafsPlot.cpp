// The drawing of the spectrum plot.

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "app/Globals.h"
#include "display/DispA.h"
#include "display/DrawText.h"
#include "display/Ticks.h"
#include "display/XafsView.h"
#include "imagedata/Units.h"
#include "ui_XafsView.h"

namespace {

/// The part of the canvas inside the axes, with room for two rows of text below and a column of
/// numbers beside an upright title.
QRectF plotRect(const QRectF& all, const QFontMetrics& font) {
    const double row = font.height();
    return all.adjusted(row + font.horizontalAdvance(QStringLiteral("-0.000")) + 14, row * 0.75,
                        -row, -2 * row - 12);
}

}  // namespace

double XafsView::abscissa(double energy) const {
    switch (m_ui->Abscissa->currentIndex()) {
        case 1:
            return energy / 1000.0;
        case 2:
            return wavelengthOf(energy);
        case 3: {
            // Below the crystal's lowest energy there is no angle.
            const double angle = braggAngle(energy, m_units->d());
            return angle < 0.0 ? std::nan("") : angle;
        }
        default:
            return energy;
    }
}

const Spectrum& XafsView::seriesOf(const XafsSpectrum& spectrum) const {
    switch (m_ui->Ordinate->currentIndex()) {
        case Normalized:
            return spectrum.normalized();
        case DoubleNormalized:
            return spectrum.doubleNormalizedPreBase();
        case PostBased:
            return spectrum.postBased();
        case PostBasedBySpan:
            return spectrum.postBasedBySpan();
        default:
            return spectrum;
    }
}

void XafsView::addCurve(QVector<Curve>* list, const XafsSpectrum& spectrum, const Spectrum& series,
                        const QColor& color, Qt::PenStyle style, const QString& name) const {
    Curve curve{{}, color, style, name};
    const int n = std::min(spectrum.size(), series.size());
    curve.points.reserve(n);
    for (int i = 0; i < n; ++i) {
        const QPointF point(abscissa(spectrum.correctedEnergy(i)), series.value(i));
        if (std::isfinite(point.x()) && std::isfinite(point.y())) {
            curve.points.append(point);
        }
    }
    list->append(curve);
}

QVector<XafsView::Curve> XafsView::curves() const {
    QVector<Curve> list;
    const int ordinate = m_ui->Ordinate->currentIndex();
    for (const Shown& shown : shownSpectra()) {
        addCurve(&list, *shown.spectrum, seriesOf(*shown.spectrum), shown.color, Qt::SolidLine,
                 shown.name);
        if (ordinate == MuT && m_ui->Backgrounds->isChecked()) {
            addCurve(&list, *shown.spectrum, shown.spectrum->preEdge(), shown.color, Qt::DashLine,
                     QString());
            addCurve(&list, *shown.spectrum, shown.spectrum->postEdge(), shown.color, Qt::DashLine,
                     QString());
        }
    }
    if (m_fit && m_sample && ordinate == DoubleNormalized) {
        addCurve(&list, *m_fit, *m_fit, getColor(0), Qt::SolidLine, tr("Fit"));
    }
    return list;
}

QRectF XafsView::extent(const QVector<Curve>& list) const {
    double x0 = 1e300, x1 = -1e300, y0 = 1e300, y1 = -1e300;
    for (const Curve& curve : list) {
        for (const QPointF& p : curve.points) {
            x0 = std::min(x0, p.x());
            x1 = std::max(x1, p.x());
            y0 = std::min(y0, p.y());
            y1 = std::max(y1, p.y());
        }
    }
    if (!(x1 > x0)) {
        x0 = x0 < 1e299 ? x0 - 1.0 : 0.0;
        x1 = x0 + 2.0;
    }
    if (!(y1 > y0)) {
        y0 = y0 < 1e299 ? y0 - 1.0 : 0.0;
        y1 = y0 + 2.0;
    }
    const double room = 0.04 * (y1 - y0);
    return QRectF(x0, y0 - room, x1 - x0, y1 - y0 + 2 * room);
}

void XafsView::draw(QPainter* painter) {
    const QRectF all(m_ui->Canvas->rect());
    const QRectF plot = plotRect(all, painter->fontMetrics());
    painter->fillRect(all, palette().color(QPalette::Base));
    if (plot.width() < 20 || plot.height() < 20) {
        return;
    }
    const QVector<Curve> list = curves();
    if (list.isEmpty()) {
        painter->setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
        painter->drawText(all, Qt::AlignCenter, tr("No spectrum"));
        return;
    }
    const QRectF shown = m_zoom.value_or(extent(list));
    m_coord.setScreen(plot.left(), plot.right(), plot.bottom(), plot.top());
    m_coord.setReal(shown.left(), shown.right(), std::min(shown.top(), shown.bottom()),
                    std::max(shown.top(), shown.bottom()));
    paintAxes(*painter, plot);

    painter->save();
    painter->setClipRect(plot);
    painter->setRenderHint(QPainter::Antialiasing);
    paintMarks(*painter, plot);
    for (const Curve& curve : list) {
        QPolygonF line;
        line.reserve(curve.points.size());
        for (const QPointF& p : curve.points) {
            line.append(QPointF(m_coord.r2sX(p.x()), m_coord.r2sY(p.y())));
        }
        painter->setPen(QPen(curve.color, curve.style == Qt::SolidLine ? 1.6 : 1.0, curve.style));
        painter->drawPolyline(line);
    }
    painter->restore();
    paintLegend(*painter, plot, list);
    if (m_zoomStart) {
        painter->setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DashLine));
        painter->drawRect(QRect(*m_zoomStart, m_ui->Canvas->mouse().current()).normalized());
    }
}

void XafsView::paintAxes(QPainter& painter, const QRectF& plot) const {
    const QColor ink = palette().color(QPalette::WindowText);
    const QPen grid(QColor(128, 128, 128, 60), 1);
    const QRectF all(m_ui->Canvas->rect());
    const Ticks xTicks = ticksBetween(m_coord.rx0, m_coord.rx1);
    double end = -1e300;
    for (double value : xTicks.values) {
        const double x = m_coord.r2sX(value);
        painter.setPen(grid);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        const QString text = tickText(value, xTicks.step);
        const double half = 0.5 * painter.fontMetrics().horizontalAdvance(text);
        if (x - half < end + 6) {
            continue;
        }
        end = x + half;
        painter.setPen(ink);
        painter.drawLine(QPointF(x, plot.bottom()), QPointF(x, plot.bottom() + 4));
        drawText(painter, QPointF(x, plot.bottom() + 5), text, Qt::AlignHCenter | Qt::AlignTop,
                 all);
    }
    const Ticks yTicks = ticksBetween(m_coord.ry0, m_coord.ry1);
    double lowest = 1e300;
    for (double value : yTicks.values) {
        const double y = m_coord.r2sY(value);
        painter.setPen(grid);
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        if (y > lowest - painter.fontMetrics().height()) {
            continue;
        }
        lowest = y;
        painter.setPen(ink);
        painter.drawLine(QPointF(plot.left() - 4, y), QPointF(plot.left(), y));
        drawText(painter, QPointF(plot.left() - 6, y), tickText(value, yTicks.step),
                 Qt::AlignRight | Qt::AlignVCenter, all);
    }
    painter.setPen(ink);
    painter.drawRect(plot);
    const int unit = m_ui->Abscissa->currentIndex();
    const QString titles[] = {tr("Energy [eV]"), tr("Energy [keV]"), tr("Wavelength [A]"),
                              tr("Bragg angle [deg]")};
    drawText(painter, QPointF(plot.center().x(), all.bottom() - 2), titles[unit],
             Qt::AlignHCenter | Qt::AlignBottom, all);
    drawText(painter, QPointF(2, plot.center().y()), m_ui->Ordinate->currentText(),
             Qt::AlignLeft | Qt::AlignVCenter, all, true);
}

void XafsView::paintMarks(QPainter& painter, const QRectF& plot) const {
    const auto line = [&](double energy, const QColor& color) {
        const double x = m_coord.r2sX(abscissa(energy));
        if (energy > 0.0 && std::isfinite(x)) {
            painter.setPen(QPen(color, 1, Qt::DotLine));
            painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        }
    };
    if (m_sample) {
        line(m_sample->midE() - m_sample->energyCorrection(), QColor(110, 110, 110));
    }
    line(m_raEnergy, getColor(6));
}

void XafsView::paintLegend(QPainter& painter, const QRectF& plot,
                           const QVector<Curve>& list) const {
    const QFontMetricsF metrics(painter.font());
    const double height = metrics.height();
    QVector<QPair<QString, QColor>> rows;
    double widest = 0.0;
    for (const Curve& curve : list) {
        if (!curve.name.isEmpty()) {
            const QString name = metrics.elidedText(curve.name, Qt::ElideMiddle, plot.width() / 2);
            widest = std::max(widest, metrics.horizontalAdvance(name));
            rows.append({name, curve.color});
        }
    }
    const QSizeF size(widest + 38, rows.size() * height + 6);
    const QRectF box = quietestCorner(size, plot.adjusted(6, 6, -6, -6), list);
    QColor paper = palette().color(QPalette::Base);
    paper.setAlpha(215);
    painter.fillRect(box, paper);
    double y = box.top() + 3;
    for (const auto& row : rows) {
        painter.setPen(QPen(row.second, 2));
        painter.drawLine(QPointF(box.left() + 6, y + height / 2),
                         QPointF(box.left() + 26, y + height / 2));
        painter.setPen(palette().color(QPalette::WindowText));
        drawText(painter, QPointF(box.left() + 32, y), row.first, Qt::AlignLeft | Qt::AlignTop);
        y += height;
    }
}

QRectF XafsView::quietestCorner(const QSizeF& size, const QRectF& inside,
                                const QVector<Curve>& list) const {
    const double right = inside.right() - size.width();
    const double bottom = inside.bottom() - size.height();
    QRectF best;
    int fewest = 0;
    for (const QPointF& corner : {QPointF(right, bottom), QPointF(right, inside.top()),
                                  inside.topLeft(), QPointF(inside.left(), bottom)}) {
        const QRectF box(corner, size);
        int points = 0;
        for (const Curve& curve : list) {
            if (curve.name.isEmpty()) {
                continue;  // a background may be covered
            }
            for (const QPointF& p : curve.points) {
                points += box.contains(m_coord.r2sX(p.x()), m_coord.r2sY(p.y())) ? 1 : 0;
            }
        }
        if (best.isNull() || points < fewest) {
            best = box;
            fewest = points;
        }
    }
    return best;
}
