#include <sys/stat.h>

#include "OutcomeCase.h"
#include "TinyStacks.h"
#include "display/XafsView.h"

/// What stands in the way of an output.
class TestOutputs : public QObject {
    Q_OBJECT

    OutcomeCases m_cases;

  private slots:
    void outputs_data() {
        OutcomeCases::declare();
        const auto add = OutcomeCases::add;
        add("a frame", {}, "LOAD\nmove_position 3 3\nsave_spectra i1-7100_000eV.tif", "failed",
            "was read from this file");
        add(
            "a link to a reference", [] { QFile::link("a.dat", "link.dat"); },
            "LOAD\nREFS\nmove_position 3 3\nsave_spectra link.dat", "failed",
            "was read from this file: link.dat");
        add("another name", {}, "LOAD\nmove_position 3 3\nsave_spectra c.dat", "done", "");
        add("no folder", {}, "LOAD\nmove_position 3 3\nsave_spectra d/c.dat", "failed",
            "cannot be written: d/c.dat");
        const char* const notAFile = "what is there is not a file";
        add("a device", {}, "LOAD\nsave_image /dev/null", "failed", "no picture format");
        add(
            "a pipe", [] { mkfifo("pipe.png", 0600); }, "LOAD\nsave_image pipe.png", "failed",
            notAFile);
        add(
            "a folder", [] { QDir().mkdir("d"); }, "LOAD\nmove_position 3 3\nsave_spectra d",
            "failed", notAFile);
        add(
            "a dark frame by another name", [] { QFile::link("i0-7000_000eV.tif", "dark.png"); },
            "LOAD\nload_dark_files i0-7000_000eV.tif\nsave_image dark.png", "failed",
            "was read from this file: dark.png");
        add("results without any", {}, "LOAD\nsave_results a.h5", "failed", "no results to save");
        add("a table without a fit", {},
            "LOAD\nanalyzer_set_ra_energy 7110\nanalyzer_exec_ra\n"
            "save_table a.csv",
            "failed", "no results of a fit");
        const QString fitted = "LOAD\nREFS\nanalyzer_exec_LCF\n";
        add("results over a frame", {}, fitted + "save_results i0-7000_000eV.tif", "failed",
            "was read from this file");
        add("results of other bins", {}, fitted + "set_band_w 2\nsave_results a.h5", "warning",
            "fit: the result is with other bins");
        add("a table of earlier references", {},
            fitted + "analyzer_set_LCF_std 1 1 1 b.dat 0\nsave_table a.csv", "warning",
            "fit: the result is with earlier references");
        add("results", {}, fitted + "save_results a.h5", "done", "");
        add("several files, one reason", {},
            "LOAD\nREFS\nanalyzer_exec_LCF\nsave_all_images d/a.png", "failed",
            "^[^\n]*cannot be written: d/a-0-0.png[^\n]*$");
    }
    void outputs() { m_cases.judge(); }

    /// What the plot window saves by its own menu is judged and told like the rest.
    void plotOfTheWindow() {
        const QTemporaryDir folder;
        const QString frame = folder.filePath("fe-7100eV.tif");
        QVERIFY(!writeTinyStack(folder.path(), "i1", 4, 4, {7100}, [](int, int, int) {
                     return quint16(7);
                 }).isEmpty());
        QVERIFY(QFile::rename(folder.filePath("i1-7100_000eV.tif"), frame));
        Body body;
        QVERIFY(BatchRun(body).run({"load_I1_files NEW " + frame}));
        auto* view = topLevel<XafsView>();
        QSignalSpy said(view, &XafsView::said);
        const QByteArray before = contentOf(frame);
        QVERIFY(!view->savePlot(frame));
        QCOMPARE(contentOf(frame), before);
        QVERIFY(view->savePlot(folder.filePath("plot.png")));
        QCOMPARE(said.count(), 2);
        QCOMPARE(view->findChild<QLabel*>("Message")->text(), "Saved plot.png in " + folder.path());
    }
};

TARNWICK_TEST_MAIN(QApplication, TestOutputs)
#include "tst_outputs.moc"
