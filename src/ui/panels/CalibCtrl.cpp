#include "panels/CalibCtrl.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

#include "base/Globals.h"
#include "display/Availability.h"
#include "spectra/SpectrumFile.h"
#include "spectra/Units.h"
#include "spectra/XafsSpectrum.h"
#include "ui_CalibCtrl.h"

namespace {

const QLatin1String kMapSuffix("emp");

QString withMapSuffix(const QString& fileName) {
    const QFileInfo info(fileName);
    if (info.suffix() == kMapSuffix) {
        return fileName;
    }
    return QDir(info.absolutePath())
        .filePath(info.completeBaseName() + QLatin1Char('.') + kMapSuffix);
}

/// The kind of background whose button is on; the buttons stand in the order of the kinds.
int chosenBackground(const QButtonGroup* group) {
    return std::max(0, group->buttons().indexOf(group->checkedButton()));
}

}  // namespace

CalibCtrl::CalibCtrl(QWidget* parent)
    : QWidget(parent, Qt::Window), m_ui(std::make_unique<Ui::CalibCtrl>()) {
    m_ui->setupUi(this);
    for (const Crystal& crystal : CrystalTable) {
        m_ui->SelCrystal->addItem(QString::fromLatin1(crystal.name), crystal.spacing);
    }
    m_ui->StdSelector->showUse(false);
    m_ui->StdSelector->hide();
    connectControls();
    describeStandard();
}

CalibCtrl::~CalibCtrl() = default;

void CalibCtrl::connectControls() {
    connect(m_ui->SelectStd, &QAbstractButton::clicked, m_ui->StdSelector, &QWidget::show);
    connect(m_ui->StdSelector, &XafsFileSelect::newFile, this, &CalibCtrl::newFile);
    for (const QAbstractButton* button : m_ui->stdBGGroup->buttons()) {
        connect(button, &QAbstractButton::toggled, this, &CalibCtrl::stdBGToggled);
    }
    connect(m_ui->targetBGGroup,
            QOverload<QAbstractButton*, bool>::of(&QButtonGroup::buttonToggled), this,
            [this](QAbstractButton*, bool on) {
                if (on) {
                    emit targetBackgroundChanged(targetBackground());
                }
            });
    connect(m_ui->SelCrystal, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { emit spacingChanged(spacing()); });
    connect(m_ui->ExecCalib, &QAbstractButton::clicked, this, &CalibCtrl::execCalibration);
    connect(m_ui->ClearMap, &QAbstractButton::clicked, this, &CalibCtrl::clearMap);

    connect(m_ui->SaveMap, &QAbstractButton::clicked, this, &CalibCtrl::showSaveDialog);
    connect(m_ui->LoadMap, &QAbstractButton::clicked, this, &CalibCtrl::showLoadDialog);
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
    m_saveDialog->show();
}

void CalibCtrl::showLoadDialog() {
    if (m_loadDialog == nullptr) {
        m_loadDialog = makeMapDialog("LoadMapDialog");
        m_loadDialog->setWindowTitle(tr("Load Energy-Shift Map"));
        m_loadDialog->setFileMode(QFileDialog::ExistingFile);
        connect(m_loadDialog, &QFileDialog::fileSelected, this, &CalibCtrl::loadEMap);
    }
    m_loadDialog->show();
}

QFileDialog* CalibCtrl::makeMapDialog(const char* name) {
    auto* dialog = new QFileDialog(this);
    dialog->setObjectName(QLatin1String(name));
    dialog->setNameFilters({tr("Energy Distribution Map File (*.emp)"), tr("Any Files (* *.*)")});
    dialog->setDirectory(DataDir);
    return dialog;
}

double CalibCtrl::spacing() const {
    return m_ui->SelCrystal->currentData().toDouble();
}

double CalibCtrl::edgeEnergy() const {
    const double energy = m_ui->EdgeEeV->text().toDouble();
    return std::isfinite(energy) ? energy : 0.0;
}

int CalibCtrl::targetBackground() const {
    return chosenBackground(m_ui->targetBGGroup);
}

const XafsSpectrum* CalibCtrl::standard() const {
    return m_standard.get();
}

QString CalibCtrl::standardFileName() const {
    return m_ui->StdSelector->fileName();
}

void CalibCtrl::newFile(const QString& fname) {
    m_standard = std::make_unique<XafsSpectrum>();
    if (!readSpectrumFile(fname, m_standard.get())) {
        m_ui->StdSelector->setFileNameText(QString());
        describeStandard();
        return;
    }
    m_standard->normalise(chosenBackground(m_ui->stdBGGroup));
    setEdgeEV(QString::number(m_standard->midE()));
    describeStandard();
    emit newStdFileLoaded();
}

void CalibCtrl::stdBGToggled(bool) {
    if (!m_standard) {
        return;
    }
    m_standard->normalise(chosenBackground(m_ui->stdBGGroup));
    emit standardRenormalised();
}

void CalibCtrl::loadStd(const QString& fname) {
    m_ui->StdSelector->load(fname);
}

void CalibCtrl::setEdgeEV(const QString& text) {
    m_ui->EdgeEeV->setText(text);
}

void CalibCtrl::loadEShiftMap(const QString& fname) {
    emit loadEMap(fname);
}

void CalibCtrl::setMissing(const QString& forCalibration, const QString& forLoading, bool hasMap) {
    const QString noMap = hasMap ? QString() : tr("There is no energy-shift map yet.");
    setUsable(m_ui->ExecCalib, forCalibration);
    setUsable(m_ui->LoadMap, forLoading);
    setUsable(m_ui->SaveMap, noMap);
    setUsable(m_ui->ClearMap, hasMap ? forLoading : noMap);
}

/// Says which standard there is, and at the buttons that need one what they do without it.
void CalibCtrl::describeStandard() {
    const bool loaded = m_standard && !m_standard->isEmpty();
    m_ui->StdName->setText(loaded ? QFileInfo(standardFileName()).fileName()
                                  : tr("No standard loaded"));
    m_ui->StdName->setToolTip(loaded ? standardFileName() : QString());
    const QString missing = tr("No standard is loaded. Choose one with \"Select Std.\".");
    setOwnToolTip(m_ui->ExecCalib,
                  loaded
                      ? tr("Measure the energy shift of every bin of the selected area against the "
                           "standard.")
                      : missing + QLatin1Char('\n') +
                            tr("Without one the map holds edge energies, not shifts."));
    setOwnToolTip(m_ui->SaveMap,
                  loaded
                      ? tr("Save the energy-shift map as angles for this standard and crystal.")
                      : missing + QLatin1Char('\n') +
                            tr("Without one the map is saved with the edge energy typed above."));
}
