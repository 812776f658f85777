// Saving and the energy-map file, as the main window drives them.

#include <QFileDialog>
#include <QFileInfo>
#include <QTextStream>

#include "base/Globals.h"
#include "calibration/EnergyMapFile.h"
#include "display/ColorBar.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "drawing/BarPicture.h"
#include "files/FileNames.h"
#include "files/PictureFile.h"
#include "frames/TiffData.h"
#include "maps/Analyzed2DRes.h"
#include "output/FlatDark.h"
#include "output/ResultWriter.h"
#include "panels/Analyzer.h"
#include "panels/CalibCtrl.h"
#include "panels/LCFReference.h"
#include "panels/SaveDataCfg.h"
#include "ui_Body.h"
#include "window/Body.h"

namespace {

QString unwritable(const QString& file) {
    return Body::tr("cannot be written: %1").arg(file);
}

/// What a result is and which spectrum it belongs to.
struct Origin {
    enum Kind { Shift, DMut, Ratio, RaDmut, RaRest, RaRatio };
    Kind kind = Shift;
    QString referenceFile;  // of DMut and Ratio
};

Origin originOf(const Analyzed2DRes* result, const Analyzer& analyzer) {
    if (result == analyzer.raDmut()) {
        return {Origin::RaDmut, QString()};
    }
    if (result == analyzer.raRest()) {
        return {Origin::RaRest, QString()};
    }
    if (result == analyzer.raRatio()) {
        return {Origin::RaRatio, QString()};
    }
    for (const LCFReference* reference : analyzer.references()) {
        for (Origin::Kind kind : {Origin::DMut, Origin::Ratio}) {
            if (reference->result(kind - Origin::DMut) == result) {
                return {kind, reference->fileName()};
            }
        }
    }
    return {};
}

/// What the table of a result says of its origin.
QVector<HeaderLine> headerOf(const Origin& origin) {
    static const char* const names[] = {"E-shift", "DMut", "Ratio", "dmut", "rest", "ratio"};
    QVector<HeaderLine> lines{{QStringLiteral("source"), QString::fromLatin1(names[origin.kind])}};
    if (origin.kind == Origin::DMut || origin.kind == Origin::Ratio) {
        lines.append({QStringLiteral("reference file"), origin.referenceFile});
    }
    return lines;
}

}  // namespace

void Body::saveImage(const QString& fname) {
    const QImage picture = shownPicture();
    if (picture.isNull()) {
        note(tr("no image is shown"));
    } else if (!writePicture(fname, picture)) {
        note(unwritable(fname));
    }
}

// Saved pictures are in English in every language: they go into papers.
BarPicture Body::shownWithBar() {
    BarPicture parts;
    parts.picture = markedPicture();
    parts.low = m_ui->CBar->rangeMin();
    parts.high = m_ui->CBar->rangeMax();
    if (const TiffData* frame = shownFrame()) {
        parts.title = shown() == ShownI0 ? QStringLiteral("Incident beam (I0), %1 eV")
                                         : QStringLiteral("Transmitted beam (I1), %1 eV");
        parts.title = parts.title.arg(QString::number(frame->energy, 'f', 2));
        parts.source = QFileInfo(frame->fileName).fileName();
        parts.unit = QStringLiteral("counts");
        return parts;
    }
    const Analyzed2DRes* result = shownResult();
    if (result == nullptr) {
        return parts;
    }
    const QString titles[] = {QStringLiteral("Energy shift"),
                              QStringLiteral("Edge jump due to the reference"),
                              QStringLiteral("Share of the reference"),
                              QStringLiteral("Edge jump"),
                              QStringLiteral("Residual absorption"),
                              QStringLiteral("Share of the residual absorption")};
    const QString muT = QStringLiteral("mu-t");
    const QString units[] = {QStringLiteral("eV"),   muT, QStringLiteral("share"), muT, muT,
                             QStringLiteral("share")};
    const Origin origin = originOf(result, *m_analyzer);
    parts.colors = &resultColors();
    parts.title = titles[origin.kind];
    if (result->showsProc()) {
        parts.title += QStringLiteral(", processed");
    }
    parts.unit = units[origin.kind];
    parts.source =
        QFileInfo(origin.kind == Origin::Shift ? m_calib->standardFileName() : origin.referenceFile)
            .fileName();
    return parts;
}

