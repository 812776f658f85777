#include "window/Body.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QIntValidator>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

#include "absorption/AbsorptionSource.h"
#include "absorption/BinRowSpectra.h"
#include "base/Globals.h"
#include "batch/BatchDispatcher.h"
#include "display/CrossSection.h"
#include "display/XafsView.h"
#include "frames/DarkData.h"
#include "frames/LoadTiff.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/BatchCtrl.h"
#include "panels/CalibCtrl.h"
#include "panels/SaveDataCfg.h"
#include "panels/SelectDataFiles.h"
#include "panels/ToolWindows.h"
#include "ui_Body.h"
#include "window/Analysis2D.h"
#include "window/BodyMenu.h"
#include "window/BodyStack.h"
#include "window/CommandHandlers.h"

namespace {

/// Puts the view into one of the form's frames.
CrossSection* fill(QFrame* frame, Qt::Orientation orientation) {
    auto* view = new CrossSection(orientation, frame);
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
    return view;
}

}  // namespace

Body::Body(QWidget* parent)
    : QMainWindow(parent),
      m_ui(std::make_unique<Ui::Body>()),
      m_shiftMap(std::make_unique<Analyzed2DRes>()) {
    m_ui->setupUi(this);
    fitFormToFont();
    m_i1 = std::make_unique<Stack>(Stack::I1, m_ui->SelectI1Files);
    m_i0 = std::make_unique<Stack>(Stack::I0, m_ui->SelectI0Files);
    m_ui->SelectI1Files->setLabel(tr("I1 Data"));
    m_ui->SelectI0Files->setLabel(tr("I0 Data"));
    for (const auto& stack : {m_i1.get(), m_i0.get()}) {
        connect(stack->panel, &SelectDataFiles::currentIndexChanged, this, &Body::showData);
    }
    connect(m_i1->panel, &SelectDataFiles::filesSelected, this,
            [this](const QStringList& files, bool add) { readI1Files(files, !add); });
    connect(m_i0->panel, &SelectDataFiles::filesSelected, this,
            [this](const QStringList& files, bool add) { readI0Files(files, !add); });
    connect(m_i1->panel, &SelectDataFiles::clearRequested, this, &Body::clearI1Files);
    connect(m_i0->panel, &SelectDataFiles::clearRequested, this, &Body::clearI0Files);
    startReaders();

    m_calib = std::make_unique<CalibCtrl>();
    m_analyzer = std::make_unique<Analyzer>();
    m_analysis = std::make_unique<Analysis2D>(m_analyzer.get());
    m_xafsView = std::make_unique<XafsView>();
    m_xafsView->setWindowTitle(tr("Spectrum"));
    m_xafsView->setObjectName(QStringLiteral("Spectrum"));
    addAction(m_xafsView->pinAction());  // its shortcut works while the mouse is over the image
    m_saveDataCfg = std::make_unique<SaveDataCfg>();
    m_handlers = std::make_unique<CommandHandlers>(*this);

    connectBatch();
    connectImageControls();
    connectCalibration();
    connectAnalyzer();
    connectDeglitching();
    connectSaving();
    connectDark();
    const QWidgetList tools{m_xafsView.get(),   m_calib.get(),     m_analyzer.get(),
                            m_analyzer->view(), m_batchCtrl.get(), m_saveDataCfg.get()};
    auto* toolWindows = new ToolWindows(this);
    for (QWidget* window : tools) {
        toolWindows->add(window);
    }
    buildBodyMenu(this, tools);
    redisplay();
    updateSpectraButton();
    m_ui->SelectI1Files->setFocus();
}

Body::~Body() {
    // The readers and the interpreter must be at rest before anything that they use goes.
    m_dispatcher->disconnect(this);
    disconnect(m_dispatcher.get());
    m_analysis->stopLcf();
    m_batchThread.quit();
    m_readerI1Thread.quit();
    m_readerI0Thread.quit();
    m_dark->disconnect(this);
    m_batchThread.wait();
    m_readerI1Thread.wait();
    m_readerI0Thread.wait();
    m_analyzer.reset();
}

void Body::closeEvent(QCloseEvent* event) {
    emit m_batchCtrl->batchStop();
    QMainWindow::closeEvent(event);
    emit finishing();
}

/// Sizes that follow the font; what the form's pixels could not.
void Body::fitFormToFont() {
    m_ui->Position->setMinimumWidth(
        fontMetrics().horizontalAdvance(QStringLiteral("(0000, 0000)")));
    const int line = fontMetrics().height();
    m_ui->HCross->setFixedHeight(6 * line);
    m_ui->VCross->setFixedWidth(7 * line);
    m_ui->CBar->setFixedWidth(6 * line);
    m_ui->Prev->setIcon(style()->standardIcon(QStyle::SP_MediaSeekBackward));
    m_ui->Next->setIcon(style()->standardIcon(QStyle::SP_MediaSeekForward));
    m_ui->Next->setLayoutDirection(Qt::RightToLeft);
    const QSize room = screen()->availableSize() - QSize(0, 2 * line);  // for the title bar
    resize(QSize(72 * line, 46 * line).boundedTo(room));
}

