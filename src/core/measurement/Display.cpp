#include "measurement/Display.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "base/LargeMemory.h"
#include "base/Numbers.h"
#include "drawing/FramePicture.h"
#include "drawing/ValuePicture.h"
#include "frames/FrameCounts.h"
#include "measurement/MapDisplay.h"
#include "measurement/Origin.h"

TiffData* shownFrame(Measurement& measurement) {
    const Shown shown = measurement.settings().shown;
    return shown == Shown::I1 || shown == Shown::I0
               ? measurement.shownStack().frames().at(measurement.frame())
               : nullptr;
}

namespace {

/// In use: the one that is fixed, or the image's own.
QPair<double, double> rangeOf(const FrameImage& image, const Measurement& measurement) {
    const ViewRange& range = measurement.settings().*measurement.frameRange();
    return range.fixed ? qMakePair(range.low, range.high)
                       : colorRange(image.low, image.high, measurement);
}

/// An energy in eV, as titles have it.
QString titleOf(double energy) {
    return QString::number(energy, 'f', 2);
}

}  // namespace

QPair<double, double> colorRange(double low, double high, const Measurement& measurement) {
    if (!frameColorsOf(measurement.settings()).isDiverging) {
        return {low, high};
    }
    const double most = std::max(std::abs(low), std::abs(high));
    return {-most, most};
}

QImage pictureOf(const FrameImage& image, const Measurement& measurement) {
    const auto [low, high] = rangeOf(image, measurement);
    const PixelValues& pixels = image.pixels;
    return valuePicture(pixels.values.get(), pixels.width, pixels.height, low, high,
                        frameColorsOf(measurement.settings()), measurement.threads());
}

namespace {

/// Null where they could not be read.
QImage pictureOf(const FrameCounts& counts, const Settings& settings) {
    if (!counts.problem().isEmpty()) {
        return QImage();
    }
    TiffData& frame = counts.frame();
    const ViewRange& range = settings.viewRange;
    if (!range.fixed && settings.views.frames.isStated() && frame.width > 0 && frame.height > 0) {
        if (frame.picture() == nullptr) {
            throw NotEnoughMemory();
        }
        return counts.isCopy() ? frame.picture()->copy() : *frame.picture();
    }
    return framePicture(frame, range.fixed ? range.low : frame.min,
                        range.fixed ? range.high : frame.max, frameColorsOf(settings));
}

void tell(const QString& what, QString* problem) {
    if (problem != nullptr) {
        *problem = what;
    }
}

/// What a frame shows in place of its counts; null for counts, and where it cannot be made.
const FrameImage* frameImageNow(Measurement& measurement, QString* problem) {
    const FrameImage* image = measurement.frameImage(Measurement::Wait::UntilMade);
    tell(image == nullptr ? measurement.frameProblem() : QString(), problem);
    return image;
}

}  // namespace

QImage shownPicture(Measurement& measurement, QString* problem) {
    if (measurement.rehearsal() != nullptr && shownFrame(measurement) != nullptr) {
        return QImage(1, 1, QImage::Format_Grayscale8);  // its counts have not been read
    }
    if (measurement.frameKind() != FrameView::Kind::Counts) {
        const FrameImage* image = frameImageNow(measurement, problem);
        return image != nullptr ? pictureOf(*image, measurement) : QImage();
    }
    if (TiffData* frame = shownFrame(measurement)) {
        const FrameCounts counts(frame);
        tell(measurement.ofLoad(counts.problem()), problem);
        return pictureOf(counts, measurement.settings());
    }
    const Result* result = measurement.shownResult();
    return result != nullptr ? pictureOf(measurement, *result) : QImage();
}

