#include <sys/stat.h>

#include <limits>

#include "OutcomeCase.h"
#include "TinyStacks.h"
#include "frames/TiffFile.h"

namespace {

/// An energy map file of 3 x 3 pixels at 7112.5 eV, with a part of its text replaced.
Make mapFile(const QByteArray& part = {}, const QByteArray& by = {}) {
    return [part, by] {
        QByteArray text =
            "###Tarnwick::TWEM\n"
            "Std Edge Energy [eV]    : 7112.5\n"
            "Spacing [nm]            : 3.13553\n"
            "Width [pix]             : 3\n"
            "##-----------------\n"
            "0.001 0 0 \n0 0 0 \n0 0 0.002 \n";
        put("good.emp", text);
        put("map.emp", part.isEmpty() ? text : text.replace(part, by));
    };
}

/// Stacks t1 and t0 of 4 x 4 pixels, and a standard, with the edge at 7110 eV; the first columns
/// have none.
Make squareImages(int withoutEdge) {
    return [withoutEdge] {
        std::vector<double> energies;
        QByteArray standard;
        for (int i = 0; i < 21; ++i) {
            energies.push_back(7010.0 + 10.0 * i);
            standard += QByteArray::number(energies.back()) + (i > 10 ? " 1\n" : " 0\n");
        }
        put("step.dat", standard);
        writeTinyStack(".", "t1", 4, 4, energies, [=](int frame, int x, int) {
            return quint16(frame > 10 && x >= withoutEdge ? 20000 : 40000);
        });
        writeTinyStack(".", "t0", 4, 4, energies, [](int, int, int) { return quint16(50000); });
    };
}

/// A TIFF file of 12 x 8 floats, one of them as given, with the text of an origin.
Make mapImage(float value, const QString& origin = QString(), QSize size = {12, 8}) {
    return [=] {
        const auto fill = [value](quint64 first, std::size_t count, float* to) {
            for (quint64 i = first; i < first + count; ++i) {
                *to++ = i == 17 ? value : 0.5f;
            }
        };
        QVERIFY(writeFloatTiff("map.emp", size, fill, origin));  // the content decides
    };
}

const QString loadSquare =
    "load_I1_files_of_pattern NEW . t1-*.tif\nload_I0_files_of_pattern NEW . t0-*.tif\n"
    "set_band_w 0\nset_band_h 0\ncalib_load_std step.dat\n";

}  // namespace

