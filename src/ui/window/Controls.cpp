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

bool hasImageToSave(const Measurement& measurement) {
    const auto& references = measurement.references();
    return std::any_of(references.begin(), references.end(), [](const auto& reference) {
        return reference->takesPart() &&
               (reference->result(Reference::DMut).image.img() != nullptr ||
                reference->result(Reference::Ratio).image.img() != nullptr);
    });
}

void updateMapControls(const Ui::Body& ui, const Measurement& measurement) {
    const Result* target = measurement.deglitchTarget();
    const bool hasValues = target != nullptr && target->image.hasData();
    const QString running = whileAnalyzing(measurement);
    const QString noMap =
        !running.isEmpty()
            ? running
            : unless(hasValues, Controls::tr("Show a result image or the energy-shift map first."));
    const bool shows = hasValues && target->image.showsProc();  // it can be taken back
    setUsable(ui.DeGlitch, noMap.isEmpty() ? measurement.whyNotDeglitch() : noMap);
    setUsable(ui.ShowProcImg,
              noMap.isEmpty() && !shows ? measurement.whyNotShowProcessed() : noMap);
    showNumber(ui.DeGlitchFactor, measurement.settings().deglitchFactor);
    showNumber(ui.DeGlitchRatio, measurement.settings().deglitchRatio);
    const QSignalBlocker blocked(ui.ShowProcImg);
    ui.ShowProcImg->setChecked(target != nullptr && target->image.showsProc());
    setUsable(ui.NormalizeEShift,
              !running.isEmpty() ? running
                                 : unless(measurement.map().image.hasData(),
                                          Controls::tr("Make or load an energy-shift map first.")));
}

}  // namespace

void updateControls(const Ui::Body& ui, Measurement& measurement, const XafsView& view) {
    const QString noFrames =
        unless(measurement.shownStack().size() > 0, Controls::tr("Load some frames first."));
    setUsable(ui.Prev, noFrames);
    setUsable(ui.Next, noFrames);
    setUsable(ui.SeekBar, noFrames);

    const Result* shown = measurement.shownResult();
    const bool hasPicture =
        shownFrame(measurement) != nullptr || (shown != nullptr && shown->image.img() != nullptr);
    const QString noPicture = unless(hasPicture, Controls::tr("There is no image on display yet."));
    setUsable(ui.SaveImage, noPicture);
    setUsable(ui.SaveImageWithBar, noPicture);
    setUsable(ui.SaveAllImages, unless(hasImageToSave(measurement),
                                       Controls::tr("Analyze the image with references first.")));

    const Result* selected = measurement.selectedResult();
    const bool showsMap = measurement.settings().shown == Shown::Map;
    const bool hasValues = selected != nullptr ? selected->image.hasData()
                                               : showsMap && measurement.map().image.hasData();
    setUsable(ui.SaveData,
              unless(hasValues, Controls::tr("Select a finished result in the Analyzer, or show "
                                             "the energy-shift map, first.")));
    setUsable(
        ui.SaveXAFSSpectra,
        unless(view.hasSample(), Controls::tr("Point at the image first, to form a spectrum.")));
    updateMapControls(ui, measurement);
}
