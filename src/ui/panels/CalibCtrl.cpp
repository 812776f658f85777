#include "panels/CalibCtrl.h"

#include <QButtonGroup>
#include <QFileDialog>
#include <QFileInfo>
#include <QSignalBlocker>

#include "display/Availability.h"
#include "display/FolderMemory.h"
#include "files/FileNames.h"
#include "panels/WhyNot.h"
#include "spectra/Background.h"
#include "spectra/Units.h"
#include "ui_CalibCtrl.h"

namespace {

const QLatin1String kMapSuffix("emp");

QString withMapSuffix(const QString& fileName) {
    const QFileInfo info(fileName);
    if (info.suffix() == kMapSuffix) {
        return fileName;
    }
    return fileIn(info.absolutePath(), info.completeBaseName() + QLatin1Char('.') + kMapSuffix);
}

/// The buttons of a group stand in the order of the kinds.
int chosenBackground(const QButtonGroup* group) {
    return std::max(0, group->buttons().indexOf(group->checkedButton()));
}

void choose(QButtonGroup* group, int background) {
    const QSignalBlocker blocked(group);
    group->buttons().at(background::kindOf(background))->setChecked(true);
}

}  // namespace

CalibCtrl::CalibCtrl(Measurement& measurement, QWidget* parent)
    : Panel(parent, Qt::Window),
      m_measurement(measurement),
      m_ui(std::make_unique<Ui::CalibCtrl>()) {
    m_ui->setupUi(this);
    for (const Crystal& crystal : CrystalTable) {
        m_ui->SelCrystal->addItem(QString::fromLatin1(crystal.name), crystal.spacing);
    }
    m_ui->StdSelector->showUse(false);
    QSizePolicy always = m_ui->StdSelector->sizePolicy();
    always.setRetainSizeWhenHidden(true);  // what is below it stays where it is when it opens
    m_ui->StdSelector->setSizePolicy(always);
    m_ui->StdSelector->hide();
    connectControls();
    connectEdge();
    connect(&m_measurement, &Measurement::changed, this, &CalibCtrl::showChanges);
    showSettings();
    showStandard();
    updateControls();
}

CalibCtrl::~CalibCtrl() = default;

void CalibCtrl::connectControls() {
    connect(m_ui->SelectStd, &QAbstractButton::clicked, this, &CalibCtrl::chooseStandard);
    connect(m_ui->StdSelector, &XafsFileSelect::newFile, this, &CalibCtrl::newFile);
    connect(m_ui->StdSelector, &XafsFileSelect::cleared, this,
            [this] { m_measurement.clearStandard(); });
    const auto toggled = QOverload<QAbstractButton*, bool>::of(&QButtonGroup::buttonToggled);
    connect(m_ui->stdBGGroup, toggled, this,
            [this](QAbstractButton*, bool on) { stdBGToggled(on); });
    connect(m_ui->targetBGGroup, toggled, this, [this] {
        m_measurement.set(&Settings::targetBackground, chosenBackground(m_ui->targetBGGroup));
    });
    connect(m_ui->SelCrystal, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int index) { m_measurement.set(&Settings::crystal, index); });
    connect(m_ui->EdgeEeV, &QLineEdit::textChanged, this, &CalibCtrl::setEdgeEV);
    connect(m_ui->ExecCalib, &QAbstractButton::clicked, this, &CalibCtrl::execCalibration);
    connect(m_ui->ClearMap, &QAbstractButton::clicked, this, &CalibCtrl::clearMap);

    connect(m_ui->SaveMap, &QAbstractButton::clicked, this, &CalibCtrl::showSaveDialog);
    connect(m_ui->LoadMap, &QAbstractButton::clicked, this, &CalibCtrl::showLoadDialog);
}

/// Where there is none yet, there is nothing to look at or to clear first.
void CalibCtrl::chooseStandard() {
    m_ui->StdSelector->show();
    if (m_measurement.standardFile().isEmpty()) {
        m_ui->StdSelector->findChild<QAbstractButton*>(QStringLiteral("Select"))->click();
    }
}

void CalibCtrl::showSaveDialog() {
    if (m_saveDialog == nullptr) {
        m_saveDialog = makeMapDialog("SaveMapDialog");
        m_saveDialog->setWindowTitle(tr("Save Energy-Shift Map"));
        m_saveDialog->setAcceptMode(QFileDialog::AcceptSave);
        m_saveDialog->setFileMode(QFileDialog::AnyFile);
        m_saveDialog->setDefaultSuffix(kMapSuffix);
        connect(m_saveDialog, &QFileDialog::fileSelected, this,
                [this](const QString& name) { emit saveEMap(withMapSuffix(name)); });
    }
    FolderMemory::shared().show(m_saveDialog);
}

void CalibCtrl::showLoadDialog() {
    if (m_loadDialog == nullptr) {
        m_loadDialog = makeMapDialog("LoadMapDialog");
        m_loadDialog->setWindowTitle(tr("Load Energy-Shift Map"));
        m_loadDialog->setFileMode(QFileDialog::ExistingFile);
        QStringList filters = m_loadDialog->nameFilters();
        filters.insert(1, tr("Tiff Files (*.tif *.tiff)"));
        m_loadDialog->setNameFilters(filters);
        connect(m_loadDialog, &QFileDialog::fileSelected, this, &CalibCtrl::loadEMap);
    }
    FolderMemory::shared().show(m_loadDialog);
}