/// Energy maps, deglitching, runs that fail or whose inputs have changed, and what is saved then.
class TestMapsJudged : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

  private slots:
    void calibration_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        add("every bin has an edge", squareImages(0), loadSquare + "calib_exec", "done", "");
        add("no standard", {}, "LOAD\ncalib_exec", "warning",
            "^warning: no standard: the map holds edge energies, not shifts$");
        add("edge energies are no shifts", {}, "LOAD\nREFS\ncalib_exec\nanalyzer_exec_LCF",
            "failed", "with the shifts of the energy map, 96 of 96 bins have too few energies");
        add(
            "a standard without an edge",
            [] { put("flat.dat", "7000 1\n7050 1\n7100 1\n7150 1\n7200 1\n7250 1\n"); },
            "LOAD\ncalib_load_std flat.dat\ncalib_exec", "warning", "no rising edge");
        const Make nickel = [] {
            put("ni.dat", "8200 0\n8250 0.1\n8300 0.1\n8330 0.2\n8340 1\n8400 1\n");
        };
        const QString withNickel = "LOAD\ncalib_load_std ni.dat\ncalib_exec";
        add("another element's standard", nickel, withNickel, "warning",
            "edge at 8336.25 eV lies outside the frames' energies, 7000.00 to 7300.00 eV");
        add("and far from every bin", nickel, withNickel, "warning", "most shifts are above 40 eV");
        add("a quarter without an edge", squareImages(1), loadSquare + "calib_exec", "done", "");
        add("half without an edge", squareImages(2), loadSquare + "calib_exec", "warning",
            "^warning: 8 of 16 bins have no edge$");
        const QString noBin = loadSquare + "calib_exec\nset_band_h 9\ncalib_exec\n";
        add("no bin inside", squareImages(0), noBin.trimmed(), "failed", "no bin of the area");
        add("the map before stays", squareImages(0), noBin + "calib_save_map x.emp", "warning",
            "^warning: the result is of the run before$");
        add("no map", squareImages(0), loadSquare + "calib_save_map x.emp", "warning",
            "every shift in the file is 0");
    }
    void calibration() { m_cases.judge(); }

    void mapFiles_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString load = "calib_load_map map.emp";
        const QString withEdge = "calib_set_edge_eV 7112\n";
        add("whole", mapFile(), load, "done", "");
        add("spacing of 0", mapFile("3.13553", "0"), load, "failed",
            "spacing or edge energy missing or absurd");
        add("no edge energy", mapFile("7112.5", "x"), load, "failed",
            "spacing or edge energy missing or absurd");
        add("that of the panel", mapFile("7112.5", "x"), withEdge + load, "done", "");
        add("a shift of 2000 eV", mapFile("0.002", "4"), load, "failed", "above 1000 eV: map.emp$");
        add("the map before stays", mapFile("0.002", "inf"),
            "calib_load_map good.emp\n" + load + "\nselect_disp_image 2\nsave_image x.png",
            "warning", "^warning: the result is of the run before$");
        add("cut", mapFile("0 0.002 \n", ""), load, "warning",
            "^warning: 2 of 9 values are missing and count as no shift: map.emp$");
        add("text in it", mapFile("0.002", "O"), load, "warning", "1 values are no numbers");
        add("more than it says", mapFile("0.002", "0 0"), load, "warning",
            "^warning: more values than the 9 of the map: map.emp$");
        add("of another size", mapFile(), "LOAD\n" + load, "failed",
            "only maps of square images load");
        add("nothing to start from", {}, "LOAD\ncalib_save_map x.emp", "failed",
            "no standard and no edge energy");
        add("below the crystal's reach", {},
            "LOAD\ncalib_set_edge_eV 3000\ncalib_set_crystal Si(333)\ncalib_save_map x.emp",
            "failed", "no standard and no edge energy");
        add("edge energies", {}, "LOAD\n" + withEdge + "calib_exec\ncalib_save_map x.emp", "failed",
            "shifts above 1000 eV");
        add("square", squareImages(0), loadSquare + "calib_exec\ncalib_save_map x.emp", "done", "");
        add("not square", {}, "LOAD\n" + withEdge + "calib_save_map x.emp", "warning",
            "only maps of square images load");
    }
    void mapFiles() { m_cases.judge(); }

    void mapImages_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString load = "LOAD\ncalib_load_map map.emp";
        const QString withMap = "LOAD\ncalib_load_std a.dat\ncalib_exec\n";
        const QString again = withMap + "calib_save_map x.TIFF\ncalib_clear_map\n";
        const float nan = std::numeric_limits<float>::quiet_NaN();
        add("any shape", {}, again + "calib_load_map x.TIFF", "done", "");
        add("before the images", {}, again + "clear_I1_files\ncalib_load_map x.TIFF", "done", "");
        add("a fit with it", {}, again + "calib_load_map x.TIFF\nREFS\nanalyzer_exec_LCF", "done",
            "");
        add("no map", {}, "LOAD\ncalib_save_map x.tif", "failed", "there is no energy map");
        add("edge energies", {}, "LOAD\ncalib_exec\ncalib_save_map x.tif", "failed",
            "shifts above 1000 eV");
        add("of before", {}, withMap + "set_band_h 9\ncalib_exec\ncalib_save_map x.tif", "warning",
            "of the run before");
        add("no frame", {}, again + "load_I1_files ADD x.TIFF", "failed", "x.TIFF");
        const QString asFloat =
            "analyzer_select_image 0\nsaveDataCfg_save_as_float\nsave_data_as_tiff y.tif\n"
            "calib_load_map y.tif";
        add("saved as a result", {}, withMap + "select_disp_image 2\n" + asFloat.section('\n', 1),
            "done", "");
        add("another result", {}, "LOAD\nREFS\nanalyzer_exec_LCF\n" + asFloat, "failed",
            "not an energy map: y.tif");
        add("counts", {}, load.section('\n', 0, 0) + "\ncalib_load_map i1-7100_000eV.tif", "failed",
            "not an energy map: i1-7100_000eV.tif .16-bit integers, not 32-bit float.");
        add("one without an origin", mapImage(-3.5f), load, "done", "");
        add("blank", mapImage(nan), load, "warning",
            "^warning: 1 values are no numbers and count as no shift: map.emp$");
        add("infinite", mapImage(-std::numeric_limits<float>::infinity()), load, "failed",
            "above 1000 eV: map.emp");
        add("too large", mapImage(1001.0f), load, "failed", "above 1000 eV: map.emp");
        add("of another size", mapImage(0.0f, {}, {8, 12}), load, "failed",
            "^failed: not of the images' size: map.emp$");
        add("of another result", mapImage(0.0f, "Tarnwick origin 1\nresult = Ratio\n"), load,
            "failed", "not an energy map: map.emp .Ratio.");
        add(
            "cut",
            [] {
                mapImage(0.0f)();
                put("map.emp", contentOf("map.emp").left(200));
            },
            load, "failed", "not an energy map: map.emp .a TIFF file without an image.");
        add(
            "not even TIFF", [] { put("map.emp", "MM"); }, load, "failed", "not an energy map");
    }
    void mapImages() { m_cases.judge(); }

    void results_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString fit = "LOAD\nREFS\nanalyzer_set_LCF_std 2 0 0 a.dat 0\nanalyzer_exec_LCF\n";
        const QString first = fit + "analyzer_select_image 0\n";
        const QString third = fit + "analyzer_select_image 2\n";
        add("nothing to deglitch", {}, third + "deglitch 2 0.1", "failed", "took no part");
        add("nothing to show", {}, third + "show_processed 1", "failed", "took no part");
        add("nothing to save", {}, third + "save_data_as_tiff x.tif", "failed", "took no part");
        add("nothing was deglitched", {}, first + "show_processed 1", "failed", "processed values");
        add("deglitched", {}, first + "deglitch 2 0.1", "done", "");
        add("of the bins before", {}, first + "set_band_w 1\nsave_data_as_tiff x.tif", "warning",
            "^warning: the result is with other bins$");
        const QString failing = first + "set_band_h 9\nanalyzer_exec_LCF\n";
        add("a fit that fails", {}, failing.trimmed(), "failed", "no bin of the area");
        add("leaves nothing", {}, failing + "save_data_as_tiff x.tif", "failed", "no values");
        add("nor a picture", {}, failing + "save_all_images x.png", "failed", "no result images");
        const QString tall = fit + "analyzer_select_image 0\nsaveDataCfg_tiff_as_analyzed 1\n";
        const QString save = "save_data_as_tiff x.dat";
        const QString narrow =
            "LOAD\nREFS\nselect_region 0 0 2 8\nanalyzer_exec_LCF\n"
            "analyzer_select_image 0\nsaveDataCfg_tiff_as_analyzed 1\n";
        add("taller than wide", {}, narrow + save, "warning", "taller than wide.*float TIFF");
        add("as a table", {}, narrow + "saveDataCfg_save_as_text\n" + save, "done", "");
        add("as floats", {}, narrow + "saveDataCfg_save_as_float\n" + save, "done", "");
        add("wider than tall", {}, tall + save, "done", "");
        add("a scale too wide", {},
            tall + "saveDataCfg_tiff_fix_scale 1\nsaveDataCfg_tiff_scale_max 1e4\n" + save,
            "warning", "^warning: the range leaves \\d of 65535 steps for the middle 90 %");
        const QString noSpectrum =
            "LOAD\ncalib_load_std a.dat\nmove_position 50 3\nsave_spectra x.dat";
        add("no spectrum", {}, noSpectrum, "failed", "no spectrum at the position");
        add("a plot without it", {}, noSpectrum + "\nsave_plot x.png", "warning", "standard alone");
        add("and no file", {}, noSpectrum + "\ncalib_load_std x.dat", "failed", "x.dat");
    }
    void results() { m_cases.judge(); }

    void areas_data() {
        OutcomeCases::declare();
        const auto add = [](const char* name, const QString& batch, const QString& verdict,
                            const QString& text = QString()) {
            OutcomeCases::add(name, {}, "LOAD\nREFS\n" + batch, verdict, text);
        };
        const QString fit = "analyzer_exec_LCF\nanalyzer_select_map fraction 0\n";
        add("an ellipse over the edge", "select_ellipse -4 -4 6 6\nanalyzer_exec_LCF", "done");
        add("an ellipse beside the image", "select_ellipse 9 9 40 40", "failed", "no part of");
        add("none",
            "select_ellipse 2 2 4 4\nselect_ellipse 0 0 0 0\n" + fit + "save_data_as_tiff x.tif",
            "done");
        add("half a vertex", "select_polygon 0 0 4 0 4 4 1", "failed", "two numbers");
        add("no number", "select_polygon 0 0 4 0 4 4 1 x", "failed", "'x' is not an integer");
        add("flat", "select_polygon 0 3 4 3 8 3", "failed", "no part of the region");
        add("far off", "select_polygon 0 0 4 0 2000000 4", "failed", "far outside any image");
        add("between the centres",
            "select_ellipse 0 0 2 2\nset_band_w 1\nset_band_h 1\n" + fit.section('\n', 0, 0),
            "done");
        add("no centre inside",
            "select_polygon 0 0 9 0 0 1\nset_band_w 1\nset_band_h 1\n" + fit.section('\n', 0, 0),
            "failed", "no bin of the area has its centre inside the shape");
        const QString shaped = "select_polygon 0 0 9 0 0 8\n" + fit;
        add("blanks in counts", shaped + "save_data_as_tiff x.tif", "warning",
            "^warning: \\d+ of 96 pixels are blank: a 16-bit TIFF has 0 there$");
        add("none in floats", shaped + "saveDataCfg_save_as_float\nsave_data_as_tiff x.tif",
            "done");
        add("another area", shaped + "select_region 0 0 4 4\nsave_data_as_tiff x.dat", "warning",
            "the result is of another area");
        add("which is what statistics are for",
            shaped + "select_region 0 0 4 4\nsave_statistics x.csv", "done");
        add("statistics of other bins", shaped + "set_band_h 2\nsave_statistics x.csv", "warning",
            "jump: the result is with other bins");
        add("no statistics", "save_statistics x.csv", "failed", "there are no maps");
        add("no such map", "select_threshold fraction 0 1", "failed", "no map of this name");
        add("turned round", fit + "select_threshold fraction 1 0", "failed", "below the lower");
        add("no such value", fit + "select_threshold fraction 5 6", "failed", "from 5 to 6$");
        add("no such reference", fit + "select_threshold fraction 0 1 7", "failed", "panel 7");
        add("a threshold of masked bins", fit + "set_mask 5\nselect_threshold fraction 0 1 1",
            "done");
        add("a threshold", fit + "select_threshold fraction 0.2 0.5 1\nanalyzer_exec_LCF", "done");
        add("a mean spectrum that is read again",
            shaped + "save_area_spectrum m.dat\nanalyzer_set_LCF_std 2 1 0 m.dat 0", "done");
        add("no bin", "set_band_h 9\nsave_area_spectrum m.dat", "failed", "no bin of the area");
    }
    void areas() { m_cases.judge(); }

    /// Where it is no file that would be replaced, no kind of output is written.
    void devices_data() {
        OutcomeCases::declare();
        const QString all =
            "LOAD\nREFS\nanalyzer_exec_LCF\nanalyzer_select_image 0\n"
            "move_position 3 3\ncalib_set_edge_eV 7112\n";
        const Make device = [] {
            for (const char* name : {"x.png", "flat.dat", "x.tif", "x.dat", "x.emp", "x.bat"}) {
                QFile::link("/dev/null", name);
            }
            QDir().mkdir("folder.tif");
            QCOMPARE(mkfifo("fifo.tif", 0600), 0);
        };
        for (const char* line :
             {"save_image x.png", "save_image_with_bar x.png", "save_plot x.png", "save_flat_dark",
              "save_data_as_tiff x.tif", "save_data_as_tiff fifo.tif",
              "save_data_as_tiff folder.tif", "save_spectra x.dat", "calib_save_map x.emp",
              "save_record x.bat", "saveDataCfg_save_as_text\nsave_data_as_tiff x.dat"}) {
            OutcomeCases::add(line, device, all + line, "failed", "cannot be written: ");
        }
    }
    void devices() { m_cases.judge(); }
};

TARNWICK_TEST_MAIN(QApplication, TestMapsJudged)
#include "tst_maps_judged.moc"
