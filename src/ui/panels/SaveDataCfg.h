#pragma once

#include <QDialog>
#include <memory>

#include "measurement/Measurement.h"

class QLineEdit;

namespace Ui {
class SaveDataCfg;
}

/// How a measurement saves result images: as 16-bit TIFF, as a text table or as float TIFF, with
/// the options of each.
class SaveDataCfg : public QDialog {
    Q_OBJECT

  public:
    explicit SaveDataCfg(Measurement& measurement, QWidget* parent = nullptr);
    ~SaveDataCfg() override;

    /// TIFF of either kind rather than text.
    bool savesAsTiff() const;
    /// A scale field that holds no number counts as 0.0.
    TiffOptions tiffOptions() const;
    TableOptions tableOptions() const;

    /// The suffix ("tif" or "dat") and the dialog filters that go with the present choice.
    QString suffix() const;
    QStringList nameFilters() const;

  public slots:
    void saveAsTiff();
    void saveAsText();
    void saveAsFloat();
    void setTiffFixedScale(bool fixed);
    /// Written into the field with six significant digits.
    void setTiffScaleMin(double value);
    void setTiffScaleMax(double value);
    void setAsAnalyzed(bool asAnalyzed);
    void setCommaSeparated();
    void setSpaceSeparated();
    void setPointPerLine();
    void setRowPerLine();

  private:
    void connectControls();
    DataForm form() const { return m_measurement.settings().dataForm; }
    void connectScale(QLineEdit* field, double TiffOptions::*limit);
    template <class T, class V>
    void setTiff(T TiffOptions::*option, const V& value);
    template <class T, class V>
    void setTable(T TableOptions::*option, const V& value);
    void showSettings();
    void updateControls();

    Measurement& m_measurement;
    std::unique_ptr<Ui::SaveDataCfg> m_ui;
};
