#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QSet>
#include <QSlider>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "BatchRun.h"
#include "Controls.h"
#include "Files.h"
#include "Phantom.h"
#include "TestMain.h"
#include "batch/CommandTables.h"
#include "display/ColorBar.h"
#include "display/ImageView.h"
#include "display/XafsView.h"
#include "frames/TiffData.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/CalibCtrl.h"
#include "panels/LCFReference.h"
#include "panels/SaveDataCfg.h"
#include "spectra/SpectrumFile.h"
#include "spectra/XafsSpectrum.h"

namespace {

constexpr int Size = 8;  // square, since maps load on square images alone

}  // namespace

/// Each command does what its row says, is logged and is answered once.
class TestCommands : public QObject {
    Q_OBJECT

    struct Case {
        QString line;
        QStringList before;            // brings about a state in which done() is false
        std::function<bool()> done;    // what windows and files show of it afterwards
        std::function<bool()> undone;  // where it takes more than !done() to begin with
    };

    QTemporaryDir m_dir;
    std::unique_ptr<Phantom> m_phantom;
    std::unique_ptr<Body> m_body;
    std::unique_ptr<BatchRun> m_batch;
    std::vector<Case> m_cases;
    bool m_madeErrors = false;  // a batch has set them; its end gives the user's choice back

    QString file(const QString& name) const { return m_dir.filePath(name); }

    Analyzer* analyzer() const { return topLevel<Analyzer>(); }
    CalibCtrl* calib() const { return topLevel<CalibCtrl>(); }
    SaveDataCfg* saveCfg() const { return topLevel<SaveDataCfg>(); }
    XafsView* plot() const { return control<XafsView>("Spectrum", m_body.get()); }
    ImageView* view() const { return control<ImageView>("dispA", m_body.get()); }

    QString text(QWidget* window, const char* field) const {
        return control<QLineEdit>(field, window)->text();
    }
    bool checked(QWidget* window, const char* button) const {
        return control<QAbstractButton>(button, window)->isChecked();
    }
    int choice(QWidget* window, const char* box) const {
        return control<QComboBox>(box, window)->currentIndex();
    }
    QString state() const { return textOf("State", m_body.get()); }
    int frames(const char* panel) const {
        return textOf("Count", control<QWidget>(panel, m_body.get())).toInt();
    }
    LCFReference* reference(int i) const { return analyzer()->references().at(i); }
    double fraction(int x, int y) const {
        return reference(0)->result(LCFReference::Ratio)->valueAt(x, y);
    }

    void add(const QString& line, const QStringList& before, const std::function<bool()>& done,
             const std::function<bool()>& undone = {}) {
        m_cases.push_back({line, before, done, undone});
    }
    void add(const QString& line, const std::function<bool()>& done) { add(line, {}, done); }

    /// A number in a field: the row's own text form is what the field must show.
    void addField(const QString& command, const std::function<QString()>& shown,
                  const QStringList& before = {}) {
        add(
            command + " 0.123456789", before + QStringList{command + " 5"},
            [shown] { return shown() == "0.123457"; }, [shown] { return shown() == "5"; });
    }
    void addFlag(const QString& command, const std::function<bool()>& on) {
        add(command + " 2", {command + " 0"}, on);
    }

    void addStackCases();
    void addDarkCases();
    void addViewCases();
    void addPictureCases();
    void addAnalyzerCases();
    void addMapCases();
    void addColourCases();
    void addCalibrationCases();
    void addSaveDataCases();

  private slots:
    void initTestCase() {
        Phantom::Options options;
        options.width = options.height = Size;
        options.energies = 151;
        options.i0Energies = 4;
        options.fractionOfA = [](int x, int y) { return 0.05 * x + 0.07 * y; };
        // One bin is far off, for the smoothing of the map.
        options.energyShift = [](int x, int y) { return x == 4 && y == 7 ? 60.0 : 0.5 * x; };
        m_phantom = std::make_unique<Phantom>(options);
        QVERIFY(m_dir.isValid());
        QVERIFY(QDir::setCurrent(m_dir.path()));  // some commands name no folder
        m_body = std::make_unique<Body>();
        m_batch = std::make_unique<BatchRun>(*m_body);
        addStackCases();
        addDarkCases();
        addViewCases();
        addPictureCases();
        addAnalyzerCases();
        addMapCases();
        addColourCases();
        addCalibrationCases();
        addSaveDataCases();
        QSet<int> ids;
        for (const Case& c : m_cases) {
            ids << commandId(CmdLine::parse(c.line).command);
        }
        QCOMPARE(ids.size(), int(commandTable().size()));
        QVERIFY(!ids.contains(NoCommand));
    }

