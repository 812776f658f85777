#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QMainWindow>
#include <QStringList>
#include <QThread>
#include <QTimer>
#include <functional>
#include <memory>

#include "batch/BatchPacing.h"
#include "calibration/EnergyMapFile.h"
#include "fitting/LinearFit.h"
#include "frames/StackLoader.h"
#include "base/ShareOfTime.h"

namespace Ui {
class Body;
}
class AbsorptionSource;
class Analysis2D;
struct AnalysisGrid;
class Analyzed2DRes;
class Analyzer;
struct BarPicture;
class BatchCtrl;
class BatchDispatcher;
class BinRowSpectra;
class CalibCtrl;
class CommandHandlers;
class CrossSection;
class DarkData;
class LoadTiff;
class QAction;
class QButtonGroup;
class QFileDialog;
class QLabel;
class QPainter;
class QProgressBar;
class QToolButton;
class RasterPass;
class SaveDataCfg;
class SelectDataFiles;
class Spectrum;
class XafsSpectrum;
class XafsView;

/// The main window: owns the two image stacks, the energy-shift map, the results and every tool
/// window, and is the one object that they and the batch talk to. It only wires: each slot says
/// what happens and calls the room that does it.
class Body : public QMainWindow {
    Q_OBJECT

  public:
    explicit Body(QWidget* parent = nullptr);
    ~Body() override;

    /// What the image view shows; the ids of the buttons that choose it.
    enum Shown { ShownData = 0, ShownI0 = 1, ShownShift = 2, ShownResult = 3 };

    BatchCtrl* batchCtrl() const { return m_batchCtrl.get(); }
    BatchDispatcher* dispatcher() const { return m_dispatcher.get(); }

    /// Threads of the calibration and the residual-absorption analysis, which block the window;
    /// all cores at first.
    void setThreads(int threads) { m_threads = threads; }
    /// LCF of an image on all those threads instead of one point at a time in the fitter's: for a
    /// program without a window to keep alive. The results are the same.
    void setFitsRows(bool on) { m_fitsRows = on; }

    /// Size of the images, from the first I1 frame; -1 before there is one.
    int imageWidth() const { return m_imageWidth; }
    int imageHeight() const { return m_imageHeight; }

  signals:
    void loadI1(QString fname, TiffData* data);
    void loadI0(QString fname, TiffData* data);
    void finishing();
    void finishBatchExec();
    /// A line of the batch has been dealt with; no problems: it did its work. Emitted just before
    /// finishBatchExec().
    void commandDone(CmdLine cmd, QStringList problems);
    /// Stack 1 is I1, 0 is I0; counts of files of the present load.
    void loadProgress(int stack, int done, int total);
    /// Per cent of the calibration or two-dimensional analysis under way.
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
    void loadedI1(TiffData* data);
    void loadNextI0();
    void loadedI0(TiffData* data);
    /// Leaves out the files that are still to be read into either stack.
    void stopLoading();
    void startLCF2DAnalysis();
    void stop2DAnalysis();
    void analyzeASpectrumFinished();
    void recordResForAPoint();
    void generateResImages();
    void startRA2DAnalysis();
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
    void showSaveDataDialog();
    void saveData(const QString& fname);
    void saveDataAsTiff(const QString& fname);
    void saveFlatDark();
    void saveXafsSpectra(const QString& fname);
    void execCmd(CmdLine cmd, bool inRem);

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    friend class CommandHandlers;
    struct Stack;

    // construction (Body.cpp)
    void fitFormToFont();
    void startReaders();
    void connectBatch();
    void connectImageControls();
    void connectCalibration();
    void connectAnalyzer();
    void connectDeglitching();
    void connectSaving();
    void connectDark();

    // stacks
    void read(Stack& stack, const QStringList& files);
    bool requestNext(Stack& stack);
    void loadNext(Stack& stack);
    void stopLoading(Stack& stack);
    void showNewest(const TiffData& frame);
    bool arrived(Stack& stack, TiffData* data);
    void tellProgress(const Stack& stack);
    void clear(Stack& stack);
    void stacksChanged();
    Stack& shownStack();
    const AbsorptionSource& source();

    // dark frames
    void showDarkDialog();
    void darkChanged();
    void takeNewDark();
    QString darkState() const;
    void showDarkState();