void Body::saveImageWithBar(const QString& fname) {
    const QImage picture = withColorBar(shownWithBar());
    if (picture.isNull()) {
        note(tr("no image is shown"));
    } else if (!writePicture(fname, picture)) {
        note(unwritable(fname));
    }
}

void Body::saveAllImages(const QString& fname) {
    const auto& references = m_analyzer->references();
    for (int kind = 0; kind < m_analyzer->imageKinds(); ++kind) {
        for (int i = 0; i < references.size(); ++i) {
            const LCFReference* reference = references.at(i);
            const Analyzed2DRes* result = reference->result(kind);
            if (!reference->isUsed() || !reference->hasSpectrum() || result == nullptr ||
                result->img() == nullptr) {
                continue;
            }
            const QString name = taggedName(fname, QStringLiteral("%1-%2").arg(i).arg(kind));
            if (!writePicture(name, *result->img())) {
                note(unwritable(name));
            }
        }
    }
}

void Body::showSaveDialog(QFileDialog** dialog, const QString& title, const QStringList& filters,
                          const QString& suffix, void (Body::*save)(const QString& fname)) {
    if (*dialog == nullptr) {
        *dialog = new QFileDialog(this, title);
        (*dialog)->setDirectory(DataDir);
        (*dialog)->setAcceptMode(QFileDialog::AcceptSave);
        (*dialog)->setFileMode(QFileDialog::AnyFile);
        (*dialog)->setModal(false);
        connect(*dialog, &QFileDialog::fileSelected, this, save);
    }
    (*dialog)->setNameFilters(filters);
    (*dialog)->setDefaultSuffix(suffix);
    (*dialog)->show();
}

void Body::showSaveDataDialog() {
    showSaveDialog(&m_dataDialog, tr("Save Data"), m_saveDataCfg->nameFilters(),
                   m_saveDataCfg->suffix(), &Body::saveData);
}

void Body::saveData(const QString& fname) {
    Analyzed2DRes* result = m_analyzer->selectedResult();
    if (result == nullptr && shown() == ShownShift) {
        result = shownResult();
    }
    if (result == nullptr) {
        note(tr("no result image is selected"));
        return;
    }
    const bool written = m_saveDataCfg->savesAsTiff()
                             ? writeResultTiff(fname, *result, m_saveDataCfg->tiffOptions())
                             : writeResultTable(fname, *result, m_saveDataCfg->tableOptions(),
                                                headerOf(originOf(result, *m_analyzer)));
    if (!written) {
        note(unwritable(fname));
    }
}

void Body::saveDataAsTiff(const QString& fname) {
    saveData(fname);
}

void Body::saveFlatDark() {
    if (!writeFlatDark(m_imageWidth, m_imageHeight)) {
        note(unwritable(QStringLiteral("flat.dat, dark.dat")));
    }
}

void Body::saveXafsSpectra(const QString& fname) {
    if (!m_xafsView->hasCurves()) {
        note(tr("the spectrum window shows no spectrum"));
        return;
    }
    if (!m_xafsView->saveData(fname)) {
        note(unwritable(fname));
    }
}

void Body::saveEMap(const QString& fname) {
    EMapInfo info;
    info.imageSize = QSize(m_imageWidth, m_imageHeight);
    info.edgeEnergy = edgeEnergyForMap(m_calib->standard(), m_calib->edgeEnergy());
    info.spacing = m_calib->spacing();
    info.standardFileName = m_calib->standardFileName();
    if (!writeEMap(fname, *m_shiftMap, info)) {
        note(unwritable(fname));
    }
}

void Body::loadEMap(const QString& fname) {
    stopFittingRows();
    QSize size(m_imageWidth, m_imageHeight);
    if (!readEMap(fname, m_calib->edgeEnergy(), &size, m_shiftMap.get())) {
        note(tr("no whole energy map of the images' size: %1").arg(fname));
    }
    if (size != QSize(m_imageWidth, m_imageHeight)) {
        m_imageWidth = size.width();
        m_imageHeight = size.height();
        m_ui->dispA->setImageSize(m_imageWidth, m_imageHeight);
    }
    redisplay();
    showSpectrumAgain();
}

EMPHeader Body::loadEMapHeader(EMPHeader, QTextStream& in) {
    return readEMapHeader(in);
}
