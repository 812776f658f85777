#pragma once

#include <functional>
#include <map>
#include <set>

#include "base/Memory.h"
#include "base/ShareOfTime.h"
#include "frames/DarkData.h"
#include "measurement/AreaAnalysis.h"
#include "measurement/FrameImages.h"
#include "measurement/FrameMemory.h"
#include "measurement/MapJob.h"
#include "measurement/Outcome.h"
#include "measurement/RecordLines.h"
#include "measurement/Reference.h"
#include "measurement/Rehearsal.h"
#include "measurement/RowJob.h"
#include "measurement/RunParts.h"
#include "measurement/SaturatedPixels.h"

/// A measurement: its stacks, dark frames, standard, energy-shift map, references, results and all
/// settings. It loads, calibrates, fits and deglitches on all cores, stoppable, and knows what each
/// result was made from; Display.h and Saving.h show and save it. Windows are views of it and send
/// it actions, as a batch does. It lives on one thread; its work runs on others.
class Measurement : public QObject {
    Q_OBJECT

  public:
    enum Change {
        Frames = 1,       ///< of a stack, or the size of the images
        Dark = 2,         ///< dark frames
        Standard = 4,     ///< its file or background
        Map = 8,          ///< the energy shifts in force
        References = 16,  ///< their number, files, offsets, backgrounds or use
        Results = 32,     ///< values or pictures of results
        Setting = 64,
        Display = 128,   ///< what is on display
        Position = 256,  ///< of the spectrum
        AtWork = 512     ///< work has begun or ended
    };
    Q_DECLARE_FLAGS(Changes, Change)
    enum class Window { Analyzer, Calibration, SaveForm };

    Measurement();
    ~Measurement() override;

    /// From now on nothing is analysed and nothing is written: what is asked for is only judged, as
    /// far as headers, names and settings tell. To be called before anything is loaded.
    void rehearse();
    /// From now on frames are loaded by their headers alone, so that stacks of any size can be:
    /// what works on counts reads them. To be called before anything is loaded.
    void readCountsWhenNeeded();
    Rehearsal* rehearsal() const { return m_rehearsal.get(); }  ///< null: in earnest
    /// How analyses are kept in a work folder and shared; to be set before they begin.
    RunParts& parts() { return m_parts; }
    const RunParts& parts() const { return m_parts; }

    // Settings
    const Settings& settings() const { return m_settings; }
    template <class T, class V>
    void set(T Settings::*setting, const V& value) {
        if (!(m_settings.*setting == value)) {
            const Settings before = m_settings;
            m_settings.*setting = value;
            settingChanged(before);
        }
    }
    void setNames(StackId id, const NamePattern& names);
    void setThreads(int threads) { m_threads = threads; }  ///< of passes over an area
    int threads() const { return m_threads > 1 ? m_threads : 1; }
    double spacing() const;     ///< of the crystal, in angstrom
    double edgeEnergy() const;  ///< as typed, in eV; 0.0 for no number
    QRectF area() const;        ///< the selected area, else the whole image, in pixels
    AnalysisGrid grid() const;  ///< of a run that begins now
    QRectF selection() const { return m_settings.area.within(m_size.width(), m_size.height()); }

