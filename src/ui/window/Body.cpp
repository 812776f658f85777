#include "window/Body.h"

#include <QCloseEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

#include "base/LargeMemory.h"
#include "batch/CommandTables.h"
#include "display/CheckedButtons.h"
#include "display/ColorBar.h"
#include "display/ImageView.h"
#include "display/MessageLine.h"
#include "display/XafsView.h"
#include "measurement/FolderLoad.h"
#include "measurement/WindowSettings.h"
#include "measurement/Writing.h"
#include "panels/Analyzer.h"
#include "panels/BatchCtrl.h"
#include "panels/CalibCtrl.h"
#include "panels/RunAnswer.h"
#include "panels/SaveDataCfg.h"
#include "panels/ToolWindows.h"
#include "ui_Body.h"
#include "window/Answers.h"
#include "window/AreaPane.h"
#include "window/BodyMenu.h"
#include "window/CompositeDialog.h"
#include "window/Controls.h"
#include "window/DarkControl.h"
#include "window/Docks.h"
#include "window/Fields.h"
#include "window/FileWait.h"
#include "window/FolderOpening.h"
#include "window/FrameStrip.h"
#include "window/ImagePane.h"
#include "window/Layout.h"
#include "window/MapImageAction.h"
#include "window/Messages.h"
#include "window/MessagesWindow.h"
#include "window/NewResult.h"
#include "window/ResultFiles.h"
#include "window/SaveDialogs.h"
#include "window/SpectrumFitWindow.h"
#include "window/SpectrumPane.h"
#include "window/SpokenNames.h"
#include "window/StatusLine.h"
#include "window/WhatWasDone.h"

namespace {

/// Sizes that follow the font; what the form's pixels could not.
void fitToFont(QMainWindow& window, const Ui::Body& ui) {
    ui.Position->setMinimumWidth(
        window.fontMetrics().horizontalAdvance(QStringLiteral("(0000, 0000)")));
    for (QLabel* label : {ui.label_3, ui.valueLabel, ui.label_4, ui.label_11}) {
        label->setText(label->text().trimmed());  // a narrow column has no room for indents
    }
    const int line = window.fontMetrics().height();
    // Its pages would scroll each for itself; the whole column does.
    QSize page;
    for (int i = 0; i < ui.ToolBox->count(); ++i) {
        page = page.expandedTo(ui.ToolBox->widget(i)->minimumSizeHint());
    }
    ui.ToolBox->setMinimumSize(page + QSize(0, 2 * line * ui.ToolBox->count()));
    ui.HCross->setFixedHeight(9 * line / 2);
    ui.VCross->setFixedWidth(9 * line / 2);
    ui.CBar->setFixedWidth(11 * line / 2);
}

/// The data and what opens windows, above the docks and over the whole width. Where that is too
/// narrow the toolbar keeps the last behind a button.
void addDataBar(QMainWindow& window, const Ui::Body& ui) {
    auto* bar = new QToolBar(&window);
    bar->setObjectName(QStringLiteral("DataBar"));
    bar->setMovable(false);
    bar->toggleViewAction()->setVisible(false);  // in the menu that a right click opens
    window.addToolBar(bar);
    for (QWidget* part : {ui.dataRows, static_cast<QWidget*>(ui.windowBox)}) {
        // A part that were added itself would come to the end of the order of Tab.
        auto* holder = new QWidget(bar);
        holder->setSizePolicy(part->sizePolicy());
        bar->addWidget(holder);
        auto* layout = new QVBoxLayout(holder);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(part);
    }
}

}  // namespace