    void cleanupTestCase() {
        m_body.reset();
        QDir::setCurrent(QDir::tempPath());
    }

    void command_data() {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < m_cases.size(); ++i) {
            QTest::addRow("%d %s", int(i), qPrintable(CmdLine::parse(m_cases[i].line).command))
                << int(i);
        }
    }

    void command() {
        QFETCH(int, index);
        const Case& c = m_cases[std::size_t(index)];
        QVERIFY(m_batch->run(c.before));
        QVERIFY2(m_batch->problems().isEmpty(), qPrintable(m_batch->problems().join('\n')));
        QVERIFY(c.undone ? c.undone() : !c.done());

        QString log;
        QSignalSpy answers(m_body.get(), &Body::finishBatchExec);
        const auto logging = connect(m_body->batchCtrl(), &BatchCtrl::logged, this,
                                     [&log](const QString& entry) { log += entry; });
        QVERIFY(m_batch->run({c.line}));
        disconnect(logging);
        QVERIFY2(m_batch->problems().isEmpty(), qPrintable(m_batch->problems().join('\n')));
        QVERIFY(c.done());
        QCOMPARE(answers.count(), 1);
        const CmdLine cmd = CmdLine::parse(c.line);
        QCOMPARE(log.remove(QRegularExpression("note: .*\n")),
                 cmd.command + " : " + cmd.args.join(' ') + '\n');
    }

    /// What does no work without being a file that fails is told of all the same, and does no harm.
    void linesThatDoNoWork_data() {
        columns<QStringList, QString>("lines", "problem");
        using L = QStringList;
        const QString oneFrame = "load_I1_files NEW " + m_phantom->file("i1-7000_000eV.tif");
        const QString from = "_files_of_pattern NEW " + m_phantom->dir();
        const L load{"load_I1" + from + " i1-700*.tif", "load_I0" + from + " i0-*.tif",
                     "set_band_w 0", "set_band_h 0"};
        QTest::newRow("no frames to calibrate") << L{"calib_exec"} << "no images are loaded";
        QTest::newRow("no frames to analyse") << L{"analyzer_exec_ra"} << "no images are loaded";
        QTest::newRow("a region beside the image")
            << L{oneFrame, "select_region 8 0 9 9"} << "no part of the region lies inside";
        const QString unused = " 0 0 " + m_phantom->file("a.dat");
        QTest::newRow("no reference in use")
            << load + L{"analyzer_set_LCF_std 0" + unused, "analyzer_set_LCF_std 1" + unused,
                        "analyzer_exec_LCF"}
            << "no reference is in use";
        QTest::newRow("no map, no frames")
            << L{"calib_save_map " + file("none.emp")} << "no images are loaded";
        QTest::newRow("no result")
            << L{"save_data_as_tiff " + file("none.tif")} << "no result image is selected";
    }

    void linesThatDoNoWork() {
        QFETCH(QStringList, lines);
        QFETCH(QString, problem);
        Body body;
        BatchRun batch(body);
        QVERIFY(batch.run(lines));
        QCOMPARE(batch.done(), lines.size());
        QCOMPARE(batch.problems().size(), 1);
        QVERIFY2(batch.problems().first().startsWith(lines.last()) &&
                     batch.problems().first().contains(problem),
                 qPrintable(batch.problems().first()));
    }

    /// A map may come before the images that it belongs to, and a region, too.
    void aMapAndARegionMayComeFirst() {
        QVERIFY(m_batch->run({"calib_save_map " + file("first.emp")}));
        Body body;
        BatchRun batch(body);
        auto* dispA = control<ImageView>("dispA", &body);
        QVERIFY(batch.run({"select_region 2 2 4 4", "calib_load_map " + file("first.emp"),
                           "select_disp_image 2", "save_image " + file("first.png")}));
        QCOMPARE(batch.problems(), QStringList());
        QCOMPARE(body.measurement().imageSize().width(), Size);
        QCOMPARE(dispA->visibleRect(), QRectF(0, 0, Size, Size));
        QVERIFY(batch.run({"load_I1_files NEW " + m_phantom->file("i1-7000_000eV.tif")}));
        QCOMPARE(dispA->selection(), QRectF(2, 2, 2, 2));
    }
};

