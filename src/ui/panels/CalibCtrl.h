#pragma once

#include <QWidget>
#include <memory>

class QFileDialog;
class XafsSpectrum;

namespace Ui {
class CalibCtrl;
}

/// The calibration panel: standard spectrum, background forms, crystal and edge energy, and the
/// buttons that make, save, load and clear the energy-shift map. It owns the standard; the map and
/// the work on it belong to whoever receives the signals.
class CalibCtrl : public QWidget {
    Q_OBJECT

  public:
    explicit CalibCtrl(QWidget* parent = nullptr);
    ~CalibCtrl() override;

    /// d-spacing of the chosen crystal in angstrom.
    double spacing() const;
    /// The typed edge energy in eV; 0.0 when it is not a number.
    double edgeEnergy() const;
    /// Kind of the background of the spectra, see background::Kinds.
    int targetBackground() const;
    /// The standard, normalised; null before the first file, without points after one that could
    /// not be read. Valid until the next file.
    const XafsSpectrum* standard() const;
    /// As the file selector shows it.
    QString standardFileName() const;
    /// What stands against a calibration and against another map at present, for the user; empty:
    /// nothing. Without a map there is none to save or to clear.
    void setMissing(const QString& forCalibration, const QString& forLoading, bool hasMap);

  signals:
    void newStdFileLoaded();
    void execCalibration();
    void saveEMap(const QString& fname);
    void loadEMap(const QString& fname);
    void clearMap();
    /// The background form of the standard has changed what it looks like.
    void standardRenormalised();
    void spacingChanged(double d);
    void targetBackgroundChanged(int kind);

  public slots:
    void newFile(const QString& fname);
    void stdBGToggled(bool);
    void loadStd(const QString& fname);
    void setEdgeEV(const QString& text);
    void loadEShiftMap(const QString& fname);

  private:
    void connectControls();
    void showSaveDialog();
    void showLoadDialog();
    QFileDialog* makeMapDialog(const char* name);
    void describeStandard();

    std::unique_ptr<Ui::CalibCtrl> m_ui;
    std::unique_ptr<XafsSpectrum> m_standard;
    QFileDialog* m_saveDialog = nullptr;
    QFileDialog* m_loadDialog = nullptr;
};