void Body::startReaders() {
    m_readerI1 = std::make_unique<LoadTiff>();
    m_readerI0 = std::make_unique<LoadTiff>();
    m_readerI1->moveToThread(&m_readerI1Thread);
    m_readerI0->moveToThread(&m_readerI0Thread);
    connect(this, &Body::loadI1, m_readerI1.get(), &LoadTiff::loadTiff);
    connect(this, &Body::loadI0, m_readerI0.get(), &LoadTiff::loadTiff);
    connect(m_readerI1.get(), &LoadTiff::loaded, this, &Body::loadedI1);
    connect(m_readerI0.get(), &LoadTiff::loaded, this, &Body::loadedI0);
    m_readerI1Thread.start(QThread::InheritPriority);
    m_readerI0Thread.start(QThread::InheritPriority);
    m_dark = std::make_unique<DarkData>();
}

void Body::connectBatch() {
    m_dispatcher = std::make_unique<BatchDispatcher>();
    m_batchCtrl = std::make_unique<BatchCtrl>();
    m_dispatcher->moveToThread(&m_batchThread);
    // Noted at the very click, before the request travels to the interpreter.
    connect(m_batchCtrl.get(), &BatchCtrl::doDispatchCmds, this,
            [this] { m_pacing.batchRequested(); });
    connect(m_batchCtrl.get(), &BatchCtrl::doDispatchCmds, m_dispatcher.get(),
            &BatchDispatcher::doDispatchCmds);
    connect(m_batchCtrl.get(), &BatchCtrl::batchStop, m_dispatcher.get(),
            &BatchDispatcher::batchStop);
    connect(m_dispatcher.get(), &BatchDispatcher::execCmd, this, &Body::execCmd);
    connect(m_dispatcher.get(), &BatchDispatcher::log, m_batchCtrl.get(), &BatchCtrl::logmsg);
    connect(m_dispatcher.get(), &BatchDispatcher::started, this,
            [this] { m_pacing.batchStarted(); });
    connect(m_dispatcher.get(), &BatchDispatcher::ended, this, [this] { m_pacing.batchEnded(); });
    connect(this, &Body::finishBatchExec, m_dispatcher.get(), &BatchDispatcher::finishBatchExec);
    m_batchThread.start(QThread::InheritPriority);
    connect(m_ui->BatchCtrlB, &QPushButton::clicked, m_batchCtrl.get(), &QWidget::show);
}

void Body::connectImageControls() {
    m_showGroup = new QButtonGroup(this);
    m_showGroup->addButton(m_ui->ShowData, ShownData);
    m_showGroup->addButton(m_ui->ShowI0, ShownI0);
    m_showGroup->addButton(m_ui->ShowShiftMap, ShownShift);
    m_showGroup->addButton(m_ui->ShowResAnalysis, ShownResult);
    connect(m_ui->ShowI0, &QPushButton::toggled, this, &Body::selectedDataI0);
    connect(m_ui->ShowData, &QPushButton::toggled, this, [this] { redisplay(); });
    connect(m_ui->ShowShiftMap, &QPushButton::toggled, this, &Body::showShiftMap);
    connect(m_ui->ShowResAnalysis, &QPushButton::toggled, this, &Body::showResAnalysis);

    connect(m_ui->Prev, &QPushButton::clicked, this, &Body::prev);
    connect(m_ui->Next, &QPushButton::clicked, this, &Body::next);
    connect(m_ui->SeekBar, &QSlider::sliderMoved, this, &Body::sliderMoved);
    connect(m_ui->SeekBar, &QSlider::actionTriggered, this,
            [this] { sliderMoved(m_ui->SeekBar->sliderPosition()); });

    connect(m_ui->ResetScale, &QPushButton::clicked, m_ui->dispA, &ImageView::resetImageViewWindow);
    connect(m_ui->dispA, &ImageView::mouseMoved, this, &Body::showXafsSpectrum);
    connect(m_ui->dispA, &DispA::drawImage2, this, &Body::draw);
    connect(m_ui->dispA, &DispA::mouseMoved0, this, &Body::onMouseMovedInDispA);
    connect(m_ui->CBar, &ColorBar::newBar, this, &Body::newCBar);
    connect(m_ui->CBar, &ColorBar::percentilesAsked, this, &Body::fixPercentiles);

    m_hCross = fill(m_ui->HCross, Qt::Horizontal);
    m_vCross = fill(m_ui->VCross, Qt::Vertical);
    m_hCross->follow(m_ui->dispA);
    m_vCross->follow(m_ui->dispA);

    for (QLineEdit* field : {m_ui->HWidth, m_ui->VWidth}) {
        field->setValidator(new QIntValidator(field));
        connect(field, &QLineEdit::textChanged, this, [this] {
            m_ui->dispA->setBinBox(halfWidth(), halfHeight());
            showSpectrumAgain();
            updateValueAndCrossSections();
        });
    }
    m_ui->dispA->setBinBox(halfWidth(), halfHeight());

    m_state = new QLabel(this);
    m_state->setObjectName(QStringLiteral("State"));
    // A long text is cut off; it must not widen the window.
    m_state->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_ui->statusbar->addWidget(m_state, 1);
    makeLoadingControls();
}

