// Saving and the energy-map file, as the main window drives them.

#include <QFileDialog>
#include <QTextStream>

#include "analysis/Analyzed2DRes.h"
#include "analysis/Analyzer.h"
#include "analysis/LCFReference.h"
#include "app/Body.h"
#include "calibration/CalibCtrl.h"
#include "calibration/EnergyMapFile.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "output/FileNames.h"
#include "output/FlatDark.h"
#include "output/ResultWriter.h"
#include "output/SaveDataCfg.h"
#include "ui_Body.h"

namespace {

QString unwritable(const QString& file) {
    return Body::tr("cannot be written: %1").arg(file);
}

/// What the table of a result says of its origin.
QVector<HeaderLine> originOf(const Analyzed2DRes* result, const Analyzer& analyzer) {
    const QString source = QStringLiteral("source");
    if (result == analyzer.raDmut()) {
        return {{source, QStringLiteral("dmut")}};
    }
    if (result == analyzer.raRest()) {
        return {{source, QStringLiteral("rest")}};
    }
    if (result == analyzer.raRatio()) {
        return {{source, QStringLiteral("ratio")}};
    }
    const QStringList kinds{QStringLiteral("DMut"), QStringLiteral("Ratio")};
    for (const LCFReference* reference : analyzer.references()) {
        for (int kind = 0; kind < kinds.size(); ++kind) {
            if (reference->result(kind) == result) {
                return {{source, kinds.at(kind)},
                        {QStringLiteral("reference file"), reference->fileName()}};
            }
        }
    }
    return {{source, QStringLiteral("E-shift")}};
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

void Body::showSaveDataDialog() {
    m_dataDialog->setNameFilters(m_saveDataCfg->nameFilters());
    m_dataDialog->setDefaultSuffix(m_saveDataCfg->suffix());
    m_dataDialog->show();
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
                                                originOf(result, *m_analyzer));
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