Body::Body(QWidget* parent)
    : QMainWindow(parent),
      m_ui(std::make_unique<Ui::Body>()),
      m_messages(new Messages(this)),
      m_panels(std::make_unique<Panels>(m_measurement, *m_messages)),
      m_saveDataCfg(std::make_unique<SaveDataCfg>(m_measurement)) {
    m_ui->setupUi(this);
    addDataBar(*this, *m_ui);
    fitToFont(*this, *m_ui);
    m_ui->SelectI1Files->setLabel(tr("I1 Data"));
    m_ui->SelectI0Files->setLabel(tr("I0 Data"));
    m_ui->SelectI1Files->follow(m_measurement, StackId::I1);
    m_ui->SelectI0Files->follow(m_measurement, StackId::I0);
    m_panels->spectrum->setWindowTitle(tr("Spectrum"));
    // Its shortcut works while the mouse is over the image.
    addAction(m_panels->spectrum->pinAction());
    m_dialogs = new SaveDialogs(this);
    m_spectrumFit = std::make_unique<SpectrumFitWindow>(m_measurement, m_dialogs);
    m_status = new StatusLine(m_measurement, *m_messages, this);
    new FileWait(this, m_panels->batch->findChild<QAbstractButton*>(QStringLiteral("Stop")));
    m_image = new ImagePane(m_measurement, *m_ui, this);
    m_ui->frameStrip->follow(m_measurement, m_ui->dispA,
                             {m_panels->spectrum.get(), m_panels->analyzer->view()});
    m_spectrum =
        new SpectrumPane(m_measurement, *m_ui, *m_panels->spectrum, *m_panels->analyzer, this);
    m_area = new AreaPane(m_measurement, *m_ui, *m_panels, m_dialogs, this);
    connect(m_area, &AreaPane::said, this, &Body::say);
    m_newResult = new NewResult(m_measurement, this);
    connect(m_newResult, &NewResult::said, this, &Body::say);
    m_record = new WhatWasDone(m_measurement, this, m_panels->batch.get(), m_dialogs);

    connectMeasurement();
    connectBatch();
    connectImage();
    connectPanels();
    connectSaving();
    connectDarkButton(m_ui->SelectDark, m_measurement, m_dialogs);
    const auto* folders = new FolderOpening(m_measurement, this, m_ui->OpenFolder, m_dialogs);
    connect(folders, &FolderOpening::said, this, &Body::say);
    addMapImageAction(this, m_measurement, m_dialogs,
                      [this](const QString& name) { saveEMap(name); });
    addCompositeAction(this, m_measurement);
    const QList<QAction*> windows = addWindows();
    const auto* resultFiles = new ResultFiles(m_measurement, m_dialogs, this);
    connect(resultFiles, &ResultFiles::said, this, &Body::say);
    nameControls(this);
    colourCheckedButtons(this);
    buildBodyMenu(this, windows, resultFiles->actions(), m_record->actions());
    updateControls(*m_ui, m_measurement, *m_panels->spectrum);
    m_ui->SelectI1Files->setFocus();
    WindowSettings::start(m_measurement);
}

QList<QAction*> Body::addWindows() {
    auto* docks = new Docks(this, *m_panels);
    m_saveDataCfg->setParent(this, m_saveDataCfg->windowFlags());
    m_spectrumFit->setParent(this, Qt::Window);
    auto* windows = new ToolWindows(this, docks->plots() + QWidgetList{m_ui->dispA});
    const auto all = docks->all();
    for (QDockWidget* dock : all) {
        windows->addDock(dock);
    }
    const QWidgetList others{m_saveDataCfg.get(), m_spectrumFit.get()};
    for (QWidget* window : others) {
        windows->add(window);
    }
    m_layout = new Layout(this, docks, others);
    m_layout->close();
    auto* start = new QAction(tr("Start &Layout"), this);
    start->setObjectName(QStringLiteral("actionStartLayout"));
    start->setToolTip(tr("Put all windows where they were when the program was new"));
    connect(start, &QAction::triggered, m_layout, &Layout::start);
    auto* line = new QAction(this);
    line->setSeparator(true);
    return docks->toggles() << line << start;
}

BatchCtrl* Body::batchCtrl() const {
    return m_panels->batch.get();
}