    // Frames
    Stack& stack(StackId id) { return id == StackId::I1 ? m_i1 : m_i0; }
    const Stack& stack(StackId id) const { return id == StackId::I1 ? m_i1 : m_i0; }
    /// The files of a folder that match one of the patterns, see listImageFiles().
    QStringList list(const QString& folder, const QStringList& patterns) const;
    /// Replaces the frames, or adds to them, by files that are read in the background. Those that
    /// do not fit into memory fail, as ended() tells, and leave the frames as they are.
    void load(StackId id, const QStringList& files, bool replace);
    void clear(StackId id);
    Outcome loadNew(StackId id);  ///< what has come beside the last file loaded, see NewFrames.h
    void stopLoading();
    /// Failed: no pixel of the image lies in such an area, or of no image while there is none.
    /// Warns where it reaches over the edge.
    Outcome judge(const Area& area) const;
    QSize imageSize() const { return m_size; }  ///< of the first I1 frame; -1 x -1 without
    DarkData& dark() { return m_dark; }
    const DarkData& dark() const { return m_dark; }
    void loadDark(const QStringList& files);
    /// Several loads at once, each in the place of what there is; where there are I1 files, none of
    /// the others empty theirs. How all went is told once, by ended(Work::LoadFolder).
    /// @param begun what there is to say before them
    void loadTogether(const QStringList& i1, const QStringList& i0, const QStringList& dark,
                      const Outcome& begun);
    /// What is wrong with the frames for as long as they are loaded; empty: nothing.
    QStringList lastingWarnings() const;

    // Standard, energy shifts, references
    /// Null before the first file; without points after one that was not taken.
    const XafsSpectrum* standard() const { return m_hasStandard ? &m_standard.spectrum : nullptr; }
    QString standardFile() const { return m_standard.file.name; }
    Outcome loadStandard(const QString& fileName);
    void clearStandard();  ///< the edge energy keeps its text
    Result& map() const { return *m_map; }
    /// Where the energy shifts in force come from; null while there are none.
    const std::shared_ptr<const MapInput>& mapInput() const { return m_mapInput; }
    Outcome loadMap(const QString& fileName);
    void clearMap();
    Outcome smoothMap();
    const std::vector<std::unique_ptr<Reference>>& references() const { return m_references; }
    int referenceCount() const { return static_cast<int>(m_references.size()); }
    Outcome addReference();  ///< fails during a run: its images belong to those it began with
    void change(int reference, const std::function<void(Reference&)>& how);

    // Analyses of the area
    /// Starts calibration, fit or residual absorption. Failed: it has not begun; otherwise ended()
    /// follows.
    Outcome start(Work work);
    void stop();
    /// Empties the results of an analysis, but for the energy map in force; not while it runs.
    void forget(Work work);
    Work working() const {
        return m_analysis ? m_analysis->run()->work : m_mapWork ? Work::Deglitch : Work::None;
    }
    bool isAtWork(Work work) const;
    /// Rows of bins of the pass that runs: done, of how many. 0 of 0 without one.
    QPair<int, int> rowsDone() const;
    Inputs inputs() const;  ///< what a run would work on that begins now
    Difference differenceOf(const Result& result) const;
    std::vector<Result*> results() const;  ///< that hold values; the map first
    bool hasUnsavedResults() const;
    void remakePictures();           ///< of all references' results
    void remakeResidual();           ///< the ratio image of RA and all its pictures
    QString whyNotDeglitch() const;  ///< empty: it can
    QString whyNotShowProcessed() const;
    /// In the background for a large map: then ended() follows, as for smoothMap().
    Outcome deglitch(double factor, double ratio);
    Outcome showProcessed(bool on);
    struct ReplacedBins {
        qint64 replaced = 0;
        qint64 of = 0;
    };
    /// By the last deglitching or smoothing.
    const ReplacedBins& replacedBins() const { return m_replacedBins; }
    /// Null for a kind of reference without that reference.
    Result* find(ResultId id, int reference = -1) const;
    Result& residual(int i) const { return *m_results.find(residualId(i)); }
    /// Failed: there is no map of a kind with values.
    Outcome judgeMap(ResultId id, int reference) const;
    /// Shows it.
    Outcome choose(ResultId id, int reference);
    /// Empty: there are no results of a fit without error maps, which no mask can be made of.
    QString whyNotMask() const;
    /// Fails for such results. 0: no mask.
    Outcome setMask(double factor);
    /// What a fitter has found for the current point of the last fit's grid, and the step to the
    /// next; nothing while a pass runs.
    void recordPoint(const std::vector<int>& references, const std::vector<double>& dMuts,
                     const std::vector<double>& ratios);
    void stepPoint();