namespace {

BarPicture imageWithBar(Measurement& measurement, const FrameImage& image, const TiffData& frame) {
    BarPicture parts;
    parts.picture = pictureOf(image, measurement);
    parts.colors = &frameColorsOf(measurement.settings());
    const auto [low, high] = rangeOf(image, measurement);
    parts.low = low;
    parts.high = high;
    parts.unit = QStringLiteral("mu-t");
    if (image.kind == FrameView::Kind::Difference) {
        parts.title = QStringLiteral("Difference of mu-t, %1 eV less %2 eV")
                          .arg(titleOf(image.to), titleOf(image.from));
    } else {
        parts.title = QStringLiteral("Absorption (mu-t), %1 eV").arg(titleOf(image.to));
        parts.source = QFileInfo(frame.fileName).fileName();
    }
    return parts;
}

BarPicture frameWithBar(Measurement& measurement, TiffData* shown, QString* problem) {
    if (measurement.frameKind() != FrameView::Kind::Counts) {
        const FrameImage* image = frameImageNow(measurement, problem);
        return image != nullptr ? imageWithBar(measurement, *image, *shown) : BarPicture();
    }
    BarPicture parts;
    const FrameCounts counts(shown);
    tell(measurement.ofLoad(counts.problem()), problem);
    const TiffData& frame = counts.frame();
    const ViewRange& range = measurement.settings().viewRange;
    parts.picture = pictureOf(counts, measurement.settings());
    parts.colors = &frameColorsOf(measurement.settings());
    parts.low = range.fixed ? range.low : frame.min;
    parts.high = range.fixed ? range.high : frame.max;
    const bool isI0 = measurement.settings().shown == Shown::I0;
    parts.title = (isI0 ? QStringLiteral("Incident beam (I0), %1 eV")
                        : QStringLiteral("Transmitted beam (I1), %1 eV"))
                      .arg(titleOf(frame.energy));
    parts.source = QFileInfo(frame.fileName).fileName();
    parts.unit = QStringLiteral("counts");
    return parts;
}

QString sourceOf(const Result& result, const Measurement& measurement) {
    if (const ReferenceInput* reference = result.referenceInput()) {
        return reference->file.name;
    }
    if (result.id == ResultId::Shift && result.run) {
        return result.run->inputs.standard.name;
    }
    const auto& map = measurement.mapInput();
    return result.id == ResultId::Shift && map ? map->file.name : QString();
}

}  // namespace

BarPicture shownWithBar(Measurement& measurement, QString* problem) {
    if (TiffData* frame = shownFrame(measurement)) {
        return frameWithBar(measurement, frame, problem);
    }
    BarPicture parts;
    const Result* result = measurement.shownResult();
    if (result == nullptr) {
        return parts;
    }
    const Analyzed2DRes& image = result->image;
    parts.picture = shownPicture(measurement);
    if (!parts.picture.isNull() && viewOf(measurement, *result).isStated()) {
        parts.picture = withGapsMarked(parts.picture, image.visibleValues().constData(),
                                       image.grid().width, image.grid().height);
    }
    const MapColoring coloring = coloringOf(measurement, *result);
    parts.colors = coloring.colors;
    parts.low = coloring.low;
    parts.high = coloring.high;
    parts.marksOutside = coloring.marksOutside;
    parts.title = QString::fromLatin1(result->kind().title);
    if (image.showsProc()) {
        parts.title += QStringLiteral(", processed");
    }
    for (const QString& mark : marksOf(measurement, *result)) {
        parts.title += QStringLiteral(", ") + mark;
    }
    parts.unit = QString::fromLatin1(result->kind().unit);
    parts.source = QFileInfo(sourceOf(*result, measurement)).fileName();
    return parts;
}

QString shownCaption(Measurement& measurement) {
    const TiffData* frame = shownFrame(measurement);
    if (frame == nullptr) {
        return QString();
    }
    const FrameImage* image = measurement.frameImage(Measurement::Wait::Blink);
    if (image == nullptr) {
        const bool isI0 = measurement.settings().shown == Shown::I0;
        return (isI0 ? QStringLiteral("I0  %1 eV") : QStringLiteral("%1 eV"))
            .arg(titleOf(frame->energy));
    }
    const QString what = measurement.stack(StackId::I0).size() > 0
                             ? QStringLiteral("mu-t  ")
                             : QStringLiteral("mu-t (no I0)  ");
    const QString energy = titleOf(image->to) + QStringLiteral(" eV");
    return image->kind == FrameView::Kind::Difference
               ? what + energy + QStringLiteral(" \u2212 %1 eV").arg(titleOf(image->from))
               : what + energy;
}

SpectrumPlot shownPlot(Measurement& measurement) {
    SpectrumPlot plot;
    const XafsSpectrum& sample = measurement.sample();
    if (!sample.isEmpty()) {
        plot.sample = SpectrumPlot::Named{sample, QStringLiteral("Position (%1, %2)")
                                                      .arg(toPixel(measurement.position().x()))
                                                      .arg(toPixel(measurement.position().y()))};
    }
    const XafsSpectrum* standard = measurement.standard();
    if (standard != nullptr && !standard->isEmpty()) {
        plot.standard =
            SpectrumPlot::Named{*standard, QFileInfo(measurement.standardFile()).fileName()};
    }
    const Settings& settings = measurement.settings();
    plot.ordinate = static_cast<SpectrumPlot::Ordinate>(settings.plotOrdinate);
    plot.abscissa = static_cast<SpectrumPlot::Abscissa>(settings.plotAbscissa);
    plot.spacing = measurement.spacing();
    plot.raEnergy = settings.raEnergy;
    return plot;
}