Body::~Body() {
    m_measurement.stop();
    m_measurement.disconnect(this);
    m_runner.disconnect(this);
    m_panels->analyzer.reset();
    delete m_ui->frameStrip;  // it works on what goes now
}

void Body::closeEvent(QCloseEvent* event) {
    if (!m_record->mayClose()) {
        event->ignore();
        return;
    }
    m_layout->save();
    emit m_panels->batch->batchStop();
    QMainWindow::closeEvent(event);
    emit finishing();
}

void Body::connectMeasurement() {
    connect(&m_measurement, &Measurement::changed, this,
            [this] { updateControls(*m_ui, m_measurement, *m_panels->spectrum); });
    connect(m_panels->spectrum.get(), &XafsView::updated, this,
            [this] { updateControls(*m_ui, m_measurement, *m_panels->spectrum); });
    connect(&m_runner, &BatchRunner::endedAlone, this, [this](Work work, const Outcome& outcome) {
        sayOf(work, withWhatWasMade(m_measurement, work, outcome));
    });
    // Whoever starts a run in the menu need not see the analyzer.
    connect(m_panels->analyzer->findChild<RunAnswer*>(), &RunAnswer::ended, this,
            [this](const Outcome& answered) { m_status->say(textOf(answered)); });
    connect(&m_measurement, &Measurement::progressed, this,
            [this](Work work, double done, double of) {
                if (work == Work::LoadI1 || work == Work::LoadI0) {
                    emit loadProgress(work == Work::LoadI1 ? 1 : 0, static_cast<int>(done),
                                      static_cast<int>(of));
                } else if (work != Work::LoadDark) {
                    emit analysisProgress(done);
                }
            });
    connect(&m_measurement.stack(StackId::I1), &Stack::load, this, &Body::loadI1);
    connect(&m_measurement.stack(StackId::I0), &Stack::load, this, &Body::loadI0);
    connect(m_ui->SelectI1Files, &SelectDataFiles::filesSelected, this,
            [this](const QStringList& files, bool add) { readI1Files(files, !add); });
    connect(m_ui->SelectI0Files, &SelectDataFiles::filesSelected, this,
            [this](const QStringList& files, bool add) { readI0Files(files, !add); });
    connect(m_ui->SelectI1Files, &SelectDataFiles::said, this, &Body::say);
    connect(m_ui->SelectI0Files, &SelectDataFiles::said, this, &Body::say);
    connect(m_ui->SelectI1Files, &SelectDataFiles::clearRequested, this, &Body::clearI1Files);
    connect(m_ui->SelectI0Files, &SelectDataFiles::clearRequested, this, &Body::clearI0Files);
}

void Body::connectBatch() {
    connect(m_panels->batch.get(), &BatchCtrl::doDispatchCmds, &m_runner, &BatchRunner::start);
    connect(m_panels->batch.get(), &BatchCtrl::batchStop, &m_runner, &BatchRunner::stop);
    connect(m_runner.dispatcher(), &BatchDispatcher::log, m_panels->batch.get(),
            &BatchCtrl::logmsg);
    connect(&m_runner, &BatchRunner::unknownCommand, m_panels->batch.get(), &BatchCtrl::showCmdErr);
    connect(&m_runner, &BatchRunner::finishBatchExec, this, &Body::finishBatchExec);
    connect(&m_runner, &BatchRunner::commandDone, this, &Body::lineDone);
    connect(m_runner.dispatcher(), &BatchDispatcher::started, m_panels->batch.get(),
            &BatchCtrl::batchStarted);
    connect(m_runner.dispatcher(), &BatchDispatcher::ended, m_panels->batch.get(),
            &BatchCtrl::batchEnded);
    connect(m_panels->batch.get(), &BatchCtrl::said, this, &Body::say);
    connect(m_status->messagesButton(), &QPushButton::clicked, m_panels->messages.get(),
            &QWidget::show);
    connect(m_ui->BatchCtrlB, &QPushButton::clicked, m_panels->batch.get(), &QWidget::show);
}

