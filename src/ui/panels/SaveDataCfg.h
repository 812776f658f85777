#pragma once

#include <QDialog>
#include <QStringList>
#include <memory>

#include "output/ResultWriter.h"

namespace Ui {
class SaveDataCfg;
}

/// How result images are saved: as 16-bit TIFF or as a text table, with the options of either. The
/// choices are held by the controls alone.
class SaveDataCfg : public QDialog {
    Q_OBJECT

  public:
    explicit SaveDataCfg(QWidget* parent = nullptr);
    ~SaveDataCfg() override;

    /// TIFF rather than text.
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
    void setTiffFixedScale(bool fixed);
    /// Written into the field with six significant digits.
    void setTiffScaleMin(double value);
    void setTiffScaleMax(double value);
    void setAsAnalyzed(bool asAnalyzed);
    void setCommaSeparated();
    void setSpaceSeparated();
    void setPointPerLine();
    void setRowPerLine();

  private slots:
    void updateControls();

  private:
    std::unique_ptr<Ui::SaveDataCfg> m_ui;
};