namespace {

QPair<double, double> percentilesOf(Measurement& measurement, TiffData* frame, QString* problem) {
    const FrameImage* image = frameImageNow(measurement, problem);
    if (image != nullptr || !problem->isEmpty()) {
        return image != nullptr ? colorRange(image->low, image->high, measurement)
                                : qMakePair(0.0, 0.0);
    }
    const FrameCounts counts(frame);
    *problem = measurement.ofLoad(counts.problem());
    return countPercentiles(counts.frame(), 0.01);
}

}  // namespace

Outcome fixPercentiles(Measurement& measurement) {
    TiffData* frame = shownFrame(measurement);
    if (frame == nullptr) {
        return Outcome::failure(
            QCoreApplication::translate("Measurement", "there is no frame on display"));
    }
    if (measurement.rehearsal() != nullptr) {
        return {};
    }
    QString problem;
    const auto [low, high] = percentilesOf(measurement, frame, &problem);
    if (!problem.isEmpty()) {
        return Outcome::failure(problem);
    }
    if (!(high > low)) {
        return Outcome::failure(QCoreApplication::translate(
            "Measurement", "the percentiles of the frame are equal: the range stays"));
    }
    measurement.set(measurement.frameRange(), ViewRange{true, low, high});
    return {};
}

const char* differenceText(Difference difference) {
    switch (difference) {
        case Difference::None:
            return "";
        case Difference::Frames:
            return QT_TRANSLATE_NOOP("Difference", "of earlier frames");
        case Difference::Dark:
            return QT_TRANSLATE_NOOP("Difference", "with other dark frames");
        case Difference::Map:
            return QT_TRANSLATE_NOOP("Difference", "before the energy calibration");
        case Difference::References:
            return QT_TRANSLATE_NOOP("Difference", "with earlier references");
        case Difference::Bins:
            return QT_TRANSLATE_NOOP("Difference", "with other bins");
        case Difference::Area:
            return QT_TRANSLATE_NOOP("Difference", "of another area");
        case Difference::Background:
            return QT_TRANSLATE_NOOP("Difference", "with another background");
        case Difference::Edge:
            return QT_TRANSLATE_NOOP("Difference", "with another E0");
        case Difference::Ranges:
            return QT_TRANSLATE_NOOP("Difference", "with other background ranges");
        case Difference::Settings:
            return QT_TRANSLATE_NOOP("Difference", "with other settings");
        case Difference::Before:
            return QT_TRANSLATE_NOOP("Difference", "of the run before");
    }
    return "";
}

Difference differenceWhenSaved(const Measurement& measurement, const Result& result) {
    const Difference found = measurement.differenceOf(result);
    return result.id == ResultId::Shift && found != Difference::Before ? Difference::None : found;
}

QString stoppedText(const Run& run) {
    return QCoreApplication::translate("Difference", "stopped at %1 %")
        .arg(static_cast<int>(run.percent));
}

QStringList marksOf(const Measurement& measurement, const Result& result) {
    QStringList marks;
    if (result.run && result.run->state == Run::State::Stopped) {
        marks << stateOf(result);
    }
    const Difference difference = measurement.differenceOf(result);
    if (difference != Difference::None) {
        marks << QString::fromLatin1(differenceText(difference));
    }
    return marks;
}

QString stateText(const Measurement& measurement, const Result& result) {
    QStringList parts;
    if (result.run && result.run->state == Run::State::Stopped) {
        parts << stoppedText(*result.run);
    }
    const Difference difference = measurement.differenceOf(result);
    if (difference != Difference::None) {
        parts << QCoreApplication::translate("Difference", differenceText(difference));
    }
    return parts.join(QStringLiteral("   "));
}

QString describe(const Measurement& measurement, const Result& result) {
    QStringList parts{QCoreApplication::translate("ResultKind", result.kind().title)};
    if (const ReferenceInput* reference = result.referenceInput()) {
        parts << QFileInfo(reference->file.name).fileName();
    }
    const QString state = stateText(measurement, result);
    if (!state.isEmpty()) {
        parts << state;
    }
    return parts.join(QStringLiteral("   "));
}