void Body::connectImage() {
    connect(m_ui->ShowI0, &QPushButton::toggled, this, &Body::selectedDataI0);
    connect(m_ui->ShowShiftMap, &QPushButton::toggled, this, &Body::showShiftMap);
    connect(m_ui->ShowResAnalysis, &QPushButton::toggled, this, &Body::showResAnalysis);
    connect(m_ui->frameStrip, &FrameStrip::previousAsked, this, &Body::prev);
    connect(m_ui->frameStrip, &FrameStrip::nextAsked, this, &Body::next);
    connect(m_ui->frameStrip, &FrameStrip::frameAsked, this, &Body::sliderMoved);
    connect(m_ui->frameStrip, &FrameStrip::said, this, &Body::say);
    connect(m_ui->dispA, &ImageView::mouseMoved, this, &Body::showXafsSpectrum);
    connect(m_ui->dispA, &DispA::drawImage2, this, &Body::draw);
    connect(m_ui->dispA, &DispA::mouseMoved0, this, &Body::onMouseMovedInDispA);
    connect(m_ui->CBar, &ColorBar::newBar, this, &Body::newCBar);
    connect(m_image, &ImagePane::said, this, &Body::say);
}

void Body::connectPanels() {
    connect(m_ui->OpenCalibCtrl, &QPushButton::clicked, m_panels->calibration.get(),
            &QWidget::show);
    connect(m_panels->calibration.get(), &CalibCtrl::said, this, &Body::say);
    connect(m_panels->calibration.get(), &CalibCtrl::newStdFileLoaded, this, &Body::newStdFile);
    connect(m_panels->calibration.get(), &CalibCtrl::execCalibration, this, &Body::execCalibration);
    connect(m_panels->calibration.get(), &CalibCtrl::saveEMap, this, &Body::saveEMap);
    connect(m_panels->calibration.get(), &CalibCtrl::loadEMap, this, &Body::loadEMap);
    connect(m_panels->calibration.get(), &CalibCtrl::clearMap, this, &Body::clearShiftMap);
    connect(m_ui->ShowAnalyzer, &QPushButton::clicked, m_panels->analyzer.get(), &Analyzer::show);
    connect(m_ui->ShowAnalyzer, &QPushButton::clicked, this, [this] {
        const QPointF at = m_measurement.position();
        if (at.x() >= 0.0 && at.y() >= 0.0) {
            m_spectrum->show();
        }
    });
    connect(&m_measurement, &Measurement::windowAsked, this, [this](Measurement::Window window) {
        if (window == Measurement::Window::Analyzer) {
            m_panels->analyzer->show();
        } else {
            QWidget* panel = m_panels->calibration.get();
            (window == Measurement::Window::Calibration ? panel : m_saveDataCfg.get())->show();
        }
    });
    connect(m_ui->ShowXafsView, &QPushButton::clicked, m_panels->spectrum.get(), &QWidget::show);
    connect(m_panels->analyzer.get(), &Analyzer::said, this, &Body::say);
    connect(m_spectrumFit.get(), &SpectrumFitWindow::said, this, &Body::say);
    connect(m_panels->analyzer.get(), &Analyzer::askAnalyze, this, &Body::startLCF2DAnalysis);
    connect(m_panels->analyzer.get(), &Analyzer::askRAAnalyze, this, &Body::startRA2DAnalysis);
    connect(m_panels->analyzer.get(), &Analyzer::askDifference, this, &Body::startDifference);
    connect(m_panels->analyzer.get(), &Analyzer::changedSelection, this, &Body::selectedNewRef);
    m_panels->analyzer->view()->setRaEnergy(m_measurement.settings().raEnergy);
}

