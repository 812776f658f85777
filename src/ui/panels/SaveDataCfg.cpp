#include "panels/SaveDataCfg.h"

#include <QDoubleValidator>

#include "display/Availability.h"
#include "ui_SaveDataCfg.h"

SaveDataCfg::SaveDataCfg(QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::SaveDataCfg>()) {
    m_ui->setupUi(this);
    auto* number = new QDoubleValidator(this);
    QLocale plain = QLocale::c();  // a dot as decimal sign, as in every file
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    number->setLocale(plain);
    for (QLineEdit* field : {m_ui->TiffScaleMin, m_ui->TiffScaleMax}) {
        field->setValidator(number);
        connect(field, &QLineEdit::textChanged, this, &SaveDataCfg::updateControls);
    }
    connect(m_ui->SaveAsTiff, &QAbstractButton::toggled, this, &SaveDataCfg::updateControls);
    connect(m_ui->TiffFixScale, &QAbstractButton::toggled, this, &SaveDataCfg::updateControls);
    connect(m_ui->CloseButton, &QAbstractButton::clicked, this, &QWidget::hide);
    updateControls();
}

SaveDataCfg::~SaveDataCfg() = default;

bool SaveDataCfg::savesAsTiff() const {
    return m_ui->SaveAsTiff->isChecked();
}

TiffOptions SaveDataCfg::tiffOptions() const {
    TiffOptions options;
    options.fixedScale = m_ui->TiffFixScale->isChecked();
    options.scaleMin = m_ui->TiffScaleMin->text().toDouble();
    options.scaleMax = m_ui->TiffScaleMax->text().toDouble();
    options.asAnalyzed = m_ui->AsAnalyzed->isChecked();
    return options;
}

TableOptions SaveDataCfg::tableOptions() const {
    TableOptions options;
    options.separator =
        m_ui->CSV->isChecked() ? TableOptions::Separator::Comma : TableOptions::Separator::Blank;
    options.layout =
        m_ui->XYZ->isChecked() ? TableOptions::Layout::Points : TableOptions::Layout::Rows;
    options.asAnalyzed = m_ui->AsAnalyzed->isChecked();
    return options;
}

QString SaveDataCfg::suffix() const {
    return savesAsTiff() ? QStringLiteral("tif") : QStringLiteral("dat");
}

QStringList SaveDataCfg::nameFilters() const {
    return {savesAsTiff() ? tr("Tiff File (*.tif)") : tr("Data File (*.dat)"),
            tr("Any Files (* *.*)")};
}

void SaveDataCfg::saveAsTiff() {
    m_ui->SaveAsTiff->setChecked(true);
}

void SaveDataCfg::saveAsText() {
    m_ui->SaveAsText->setChecked(true);
}

void SaveDataCfg::setTiffFixedScale(bool fixed) {
    m_ui->TiffFixScale->setChecked(fixed);
}

void SaveDataCfg::setTiffScaleMin(double value) {
    m_ui->TiffScaleMin->setText(QString::number(value));
}

void SaveDataCfg::setTiffScaleMax(double value) {
    m_ui->TiffScaleMax->setText(QString::number(value));
}

void SaveDataCfg::setAsAnalyzed(bool asAnalyzed) {
    m_ui->AsAnalyzed->setChecked(asAnalyzed);
}

void SaveDataCfg::setCommaSeparated() {
    m_ui->CSV->setChecked(true);
}

void SaveDataCfg::setSpaceSeparated() {
    m_ui->SSV->setChecked(true);
}

void SaveDataCfg::setPointPerLine() {
    m_ui->XYZ->setChecked(true);
}

void SaveDataCfg::setRowPerLine() {
    m_ui->Vals->setChecked(true);
}

void SaveDataCfg::updateControls() {
    const bool tiff = savesAsTiff();
    const bool fixed = tiff && m_ui->TiffFixScale->isChecked();
    m_ui->TiffPage->setEnabled(tiff);
    m_ui->TextPage->setEnabled(!tiff);
    m_ui->ScaleFields->setEnabled(fixed);
    const QString notTiff = tiff ? QString() : tr("Only for \"Save as Tiff\".");
    const QString notText = tiff ? tr("Only for \"Save as Text data\".") : QString();
    setUsable(m_ui->TiffFixScale, notTiff);
    for (QLineEdit* field : {m_ui->TiffScaleMin, m_ui->TiffScaleMax}) {
        setUsable(field, tiff && !fixed ? tr("Only with \"Fixed Scale\".") : notTiff);
    }
    for (QRadioButton* choice : {m_ui->CSV, m_ui->SSV, m_ui->XYZ, m_ui->Vals}) {
        setUsable(choice, notText);
    }

    const TiffOptions options = tiffOptions();
    const bool reversed = fixed && !(options.scaleMax > options.scaleMin);
    m_ui->ScaleHint->setText(
        !fixed     ? tr("The lowest and highest value of each map become 0 and 65535.")
        : reversed ? tr("The maximum must be above the minimum.")
                   : tr("Minimum and maximum become 0 and 65535."));
    m_ui->ScaleHint->setStyleSheet(reversed ? QStringLiteral("color: #b00020") : QString());
}
