#pragma once

#include <QMainWindow>
#include <memory>

#include "batch/BatchRunner.h"
#include "calibration/EnergyMapFile.h"

namespace Ui {
class Body;
}
class AreaPane;
class BatchCtrl;
class ImagePane;
class Layout;
class Messages;
class NewResult;
class SaveDataCfg;
class SaveDialogs;
class SpectrumFitWindow;
class SpectrumPane;
class StatusLine;
class WhatWasDone;
struct Panels;

/// The main window: a view of a measurement, with its tool windows. It only wires them.
class Body : public QMainWindow {
    Q_OBJECT

  public:
    explicit Body(QWidget* parent = nullptr);
    ~Body() override;

    Measurement& measurement() { return m_measurement; }
    BatchCtrl* batchCtrl() const;
    BatchDispatcher* dispatcher() { return m_runner.dispatcher(); }
    WhatWasDone* whatWasDone() const { return m_record; }
    Layout* layoutOfWindows() const { return m_layout; }
    /// Says that an action was refused memory.
    void tellLack();

  signals:
    void loadI1(QString fname, TiffData* data);
    void loadI0(QString fname, TiffData* data);
    void finishing();
    void finishBatchExec();
    /// A line has been dealt with; just before finishBatchExec().
    void commandDone(CmdLine cmd, QStringList problems);
    void loadProgress(int stack, int done, int total);  ///< stack 1 is I1; files of the load
    void analysisProgress(double percent);

  public slots:
    void clearI1Files();
    void clearI0Files();
    void readI1Files(const QStringList& files, bool newFile);
    void readI0Files(const QStringList& files, bool newFile);
    void selectedDataI0(bool on);
    void showData(int n);
    void prev();
    void next();
    void sliderMoved(int n);
    void draw(QPainter* p);
    void showXafsSpectrum(double x, double y);
    void newStdFile();
    void execCalibration();
    void saveEMap(const QString& fname);
    void loadEMap(const QString& fname);
    EMPHeader loadEMapHeader(EMPHeader header, QTextStream& in);
    void newCBar();
    void onMouseMovedInDispA();
    void loadNextI1();
    void loadedI1(TiffData* frame);
    void loadNextI0();
    void loadedI0(TiffData* frame);
    void stopLoading();
    void startLCF2DAnalysis();
    void stop2DAnalysis();
    void analyzeASpectrumFinished();
    void recordResForAPoint();
    void generateResImages();
    void startRA2DAnalysis();
    void startDifference();
    void generateRAResImage();
    void showResAnalysis(bool on);
    void selectedNewRef();
    void setupResAnalysisImage();
    void showShiftMap();
    void clearShiftMap();
    void normalizeEShift();
    void deglitch();
    void showProcImg(bool on);
    void saveImage(const QString& fname);
    void saveImageWithBar(const QString& fname);
    void saveAllImages(const QString& fname);
    void saveAllMaps(const QString& fname);
    void showSaveDataDialog();
    void showSaveMapsDialog();
    void saveData(const QString& fname);
    void saveDataAsTiff(const QString& fname);
    void saveFlatDark();
    void saveXafsSpectra(const QString& fname);
    void saveRecord(const QString& fname);
    void execCmd(CmdLine cmd, bool inRem);

  private:
    void closeEvent(QCloseEvent* event) override;
    /// The actions of the menu for windows.
    QList<QAction*> addWindows();
    void connectMeasurement();
    void connectBatch();
    void connectImage();
    void connectPanels();
    void connectSaving();
    void say(const Outcome& outcome, const QString& file = QString());
    void sayOf(Work work, const Outcome& outcome, const QString& file = QString());
    void lineDone(const CmdLine& cmd, const Outcome& outcome);
    void toggle(Work work);

    std::unique_ptr<Ui::Body> m_ui;
    Measurement m_measurement;
    BatchRunner m_runner{m_measurement};
    Messages* m_messages;
    std::unique_ptr<Panels> m_panels;
    std::unique_ptr<SaveDataCfg> m_saveDataCfg;
    Layout* m_layout;
    ImagePane* m_image;
    SpectrumPane* m_spectrum;
    AreaPane* m_area;
    NewResult* m_newResult;
    StatusLine* m_status;
    SaveDialogs* m_dialogs;
    std::unique_ptr<SpectrumFitWindow> m_spectrumFit;
    WhatWasDone* m_record;
};