    // what is shown
    int shown() const;
    TiffData* shownFrame() const;
    Analyzed2DRes* shownResult() const;  // the shift map or the selected result, if on display
    QImage shownPicture() const;
    QImage markedPicture();
    void forgetPainted();
    void fixPercentiles();
    BarPicture shownWithBar();
    void redisplay();
    void redisplaySoon();
    void updateSeekBar();
    void updateStatus();
    void updateControls();
    void updateSpectraButton();
    void updateValueAndCrossSections();

    // spectra and analyses
    int halfWidth() const;
    int halfHeight() const;
    AnalysisGrid gridOfArea() const;
    int backgroundType() const;
    XafsSpectrum corrected(const Spectrum& spectrum, int x, int y) const;
    Spectrum spectrumOnGrid(const AnalysisGrid& grid, int x, int y);
    void showSpectrumAgain();
    /// A pass over the area that blocks the window; false without images.
    void lcfRowsReady();
    void stopFittingRows();
    std::unique_ptr<RasterPass> fitPass(const AnalysisGrid& grid,
                                        const QVector<XafsSpectrum>& references,
                                        LinearFit::Method method);
    bool runBlocking(const std::function<void(const AnalysisGrid&)>& pass);
    void showProgress(double percent);
    void makeLoadingControls();
    void showLoadProgress();
    QString startLcf();
    Analyzed2DRes* deglitchTarget() const;

    /// Made when it is first shown: a file dialog takes longer to make than the rest of a window,
    /// and a batch has no use for one.
    void showSaveDialog(QFileDialog** dialog, const QString& title, const QStringList& filters,
                        const QString& suffix, void (Body::*save)(const QString& fname));

    // batch
    void answer(const CmdLine& cmd, const QStringList& problems);
    void answerWaiting(BatchPacing::Work work, const QStringList& problems);
    void note(const QString& problem);

    std::unique_ptr<Ui::Body> m_ui;
    std::unique_ptr<Stack> m_i1;
    std::unique_ptr<Stack> m_i0;
    int m_imageWidth = -1;
    int m_imageHeight = -1;
    int m_frame = 0;
    double m_x = -1.0;
    double m_y = -1.0;

    std::unique_ptr<DarkData> m_dark;
    bool m_darkIsNew = false;
    QAction* m_clearDark = nullptr;
    QString m_darkToolTip;

    std::unique_ptr<AbsorptionSource> m_source;
    std::unique_ptr<BinRowSpectra> m_rows;
    int m_threads = QThread::idealThreadCount();
    bool m_fitsRows = false;
    ShareOfTime m_shownOnTime;
    std::unique_ptr<Analyzed2DRes> m_shiftMap;

    std::unique_ptr<CalibCtrl> m_calib;
    std::unique_ptr<Analyzer> m_analyzer;
    std::unique_ptr<Analysis2D> m_analysis;
    std::unique_ptr<XafsView> m_xafsView;
    std::unique_ptr<SaveDataCfg> m_saveDataCfg;
    std::unique_ptr<BatchCtrl> m_batchCtrl;

    QThread m_readerI1Thread;
    QThread m_readerI0Thread;
    QThread m_batchThread;
    std::unique_ptr<LoadTiff> m_readerI1;
    std::unique_ptr<LoadTiff> m_readerI0;
    std::unique_ptr<BatchDispatcher> m_dispatcher;

    std::unique_ptr<CommandHandlers> m_handlers;
    BatchPacing m_pacing;
    QStringList m_problems;  // of the line being carried out
    bool m_executing = false;

    QButtonGroup* m_showGroup = nullptr;
    CrossSection* m_hCross = nullptr;
    CrossSection* m_vCross = nullptr;
    QLabel* m_state = nullptr;  // of the status bar; notices cover it for a while
    QImage m_painted;           // when it is not the frame's or the result's own picture
    qint64 m_paintedOf = 0;     // key of the result's picture
    QProgressBar* m_progressBar = nullptr;
    QToolButton* m_stopLoading = nullptr;
    QTimer m_redisplayTimer;
    QElapsedTimer m_redisplayed;
    bool m_takingIn = false;  // a frame that has arrived
    QFileDialog* m_darkDialog = nullptr;
    QFileDialog* m_imageDialog = nullptr;
    QFileDialog* m_barImageDialog = nullptr;
    QFileDialog* m_allImagesDialog = nullptr;
    QFileDialog* m_spectraDialog = nullptr;
    QFileDialog* m_dataDialog = nullptr;
};