void TestCommands::addStackCases() {
    const QString i1 = m_phantom->file("i1-7000_000eV.tif");
    const QString i0 = m_phantom->file("i0-7000_000eV.tif");
    const auto i1Frames = [this] { return frames("SelectI1Files"); };
    const auto i0Frames = [this] { return frames("SelectI0Files"); };
    add("LOAD_i1_Files new " + i1 + ' ' + m_phantom->file("i1-7002_000eV.tif"),
        {"load_I1_files NEW " + i1},
        [=] { return i1Frames() == 2 && m_body->measurement().imageSize().width() == Size; });
    add("load_I1_files ADD " + m_phantom->file("i1-7004_000eV.tif"),
        [=] { return i1Frames() == 3; });
    add("clear_I1_files",
        [=] { return i1Frames() == 0 && m_body->measurement().imageSize().width() == -1; });
    add("load_I0_files NEW " + i0, [=] { return i0Frames() == 1; });
    add("clear_I0_files", [=] { return i0Frames() == 0; });
    auto* i1Panel = control<QWidget>("SelectI1Files", m_body.get());
    QDir(m_dir.path()).mkdir("new");
    for (const char* const name : {"new/7001eV.tif", "new/7002eV.tif", "8keV.tif"}) {
        QFile::copy(i0, file(name));
        QFile copy(file(name));  // not one that is still being written
        QVERIFY(copy.open(QIODevice::ReadWrite) &&
                copy.setFileTime(QDateTime::currentDateTime().addSecs(-60),
                                 QFileDevice::FileModificationTime));
    }
    add("set_energy_pattern i1 \\d+(?=keV) kev", [=] {
        return text(i1Panel, "EngPattern") == "\\d+(?=keV)" && choice(i1Panel, "SelectUnit") == 1;
    });
    add("load_I1_files NEW 8keV.tif", [=] { return state().contains("8000.00 eV"); });
    add("set_energy_pattern I1 [\\d_]+eV eV", [=] {
        return text(i1Panel, "EngPattern") == "[\\d_]+eV" && choice(i1Panel, "SelectUnit") == 0;
    });
    add("load_new I0", {"load_I0_files NEW new/7001eV.tif"}, [=] { return i0Frames() == 2; });
    QVERIFY(QDir(m_dir.path()).mkpath("run/i1") && QDir(m_dir.path()).mkpath("run/I0"));
    for (const char* const name : {"run/i1/7001eV.tif", "run/i1/7002eV.tif", "run/I0/7001eV.tif"}) {
        QVERIFY(QFile::copy(i0, file(name)));
    }
    add("open_folder run", [=] { return i1Frames() == 2 && i0Frames() == 1; });
    add("load_I1_files_of_pattern NEW " + m_phantom->dir() +
            " i1-70*.tif i1-71*.tif "
            "i1-72*.tif i1-73*.tif",
        [=] { return i1Frames() == 151; });
    add("load_I0_files_of_pattern NEW " + m_phantom->dir() + " i0-*.tif",
        {"load_I0_files NEW " + i0}, [=] { return i0Frames() == 4; });
}

void TestCommands::addDarkCases() {
    const QStringList files = m_phantom->writeDarkFrames(Size, Size, [](int, int) { return 100; });
    const auto stateHas = [this](const char* what) {
        return [=] { return state().contains(what); };
    };
    add("load_dark_files " + files.at(0), stateHas("1 dark frame"));
    add("load_dark_files_of_pattern " + m_phantom->dir() + " dark*.tif", stateHas("3 dark frame"));
    add("clear_dark", [this] { return !state().contains("dark"); });
}