    // Display and position
    int frame() const { return m_frame[m_settings.shown == Shown::I0 ? 0 : 1]; }
    Stack& shownStack() { return stack(m_settings.shown == Shown::I0 ? StackId::I0 : StackId::I1); }
    int frameOf(StackId id) const { return m_frame[static_cast<int>(id)]; }
    void setFrame(StackId id, int n);  ///< nothing for a frame that there is not
    /// What the frame on display shows: counts unless it is of I1 and the view says otherwise.
    FrameView::Kind frameKind() const;
    /// The range of that which holds for all frames, or says that each has its own.
    ViewRange Settings::*frameRange() const;
    /// What a difference takes off, and from what (eV), with the frame on display.
    QPair<double, double> differenceEnergies() const;
    /// Fails for energies that no difference of the loaded frames can be made of.
    Outcome judge(const FrameView& view);
    enum class Wait { UntilMade, Blink };
    /// What the frame on display shows in place of its counts; null for counts and, with
    /// Wait::Blink, before the first one is made. See FrameImages.
    const FrameImage* frameImage(Wait wait);
    /// What could not be read, which begins with the file's name, with the load that it is of.
    QString ofLoad(const QString& problem) const;
    /// Why the dark frames have no mean, where counts could not be read.
    QString darkProblem() const;
    /// Why frameImage() gave none, with the file's name, where counts could not be read.
    QString frameProblem() const;
    FrameImages& frameImages() { return m_frameImages; }
    Result* selectedResult() const;  ///< null: none, or of RA and not made yet
    void select(int id);             ///< a result, if there is one of that id; tells in any case
    Result* shownResult() const;     ///< the map or the selected result, if on display
    Result* deglitchTarget() const;
    QPointF position() const { return m_position; }
    void setPosition(double x, double y);
    const XafsSpectrum& sample();  ///< at the position, corrected; without points for none
    /// Why there is none, with the file's name, where counts could not be read.
    const QString& sampleProblem() const { return m_sampleProblem; }
    /// How it is normalised: with the E0 of the mean spectrum of the area, where that is chosen and
    /// a run with the same frames, bins, area and map has found it, else with its own.
    Normalisation sampleRule() const;
    bool lacksMeanE0() const;  ///< it is chosen, but not known
    const AbsorptionSource& source();
    /// Of passes over the frames.
    SaturatedPixels& saturated() { return m_saturated; }
    /// The file of the batch that runs: no output may replace it. Empty for none.
    void setBatchFile(const QString& file) { m_batchFile = file; }
    const QString& batchFile() const { return m_batchFile; }
    void setRecorder(const Recorder& recorder) { m_recorder = recorder; }
    RecordLines recordOf(const Result& result, const QString& savedBy) const;
    RecordLines recordOfResults(const QString& savedBy) const;  ///< of all that are current
    void askForWindow(Window window) { emit windowAsked(window); }

  signals:
    void changed(Measurement::Changes what);
    void progressed(Work work, double done, double of);  ///< files of a load, per cent of a pass
    void ended(Work work, const Outcome& outcome);
    void windowAsked(Measurement::Window window);

