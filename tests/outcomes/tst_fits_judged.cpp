#include "Edges.h"
#include "OutcomeCase.h"
#include "TinyStacks.h"

/// What is said of fits and residual absorption that find nothing worth having.
class TestFitsJudged : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

    static void putLine() {
        putCurve("s.dat", QVector<double>{7000, 7020, 7100, 7200, 7290, 7300},
                 [](double e) { return 1.0 - 1e-4 * (e - 7000.0); });
    }
    /// As a reference a.dat itself.
    static void putTwice() {
        QVector<double> energies;
        for (double e = 6990.0; e <= 7310.0; e += 0.7) {
            energies << e;
        }
        putCurve("s.dat", energies, [](double e) { return 2.0 * Phantom::muA(e) + 0.1; });
    }
    /// One that begins above 7060 eV, and one without a rising edge.
    static void putOddReferences() {
        putCurve("short.dat", edges::energies(7060.0, 7310.0), Phantom::muB);
        putCurve("s.dat", edges::energies(6990.0, 7310.0),
                 [](double e) { return 1.0 / (1.0 + std::exp((e - 7150.0) / 5.0)); });
    }
    /// An I1 frame without counts in three pixels, and one in one of them.
    static void putHoles() {
        writeTinyStack(".", "i1", 12, 8, {7100, 7200}, [](int i, int x, int y) {
            return y == 4 && (i == 0 ? x < 3 : x == 0) ? 0 : 40000;
        });
    }

  private slots:
    void judged_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString fit("LOAD\nREFS\n%1\nanalyzer_exec_LCF");
        const auto offset = [fit](int eV) {
            return fit.arg(QString("analyzer_set_LCF_std 0 1 %1 a.dat 0").arg(eV));
        };
        const QString other = fit.arg("analyzer_set_LCF_std 1 1 0 s.dat 0");
        const QString toMlcf("\nanalyzer_set_LCF_mode 1\nanalyzer_exec_LCF");
        const auto mlcf = [toMlcf](QString lines) {
            return lines.replace("\nanalyzer_exec_LCF", toMlcf);
        };
        add("LCF", {}, offset(0), "done", "");
        add("MLCF", {}, mlcf(offset(0)), "done", "");
        add("nothing inside", {}, offset(2000), "failed",
            "0 of 31 energies of the frames \\(7000.0 to 7300.0 eV\\).*"
            "a.dat covers 4980.0 to 5320.0 eV$");
        add("a range each", {},
            offset(-200).replace("exec_LCF", "set_LCF_std 1 1 200 b.dat 0\nanalyzer_exec_LCF"),
            "failed", "a.dat covers 7180.0 to 7520.0 eV, b.dat covers 6780.0 to 7120.0 eV");
        add("just enough", {}, offset(-290), "warning", "only 4 of 31 energies .*: a.dat covers");
        add("too few", {}, offset(-291), "failed", "3 of 31 energies .* needs 4: a.dat covers");
        add("too few for MLCF", {}, mlcf(offset(-290)), "failed", "4 of 31 .* needs 6");
        const QString lcf = offset(0);
        const auto with = [](const QString& line, QString lines) {
            return lines.replace("REFS", line + "\nREFS");
        };
        const QString ra("LOAD\nREFS\nanalyzer_exec_ra");
        for (const char* e0 : {"mean", "7110", "Each"}) {
            add(qPrintable(QString("LCF, E0 ") + e0), {}, with(QString("set_E0 ") + e0, lcf),
                "done", "");
            add(qPrintable(QString("RA, E0 ") + e0), {},
                with(QString("set_E0 %1\nanalyzer_set_ra_energy 7200").arg(e0), ra), "done", "");
        }
        add("E0 outside", {}, with("set_E0 6999.9", lcf), "failed",
            "E0 at 6999.90 eV lies outside the energies of the frames, 7000.00 to 7300.00 eV");
        add("E0 outside of RA", {}, with("set_E0 8000", ra), "failed", "E0 at 8000.00 eV");
        add("E0 outside, where none is needed", {}, with("set_E0 8000", mlcf(lcf)), "done", "");
        add("no room for lines", {}, with("set_E0 7025", lcf), "failed",
            "around E0 at 7025.00 eV hold fewer than 3");
        add("narrow ranges", {}, with("set_background_ranges -30 -10 10 30", lcf), "failed",
            "\\(-30 .. -10, 10 .. 30 eV\\) hold fewer than 3 .* wherever E0 is");
        add("ranges apart", {}, with("set_background_ranges -200 -180 180 200", ra), "failed",
            "wherever E0 is");
        add("ranges apart, around any mean", {},
            with("set_E0 mean\nset_background_ranges -200 -180 180 200", ra), "failed",
            "wherever E0 is");
        add("ranges too narrow where the bins rise", {},
            with("set_background_ranges -140 -100 10 190\nanalyzer_set_ra_energy 7200", ra),
            "failed", "10 .. 190 eV\\) hold fewer than 3 energies of the frames in all bins");
        add("ranges just wide enough", {}, with("set_background_ranges -30 0 0 30", ra), "warning",
            "8200 eV .* outside");
        add("a reference without points", putOddReferences,
            with("set_background_ranges -100 -60 100 200",
                 offset(0).replace("exec_LCF", "set_LCF_std 1 1 0 short.dat 0\nanalyzer_exec_LCF")),
            "failed", "^failed: pre-edge line on 0 point.*short.dat$");
        add("a reference that needs none", putOddReferences,
            with("analyzer_set_reference_scale none",
                 mlcf(offset(0)).replace("set_LCF_mode",
                                         "set_LCF_std 1 1 0 s.dat 0\n"
                                         "analyzer_set_LCF_mode")),
            "done", "");
        for (const char* line : {"set_E0 0", "set_E0 -7110", "set_E0 nan", "set_E0 edge"}) {
            add(line, {}, line, "failed", "neither each nor mean nor an energy above 0");
        }
        for (const char* line :
             {"set_background_ranges -10 -10 10 20", "set_background_ranges -20 12 10 20",
              "set_background_ranges -20 -10 30 20"}) {
            add(line, {}, line, "failed", "do not ascend");
        }
        add("nine tenths", {}, offset(-50), "done", "");
        add("fewer", {}, offset(-60), "warning", "only 27 of 31 energies");
        add("no edge", putLine, other, "warning", "no edge: s.dat");
        add("alike", putTwice, other, "warning", "a.dat and s.dat cannot be told apart");
        add("alike in MLCF", putTwice, mlcf(other), "warning", "a.dat and s.dat cannot be told");
        add("holes of a fit", putHoles, offset(0), "warning",
            "3 of 96 bins have no counts at some energy");
        add("holes of a calibration", putHoles, "LOAD\ncalib_exec", "warning", "3 of 96 bins have");
        const QString residual("LOAD\nanalyzer_set_ra_energy %1\nanalyzer_exec_ra");
        add("holes of residual absorption", putHoles, residual.arg(7200), "warning",
            "3 of 96 bins have");
        add("residual absorption", {}, residual.arg(7300), "done", "");
        add("beside the frames", {}, residual.arg(7301), "warning",
            "7301 eV .* outside those of the frames \\(7000.0 to 7300.0 eV\\)");
    }
    void judged() { m_cases.judge(); }

    void mapsOfAFit_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString fit("LOAD\nREFS\nanalyzer_exec_LCF\n");
        const char* const again = "run again with error maps";
        const QString picture = fit + "save_composite x.png ";
        add("a composite", {}, picture + "none 1 0", "done", "");
        add("of no reference", {}, picture + "none", "failed", "no reference is chosen");
        add("of the same twice", {}, picture + "1 1", "failed", "reference 1 has two colours");
        add("of one that there is not", {}, picture + "0 2", "failed", "no reference panel 2");
        add("of one that took no part", {},
            "LOAD\nREFS\nanalyzer_set_LCF_std 1 0 0 b.dat 0\nanalyzer_exec_LCF\n"
            "save_composite x.png 0 1",
            "failed", "no map of the fraction of reference 1");
        add("of a fit of other bins", {}, fit + "set_band_w 2\nsave_composite x.png 0", "warning",
            "the result is with other bins");
        add("into no picture", {}, fit + "save_composite x.txt 0", "failed", "");
        add("no mask without errors", {}, fit + "set_mask 5", "failed", again);
        add("nor such a map", {}, fit + "analyzer_select_map R", "failed", again);
        add("nor a masked file", {},
            "set_mask 5\nsaveDataCfg_masked 1\n" + fit + "save_all_maps x.tif", "failed", again);
        add("a masked file", {},
            "set_mask 1e-9\nsaveDataCfg_masked 1\nsaveDataCfg_save_as_float\n"
            "analyzer_set_error_maps 1\n" +
                fit + "save_all_maps x.tif",
            "done", "");
        add("a fit that cannot be masked", {}, "LOAD\nREFS\nset_mask 5\nanalyzer_exec_LCF",
            "warning", again);
        add("no mask is always taken", {}, fit + "set_mask off", "done", "");
        add("a reference that there is not", {}, fit + "analyzer_select_map fraction 2", "failed",
            "no reference panel 2");
        add("values that a rehearsal has not", {},
            "LOAD\nanalyzer_set_ra_energy 7200\nanalyzer_exec_ra\n"
            "analyzer_select_map ra_share\ndeglitch 2 0.1",
            "done", "");
        add("nothing to save", {}, "LOAD\nsave_all_maps x.tif", "failed", "there are no maps");
        const QString to = "LOAD\nREFS\nanalyzer_set_LCF_constraints %1\n%2analyzer_exec_LCF";
        const QString mlcf = "analyzer_set_LCF_mode 1\n";
        for (const char* word : {"sum1", "both"}) {
            add(word, {}, to.arg(word, mlcf), "failed", "MLCF has no sum of 1");
        }
        add("the only one of MLCF", {}, to.arg("nonnegative", mlcf), "done", "");
        QString nine;
        for (int i = 2; i < 9; ++i) {
            nine += QString("analyzer_set_LCF_std %1 1 0 %2.dat 0\n").arg(i).arg(i % 2 ? 'b' : 'a');
        }
        add("nine references", {}, to.arg("both", nine), "failed",
            "at most 8 references, not for 9");
        const QString difference("LOAD\nanalyzer_exec_difference %1 %2");
        add("difference", {}, difference.arg("7000", "7300"), "done", "");
        add("below", {}, difference.arg("6999.9", "7300"), "failed",
            "6999.9 eV lies outside those of the frames");
        add("above", {}, difference.arg("7000", "7300.1"), "failed", "7300.1 eV lies outside");
        add("the same", {}, difference.arg("7100", "7100"), "failed", "are the same");
        add("of two frames", {},
            "load_I1_files NEW i1-7000_000eV.tif i1-7300_000eV.tif\nset_band_w 0\nset_band_h 0\n"
            "analyzer_exec_difference 7000 7300",
            "warning", "no I0 frames");
    }
    void mapsOfAFit() { m_cases.judge(); }

    void ofAFile_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        const QString fit = "REFS\nfit_spectrum ";
        add("done", {}, fit + "a.dat x.dat x.png", "done", "");
        add("what a line has written", {}, fit + "a.dat x.dat\nfit_spectrum x.dat y.dat", "done",
            "");
        add("no reference", {}, "fit_spectrum a.dat x.dat", "failed", "no reference is in use$");
        add(
            "no spectrum", [] { put("s.dat", "7000 1\n7100 2\n"); }, fit + "s.dat x.dat", "failed",
            "2 usable point.*s.dat");
        add("a device", {}, fit + "/dev/zero x.dat", "failed", "not taken, not a file: /dev/zero$");
        add("no edge", putLine, fit + "s.dat x.dat", "warning", "warning: no edge: s.dat");
        add("too few", {}, "REFS\nanalyzer_set_LCF_std 0 1 -600 a.dat 0\nfit_spectrum b.dat x.dat",
            "failed", "0 of \\d+ energies of the spectrum .*needs 4: a.dat covers");
        add("over the sample", {}, fit + "a.dat ./a.dat", "failed", "was read from this file: ./a");
        add("over a reference", {}, fit + "a.dat b.dat", "failed",
            "was read from this file: b.dat");
        add("plot over the table", {}, fit + "a.dat x.png ./x.png", "failed", "one file: ./x.png$");
        add("no kind of plot", {}, fit + "a.dat x.dat x.dot", "failed", "suffix.*x.dot$");
        add("plot before the table", {}, fit + "a.dat x.dat none/x.png\nfit_spectrum x.dat y.dat",
            "failed", "cannot be read: x.dat");
        add("a common edge", {}, "set_E0 7110\n" + fit + "a.dat x.dat", "done", "");
        add("an edge elsewhere", {}, "set_E0 8000\n" + fit + "a.dat x.dat", "failed",
            "E0 at 8000.00 eV lies outside the energies of a.dat");
        add("no room for lines", {}, "set_E0 6985\n" + fit + "a.dat x.dat", "failed",
            "around E0 at 6985.00 eV hold fewer than 3 points of a.dat");
        add("ranges without points", {},
            "set_background_ranges -10.01 -10 10 1000\n" + fit + "a.dat x.dat", "failed",
            "pre-edge line on [0-2] point.*a.dat");
        QString nine = "analyzer_set_LCF_constraints both\n";
        for (int i = 0; i < 9; ++i) {
            nine += QString("analyzer_set_LCF_std %1 1 %1 a.dat 0\n").arg(i);
        }
        add("nine constrained", {}, nine + "fit_spectrum b.dat x.dat", "failed",
            "at most 8 references, not for 9");
    }
    void ofAFile() { m_cases.judge(); }
};

TARNWICK_TEST_MAIN(QApplication, TestFitsJudged)
#include "tst_fits_judged.moc"