void TestCommands::addViewCases() {
    const auto field = [this](const char* name) { return text(m_body.get(), name); };
    add("set_band_w 1", {"set_band_w 0"}, [=] { return field("HWidth") == "1"; });
    add("set_band_h 2", {"set_band_h 0"}, [=] { return field("VWidth") == "2"; });
    add("set_band_w 0", {"set_band_h 0"},  // what follows works on single pixels
        [=] { return field("HWidth") == "0"; });
    const char* const buttons[] = {"ShowData", "ShowI0", "ShowShiftMap", "ShowResAnalysis"};
    for (const int n : {3, 2, 1, 0}) {
        const char* button = buttons[n];
        add(QString("select_disp_image %1").arg(n), [=] { return checked(m_body.get(), button); });
    }
    add(
        "select_region 6 5 2 1", {"select_region 0 0 0 0"},
        [=] { return view()->selection() == QRectF(2, 1, 4, 4); },
        [=] { return !view()->hasSelection(); });
    const auto selected = [=](const Area& area) { return view()->selectedArea() == area; };
    add("select_ellipse 6 5 -2 1", {"select_region 1 1 2 2"},
        [=] { return selected(Area::ellipse(-2, 1, 6, 5)); });
    add("save_area_spectrum area.dat", [this] {
        XafsSpectrum read;
        return readSpectrumFile(file("area.dat"), &read) && read.size() == 151;
    });
    add("select_polygon 1 1 6 1 1 6", {}, [=] {
        return selected(Area::polygon({{1, 1}, {6, 1}, {1, 6}}));
    });
    add("select_region 0 0 0 0", [=] { return !view()->hasSelection(); });
    add("move_position 3 4", {"move_position 1 1"}, [=] {
        return textOf("Position", m_body.get()) == "(   3,    4)" &&
               view()->realPosition() == QPointF(3, 4);
    });
    add("save_spectra " + file("spectrum.dat"), [=] {
        const auto rows = rowsOf(file("spectrum.dat"));
        return rows.size() == 151 && rows.first().startsWith("7000\t");
    });
    add("save_image " + file("frame.png"),
        [=] { return QImage(file("frame.png")).size() == QSize(Size, Size); });
}

void TestCommands::addPictureCases() {
    const auto* bar = control<ColorBar>("CBar", m_body.get());
    add("show_frame 3", {"show_frame 0"}, [this] {
        return state().contains("frame 4 of 151") &&
               control<QSlider>("SeekBar", m_body.get())->value() == 3;
    });
    add(
        "set_frame_view absorption", {"set_frame_view counts"},
        [=] { return view()->caption() == "mu-t  7006.00 eV" && bar->rangeMax() < 5; },
        [=] { return view()->caption() == "7006.00 eV" && bar->rangeMax() > 100; });
    add("set_frame_view difference 7001.5", [=] {
        return view()->caption() == "mu-t  7006.00 eV \u2212 7001.50 eV" &&
               checked(m_body.get(), "ViewDifference");
    });
    add(
        "set_view_range -1 1", {"set_view_range"}, [=] { return bar->rangeMin() == -1; },
        [=] { return bar->isAuto(); });
    add("set_frame_view counts", [=] { return bar->isAuto() && bar->rangeMax() > 100; });
    add("set_view_range 65534 65535", {"set_view_range"},
        [=] { return !bar->isAuto() && bar->rangeMin() == 65534 && bar->rangeMax() == 65535; });
    add("save_image black.png", [this] {
        const QImage picture(file("black.png"));
        return !picture.isNull() && picture.pixelColor(0, 0) == Qt::black;
    });
    add("set_percentiles", [=] { return !bar->isAuto() && bar->rangeMax() < 65535; });
    add("set_view_range", [=] { return bar->isAuto(); });
    add("save_image_with_bar bar.png", [this] {
        const QImage picture(file("bar.png"));
        return picture.width() > 100 && picture.width() > picture.height();
    });
    add("set_plot_axes 1 DEG",
        [this] { return choice(plot(), "Ordinate") == 1 && choice(plot(), "Abscissa") == 3; });
    add("save_plot plot.png", [this] { return QImage(file("plot.png")).width() == 2160; });
    addFlag("set_spectra_corrected", [this] { return checked(plot(), "Corrected"); });
    add("save_flat_dark", [this] {
        TiffData flat;
        TiffData dark;
        return flat.load(file("flat.dat")) && dark.load(file("dark.dat")) &&
               int(flat.width) == Size && flat.rows[Size - 1][0] == 1 && dark.rows[0][0] == 0;
    });
}

