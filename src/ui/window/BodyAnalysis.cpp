// Spectra of positions, calibration and the two-dimensional analyses, as the main window drives
// them.

#include <QGuiApplication>
#include <cmath>
#include <utility>

#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "absorption/RasterPass.h"
#include "base/DebugLog.h"
#include "base/Globals.h"
#include "calibration/EnergyShift.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "fitting/LaneFit.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/CalibCtrl.h"
#include "spectra/LaneNormaliser.h"
#include "ui_Body.h"
#include "window/Analysis2D.h"
#include "window/Body.h"
#include "window/BodyStack.h"

namespace {

/// The wait cursor while something blocks the window.
class WaitCursor {
  public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

/// The number in a field; a field with anything else in it returns to its last number.
double numberIn(QLineEdit* field) {
    constexpr char LastNumber[] = "lastNumber";
    bool ok = false;
    const double value = field->text().toDouble(&ok);
    if (ok && std::isfinite(value)) {
        field->setProperty(LastNumber, field->text());
        return value;
    }
    field->setText(field->property(LastNumber).toString());
    return field->text().toDouble();
}

QString noImages() {
    return Body::tr("no images are loaded");
}
QString noMemory() {
    return Body::tr("memory ran out");
}

}  // namespace

int Body::halfWidth() const {
    return m_ui->HWidth->text().toInt();
}
int Body::halfHeight() const {
    return m_ui->VWidth->text().toInt();
}

AnalysisGrid Body::gridOfArea() const {
    return AnalysisGrid::ofArea(m_imageWidth, m_imageHeight, halfWidth(), halfHeight(),
                                m_ui->dispA->area());
}

int Body::backgroundType() const {
    return m_calib->targetBackground();
}

XafsSpectrum Body::corrected(const Spectrum& spectrum, int x, int y) const {
    return XafsSpectrum(spectrum, backgroundType(), shiftAt(m_shiftMap.get(), x, y));
}

Spectrum Body::spectrumOnGrid(const AnalysisGrid& grid, int x, int y) {
    if (!m_rows) {
        m_rows = std::make_unique<BinRowSpectra>(source(), grid.x0 + grid.halfW, grid.stepX,
                                                 grid.x1, grid.halfW, grid.halfH);
    }
    return m_rows->at(x, y);
}

void Body::showXafsSpectrum(double x, double y) {
    m_x = x;
    m_y = y;
    const int column = toPixel(x);
    const int row = toPixel(y);
    const Spectrum raw = source().spectrumAt(column, row, halfWidth(), halfHeight());
    const XafsSpectrum spectrum = corrected(raw, column, row);
    const XafsSpectrum* standard = m_calib->standard();

    if (raw.isEmpty()) {
        m_xafsView->clearSample();
    } else {
        m_xafsView->setSample(spectrum, tr("Position (%1, %2)").arg(column).arg(row),
                              QStringLiteral("Position (%1, %2)").arg(column).arg(row));
        if (m_analyzer->isVisible()) {
            m_analyzer->analyzeAndShowSpectrum(spectrum);
        }
    }
    const bool comparable = standard != nullptr && !standard->isEmpty() && !raw.isEmpty();
    const double fromStd = comparable ? calibrationEdge(&raw) - calibrationEdge(standard) : 0.0;
    m_ui->Position->setText(QString::asprintf("(% 4d, % 4d)", column, row));
    m_ui->EShiftOnTbl->setText(QString::asprintf("%5.2f", spectrum.energyCorrection()));
    m_ui->EShiftFromStd->setText(QString::asprintf("%5.2f", fromStd));
}

void Body::newStdFile() {
    if (const XafsSpectrum* standard = m_calib->standard()) {
        m_xafsView->setStandard(*standard, m_calib->standardFileName());
    } else {
        m_xafsView->clearStandard();
    }
    showSpectrumAgain();
}

void Body::showSpectrumAgain() {
    if (m_x >= 0.0 && m_y >= 0.0) {
        showXafsSpectrum(m_x, m_y);
    }
}

bool Body::runBlocking(const std::function<void(const AnalysisGrid&)>& pass) {
    if (m_i1->loader.frames().isEmpty()) {
        note(noImages());
        return false;
    }
    const WaitCursor waiting;
    m_rows.reset();
    pass(gridOfArea());
    m_rows.reset();
    showProgress(100.0);
    return true;
}

void Body::execCalibration() {
    stopFittingRows();
    const bool done = runBlocking([this](const AnalysisGrid& grid) {
        RasterPass pass(source(), grid.raster(), 1, edgeEvaluators(m_threads, source().energies()));
        calibrate(
            m_shiftMap.get(), grid, [&](int x, int y) { return pass.at(x, y); },
            calibrationEdge(m_calib->standard()),
            [this](double percent) { showProgress(percent); });
        if (pass.failed()) {
            note(noMemory());
        }
    });
    if (!done) {
        return;
    }
    redisplay();
    showSpectrumAgain();
    const XafsSpectrum* standard = m_calib->standard();
    if (standard == nullptr || standard->isEmpty()) {
        note(tr("no standard is loaded: the map holds edge energies, not shifts"));
    } else if (!hasCalibrationEdge(*standard)) {
        note(tr("the standard has no rising edge to compare with"));
    }
}

void Body::clearShiftMap() {
    stopFittingRows();
    ::clearShiftMap(m_shiftMap.get());
    redisplay();
    showSpectrumAgain();
}

void Body::normalizeEShift() {
    if (m_shiftMap->grid().width > 0) {
        stopFittingRows();
        smoothShiftMap(m_shiftMap.get());
        redisplay();
        showSpectrumAgain();
    }
}

QString Body::startLcf() {
    if (m_analysis->lcfRunning()) {
        stop2DAnalysis();
        return tr("an analysis was running and has been stopped");
    }
    if (m_i1->loader.frames().isEmpty()) {
        return noImages();
    }
    const AnalysisGrid grid = gridOfArea();
    QString whyNot;
    m_rows.reset();
    m_shownOnTime.start();
    const bool started = m_analysis->startLcf(
        grid, [this, grid](int x, int y) { return corrected(spectrumOnGrid(grid, x, y), x, y); },
        &whyNot,
        [&](const QVector<XafsSpectrum>& references, LinearFit::Method method) {
            return fitPass(grid, references, method);
        });
    redisplay();
    return started ? QString() : whyNot;
}

std::unique_ptr<RasterPass> Body::fitPass(const AnalysisGrid& grid,
                                          const QVector<XafsSpectrum>& references,
                                          LinearFit::Method method) {
    const std::vector<double>& energies = source().energies();
    if (!m_fitsRows || !LaneNormaliser::suits(energies)) {
        return nullptr;
    }
    const BinRaster raster = grid.raster();
    const auto correctionAt = [this](int x, int y) { return shiftAt(m_shiftMap.get(), x, y); };
    const auto ready = [this] {
        QMetaObject::invokeMethod(
            this, [this] { lcfRowsReady(); }, Qt::QueuedConnection);
    };
    return std::make_unique<RasterPass>(source(), raster, 2 * references.size(),
                                        fitEvaluators(m_threads, raster, references, method,
                                                      energies, backgroundType(), correctionAt),
                                        ready);
}

void Body::startLCF2DAnalysis() {
    const QString why = startLcf();
    if (!why.isEmpty()) {
        debugTimed(QStringLiteral("LCF not started: "));  // why: in the window's language alone
        note(why);
    }
}

void Body::stopFittingRows() {
    if (m_analysis && m_analysis->fitsRows()) {
        stop2DAnalysis();
    }
}

void Body::stop2DAnalysis() {
    if (!m_analysis->lcfRunning()) {
        return;
    }
    m_analysis->stopLcf();
    m_rows.reset();
    showProgress(100.0);
    if (m_pacing.isWaitingFor(BatchPacing::Work::Lcf)) {
        answerWaiting(BatchPacing::Work::Lcf, {QStringLiteral("stopped before its end")});
    }
}

void Body::lcfRowsReady() {
    switch (m_analysis->lcfRowsReady()) {
        case Analysis2D::Progress::NewRow:
            showProgress(m_analysis->lcfPercent());
            break;
        case Analysis2D::Progress::OutOfMemory:
            m_rows.reset();
            showProgress(100.0);
            answerWaiting(BatchPacing::Work::Lcf, {noMemory()});
            break;
        default:
            break;
    }
}

void Body::analyzeASpectrumFinished() {
    switch (m_analysis->lcfPointReported()) {
        case Analysis2D::Progress::NewRow:
            if (m_analyzer->dispOnTime()) {
                // Large images of many rows would take far longer to show than to fit.
                m_shownOnTime.spend([this] { generateResImages(); });
            }
            showProgress(m_analysis->lcfPercent());
            break;
        case Analysis2D::Progress::Finished:
            m_rows.reset();
            generateResImages();
            m_analysis->endLcf();
            showProgress(100.0);
            answerWaiting(BatchPacing::Work::Lcf, {});
            break;
        default:
            break;
    }
}

void Body::recordResForAPoint() {
    m_analysis->recordPoint();
}

void Body::generateResImages() {
    m_analysis->generateLcfImages();
    redisplay();
}

void Body::startRA2DAnalysis() {
    const bool done = runBlocking([this](const AnalysisGrid& grid) {
        const double energy = m_analyzer->raEnergy();
        const auto progress = [this](double percent) { showProgress(percent); };
        const std::vector<double>& energies = source().energies();
        if (!LaneNormaliser::suits(energies)) {
            double curves[2];
            m_analysis->runRa(
                grid,
                [&](int x, int y) -> const double* {
                    const XafsSpectrum spectrum = corrected(spectrumOnGrid(grid, x, y), x, y);
                    curves[0] = spectrum.preEdge().valueAt(energy);
                    curves[1] = spectrum.postEdge().valueAt(energy);
                    return spectrum.isEmpty() ? nullptr : curves;
                },
                progress);
            return;
        }
        RasterPass pass(source(), grid.raster(), 2,
                        backgroundEvaluators(m_threads, energies, backgroundType(), energy));
        m_analysis->runRa(
            grid, [&](int x, int y) { return pass.at(x, y); }, progress);
        if (pass.failed()) {
            note(noMemory());
        }
    });
    if (done) {
        generateRAResImage();
    }
}

void Body::generateRAResImage() {
    m_analysis->generateRaImages();
    redisplay();
}

Analyzed2DRes* Body::deglitchTarget() const {
    Analyzed2DRes* shown = shownResult();
    return shown != nullptr ? shown : m_analyzer->selectedResult();
}

void Body::connectDeglitching() {
    for (QLineEdit* field : {m_ui->DeGlitchFactor, m_ui->DeGlitchRatio}) {
        numberIn(field);
        connect(field, &QLineEdit::editingFinished, this, [field] { numberIn(field); });
    }
    connect(m_ui->DeGlitch, &QPushButton::clicked, this, &Body::deglitch);
    connect(m_ui->ShowProcImg, &QPushButton::toggled, this, &Body::showProcImg);
    connect(m_ui->NormalizeEShift, &QPushButton::clicked, this, &Body::normalizeEShift);
}

void Body::deglitch() {
    const double factor = numberIn(m_ui->DeGlitchFactor);
    const double ratio = numberIn(m_ui->DeGlitchRatio);
    Analyzed2DRes* target = deglitchTarget();
    if (target != nullptr && target->hasData()) {
        target->setDeglitchConds(factor, ratio);
        target->deglitch();
        target->selectProcImg(true);
        redisplay();
    }
}

void Body::showProcImg(bool on) {
    Analyzed2DRes* target = deglitchTarget();
    if (target != nullptr && target->hasData()) {
        target->selectProcImg(on);
        redisplay();
    }
}
