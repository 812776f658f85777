// What the windows show when something went wrong, or is not what it was.

#include <QFile>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QThread>

#include "Stage.h"
#include "panels/BatchCtrl.h"

namespace {

const QSize SmallScreen(1366, 740);
constexpr int NoticeSettles = 30;  // until the notice of the last action has gone

/// A spectrum file, one row a line.
void writeSpectrum(const QString& name, double from, double step, double jump) {
    QFile file(name);
    if (file.open(QIODevice::WriteOnly)) {
        for (int i = 0; i < 60; ++i) {
            const double value = i < 30 ? 0.1 : 0.1 + jump;
            file.write(QStringLiteral("%1 %2\n").arg(from + step * i).arg(value).toLatin1());
        }
    }
}

/// Stops an analysis on its way.
void stopAtWork(Stage& stage, const QString& line, Work work) {
    Measurement& measurement = stage.body().measurement();
    const auto watching = QObject::connect(&measurement, &Measurement::progressed, &stage.body(),
                                           [&](Work now, double done, double) {
                                               if (now == work && done > 40.0) {
                                                   measurement.stop();
                                               }
                                               // It waits for who looks: else it is done before
                                               // anything is told.
                                               QThread::msleep(50);
                                           });
    stage.run({line});
    QObject::disconnect(watching);
}

}  // namespace

void makeOutcomePictures(Stage& stage) {
    const QTemporaryDir folder;
    const auto file = [&](const char* name) { return folder.filePath(QString::fromLatin1(name)); };
    writeSpectrum(file("foil-in-keV.dat"), 7.0, 0.01, 1.0);
    writeSpectrum(file("no-edge.dat"), 7000.0, 10.0, 0.0);
    for (int i = 0; i < 4; ++i) {
        QFile text(file("notes-710%1eV.tif").arg(i));
        text.open(QIODevice::WriteOnly);
        text.write("no frame");
    }

    stage.arrange(SmallScreen);
    BatchCtrl* batch = stage.body().batchCtrl();
    batch->show();
    batch->setBatchFile(QStringLiteral("calibrate-and-fit.bat"));
    stage.run({"analyzer_show_window", "calib_show_window"});
    // Results of the batch, then each kind of mark.
    stage.run(batch->editorLines(Qt::SkipEmptyParts));
    stage.run({"save_image " + file("fraction.png")});
    stage.save(&stage.body(), "saved");
    stage.run({"set_band_w 2"});
    stage.save(&stage.body(), "other-bins");
    stopAtWork(stage, "analyzer_exec_LCF", Work::Fit);
    stage.save(&stage.body(), "stopped");
    stage.save(stage.control("Analyzer"), "stopped-analyzer");
    stage.run({"analyzer_exec_LCF", "select_region 60 50 140 120"});
    stage.run({"analyzer_set_LCF_std 0 0 0.0 references/metal.dat 0",
               "analyzer_set_LCF_std 1 0 0.0 references/oxide2.dat 0",
               "analyzer_set_LCF_std 2 0 0.0 references/oxide3.dat 0"});
    stage.body().startLCF2DAnalysis();
    stage.save(&stage.body(), "run-before");

    // A map that only error maps make, masked, and the choice among all of them.
    stage.run({"select_region 0 0 0 0", "analyzer_set_LCF_std 0 1 0.0 references/metal.dat 0",
               "analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0",
               "analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0", "analyzer_set_error_maps 1",
               "analyzer_exec_LCF", "analyzer_exec_difference 7100 7140", "set_mask 5",
               "analyzer_select_map chi2_reduced", "move_position 2 2"});
    stage.save(&stage.body(), "masked");
    stage.save(stage.control("Analyzer"), "masked-analyzer");

    // Calibration with warnings beside its closing line.
    stage.run({"calib_load_std " + file("no-edge.dat"), "select_disp_image 2"});
    stage.clickAndWait("ExecCalib");
    stage.save(stage.control("CalibCtrl"), "calibctrl-warned");
    stage.save(&stage.body(), "map-warned");

    const QString before = batch->editorLines().join('\n');
    const QStringList bad{"load_I1_files ADD " + file("notes-7100eV.tif") + ' ' +
                              file("notes-7101eV.tif") + ' ' + file("notes-7102eV.tif") + ' ' +
                              file("notes-7103eV.tif"),
                          "analyzer_set_LCF_std 0 1 0.0 " + file("foil-in-keV.dat") + " 0",
                          "analyzer_set_LCF_std 1 1 0.0 " + file("no-edge.dat") + " 0",
                          "analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0",
                          "set_band_w wide",
                          "move_position 900 20",
                          "calib_load_map missing.emp",
                          "calib_set_edge_eV seven",
                          "select_region 200 150 400 300",
                          "analyzer_exec_LCF",
                          "save_data_as_tiff /nowhere/fraction.tif",
                          "set_view_range 5"};
    stage.run(bad);
    batch->findChild<QTabWidget*>("Tabs")->setCurrentIndex(1);
    stage.save(batch, "verdict");
    stage.save(&stage.body(), "messages-counted");
    stage.save(stage.control("Analyzer"), "analyzer-warned");
    stage.click("ShowMessages");
    stage.save(stage.control("Messages"), "messages-many");
    stage.body().readI1Files({file("notes-7100eV.tif"), file("notes-7101eV.tif"),
                              file("notes-7102eV.tif"), file("notes-7103eV.tif")},
                             false);
    stage.settle();
    stage.save(&stage.body(), "load-summary");

    // Frames of two sizes.
    stage.run({"select_region 10 10 110 90", "saveDataCfg_tiff_as_analyzed 1",
               "saveDataCfg_save_as_tiff", "set_band_w 0", "set_band_h 0", "analyzer_exec_ra",
               "analyzer_select_image 3", "save_data_as_tiff " + file("small-7100eV.tif"),
               "select_region 0 0 0 0", "load_I0_files NEW " + file("small-7100eV.tif"),
               "select_disp_image 0"});
    for (int i = 0; i < NoticeSettles; ++i) {
        stage.settle();
    }
    stage.save(&stage.body(), "two-sizes");
}