void TestCommands::addAnalyzerCases() {
    const auto inAnalyzer = [this](const char* name) { return text(analyzer(), name); };
    add("analyzer_show_window", [=] { return analyzer()->isOpen(); });
    add("analyzer_add_ref",
        [=] { return analyzer()->references().size() == 1 && !reference(0)->hasSpectrum(); });
    add("analyzer_set_LCF_std 0 1 0 " + m_phantom->file("a.dat") + " 0",
        [=] { return reference(0)->hasSpectrum() && analyzer()->references().size() == 1; });
    const QStringList useBoth{"analyzer_set_LCF_std 0 1 0 " + m_phantom->file("a.dat") + " 0",
                              "analyzer_set_LCF_std 1 1 0 " + m_phantom->file("b.dat") + " 0"};
    add("fit_spectrum " + m_phantom->file("a.dat") + " fit.dat fit.png", useBoth, [this] {
        return contentOf(file("fit.dat")).contains("# reference 0 share = 1\n") &&
               QImage(file("fit.png")).width() == 2160;
    });
    add("analyzer_set_LCF_std 1 0 0.123456789 " + m_phantom->file("b.dat"), [=] {
        return analyzer()->references().size() == 2 && !reference(1)->isUsed() &&
               reference(1)->hasSpectrum() &&
               reference(1)->fileName() == m_phantom->file("b.dat") &&
               reference(1)->spectrum().shift() == 0.123456789 &&
               text(reference(1), "DeltaE") == "0.123457" && checked(reference(1), "IsVictreen");
    });
    add("analyzer_set_LCF_std 1 1 0 " + m_phantom->file("b.dat") + " none", [=] {
        return reference(1)->isUsed() && !checked(reference(1), "IsVictreen") &&
               text(reference(1), "DeltaE") == "0";
    });
    add("analyzer_set_LCF_mode 1", [=] { return checked(analyzer(), "MLCF"); });
    add("analyzer_set_LCF_mode 2", [=] { return !checked(analyzer(), "MLCF"); });
    addFlag("analyzer_set_disp_on_time", [=] { return checked(analyzer(), "DispOnTime"); });
    add("analyzer_set_reference_scale None", [=] { return checked(analyzer(), "Unscaled"); });
    add("analyzer_set_reference_scale jump", [=] { return !checked(analyzer(), "Unscaled"); });
    add("analyzer_exec_LCF", [=] {
        // The map of shifts is empty yet; only the first column has none.
        return !analyzer()->isBusy() && std::abs(fraction(0, 6) - 0.42) < 1e-3 &&
               textOf("Progress", analyzer()) == "100.00";
    });
    add("analyzer_select_image 1", {"analyzer_select_image 0"}, [=] {
        return analyzer()->selectedResult() == reference(1)->result(analyzer()->imageType());
    });
    add(
        "analyzer_select_image_type 1", {"analyzer_select_image_type 0"},
        [=] { return checked(analyzer(), "SelRatio"); },
        [=] { return checked(analyzer(), "SelDMut"); });
    add(
        "analyzer_select_image_type 0", {"analyzer_select_image_type 1"},
        [=] { return checked(analyzer(), "SelDMut"); },
        [=] { return checked(analyzer(), "SelRatio"); });
    const auto shows = [=](const char* name) { return [=] { return inAnalyzer(name); }; };
    addField("analyzer_set_ra_energy", shows("RAAtEV"));
    addField("analyzer_set_ra_factor", shows("RAFactor"));
    addField("analyzer_set_scale_max", shows("DMutScaleMax"), {"analyzer_select_image_type 0"});
    addField("analyzer_set_scale_min", shows("DMutScaleMin"));
    addField("analyzer_set_scale_max", shows("RatioScaleMax"), {"analyzer_select_image_type 1"});
    addField("analyzer_set_scale_min", shows("RatioScaleMin"));
    addField("analyzer_set_dMut_scale_max", shows("DMutScaleMax"));
    addField("analyzer_set_dMut_scale_min", shows("DMutScaleMin"));
    addField("analyzer_set_ratio_scale_max", shows("RatioScaleMax"));
    addField("analyzer_set_ratio_scale_min", shows("RatioScaleMin"));
    addFlag("analyzer_set_fixed_scale", [=] {
        const Analyzed2DRes* result = reference(0)->result(LCFReference::Ratio);
        return checked(analyzer(), "FixedScale") && result->rangeMin() == 0.123457 &&
               result->rangeMax() == 0.123457;
    });
    const auto showsProcessed = [=] {
        return checked(m_body.get(), "ShowProcImg") && analyzer()->selectedResult()->showsProc();
    };
    add("deglitch 3 0.2", {"analyzer_select_image 0", "select_disp_image 3"}, [=] {
        return showsProcessed() && text(m_body.get(), "DeGlitchFactor") == "3" &&
               text(m_body.get(), "DeGlitchRatio") == "0.2";
    });
    add(
        "show_processed 0", {}, [=] { return !showsProcessed(); }, showsProcessed);
    add("show_processed 1", {}, showsProcessed);
    add("save_results results.h5",
        [this] { return contentOf(file("results.h5")).startsWith("\x89HDF"); });
    add("save_table table.csv", [=] {
        const QList<QByteArray> rows = rowsOf(file("table.csv"));
        const QList<QByteArray> last = rows.isEmpty() ? rows : rows.last().split(',');
        return last.size() == 6 && rows.first() == "x,y,fraction_1,jump_1,fraction_2,jump_2" &&
               last[2].toDouble() == reference(0)
                                         ->result(LCFReference::Ratio)
                                         ->shownValueAt(last[0].toInt(), last[1].toInt());
    });
    add("save_statistics area.csv", {"select_ellipse 0 0 4 4"}, [this] {
        const QList<QByteArray> rows = rowsOf(file("area.csv"));
        return !rows.isEmpty() && rows.first() == "map,reference,n,mean,sd,median,min,max" &&
               std::count_if(rows.begin(), rows.end(), [](const QByteArray& row) {
                   return row.startsWith("fraction,1,12,");
               }) == 1;
    });
    add("select_threshold fraction 0.2 0.4 0", {"select_region 0 0 0 0"}, [=] {
        const auto pixels = view()->selectedArea().pixels({Size, Size});
        int wrong = pixels == nullptr ? 1 : 0;
        for (int i = 0; pixels != nullptr && i < Size * Size; ++i) {
            const double value =
                reference(0)->result(LCFReference::Ratio)->shownValueAt(i % Size, i / Size);
            wrong += pixels->contains(i % Size, i / Size) != (value >= 0.2 && value <= 0.4);
        }
        return wrong == 0;
    });
    add("select_region 0 0 0 0", [=] { return !view()->hasSelection(); });
    add("save_all_images " + file("all.png"), [=] {
        return QImage(file("all-0-0.png")).width() == Size &&
               QImage(file("all-1-1.png")).width() == Size;
    });
    add("analyzer_exec_ra", {"analyzer_set_ra_energy 7050", "analyzer_set_ra_factor 0"}, [=] {
        return analyzer()->raRatio()->isValid() &&
               std::abs(analyzer()->raDmut()->valueAt(0, 3) - 0.8) < 1e-3 &&
               std::abs(analyzer()->raRest()->valueAt(0, 3) - 0.29) < 1e-3;
    });
}

