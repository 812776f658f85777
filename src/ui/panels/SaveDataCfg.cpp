#include "panels/SaveDataCfg.h"

#include <QDoubleValidator>
#include <QSignalBlocker>

#include "display/Availability.h"
#include "panels/NumberField.h"
#include "ui_SaveDataCfg.h"

namespace {

using Separator = TableOptions::Separator;
using Layout = TableOptions::Layout;

void check(QAbstractButton* button, bool on = true) {
    const QSignalBlocker blocked(button);
    button->setChecked(on);
}

}  // namespace

SaveDataCfg::SaveDataCfg(Measurement& measurement, QWidget* parent)
    : QDialog(parent), m_measurement(measurement), m_ui(std::make_unique<Ui::SaveDataCfg>()) {
    m_ui->setupUi(this);
    auto* number = new QDoubleValidator(this);
    QLocale plain = QLocale::c();  // a dot as decimal sign, as in every file
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    number->setLocale(plain);
    m_ui->TiffScaleMin->setValidator(number);
    m_ui->TiffScaleMax->setValidator(number);
    connectControls();
    connect(&m_measurement, &Measurement::changed, this, [this](Measurement::Changes what) {
        if (what & Measurement::Setting) {
            showSettings();
        }
    });
    showSettings();
}

SaveDataCfg::~SaveDataCfg() = default;

void SaveDataCfg::connectControls() {
    const auto choice = [this](QAbstractButton* button, void (SaveDataCfg::*choose)()) {
        connect(button, &QAbstractButton::toggled, this, [this, choose](bool on) {
            if (on) {
                (this->*choose)();
            }
        });
    };
    choice(m_ui->SaveAsTiff, &SaveDataCfg::saveAsTiff);
    choice(m_ui->SaveAsText, &SaveDataCfg::saveAsText);
    choice(m_ui->SaveAsFloat, &SaveDataCfg::saveAsFloat);
    choice(m_ui->CSV, &SaveDataCfg::setCommaSeparated);
    choice(m_ui->SSV, &SaveDataCfg::setSpaceSeparated);
    choice(m_ui->XYZ, &SaveDataCfg::setPointPerLine);
    choice(m_ui->Vals, &SaveDataCfg::setRowPerLine);
    connect(m_ui->TiffFixScale, &QAbstractButton::toggled, this, &SaveDataCfg::setTiffFixedScale);
    connect(m_ui->AsAnalyzed, &QAbstractButton::toggled, this, &SaveDataCfg::setAsAnalyzed);
    connect(m_ui->Masked, &QAbstractButton::toggled, this,
            [this](bool on) { m_measurement.set(&Settings::savesMasked, on); });
    connectScale(m_ui->TiffScaleMin, &TiffOptions::scaleMin);
    connectScale(m_ui->TiffScaleMax, &TiffOptions::scaleMax);
    connect(m_ui->CloseButton, &QAbstractButton::clicked, this, &QWidget::hide);
}

void SaveDataCfg::connectScale(QLineEdit* field, double TiffOptions::*limit) {
    connect(field, &QLineEdit::textChanged, this, [this, field, limit] {
        noteTaken(field);
        setTiff(limit, inField(numberIn(field)));
    });
    connect(field, &QLineEdit::editingFinished, this,
            [this, field, limit] { finishNumber(field, tiffOptions().*limit); });
}

template <class T, class V>
void SaveDataCfg::setTiff(T TiffOptions::*option, const V& value) {
    TiffOptions tiff = tiffOptions();
    tiff.*option = value;
    m_measurement.set(&Settings::tiff, tiff);
}

template <class T, class V>
void SaveDataCfg::setTable(T TableOptions::*option, const V& value) {
    TableOptions table = tableOptions();
    table.*option = value;
    m_measurement.set(&Settings::table, table);
}

bool SaveDataCfg::savesAsTiff() const {
    return dataForm(form()).isTiff;
}
TiffOptions SaveDataCfg::tiffOptions() const {
    return m_measurement.settings().tiff;
}
TableOptions SaveDataCfg::tableOptions() const {
    return m_measurement.settings().table;
}

QString SaveDataCfg::suffix() const {
    return savesAsTiff() ? QStringLiteral("tif") : QStringLiteral("dat");
}

QStringList SaveDataCfg::nameFilters() const {
    return {savesAsTiff() ? tr("Tiff File (*.tif)") : tr("Data File (*.dat)"),
            tr("Any Files (* *.*)")};
}

void SaveDataCfg::saveAsTiff() {
    m_measurement.set(&Settings::dataForm, DataForm::Tiff);
}
void SaveDataCfg::saveAsText() {
    m_measurement.set(&Settings::dataForm, DataForm::Text);
}
void SaveDataCfg::saveAsFloat() {
    m_measurement.set(&Settings::dataForm, DataForm::FloatTiff);
}
void SaveDataCfg::setTiffFixedScale(bool fixed) {
    setTiff(&TiffOptions::fixedScale, fixed);
}

void SaveDataCfg::setTiffScaleMin(double value) {
    m_ui->TiffScaleMin->setText(fieldText(value));
}
void SaveDataCfg::setTiffScaleMax(double value) {
    m_ui->TiffScaleMax->setText(fieldText(value));
}

/// One choice for all forms.
void SaveDataCfg::setAsAnalyzed(bool asAnalyzed) {
    setTiff(&TiffOptions::asAnalyzed, asAnalyzed);
    setTable(&TableOptions::asAnalyzed, asAnalyzed);
}

void SaveDataCfg::setCommaSeparated() {
    setTable(&TableOptions::separator, Separator::Comma);
}
void SaveDataCfg::setSpaceSeparated() {
    setTable(&TableOptions::separator, Separator::Blank);
}
void SaveDataCfg::setPointPerLine() {
    setTable(&TableOptions::layout, Layout::Points);
}
void SaveDataCfg::setRowPerLine() {
    setTable(&TableOptions::layout, Layout::Rows);
}

void SaveDataCfg::showSettings() {
    const TiffOptions tiff = tiffOptions();
    const TableOptions table = tableOptions();
    QRadioButton* const forms[] = {m_ui->SaveAsTiff, m_ui->SaveAsText, m_ui->SaveAsFloat};
    check(forms[static_cast<int>(form())]);
    check(m_ui->TiffFixScale, tiff.fixedScale);
    showNumber(m_ui->TiffScaleMin, tiff.scaleMin);
    showNumber(m_ui->TiffScaleMax, tiff.scaleMax);
    check(table.separator == Separator::Comma ? m_ui->CSV : m_ui->SSV);
    check(table.layout == Layout::Points ? m_ui->XYZ : m_ui->Vals);
    check(m_ui->AsAnalyzed, tiff.asAnalyzed);
    check(m_ui->Masked, m_measurement.settings().savesMasked);
    updateControls();
}

void SaveDataCfg::updateControls() {
    const bool tiff = form() == DataForm::Tiff;
    const bool text = form() == DataForm::Text;
    const bool fixed = tiff && m_ui->TiffFixScale->isChecked();
    m_ui->TiffPage->setEnabled(tiff);
    m_ui->TextPage->setEnabled(text);
    m_ui->ScaleFields->setEnabled(fixed);
    const QString notTiff = tiff ? QString() : tr("Only for \"Save as Tiff\".");
    const QString notText = text ? QString() : tr("Only for \"Save as Text data\".");
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