  private:
    void connectStack(Stack& stack);
    void beginLoad(StackId id, const QStringList& files, bool replace);
    void beginLoadDark(const QStringList& files);
    quint64 countsHeld(Work load) const;
    quint64 countsToCome(Work load) const;
    Outcome judgeMemory(const QVector<FramesToRead>& loads, const std::set<Work>& replaced) const;
    void frameArrived(StackId id);
    void loadEnded(StackId id);
    void tellLoaded(Work work, const Outcome& outcome);
    void settingChanged(const Settings& before);
    void setImageSize(const QSize& size);
    void applyScales();
    void inputsChanged(Changes what);
    Spectrum spectrumAt(int x, int y);
    std::unique_ptr<AreaAnalysis> makeAnalysis(Work work);
    Outcome judgeEdge(Work work);
    void beginMean();
    void beginPass();
    Outcome takeMean();
    double percentDone(double ofPass) const;
    void followSampleRule(const Settings& before, Changes* what);
    ResidualResults residualResults() const;
    Outcome judgeStart(Work work);
    void stopRun(const QString& why);
    void stopCalibration();
    void process(Result* target, const MapJob::Make& make,
                 const std::function<void(const Processed&)>& take);
    void countReplaced(const AnalysisGrid& grid, const MapValues& before, const MapValues& after);
    void mapProcessed(const std::optional<Processed>& made);
    void stopMapWork(const QString& why);
    void endMapWork(const Outcome& outcome);
    void endAsStopped(const std::unique_ptr<AreaAnalysis>& analysis);
    std::vector<Result*> resultsOf(Work work) const;
    void markOfBefore(Work work);
    bool hasFitWithoutErrors() const;
    void applyMask();
    void standIn();
    quint64 bytesToFill() const;
    quint64 bytesToFree() const;
    Outcome judgeRoom();
    Outcome begin(Work work, const Outcome& judged);
    void rowsTaken();
    double percentOfPass() const;
    void notePercent();
    void passEnded(RasterPass::Failure failure);
    KeyedWork keyedWork(bool isMeanSearch, const BinRaster& raster) const;
    KeptRows keptRows(BinRaster* raster);
    KeptRows keptSums(BinRaster* raster, int energies);
    void shareEnded();
    void takeRow(const KeptPass::Row& taken, const BinRaster& raster);

    struct MeanSearch {
        std::shared_ptr<RowSums> sums;
        ShiftAt shiftAt;
    };

    struct MapWork {
        Result* target;
        MapValues values;  // at its start
        std::function<void(const Processed&)> take;
        double percent;
    };

    std::unique_ptr<Rehearsal> m_rehearsal;
    Settings m_settings;
    Stack m_i1{StackId::I1};
    Stack m_i0{StackId::I0};
    DarkData m_dark;
    bool m_countsInMemory = true;  // of frames that are loaded
    quint64 m_darkRevision = 0;
    bool m_darkIsNew = false;
    QSize m_size{-1, -1};
    Outcome m_aboutArea;        // that was selected before the image's size was known
    int m_frame[2] = {-1, -1};  // by StackId
    NormalisedFile m_standard;
    bool m_hasStandard = false;
    std::unique_ptr<Result> m_map;
    std::shared_ptr<const MapInput> m_mapInput;
    std::vector<std::unique_ptr<Reference>> m_references;
    ResultSet m_results;               // of no reference, but for the map
    std::unique_ptr<Result> m_newMap;  // of a calibration that runs
    std::unique_ptr<AbsorptionSource> m_source;
    quint64 m_sourceRevision = 0;
    FrameImages m_frameImages;
    QPointF m_position{-1.0, -1.0};
    std::unique_ptr<XafsSpectrum> m_sample;  // null: to be formed again
    QString m_sampleProblem;
    int m_threads;
    std::unique_ptr<AreaAnalysis> m_analysis;
    std::optional<MeanSearch> m_search;      // while the run looks for the mean spectrum
    std::shared_ptr<const Run> m_foundMean;  // the last that has found one
    RowJob m_job;
    SaturatedPixels m_saturated;  // met by it
    PromisedMemory m_promised;    // to the results of the run under way
    ShareOfTime m_eachRow;
    MapJob m_mapJob;
    std::optional<MapWork> m_mapWork;
    ReplacedBins m_replacedBins;
    AnalysisGrid m_point;  // of the last fit
    bool m_loadsDark = false;
    std::map<Work, std::optional<Outcome>> m_together;  // loads to be told of as one
    std::set<Work> m_overtaken;  // of these, somebody waits for one from before
    Recorder m_recorder;
    QString m_batchFile;
    RunParts m_parts;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(Measurement::Changes)