void TestCommands::addMapCases() {
    QVERIFY(checked(analyzer(), "ErrorMaps"));  // the user's own choice
    press("ErrorMaps", analyzer());
    connect(&m_body->measurement(), &Measurement::changed, this,
            [this] { m_madeErrors |= m_body->measurement().settings().errorMaps; });
    const auto maps = [this] { return control<QComboBox>("Map", analyzer()); };
    add("analyzer_set_error_maps 2",
        [=] { return std::exchange(m_madeErrors, false) && !checked(analyzer(), "ErrorMaps"); });
    add("analyzer_set_LCF_constraints SUM1",
        [=] { return choice(analyzer(), "Constraints") == 2; });
    add("analyzer_set_LCF_constraints none",
        [=] { return choice(analyzer(), "Constraints") == 0; });
    add("analyzer_exec_difference 7001.5 7251.2512", [=] {
        return maps()->findText("Difference of two energies") >= 0 &&
               text(analyzer(), "DifferenceFrom") == "7001.5" &&
               text(analyzer(), "DifferenceTo") == "7251.2512" &&
               m_body->measurement().find(ResultId::Difference)->image.valueAt(3, 4) > 0.5;
    });
    add("analyzer_select_map difference", {"analyzer_select_image 0"}, [=] {
        return maps()->currentText() == "Difference of two energies" &&
               state().contains("Difference of two energies");
    });
    add("save_all_maps " + file("maps.dat"), {"saveDataCfg_save_as_text"}, [=] {
        return rowsOf(file("maps-difference.dat")).size() == Size * Size &&
               QFile::exists(file("maps-fraction-1.dat"));
    });
    // With error maps, which a press of the mask needs.
    add("set_mask 3",
        {"saveDataCfg_save_as_tiff", "analyzer_set_error_maps 1", "analyzer_exec_LCF"}, [=] {
            return checked(analyzer(), "Mask") && reference(1)->result(0)->isMasked() &&
                   control<QLineEdit>("MaskFactor", analyzer())->text() == "3";
        });
    add("set_mask OFF", [=] { return !checked(analyzer(), "Mask"); });
    add("analyzer_select_map chi2_reduced", [=] {
        return maps()->currentText() == "Reduced chi-square of the fit" &&
               control<ColorBar>("CBar", m_body.get())->rangeMax() ==
                   m_body->measurement().find(ResultId::Chi2Reduced)->image.robustRange().second;
    });
}

