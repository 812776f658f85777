// Which controls of the windows can be used at the moment, and what is missing for the others.

#include "display/Availability.h"
#include "display/XafsView.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/CalibCtrl.h"
#include "panels/LCFReference.h"
#include "ui_Body.h"
#include "window/Body.h"
#include "window/BodyStack.h"

namespace {

bool hasImageToSave(const Analyzer& analyzer) {
    for (const LCFReference* reference : analyzer.references()) {
        for (int kind = 0; kind < analyzer.imageKinds(); ++kind) {
            if (reference->isUsed() && reference->hasSpectrum() &&
                reference->result(kind)->img() != nullptr) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

void Body::updateControls() {
    const auto unless = [](bool fulfilled, const QString& whyNot) {
        return fulfilled ? QString() : whyNot;
    };
    // Without I0 frames the beam counts as 1.0 everywhere: only the I1 frames are a must.
    const QString noImages =
        unless(!m_i1->loader.frames().isEmpty(), tr("Load the I1 frames first."));
    const QString noFrames =
        unless(!shownStack().loader.frames().isEmpty(), tr("Load some frames first."));
    setUsable(m_ui->Prev, noFrames);
    setUsable(m_ui->Next, noFrames);
    setUsable(m_ui->SeekBar, noFrames);

    const Analyzed2DRes* result = shownResult();
    const bool hasPicture =
        shownFrame() != nullptr || (result != nullptr && result->img() != nullptr);
    const QString noPicture = unless(hasPicture, tr("There is no image on display yet."));
    setUsable(m_ui->SaveImage, noPicture);
    setUsable(m_ui->SaveImageWithBar, noPicture);
    setUsable(m_ui->SaveAllImages,
              unless(hasImageToSave(*m_analyzer), tr("Analyze the image with references first.")));

    const Analyzed2DRes* selected = m_analyzer->selectedResult();
    const bool hasValues =
        selected != nullptr ? selected->hasData() : shown() == ShownShift && m_shiftMap->hasData();
    setUsable(m_ui->SaveData,
              unless(hasValues, tr("Select a finished result in the Analyzer, or show the "
                                   "energy-shift map, first.")));

    const Analyzed2DRes* target = deglitchTarget();
    const QString noMap = unless(target != nullptr && target->hasData(),
                                 tr("Show a result image or the energy-shift map first."));
    setUsable(m_ui->DeGlitch, noMap);
    setUsable(m_ui->ShowProcImg, noMap);
    const QSignalBlocker blocked(m_ui->ShowProcImg);
    m_ui->ShowProcImg->setChecked(target != nullptr && target->showsProc());
    setUsable(m_ui->NormalizeEShift,
              unless(m_shiftMap->hasData(), tr("Make or load an energy-shift map first.")));

    m_analyzer->setMissing(noImages);
    const QString analyzing =
        unless(!m_analyzer->isBusy(), tr("Not while an analysis of the image runs."));
    m_calib->setMissing(analyzing.isEmpty() ? noImages : analyzing, analyzing,
                        m_shiftMap->hasData());
}

void Body::updateSpectraButton() {
    setUsable(m_ui->SaveXAFSSpectra, m_xafsView->hasCurves()
                                         ? QString()
                                         : tr("Point at the image first, to form a spectrum."));
}