QFileDialog* CalibCtrl::makeMapDialog(const char* name) {
    auto* dialog = new QFileDialog(this);
    dialog->setObjectName(QLatin1String(name));
    dialog->setNameFilters({tr("Energy Distribution Map File (*.emp)"), tr("Any Files (* *.*)")});
    return dialog;
}

double CalibCtrl::spacing() const {
    return m_measurement.spacing();
}
double CalibCtrl::edgeEnergy() const {
    return m_measurement.edgeEnergy();
}
int CalibCtrl::targetBackground() const {
    return m_measurement.settings().targetBackground;
}
const XafsSpectrum* CalibCtrl::standard() const {
    return m_measurement.standard();
}
QString CalibCtrl::standardFileName() const {
    return m_ui->StdSelector->fileName();
}

void CalibCtrl::say(const Outcome& outcome) {
    // What a calibration has found is read as a whole, and with its warnings.
    const bool hasFound = outcome.files.isEmpty();
    m_ui->Shifts->setText(hasFound ? outcome.notes.join(QStringLiteral("; ")) : QString());
    Outcome rest = outcome;
    if (hasFound) {
        rest.notes.clear();
    }
    m_ui->Message->say(rest);
}

void CalibCtrl::newFile(const QString& fname) {
    Outcome outcome = m_measurement.loadStandard(fname);
    if (!outcome.failed() && standard()->midE() > 0.0) {
        outcome.notes << tr("Standard %1: edge at %2 eV")
                             .arg(QFileInfo(fname).fileName())
                             .arg(standard()->midE(), 0, 'f', 2);
    }
    say(outcome);
    emit said(outcome, fname);
    if (!outcome.failed()) {
        emit newStdFileLoaded();
    }
}

void CalibCtrl::stdBGToggled(bool) {
    m_measurement.set(&Settings::standardBackground, chosenBackground(m_ui->stdBGGroup));
}

void CalibCtrl::loadStd(const QString& fname) {
    m_ui->StdSelector->load(fname);
}

void CalibCtrl::setEdgeEV(const QString& text) {
    m_measurement.set(&Settings::edgeEnergy, text);
}

void CalibCtrl::loadEShiftMap(const QString& fname) {
    emit loadEMap(fname);
}

void CalibCtrl::showChanges(Measurement::Changes what) {
    if (what & Measurement::Setting) {
        showSettings();
    }
    if (what & Measurement::Standard) {
        showStandard();
    }
    if (what &
        (Measurement::Changes(Measurement::AtWork) | Measurement::Frames | Measurement::Map)) {
        updateControls();
    }
}

void CalibCtrl::showSettings() {
    const Settings& settings = m_measurement.settings();
    choose(m_ui->stdBGGroup, settings.standardBackground);
    choose(m_ui->targetBGGroup, settings.targetBackground);
    showEdge();
    const QSignalBlocker crystal(m_ui->SelCrystal);
    m_ui->SelCrystal->setCurrentIndex(settings.crystal);
    const QSignalBlocker edge(m_ui->EdgeEeV);
    if (m_ui->EdgeEeV->text() != settings.edgeEnergy) {
        m_ui->EdgeEeV->setText(settings.edgeEnergy);
    }
}

void CalibCtrl::updateControls() {
    const bool calibrates = m_measurement.working() == Work::Calibrate;
    m_ui->ExecCalib->setText(calibrates ? tr("Stop") : tr("Exec Calib."));
    setUsable(m_ui->ExecCalib, whyNotAnalyze(m_measurement, Work::Calibrate));
    const QString running = whileAnalyzing(m_measurement);
    const bool hasMap = m_measurement.map().image.hasData();
    const QString noMap = hasMap ? QString() : tr("There is no energy-shift map yet.");
    setUsable(m_ui->LoadMap, running);
    setUsable(m_ui->SaveMap, noMap);
    setUsable(m_ui->ClearMap, hasMap ? running : noMap);
}

/// Says which standard there is, and at the buttons that need one what they do without it.
void CalibCtrl::showStandard() {
    const QString file = m_measurement.standardFile();
    m_ui->StdSelector->setFileNameText(file);
    const bool loaded = standard() != nullptr && !standard()->isEmpty();
    m_ui->StdName->setText(loaded ? QFileInfo(file).fileName() : tr("No standard loaded"));
    m_ui->StdName->setToolTip(loaded ? file : QString());
    const QString missing = tr("No standard is loaded. Choose one with \"Select Std.\".");
    setOwnToolTip(m_ui->ExecCalib,
                  loaded
                      ? tr("Measure the energy shift of every bin of the selected area against the "
                           "standard; a second click stops.")
                      : missing + QLatin1Char('\n') +
                            tr("Without one the map holds edge energies, not shifts."));
    setOwnToolTip(m_ui->SaveMap,
                  loaded
                      ? tr("Save the energy-shift map as angles for this standard and crystal.")
                      : missing + QLatin1Char('\n') +
                            tr("Without one the map is saved with the edge energy typed above."));
}
