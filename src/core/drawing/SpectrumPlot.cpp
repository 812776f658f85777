#include "drawing/SpectrumPlot.h"

#include <algorithm>
#include <cmath>

#include "base/Globals.h"

namespace {

const Spectrum& seriesOf(const XafsSpectrum& spectrum, SpectrumPlot::Ordinate ordinate) {
    switch (ordinate) {
        case SpectrumPlot::Normalized:
            return spectrum.normalized();
        case SpectrumPlot::DoubleNormalized:
            return spectrum.doubleNormalizedPreBase();
        case SpectrumPlot::PostBased:
            return spectrum.postBased();
        case SpectrumPlot::PostBasedBySpan:
            return spectrum.postBasedBySpan();
        default:
            return spectrum;
    }
}

void useSavedName(SpectrumPlot::Named* named) {
    if (!named->savedName.isEmpty()) {
        named->name = named->savedName;
    }
}

}  // namespace

bool SpectrumPlot::showsFit() const {
    return fit && !fit->isEmpty() && hasSample() && (asCompared || ordinate == DoubleNormalized);
}

QVector<SpectrumPlot::Shown> SpectrumPlot::shown() const {
    QVector<Shown> list;
    if (hasSample()) {
        list.append({&sample->spectrum, sample->name, colors.ink, false});
    }
    if (showsFit()) {
        list.append({&*fit, texts.fit, getColor(0), true});
    }
    if (standard && !standard->spectrum.isEmpty()) {
        list.append({&standard->spectrum, standard->name, getColor(2), false});
    }
    for (const QVector<Named>* others : {&references, &pinned}) {
        for (const Named& other : *others) {
            if (other.shown && !other.spectrum.isEmpty()) {
                list.append({&other.spectrum, other.name, other.color, false});
            }
        }
    }
    return list;
}

QPolygonF SpectrumPlot::residual() const {
    QPolygonF points;
    if (!showsFit()) {
        return points;
    }
    points.reserve(fit->size());
    for (int i = 0; i < fit->size(); ++i) {
        const double e = fit->correctedEnergy(i);
        const XafsSpectrum& from = sample->spectrum;
        const double at = e + from.energyCorrection();
        const double value = asCompared ? from.valueAt(at) : from.doubleNormalizedPreBase(at);
        points.append(QPointF(e, value - fit->value(i)));
    }
    return points;
}

std::optional<double> SpectrumPlot::rFactor() const {
    double differences = 0.0;
    double samples = 0.0;
    const QPolygonF points = residual();
    for (int i = 0; i < points.size(); ++i) {
        const double value = points[i].y() + fit->value(i);
        differences += points[i].y() * points[i].y();
        samples += value * value;
    }
    const double ratio = differences / samples;
    return std::isfinite(ratio) ? std::optional<double>(ratio) : std::nullopt;
}

double SpectrumPlot::abscissaOf(double energy) const {
    switch (abscissa) {
        case KiloElectronVolts:
            return energy / 1000.0;
        case Angstroms:
            return wavelengthOf(energy);
        case Degrees:
            return braggAngle(energy, spacing);
        default:
            return energy;
    }
}

double SpectrumPlot::energyOf(double abscissaValue) const {
    switch (abscissa) {
        case KiloElectronVolts:
            return 1000.0 * abscissaValue;
        case Angstroms:
            return wavelengthOf(abscissaValue);  // its own inverse
        case Degrees:
            return energyOfAngle(abscissaValue, spacing);
        default:
            return abscissaValue;
    }
}

QVector<PlotCurve> SpectrumPlot::curves() const {
    QVector<PlotCurve> list;
    const auto add = [&](const XafsSpectrum& spectrum, const Spectrum& series, const QColor& color,
                         Qt::PenStyle style, const QString& name) {
        PlotCurve curve{{}, color, style, name};
        const int n = std::min(spectrum.size(), series.size());
        curve.points.reserve(n);
        for (int i = 0; i < n; ++i) {
            curve.points.append(QPointF(abscissaOf(spectrum.correctedEnergy(i)), series.value(i)));
        }
        list.append(curve);
    };
    for (const Shown& one : shown()) {
        const XafsSpectrum& spectrum = *one.spectrum;
        const QColor color = readable(one.color);
        QString name = one.name;
        const std::optional<double> r = one.isFit ? rFactor() : std::nullopt;
        if (r) {
            name += QStringLiteral(" (R = ") + QString::number(*r, 'g', 3) + ')';
        }
        // The fit is drawn as it stands: it is a sum of double normalized spectra.
        const bool asItStands = one.isFit || asCompared;
        add(spectrum, asItStands ? spectrum : seriesOf(spectrum, ordinate), color, Qt::SolidLine,
            name);
        if (ordinate == MuT && backgrounds && !asCompared) {
            add(spectrum, spectrum.preEdge(), color, Qt::DashLine, QString());
            add(spectrum, spectrum.postEdge(), color, Qt::DashLine, QString());
        }
    }
    return list;
}

QColor SpectrumPlot::readable(const QColor& color) const {
    const int luma = qGray(color.rgb());
    if (colors.paper.lightness() < 128) {
        return luma < 90 ? QColor::fromHsl(color.hslHue(), color.hslSaturation(), 175) : color;
    }
    return luma > 120 ? color.darker(150) : color;
}

SpectrumPlot SpectrumPlot::forSaving() const {
    SpectrumPlot saved = *this;
    saved.colors = PlotColors();
    saved.texts = PlotTexts();
    saved.frameEnergy.reset();
    for (std::optional<Named>* one : {&saved.sample, &saved.standard}) {
        if (*one) {
            useSavedName(&**one);
        }
    }
    for (QVector<Named>* others : {&saved.references, &saved.pinned}) {
        for (Named& other : *others) {
            useSavedName(&other);
        }
    }
    return saved;
}