void Body::connectCalibration() {
    connect(m_ui->OpenCalibCtrl, &QPushButton::clicked, m_calib.get(), &QWidget::show);
    connect(m_calib.get(), &CalibCtrl::newStdFileLoaded, this, &Body::newStdFile);
    connect(m_calib.get(), &CalibCtrl::execCalibration, this, &Body::execCalibration);
    connect(m_calib.get(), &CalibCtrl::saveEMap, this, &Body::saveEMap);
    connect(m_calib.get(), &CalibCtrl::loadEMap, this, &Body::loadEMap);
    connect(m_calib.get(), &CalibCtrl::clearMap, this, &Body::clearShiftMap);
    connect(m_calib.get(), &CalibCtrl::standardRenormalised, this, &Body::newStdFile);
    connect(m_calib.get(), &CalibCtrl::targetBackgroundChanged, this, &Body::showSpectrumAgain);
    connect(m_calib.get(), &CalibCtrl::spacingChanged, m_xafsView.get(),
            &XafsView::setCrystalSpacing);
    connect(m_calib.get(), &CalibCtrl::spacingChanged, m_analyzer->view(),
            &XafsView::setCrystalSpacing);
}

void Body::connectAnalyzer() {
    connect(m_ui->ShowAnalyzer, &QPushButton::clicked, m_analyzer.get(), &Analyzer::show);
    connect(m_ui->ShowAnalyzer, &QPushButton::clicked, this, &Body::showSpectrumAgain);
    connect(m_ui->ShowXafsView, &QPushButton::clicked, m_xafsView.get(), &QWidget::show);
    connect(m_analyzer.get(), &Analyzer::askAnalyze, this, &Body::startLCF2DAnalysis);
    connect(m_analyzer.get(), &Analyzer::askRAAnalyze, this, &Body::startRA2DAnalysis);
    connect(m_analyzer.get(), &Analyzer::finished, this, &Body::analyzeASpectrumFinished);
    connect(m_analyzer.get(), &Analyzer::changedSelection, this, &Body::selectedNewRef);
    connect(m_analyzer.get(), &Analyzer::busyChanged, this, &Body::updateControls);
    connect(m_analyzer.get(), &Analyzer::raEnergyChanged, m_xafsView.get(), &XafsView::setRaEnergy);
    m_xafsView->setRaEnergy(m_analyzer->raEnergy());
    connect(m_xafsView.get(), &XafsView::updated, this, &Body::updateSpectraButton);
}

void Body::connectSaving() {
    const QStringList pictures{tr("Image File (*.png)"), tr("Any Files (* *.*)")};
    const QStringList spectra{tr("XAFS Spectra (*.dat)"), tr("Any Files (* *.*)")};
    connect(m_ui->SaveImage, &QPushButton::clicked, this, [=] {
        showSaveDialog(&m_imageDialog, tr("Save Image"), pictures, QStringLiteral("png"),
                       &Body::saveImage);
    });
    connect(m_ui->SaveImageWithBar, &QPushButton::clicked, this, [=] {
        showSaveDialog(&m_barImageDialog, tr("Save with Colour Bar"), pictures,
                       QStringLiteral("png"), &Body::saveImageWithBar);
    });
    connect(m_ui->SaveAllImages, &QPushButton::clicked, this, [=] {
        showSaveDialog(&m_allImagesDialog, tr("Save All Images"), pictures, QStringLiteral("png"),
                       &Body::saveAllImages);
    });
    connect(m_ui->SaveXAFSSpectra, &QPushButton::clicked, this, [=] {
        showSaveDialog(&m_spectraDialog, tr("Save XAFS Spectra"), spectra, QStringLiteral("dat"),
                       &Body::saveXafsSpectra);
    });
    connect(m_ui->SaveData, &QPushButton::clicked, this, &Body::showSaveDataDialog);
    connect(m_ui->SaveDataCfgB, &QPushButton::clicked, m_saveDataCfg.get(), &QWidget::show);
    connect(m_ui->SaveFlatDark, &QPushButton::clicked, this, &Body::saveFlatDark);
}
