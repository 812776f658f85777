#include "window/Controls.h"

#include <QCoreApplication>
#include <QSignalBlocker>
#include <algorithm>

#include "display/Availability.h"
#include "display/XafsView.h"
#include "measurement/Display.h"
#include "panels/NumberField.h"
#include "panels/WhyNot.h"
#include "ui_Body.h"

namespace {

class Controls {
    Q_DECLARE_TR_FUNCTIONS(Controls)
};

QString unless(bool fulfilled, const QString& whyNot) {
    return fulfilled ? QString() : whyNot;
}

/// Empty for a result whose values can be saved or shown, and for none.
QString whyNoPart(const Result* result) {
    return unless(result == nullptr || result->tookPart(), tookNoPart());
}

/// A reason as the tool tip of a control says it.
QString asSentence(const QString& reason) {
    return reason.isEmpty() ? QString()
                            : Controls::tr("%1.").arg(reason.left(1).toUpper() + reason.mid(1));
}

bool hasImageToSave(const Measurement& measurement) {
    const auto& references = measurement.references();
    return std::any_of(references.begin(), references.end(), [](const auto& reference) {
        const auto hasImage = [&reference](int kind) {
            const Result& result = reference->result(kind);
            return result.tookPart() && result.image.isValid();
        };
        return reference->takesPart() && (hasImage(Reference::DMut) || hasImage(Reference::Ratio));
    });
}

bool hasMapToSave(const Measurement& measurement) {
    const std::vector<Result*> maps = measurement.results();
    return std::any_of(maps.begin(), maps.end(),
                       [](const Result* result) { return result->tookPart(); });
}

/// The buttons of what works in the background stop it meanwhile.
void showStop(QAbstractButton* button, bool stops) {
    constexpr char OwnText[] = "ownText";
    if (!button->property(OwnText).isValid()) {
        button->setProperty(OwnText, button->text());
    }
    button->setText(stops ? Controls::tr("Stop") : button->property(OwnText).toString());
}

void updateMapControls(const Ui::Body& ui, const Measurement& measurement) {
    const Result* target = measurement.deglitchTarget();
    const bool hasValues = target != nullptr && target->image.hasData();
    const bool works = measurement.working() == Work::Deglitch;
    const QString running = whileAnalyzing(measurement);
    const QString noMap =
        !running.isEmpty()
            ? running
            : unless(hasValues, Controls::tr("Show a result image or the energy-shift map first."));
    const bool shows = hasValues && target->image.showsProc();  // it can be taken back
    const QString whyNot = noMap.isEmpty() ? asSentence(measurement.whyNotDeglitch()) : noMap;
    setUsable(ui.DeGlitch, works ? QString() : whyNot);
    showStop(ui.DeGlitch, works);
    setUsable(ui.ShowProcImg,
              noMap.isEmpty() && !shows ? asSentence(measurement.whyNotShowProcessed()) : noMap);
    showNumber(ui.DeGlitchFactor, measurement.settings().deglitchFactor);
    showNumber(ui.DeGlitchRatio, measurement.settings().deglitchRatio);
    const QSignalBlocker blocked(ui.ShowProcImg);
    ui.ShowProcImg->setChecked(target != nullptr && target->image.showsProc());
    showStop(ui.NormalizeEShift, works);
    setUsable(ui.NormalizeEShift,
              works ? QString()
              : !running.isEmpty()
                  ? running
                  : unless(measurement.map().image.hasData(),
                           Controls::tr("Make or load an energy-shift map first.")));
}

}  // namespace

void updateControls(const Ui::Body& ui, Measurement& measurement, const XafsView& view) {
    const Result* shown = measurement.shownResult();
    const bool hasPicture =
        shownFrame(measurement) != nullptr || (shown != nullptr && shown->image.isValid());
    const QString whyNotPicture =
        hasPicture ? whyNoPart(shown) : Controls::tr("There is no image on display yet.");
    setUsable(ui.SaveImage, whyNotPicture);
    setUsable(ui.SaveImageWithBar, whyNotPicture);
    setUsable(ui.SaveAllImages, unless(hasImageToSave(measurement),
                                       Controls::tr("Analyze the image with references first.")));

    const Result* selected = measurement.selectedResult();
    const bool showsMap = measurement.settings().shown == Shown::Map;
    const bool hasValues = selected != nullptr ? selected->image.hasData()
                                               : showsMap && measurement.map().image.hasData();
    setUsable(ui.SaveData, hasValues ? whyNoPart(selected)
                                     : Controls::tr("Select a finished result in the Analyzer, or "
                                                    "show the energy-shift map, first."));
    setUsable(ui.SaveAllMaps, unless(hasMapToSave(measurement),
                                     Controls::tr("Analyze the image, or make or load an "
                                                  "energy-shift map, first.")));
    setUsable(ui.SaveFlatDark, whyNoImages(measurement));
    setUsable(
        ui.SaveXAFSSpectra,
        unless(view.hasSample(), Controls::tr("Point at the image first, to form a spectrum.")));
    updateMapControls(ui, measurement);
}
