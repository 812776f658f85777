#pragma once

#include <QWidget>
#include <memory>

#include "display/Panel.h"
#include "measurement/Measurement.h"

class QFileDialog;

namespace Ui {
class CalibCtrl;
}

/// The calibration panel: a measurement's standard spectrum, background forms, E0, crystal and edge
/// energy, and the buttons that make, save, load and clear its energy-shift map. The work on the
/// map belongs to whoever receives the signals.
class CalibCtrl : public Panel<QWidget> {
    Q_OBJECT

  public:
    explicit CalibCtrl(Measurement& measurement, QWidget* parent = nullptr);
    ~CalibCtrl() override;

    /// d-spacing of the chosen crystal in angstrom.
    double spacing() const;
    /// The typed edge energy in eV; 0.0 when it is not a number.
    double edgeEnergy() const;
    /// Kind of the background of the spectra, see background::Kinds.
    int targetBackground() const;
    /// As Measurement::standard().
    const XafsSpectrum* standard() const;
    /// As the file selector shows it.
    QString standardFileName() const;
    /// Shows how an action that was started here ended.
    void say(const Outcome& outcome);

  signals:
    void newStdFileLoaded();
    /// A calibration is to begin, or the one that runs is to stop.
    void execCalibration();
    void saveEMap(const QString& fname);
    void loadEMap(const QString& fname);
    void clearMap();
    /// How an action of this panel ended that it has done itself.
    void said(const Outcome& outcome, const QString& file);

  public slots:
    void newFile(const QString& fname);
    void stdBGToggled(bool);
    void loadStd(const QString& fname);
    void setEdgeEV(const QString& text);
    void loadEShiftMap(const QString& fname);

  private:
    void connectControls();
    void connectEdge();
    void showEdge();
    void chooseEdge(int kind);
    void takeEdgeEnergy();
    void takeRanges();
    void chooseStandard();
    void showSaveDialog();
    void showLoadDialog();
    QFileDialog* makeMapDialog(const char* name);
    void showChanges(Measurement::Changes what);
    void showSettings();
    void showStandard();
    void updateControls();

    Measurement& m_measurement;
    std::unique_ptr<Ui::CalibCtrl> m_ui;
    QFileDialog* m_saveDialog = nullptr;
    QFileDialog* m_loadDialog = nullptr;
};