/// Ranges and colours of maps, and what is saved of them.
void TestCommands::addColourCases() {
    const auto view = [this](ResultId id) { return m_body->measurement().settings().views[id]; };
    const auto fixed = [](double low, double high) {
        return MapRange{MapRange::Kind::Fixed, low, high};
    };
    add("set_view_range FRACTION -1 2.5", {"analyzer_exec_LCF"}, [=] {
        return view(ResultId::Ratio).range == fixed(-1, 2.5) &&
               view(ResultId::DMut).range.kind == MapRange::Kind::Robust;
    });
    add(
        "set_colour_map fraction vik",
        {"analyzer_select_map fraction 1", "set_view_range fraction -0.25 3"},
        [=] { return control<ColorBar>("CBar", m_body.get())->rangeMin() == -3.0; },
        [=] { return view(ResultId::Ratio).colors.isStated(); });
    add("set_colour_map maps Cividis reversed", [=] {
        return view(ResultId::Shift).colors == ViewColors{colorScaleOf("cividis"), true};
    });
    add("save_composite " + file("both.png") + " 1 none 0", {"set_colour_map maps stated"}, [=] {
        const QImage picture(file("both.png"));
        return picture.width() > 10 * Size;
    });
}

void TestCommands::addCalibrationCases() {
    add("calib_show_window", [=] { return calib()->isOpen(); });
    add("calib_load_std " + m_phantom->file("a.dat"), [=] {
        return calib()->standard() != nullptr &&
               calib()->standardFileName() == m_phantom->file("a.dat") &&
               calib()->edgeEnergy() > 7100.0;
    });
    add("calib_set_edge_eV 7112.537", [=] { return text(calib(), "EdgeEeV") == "7112.537"; });
    const auto shift = [this](int x, int y) {
        m_body->showXafsSpectrum(x, y);
        return textOf("EShiftOnTbl", m_body.get()).toDouble();
    };
    // Two points of the same fraction, and so of the same shape of edge, seven columns of the
    // drift apart. Straight lines between energies 2 eV apart put an edge off by up to 0.14 eV.
    const auto drift = [shift] { return shift(7, 0) - shift(0, 5); };
    const auto mapIsThere = [drift] { return std::abs(drift() - 3.5) < 0.3; };
    const auto mapIsGone = [shift] { return shift(7, 0) == 0.0 && shift(0, 5) == 0.0; };
    const auto inCalib = [this](const char* name) {
        return [=] { return checked(calib(), name); };
    };
    for (const bool isStd : {true, false}) {
        const QString command = QString("calib_set_%1_background ").arg(isStd ? "std" : "target");
        add(command + "VICTREEN", inCalib(isStd ? "StdBGVictreen" : "TargetBGVictreen"));
        add(command + "Simple", inCalib(isStd ? "StdBGSimple" : "TargetBGSimple"));
    }
    add("set_E0 MEAN", [this] { return control<QComboBox>("E0Choice")->currentIndex() == 1; });
    add("set_E0 7110.5", {"set_E0 each"}, [this] {
        return control<QComboBox>("E0Choice")->currentIndex() == 2 &&
               text(calib(), "E0Energy") == "7110.5";
    });
    add("set_E0 each", [this] { return control<QComboBox>("E0Choice")->currentIndex() == 0; });
    const auto hasRanges = [this](const QStringList& ranges) {
        return QStringList{text(calib(), "PreStart"), text(calib(), "PreEnd"),
                           text(calib(), "PostStart"), text(calib(), "PostEnd")} == ranges;
    };
    add("set_background_ranges -90.25 -12 20 150", [=] {
        return hasRanges({"-90.25", "-12", "20", "150"});
    });
    add("set_background_ranges -100 -10 10 1000", [=] {
        return hasRanges({"-100", "-10", "10", "1000"});
    });
    add("calib_set_crystal si(311)", [this] {
        return choice(calib(), "SelCrystal") == 1 && plot()->plot().spacing == 1.637478;
    });
    add("calib_exec", {}, mapIsThere, mapIsGone);
    add(
        "calib_smooth_map", {}, [=] { return std::abs(shift(4, 7)) < 10; },
        [=] { return shift(4, 7) > 40; });
    add("calib_save_map " + file("map.any"), [=] {
        const auto lines = contentOf(file("map.any")).split('\n');
        // 14 labels, a line a row of the map, the mark, the data
        return lines.size() == 14 + Size + 1 + Size + 1 && lines.first() == "###Tarnwick::TWEM" &&
               lines.at(12) == ("Std File Name           : " + m_phantom->file("a.dat")).toUtf8() &&
               lines.at(14) == "Shift Map Width         : 0 8" &&
               lines.at(14 + Size) == "##-----------------" && lines.last().isEmpty();
    });
    add("calib_clear_map", {}, mapIsGone, mapIsThere);
    add("calib_load_map " + file("map.any"), {}, mapIsThere, mapIsGone);
}

