#include "window/CommandHandlers.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDebug>
#include <algorithm>
#include <iterator>

#include "batch/CommandTables.h"
#include "display/ImageView.h"
#include "files/FileListing.h"
#include "panels/Analyzer.h"
#include "panels/BatchCtrl.h"
#include "panels/CalibCtrl.h"
#include "panels/LCFReference.h"
#include "panels/SaveDataCfg.h"
#include "spectra/XafsSpectrum.h"
#include "ui_Body.h"
#include "window/Body.h"

namespace {

/// The texts of a line as the user knows them.
QString unreadable(const QString& file) {
    return Body::tr("cannot be read: %1").arg(file);
}

bool isNew(const QString& mode) {
    return mode.toUpper() == QLatin1String("NEW");
}

}  // namespace

int CommandArgs::integer(int i) const {
    bool ok = false;
    const int value = text(i).toInt(&ok);
    if (!ok && !text(i).isEmpty()) {
        qDebug().noquote() << "not an integer, read as 0:" << text(i);
    }
    return ok ? value : 0;
}

double CommandArgs::real(int i) const {
    bool ok = false;
    const double value = text(i).toDouble(&ok);
    if (!ok && !text(i).isEmpty()) {
        qDebug().noquote() << "not a number, read as 0:" << text(i);
    }
    return ok ? value : 0.0;
}

CommandHandlers::Answer CommandHandlers::load(const CmdLine& cmd, bool i1,
                                              const QStringList& files) {
    using Work = BatchPacing::Work;
    m_body.m_pacing.wait(cmd, i1 ? Work::LoadI1 : Work::LoadI0);
    const bool newFile = isNew(cmd.args.value(0));
    if (i1) {
        m_body.readI1Files(files, newFile);
    } else {
        m_body.readI0Files(files, newFile);
    }
    return Answer::WhenDone;
}

CommandHandlers::Answer CommandHandlers::execLcf(const CmdLine& cmd) {
    m_body.m_pacing.wait(cmd, BatchPacing::Work::Lcf);
    const auto& references = m_body.m_analyzer->references();
    const auto takesPart = [](const LCFReference* r) { return r->isUsed() && r->hasSpectrum(); };
    const bool any = std::any_of(references.begin(), references.end(), takesPart);
    const QString why = m_body.startLcf();
    if (why.isEmpty() && !any) {
        m_body.note(Body::tr("no reference is in use"));  // the maps stay empty
    } else if (!why.isEmpty()) {
        m_body.answerWaiting(BatchPacing::Work::Lcf, {why});
    }
    return Answer::WhenDone;
}

void CommandHandlers::setLcfStd(const CommandArgs& args) {
    Analyzer& analyzer = *m_body.m_analyzer;
    const int index = args.integer(0);
    // A batch cannot press "Add Ref": naming the panel after the last one adds it.
    if (index == analyzer.references().size()) {
        analyzer.addNewRef();
    }
    analyzer.setLCFStd(index, args.flag(1), args.text(3), args.real(2), args.text(4));
    if (index < 0 || index >= analyzer.references().size()) {
        m_body.note(Body::tr("no reference panel %1").arg(index));
    } else if (!analyzer.references().at(index)->hasSpectrum()) {
        m_body.note(unreadable(args.text(3)));
    }
}

void CommandHandlers::selectRegion(const CommandArgs& args) {
    ImageView& view = *m_body.m_ui->dispA;
    const int corners[] = {args.integer(0), args.integer(1), args.integer(2), args.integer(3)};
    view.setSelection(corners[0], corners[1], corners[2], corners[3]);
    const bool none =
        std::all_of(std::begin(corners), std::end(corners), [](int c) { return c == 0; });
    if (!none && m_body.imageWidth() >= 0 && !view.hasSelection()) {
        m_body.note(Body::tr("no part of the region lies inside the image"));
    }
}

void CommandHandlers::runUnknown(const CmdLine& cmd) {
    if (controlId(cmd.command) == NoControl) {
        m_body.m_batchCtrl->showCmdErr(cmd);
        m_body.note(Body::tr("unknown command"));
    }
}

