// The drawing of the spectrum plot.

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/Globals.h"
#include "display/DispA.h"
#include "display/XafsView.h"
#include "drawing/DrawText.h"
#include "drawing/LongLine.h"
#include "drawing/PlotCurve.h"
#include "drawing/Ticks.h"
#include "spectra/Units.h"
#include "ui_XafsView.h"

namespace {

constexpr double ResidualGap = 6.0;
constexpr double ResidualRows = 3.6;

/// The range of finite values that a plot can span.
struct Range {
    double low = 1e150;
    double high = -1e150;

    void take(double v) {
        if (std::abs(v) < 1e150) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    }
    /// Widened until it is one.
    void settle() {
        if (low > high) {
            low = 0.0;
            high = 1.0;
        } else if (!(high - low > 1e-9 * std::max(std::abs(low), std::abs(high)))) {
            const double half = std::max(1.0, 1e-3 * std::abs(low));
            low -= half;
            high += half;
        }
    }
};

}  // namespace

QColor XafsView::ink() const {
    return m_onPaper ? QColor(Qt::black) : palette().color(QPalette::WindowText);
}

QColor XafsView::paper() const {
    return m_onPaper ? QColor(Qt::white) : palette().color(QPalette::Base);
}

// A colour that is seen on the paper: the curves' colours are made for neither light nor dark.
QColor XafsView::readable(const QColor& color) const {
    const int luma = qGray(color.rgb());
    if (paper().lightness() < 128) {
        return luma < 90 ? QColor::fromHsl(color.hslHue(), color.hslSaturation(), 175) : color;
    }
    return luma > 120 ? color.darker(150) : color;
}

double XafsView::abscissa(double energy) const {
    switch (m_ui->Abscissa->currentIndex()) {
        case 1:
            return energy / 1000.0;
        case 2:
            return wavelengthOf(energy);
        case 3:
            return braggAngle(energy, m_units->d());
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

void XafsView::addCurve(QVector<PlotCurve>* list, const XafsSpectrum& spectrum,
                        const Spectrum& series, const QColor& color, Qt::PenStyle style,
                        const QString& name) const {
    PlotCurve curve{{}, color, style, name};
    const int n = std::min(spectrum.size(), series.size());
    curve.points.reserve(n);
    for (int i = 0; i < n; ++i) {
        curve.points.append(QPointF(abscissa(spectrum.correctedEnergy(i)), series.value(i)));
    }
    list->append(curve);
}

QVector<PlotCurve> XafsView::curves() const {
    QVector<PlotCurve> list;
    const bool backgrounds =
        m_ui->Ordinate->currentIndex() == MuT && m_ui->Backgrounds->isChecked();
    for (const Shown& shown : shownSpectra()) {
        const XafsSpectrum& spectrum = *shown.spectrum;
        // The fit is drawn as it stands: it is a sum of double normalized spectra.
        const bool isFit = m_fit && &spectrum == &*m_fit;
        const QColor color = readable(shown.color);
        QString name = shown.name;
        const std::optional<double> r = isFit ? rFactor() : std::nullopt;
        if (r) {
            name += QStringLiteral(" (R = ") + QString::number(*r, 'g', 3) + ')';
        }
        addCurve(&list, spectrum, isFit ? spectrum : seriesOf(spectrum), color, Qt::SolidLine,
                 name);
        if (backgrounds) {
            addCurve(&list, spectrum, spectrum.preEdge(), color, Qt::DashLine, QString());
            addCurve(&list, spectrum, spectrum.postEdge(), color, Qt::DashLine, QString());
        }
    }
    return list;
}

QRectF XafsView::extent(const QVector<PlotCurve>& list) const {
    Range x;
    Range y;
    for (const PlotCurve& curve : list) {
        for (const QPointF& p : curve.points) {
            if (std::isfinite(p.x()) && std::isfinite(p.y())) {
                x.take(p.x());
                y.take(p.y());
            }
        }
    }
    x.settle();
    y.settle();
    const double room = 0.04 * (y.high - y.low);
    return QRectF(x.low, y.low - room, x.high - x.low, y.high - y.low + 2 * room);
}

QRectF XafsView::plotRect() const {
    // Room for two rows of text below and a column of numbers beside an upright title.
    const QFontMetrics font = m_ui->Canvas->fontMetrics();
    const double row = font.height();
    const double residual = showsFit() ? ResidualRows * row + ResidualGap : 0.0;
    return QRectF(m_ui->Canvas->rect())
        .adjusted(row + font.horizontalAdvance(QStringLiteral("-0.000")) + 14, row * 0.75, -row,
                  -2 * row - 12 - residual);
}

QRectF XafsView::residualRect() const {
    const QRectF plot = plotRect();
    return QRectF(plot.left(), plot.bottom() + ResidualGap, plot.width(),
                  ResidualRows * m_ui->Canvas->fontMetrics().height());
}

void XafsView::draw(QPainter* painter) {
    const QRectF all(m_ui->Canvas->rect());
    const QRectF plot = plotRect();
    painter->fillRect(all, paper());
    if (plot.width() < 20 || plot.height() < 20) {
        return;
    }
    const QVector<PlotCurve> list = curves();
    if (list.isEmpty()) {
        painter->setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
        painter->drawText(all, Qt::AlignCenter, tr("No spectrum"));
        return;
    }
    const QRectF shown = m_zoom.value_or(extent(list));
    m_coord.setScreen(plot.left(), plot.right(), plot.bottom(), plot.top());
    m_coord.setReal(shown.left(), shown.right(), shown.top(), shown.bottom());
    paintAxes(*painter, plot);

    painter->save();
    painter->setClipRect(plot);
    painter->setRenderHint(QPainter::Antialiasing);
    paintMarks(*painter, plot);
    for (const PlotCurve& curve : list) {
        paintCurve(*painter, curve);
    }
    painter->restore();
    paintLegend(*painter, plot, list, m_coord, {ink(), paper()});
    if (showsFit()) {
        paintResidual(*painter, residualRect());
    }
    if (m_zoomStart) {
        painter->setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DashLine));
        painter->drawRect(QRect(*m_zoomStart, m_ui->Canvas->mouse().current()).normalized());
    }
}