void TestCommands::addSaveDataCases() {
    const auto inCfg = [this](const char* name) {
        return [=] { return checked(saveCfg(), name); };
    };
    add("saveDataCfg_show_window", [=] { return saveCfg()->isVisible(); });
    add("saveDataCfg_save_as_text", {}, inCfg("SaveAsText"), inCfg("SaveAsTiff"));
    add("saveDataCfg_text_as_ssv", {"saveDataCfg_text_as_csv"}, inCfg("SSV"));
    add("saveDataCfg_text_as_csv", inCfg("CSV"));
    add("saveDataCfg_text_as_vals", {"saveDataCfg_text_as_xyz"}, inCfg("Vals"));
    add("saveDataCfg_text_as_xyz", inCfg("XYZ"));
    addFlag("saveDataCfg_tiff_as_analyzed", inCfg("AsAnalyzed"));
    addFlag("saveDataCfg_masked", inCfg("Masked"));
    add("saveDataCfg_masked 0", [=] { return !checked(saveCfg(), "Masked"); });

    // The forms of the one command that saves a result.
    const auto form = [this](const char* name, const QStringList& settings,
                             const std::function<bool(QString)>& isRight) {
        const QString saved = file(name);
        add("save_data_as_tiff " + saved, settings,
            [=] { return QFile::exists(saved) && isRight(saved); });
    };
    form("xyz.dat",
         {"select_region 2 1 8 5", "analyzer_exec_LCF", "analyzer_select_image 0",
          "saveDataCfg_tiff_as_analyzed 1"},
         [](const QString& name) {
             const auto rows = rowsOf(name);
             return rows.size() == 6 * 4 && rows.first().startsWith("2,1,") &&
                    rows.last().startsWith("7,4,");
         });
    add("save_record done.bat", {"calib_smooth_map", "calib_smooth_map", "analyzer_exec_LCF"},
        [this] {
            const QByteArray record = contentOf(file("done.bat"));
            return record.startsWith(":rem_start\nTarnwick record 1\n") &&
                   record.contains("\ncalib_smooth_map\ncalib_smooth_map\n") &&
                   record.contains("\nselect_region 2 1 8 5\n") &&
                   record.contains("\nanalyzer_exec_LCF\n");
        });
    form("vals.csv", {"saveDataCfg_text_as_vals", "saveDataCfg_text_as_csv"},
         [](const QString& name) {
             const auto rows = rowsOf(name);
             return rows.size() == 4 && rows.first().split(',').size() == 6;
         });
    form("vals.dat", {"saveDataCfg_text_as_ssv", "saveDataCfg_tiff_as_analyzed 0"},
         [](const QString& name) {
             const auto rows = rowsOf(name);
             return rows.size() == Size && rows.first().split(' ').size() == Size &&
                    rows.first().startsWith("0 0 ");
         });
    add("saveDataCfg_save_as_float", {}, inCfg("SaveAsFloat"), inCfg("SaveAsText"));
    addField("saveDataCfg_tiff_scale_min", [this] { return text(saveCfg(), "TiffScaleMin"); });
    addField("saveDataCfg_tiff_scale_max", [this] { return text(saveCfg(), "TiffScaleMax"); });
    addFlag("saveDataCfg_tiff_fix_scale", inCfg("TiffFixScale"));
    add("saveDataCfg_save_as_tiff", inCfg("SaveAsTiff"));
    form("fixed.tif",
         {"saveDataCfg_tiff_fix_scale 1", "saveDataCfg_tiff_scale_min 0",
          "saveDataCfg_tiff_scale_max 1", "analyzer_select_image_type 1"},
         [this](const QString& name) {
             TiffData saved;
             return saved.load(name) && int(saved.width) == Size &&
                    std::abs(saved.rows[2][3] - std::trunc(fraction(3, 2) * 65535)) < 1.0;
         });
    form("area.tif", {"saveDataCfg_tiff_as_analyzed 1"}, [this](const QString& name) {
        TiffData saved;
        return saved.load(name) && int(saved.width) == 6 && int(saved.height) == 4 &&
               std::abs(saved.rows[1][1] - std::trunc(fraction(3, 2) * 65535)) < 1.0;
    });
}

TARNWICK_TEST_MAIN(QApplication, TestCommands)
#include "tst_commands.moc"