CommandHandlers::Answer CommandHandlers::run(const CmdLine& cmd) {
    const CommandArgs args(cmd.args);
    Analyzer& analyzer = *m_body.m_analyzer;
    CalibCtrl& calib = *m_body.m_calib;
    SaveDataCfg& saveCfg = *m_body.m_saveDataCfg;
    Ui::Body& ui = *m_body.m_ui;

    const int id = commandId(CmdLine::parse(cmd.command).command);
    switch (id) {
        case ClearI1Files:
            m_body.clearI1Files();
            break;
        case ClearI0Files:
            m_body.clearI0Files();
            break;
        case LoadI1Files:
            return load(cmd, true, args.from(1));
        case LoadI0Files:
            return load(cmd, false, args.from(1));
        case LoadI1FilesOfPattern:
        case LoadI0FilesOfPattern: {
            const QStringList files = listImageFiles(args.text(1), args.from(2));
            if (files.isEmpty()) {
                m_body.note(Body::tr("no file matches in %1").arg(args.text(1)));
            }
            return load(cmd, id == LoadI1FilesOfPattern, files);
        }
        case SetBandW:
            ui.HWidth->setText(QString::number(args.integer(0)));
            break;
        case SetBandH:
            ui.VWidth->setText(QString::number(args.integer(0)));
            break;
        case SelectDispImage:
            if (QAbstractButton* button = m_body.m_showGroup->button(args.integer(0))) {
                button->setChecked(true);
            }
            break;
        case SaveImage:
            m_body.saveImage(args.text(0));
            break;
        case SaveAllImages:
            m_body.saveAllImages(args.text(0));
            break;
        case SaveDataAsTiff:
            m_body.saveDataAsTiff(args.text(0));
            break;
        case MovePosition:
            ui.dispA->setRealMousePos(args.integer(0), args.integer(1));
            break;
        case SelectRegion:
            selectRegion(args);
            break;
        case SaveSpectra:
            m_body.saveXafsSpectra(args.text(0));
            break;
        case AnalyzerShowWindow:
            analyzer.show();
            break;
        case AnalyzerSetLcfStd:
            setLcfStd(args);
            break;
        case AnalyzerSetLcfMode:
            analyzer.setLCFMode(args.integer(0));
            break;
        case AnalyzerExecLcf:
            return execLcf(cmd);
        case AnalyzerSelectImage:
            analyzer.selectImage(args.integer(0));
            break;
        case AnalyzerSelectImageType:
            analyzer.setImageType(args.integer(0));
            break;
        case AnalyzerSetRaEnergy:
            analyzer.setRaEnergy(args.real(0));
            break;
        case AnalyzerSetRaFactor:
            analyzer.setRaFactor(args.real(0));
            break;
        case AnalyzerExecRa:
            m_body.startRA2DAnalysis();
            break;
        case AnalyzerSetFixedScale:
            analyzer.setFixedScale(args.flag(0));
            break;
        case AnalyzerSetScaleMax:
            analyzer.setScaleMax(args.real(0));
            break;
        case AnalyzerSetScaleMin:
            analyzer.setScaleMin(args.real(0));
            break;
        case AnalyzerSetDMutScaleMax:
            analyzer.setDMutScaleMax(args.real(0));
            break;
        case AnalyzerSetDMutScaleMin:
            analyzer.setDMutScaleMin(args.real(0));
            break;
        case AnalyzerSetRatioScaleMax:
            analyzer.setRatioScaleMax(args.real(0));
            break;
        case AnalyzerSetRatioScaleMin:
            analyzer.setRatioScaleMin(args.real(0));
            break;
        case CalibShowWindow:
            calib.show();
            break;
        case CalibLoadStd:
            calib.loadStd(args.text(0));
            if (calib.standard() == nullptr || calib.standard()->isEmpty()) {
                m_body.note(unreadable(args.text(0)));
            }
            break;
        case CalibSetEdgeEv:
            calib.setEdgeEV(args.text(0));
            break;
        case CalibExec:
            m_body.execCalibration();
            break;
        case CalibLoadMap:
            calib.loadEShiftMap(args.text(0));
            break;
        case CalibClearMap:
            m_body.clearShiftMap();
            break;
        case CalibSaveMap:
            m_body.saveEMap(args.text(0));
            break;
        case SaveDataCfgShowWindow:
            saveCfg.show();
            break;
        case SaveDataCfgSaveAsTiff:
            saveCfg.saveAsTiff();
            break;
        case SaveDataCfgSaveAsText:
            saveCfg.saveAsText();
            break;
        case SaveDataCfgTiffFixScale:
            saveCfg.setTiffFixedScale(args.flag(0));
            break;
        case SaveDataCfgTiffScaleMin:
            saveCfg.setTiffScaleMin(args.real(0));
            break;
        case SaveDataCfgTiffScaleMax:
            saveCfg.setTiffScaleMax(args.real(0));
            break;
        case SaveDataCfgTiffAsAnalyzed:
            saveCfg.setAsAnalyzed(args.flag(0));
            break;
        case SaveDataCfgTextAsCsv:
            saveCfg.setCommaSeparated();
            break;
        case SaveDataCfgTextAsSsv:
            saveCfg.setSpaceSeparated();
            break;
        case SaveDataCfgTextAsXyz:
            saveCfg.setPointPerLine();
            break;
        case SaveDataCfgTextAsVals:
            saveCfg.setRowPerLine();
            break;
        default:
            runUnknown(cmd);
            break;
    }
    return Answer::AtOnce;
}