void XafsView::paintCurve(QPainter& painter, const PlotCurve& curve) const {
    painter.setPen(QPen(curve.color, curve.style == Qt::SolidLine ? 1.6 : 1.0, curve.style));
    // Far outside points would overflow the painter's own numbers.
    constexpr double Far = 1e6;
    QPolygonF line;
    line.reserve(curve.points.size());
    for (const QPointF& p : curve.points) {
        const QPointF at(m_coord.r2sX(p.x()), m_coord.r2sY(p.y()));
        if (std::isfinite(at.x()) && std::isfinite(at.y())) {
            line.append(QPointF(std::max(-Far, std::min(at.x(), Far)),
                                std::max(-Far, std::min(at.y(), Far))));
            continue;
        }
        drawLongLine(painter, line);  // a gap
        line.clear();
    }
    drawLongLine(painter, line);
}

void XafsView::paintResidual(QPainter& painter, const QRectF& plot) const {
    QPolygonF points = residual();
    Range range;
    range.take(0.0);
    for (QPointF& p : points) {
        p.setX(abscissa(p.x()));
        if (p.x() >= m_coord.rx0 && p.x() <= m_coord.rx1) {
            range.take(p.y());
        }
    }
    // Equal reach to both sides of zero: the eye sees at once whether the residual is lopsided.
    const double reach = std::max(1e-6, 1.1 * std::max(-range.low, range.high));
    const auto yOf = [&](double v) { return plot.center().y() - v / reach * plot.height() / 2; };
    painter.save();
    painter.setClipRect(plot);
    painter.setPen(QPen(QColor(128, 128, 128, 140), 1));
    painter.drawLine(QPointF(plot.left(), yOf(0)), QPointF(plot.right(), yOf(0)));
    painter.setRenderHint(QPainter::Antialiasing);
    QPolygonF line;
    painter.setPen(QPen(readable(getColor(0)), 1.2));
    for (const QPointF& p : qAsConst(points)) {
        const double x = m_coord.r2sX(p.x());
        if (std::isfinite(x) && std::isfinite(p.y()) && std::abs(x) < 1e6) {
            line.append(QPointF(x, std::max(-1e6, std::min(yOf(p.y()), 1e6))));
        } else {
            drawLongLine(painter, line);
            line.clear();
        }
    }
    drawLongLine(painter, line);
    painter.restore();

    painter.setPen(ink());
    painter.drawRect(plot);
    const QRectF all(m_ui->Canvas->rect());
    const double shown = reach / 1.1;
    for (double v : {shown, -shown}) {
        drawText(painter, QPointF(plot.left() - 6, yOf(v)), QString::number(v, 'g', 2),
                 Qt::AlignRight | Qt::AlignVCenter, all);
    }
    drawText(painter, QPointF(2, plot.center().y()), tr("Residual"),
             Qt::AlignLeft | Qt::AlignVCenter, all, true);
}

void XafsView::paintAxes(QPainter& painter, const QRectF& plot) const {
    const QPen grid(QColor(128, 128, 128, 60), 1);
    const QRectF all(m_ui->Canvas->rect());
    const double foot = showsFit() ? residualRect().bottom() : plot.bottom();
    const Ticks xTicks = ticksBetween(m_coord.rx0, m_coord.rx1);
    double end = -1e300;
    for (double value : xTicks.values) {
        const double x = m_coord.r2sX(value);
        painter.setPen(grid);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, foot));
        const QString text = tickText(value, xTicks.step);
        const double half = 0.5 * painter.fontMetrics().horizontalAdvance(text);
        if (x - half < end + 6) {
            continue;
        }
        end = x + half;
        painter.setPen(ink());
        painter.drawLine(QPointF(x, foot), QPointF(x, foot + 4));
        drawText(painter, QPointF(x, foot + 5), text, Qt::AlignHCenter | Qt::AlignTop, all);
    }
    const Ticks yTicks = ticksBetween(m_coord.ry0, m_coord.ry1);
    for (double value : yTicks.values) {
        const double y = m_coord.r2sY(value);
        painter.setPen(grid);
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        painter.setPen(ink());
        painter.drawLine(QPointF(plot.left() - 4, y), QPointF(plot.left(), y));
        drawText(painter, QPointF(plot.left() - 6, y), tickText(value, yTicks.step),
                 Qt::AlignRight | Qt::AlignVCenter, all);
    }
    painter.setPen(ink());
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
    const double x = m_coord.r2sX(abscissa(m_raEnergy));
    if (m_raEnergy > 0.0 && x > plot.left() && x < plot.right()) {
        drawText(painter, QPointF(x + 3, plot.top() + 2), QStringLiteral("RA"),
                 Qt::AlignLeft | Qt::AlignTop, plot);
    }
}