void Body::connectSaving() {
    const auto write = [this](const QString& name, const std::function<bool()>& writer) {
        return writeFile(m_measurement, name, writer);
    };
    m_panels->batch->setWriter(write);
    for (XafsView* view : {m_panels->spectrum.get(), m_panels->analyzer->view()}) {
        view->setWriter(write);
        connect(view, &XafsView::said, this, &Body::say);
    }
    const QStringList pictures{tr("Image File (*.png)"), tr("Any Files (* *.*)")};
    const QStringList spectra{tr("XAFS Spectra (*.dat)"), tr("Any Files (* *.*)")};
    const auto ask = [this](QPushButton* button, const QString& title, const QStringList& filters,
                            const QString& suffix, void (Body::*save)(const QString&)) {
        connect(button, &QPushButton::clicked, this, [=] {
            m_dialogs->askForTarget(title, filters, suffix,
                                    [=](const QString& name) { (this->*save)(name); });
        });
    };
    const QString png = QStringLiteral("png");
    ask(m_ui->SaveImage, tr("Save Image"), pictures, png, &Body::saveImage);
    ask(m_ui->SaveImageWithBar, tr("Save with Colour Bar"), pictures, png, &Body::saveImageWithBar);
    ask(m_ui->SaveAllImages, tr("Save All Images"), pictures, png, &Body::saveAllImages);
    ask(m_ui->SaveXAFSSpectra, tr("Save XAFS Spectra"), spectra, QStringLiteral("dat"),
        &Body::saveXafsSpectra);
    connect(m_ui->SaveData, &QPushButton::clicked, this, &Body::showSaveDataDialog);
    connect(m_ui->SaveAllMaps, &QPushButton::clicked, this, &Body::showSaveMapsDialog);
    connect(m_ui->SaveDataCfgB, &QPushButton::clicked, m_saveDataCfg.get(), &QWidget::show);
    connect(m_ui->SaveFlatDark, &QPushButton::clicked, this, &Body::saveFlatDark);
    connect(m_ui->DeGlitch, &QPushButton::clicked, this, &Body::deglitch);
    connect(m_ui->ShowProcImg, &QPushButton::toggled, this, &Body::showProcImg);
    connect(m_ui->NormalizeEShift, &QPushButton::clicked, this, &Body::normalizeEShift);
    connect(m_record, &WhatWasDone::saveAsked, this, &Body::saveRecord);
    connect(m_record, &WhatWasDone::said, this, &Body::say);
    for (QLineEdit* field : {m_ui->DeGlitchFactor, m_ui->DeGlitchRatio}) {
        numberIn(field);
        connect(field, &QLineEdit::editingFinished, this, [field] { numberIn(field); });
    }
}

void Body::tellLack() {
    say(Outcome::failure(lackOfMemory()));
}

void Body::say(const Outcome& outcome, const QString& file) {
    sayOf(Work::None, outcome, file);
}

void Body::sayOf(Work work, const Outcome& outcome, const QString& file) {
    const bool isRun = work == Work::Calibrate || work == Work::Fit || work == Work::Residual ||
                       work == Work::Difference;
    if (isRun) {
        m_status->endNotice();  // that of the run before
    }
    m_status->say(textOf(inShort(m_measurement, work, outcome)));
    m_messages->take(outcome, file);
    if (work == Work::Calibrate) {
        m_panels->calibration->say(outcome);
    } else if (isRun) {
        m_panels->analyzer->say(outcome);
    }
}

void Body::lineDone(const CmdLine& cmd, const Outcome& outcome) {
    const int line = m_panels->batch->lineDone(cmd, outcome, m_runner.dispatcher()->lineInWork());
    const CommandRow* row = commandRow(commandId(cmd.command));
    if (line > 0) {
        const Work work = row != nullptr ? row->work : Work::None;
        m_status->say(textOf(inShort(m_measurement, work, outcome)));
        m_messages->take(outcome, row != nullptr ? row->fileOf(cmd) : QString(), line);
    }
    emit commandDone(cmd, outcome.texts());
}
