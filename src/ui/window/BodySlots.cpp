// The named slots of the main window: each hands on what it is asked for.

#include <QTextStream>

#include "base/DebugLog.h"
#include "batch/Record.h"
#include "display/XafsView.h"
#include "measurement/Saving.h"
#include "panels/AnalyzeProc.h"
#include "panels/Analyzer.h"
#include "panels/LCFReference.h"
#include "panels/SaveDataCfg.h"
#include "ui_Body.h"
#include "window/Answers.h"
#include "window/Body.h"
#include "window/Docks.h"
#include "window/Fields.h"
#include "window/ImagePane.h"
#include "window/NewResult.h"
#include "window/SaveDialogs.h"
#include "window/SpectrumPane.h"
#include "window/WhatWasDone.h"

void Body::clearI1Files() {
    m_measurement.clear(StackId::I1);
}
void Body::clearI0Files() {
    m_measurement.clear(StackId::I0);
}
void Body::readI1Files(const QStringList& files, bool newFile) {
    m_measurement.load(StackId::I1, files, newFile);
}
void Body::readI0Files(const QStringList& files, bool newFile) {
    m_measurement.load(StackId::I0, files, newFile);
}
void Body::loadNextI1() {
    m_measurement.stack(StackId::I1).loadNext();
}
void Body::loadNextI0() {
    m_measurement.stack(StackId::I0).loadNext();
}
void Body::loadedI1(TiffData* frame) {
    m_measurement.stack(StackId::I1).loaded(frame);
}
void Body::loadedI0(TiffData* frame) {
    m_measurement.stack(StackId::I0).loaded(frame);
}
void Body::stopLoading() {
    m_measurement.stopLoading();
}

void Body::selectedDataI0(bool on) {
    if (on) {
        m_measurement.set(&Settings::shown, Shown::I0);
    }
}
void Body::showData(int n) {
    m_measurement.setFrame(m_measurement.shownStack().id(), n);
}
void Body::prev() {
    showData(m_measurement.frame() - 1);
}
void Body::next() {
    showData(m_measurement.frame() + 1);
}
void Body::sliderMoved(int n) {
    showData(n);
}
void Body::draw(QPainter* p) {
    m_image->draw(p);
}
void Body::newCBar() {
    m_image->newBar();
}
void Body::onMouseMovedInDispA() {
    m_image->updateValueAndCrossSections();
}

void Body::showXafsSpectrum(double x, double y) {
    if (m_measurement.position() != QPointF(x, y)) {
        m_measurement.setPosition(x, y);
    }
}
void Body::newStdFile() {
    m_spectrum->showStandard();
}

void Body::toggle(Work work) {
    if (m_measurement.working() == work) {
        m_measurement.stop();
        return;
    }
    const Outcome outcome = m_measurement.start(work);
    if (!outcome.failed()) {
        m_newResult->started(work);
    } else if (work == Work::Fit) {
        debugTimed(QStringLiteral("LCF not started: "));  // why: in the window's language alone
    }
    sayOf(work, outcome);
}
void Body::execCalibration() {
    toggle(Work::Calibrate);
}
void Body::startRA2DAnalysis() {
    toggle(Work::Residual);
}
void Body::startDifference() {
    toggle(Work::Difference);
}
void Body::startLCF2DAnalysis() {
    toggle(Work::Fit);
}
void Body::stop2DAnalysis() {
    m_measurement.stop();
}
void Body::recordResForAPoint() {
    const AnalyzeProc* worker = m_panels->analyzer->worker();
    m_measurement.recordPoint(worker->usedPanels(), worker->dMuts(), worker->ratios());
}
void Body::analyzeASpectrumFinished() {
    recordResForAPoint();
    m_measurement.stepPoint();
}
void Body::generateResImages() {
    m_measurement.remakePictures();
}
void Body::generateRAResImage() {
    m_measurement.remakeResidual();
}
void Body::setupResAnalysisImage() {
    if (Result* selected = m_measurement.selectedResult()) {
        selected->image.genImg();
    }
}
void Body::showResAnalysis(bool) {
    m_image->refresh();
}
void Body::selectedNewRef() {
    m_image->refresh();
}
void Body::showShiftMap() {
    m_image->refresh();
}

void Body::saveEMap(const QString& fname) {
    sayOf(Work::Calibrate, saveMap(m_measurement, fname), fname);
}
void Body::loadEMap(const QString& fname) {
    sayOf(Work::Calibrate, m_measurement.loadMap(fname), fname);
}
EMPHeader Body::loadEMapHeader(EMPHeader, QTextStream& in) {
    return readEMapHeader(in);
}
void Body::clearShiftMap() {
    m_measurement.clearMap();
    sayOf(Work::Calibrate, Outcome::note(tr("The energy-shift map has been cleared")));
}
void Body::normalizeEShift() {
    if (m_measurement.working() == Work::Deglitch) {
        m_measurement.stop();
        return;
    }
    say(withReplaced(m_measurement, m_measurement.smoothMap()));
}
void Body::deglitch() {
    if (m_measurement.working() == Work::Deglitch) {
        m_measurement.stop();
        return;
    }
    const double factor = numberIn(m_ui->DeGlitchFactor);
    const double ratio = numberIn(m_ui->DeGlitchRatio);
    m_ui->DeGlitchFactor->setModified(false);  // taken: they follow the settings again
    m_ui->DeGlitchRatio->setModified(false);
    say(withReplaced(m_measurement, m_measurement.deglitch(factor, ratio)));
}
void Body::showProcImg(bool on) {
    say(m_measurement.showProcessed(on));
}

void Body::saveImage(const QString& fname) {
    say(::saveImage(m_measurement, fname), fname);
}
void Body::saveImageWithBar(const QString& fname) {
    say(::saveImageWithBar(m_measurement, fname), fname);
}
void Body::saveAllImages(const QString& fname) {
    say(::saveAllImages(m_measurement, fname), fname);
}
void Body::saveAllMaps(const QString& fname) {
    say(::saveAllMaps(m_measurement, fname), fname);
}
void Body::showSaveMapsDialog() {
    m_dialogs->askForTarget(tr("Save All Maps"), m_saveDataCfg->nameFilters(),
                            m_saveDataCfg->suffix(),
                            [this](const QString& name) { saveAllMaps(name); });
}
void Body::showSaveDataDialog() {
    m_dialogs->askForTarget(tr("Save Data"), m_saveDataCfg->nameFilters(), m_saveDataCfg->suffix(),
                            [this](const QString& name) { saveData(name); });
}
void Body::saveData(const QString& fname) {
    say(::saveData(m_measurement, fname), fname);
}
void Body::saveDataAsTiff(const QString& fname) {
    saveData(fname);
}
void Body::saveFlatDark() {
    say(::saveFlatDark(m_measurement));
}
void Body::saveXafsSpectra(const QString& fname) {
    say(saveSpectra(m_measurement, fname, m_panels->spectrum->pinned()), fname);
}
void Body::saveRecord(const QString& fname) {
    const Outcome outcome = ::saveRecord(m_measurement, fname);
    if (!outcome.failed()) {
        m_record->remember(fname);
    }
    say(outcome, fname);
}

void Body::execCmd(CmdLine cmd, bool inRem) {
    m_runner.execCmd(cmd, inRem);
}
