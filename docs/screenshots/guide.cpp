// The scenes of the user guide, in the order of its chapters.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSlider>
#include <QTabWidget>

#include "Stage.h"
#include "base/Globals.h"
#include "display/ColorBar.h"
#include "display/XafsView.h"
#include "panels/Analyzer.h"
#include "panels/AreaStatistics.h"
#include "panels/BatchCtrl.h"
#include "panels/CalibCtrl.h"
#include "panels/FolderDialog.h"
#include "panels/SaveDataCfg.h"
#include "window/CompositeDialog.h"
#include "window/FolderOpening.h"
#include "window/SpectrumFitWindow.h"

namespace {

const QSize DockedWindow(1366, 708);  // on a small screen with a title bar
const QSize MainWindow(900, 740);     // with the tools beside it
const QSize Plot(620, 440);
constexpr int MuT = 0;  // in the choice of the ordinate
constexpr int FrameBehindEdge = 63;

template <class Window>
Window* window(const QWidget* notThis = nullptr) {
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        auto* found = qobject_cast<Window*>(widget);
        if (found != nullptr && found != notThis) {
            return found;
        }
    }
    return nullptr;
}

/// The part of the main window that these controls cover.
QImage part(Stage& stage, const QList<const char*>& names) {
    QRect area;
    for (const char* name : names) {
        const QWidget* control = stage.control(name);
        area |= QRect(control->mapTo(&stage.body(), QPoint(0, 0)), control->size());
    }
    return stage.body().grab(area.adjusted(-3, -3, 3, 3)).toImage();
}

QImage imageAndBar(Stage& stage) {
    return sideBySide(
        {stage.picture(stage.control("dispA")), stage.picture(stage.control("CBar"))});
}

/// Where a part of the main window has its number: at a corner of a control, off it by pixels.
struct Numbered {
    const char* control;
    Qt::Corner corner;
    QPointF off;
};

/// The main window with numbers at its parts, as the first chapter lists them.
QImage numbered(Stage& stage) {
    constexpr double Radius = 12.0;
    const Numbered parts[] = {{"OpenFolder", Qt::TopRightCorner, {-6, 10}},
                              {"SelectI1Files", Qt::BottomRightCorner, {2, 2}},
                              {"ShowResAnalysis", Qt::TopRightCorner, {18, 13}},
                              {"dispA", Qt::BottomLeftCorner, {14, -14}},
                              {"HCross", Qt::TopRightCorner, {-14, 14}},
                              {"CBar", Qt::BottomRightCorner, {-16, -14}},
                              {"positionBox", Qt::TopRightCorner, {-14, 14}},
                              {"frameStrip", Qt::BottomRightCorner, {-14, -14}},
                              {"AreaTools", Qt::TopRightCorner, {-14, 12}},
                              {"ToolBox", Qt::BottomRightCorner, {-14, -46}},
                              {"windowBox", Qt::BottomRightCorner, {-16, -16}},
                              {"SpectrumDock", Qt::TopRightCorner, {-56, 12}},
                              {"AnalyzerDock", Qt::TopRightCorner, {-56, 12}}};
    QImage image = stage.picture(&stage.body());
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(14);
    painter.setFont(font);
    int number = 0;
    for (const Numbered& part : parts) {
        const QWidget* control = stage.control(part.control);
        const QRectF at(control->mapTo(&stage.body(), QPoint(0, 0)), control->size());
        const QPointF centre =
            part.off + (part.corner == Qt::TopRightCorner     ? at.topRight()
                        : part.corner == Qt::BottomLeftCorner ? at.bottomLeft()
                                                              : at.bottomRight());
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 90, 170));
        painter.drawEllipse(centre, Radius, Radius);
        painter.setPen(Qt::white);
        painter.drawText(QRectF(centre - QPointF(Radius, Radius), QSizeF(2, 2) * Radius),
                         Qt::AlignCenter, QString::number(++number));
    }
    return image;
}

QStringList sampleFrames() {
    return {"load_I0_files_of_pattern NEW i0 *.tif", "load_I1_files_of_pattern NEW i1 *.tif",
            "set_band_w 1", "set_band_h 1"};
}

/// What was found in the folder of the sample measurement.
void folder(Stage& stage) {
    stage.body().findChild<FolderOpening*>()->open({QDir::currentPath()});
    stage.settle();
    auto* dialog = window<FolderDialog>();
    dialog->findChild<QLineEdit*>("FolderPath")->setText(QStringLiteral("out/sample"));
    stage.save(dialog, "open-folder");
    dialog->close();
}

/// First map: frames, spectrum, references and fit, map.
void firstMap(Stage& stage) {
    stage.run(sampleFrames());
    stage.run({"calib_load_std standard/fe-foil.dat",
               "analyzer_set_LCF_std 0 1 0.0 references/metal.dat 0",
               "analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0",
               "analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0", "analyzer_show_window",
               "move_position 107 114"});
    stage.click("ShowXafsView");
    qobject_cast<QSlider*>(stage.control("SeekBar"))->setValue(FrameBehindEdge);
    stage.body().showData(FrameBehindEdge);
    stage.arrange(DockedWindow);
    stage.save(numbered(stage), "main-window");
    stage.clickAndWait("AskAnalyze");
    stage.run({"analyzer_select_image_type 1", "analyzer_select_image 1", "select_disp_image 3",
               "set_mask 5"});
    stage.save(&stage.body(), "map");
    stage.run({"set_mask off", "select_disp_image 0"});

    stage.takeApart();
    stage.body().resize(MainWindow);
    stage.settle();  // a dock that leaves the main window keeps the size it had there
    stage.takeApart();
    auto* analyzer = window<Analyzer>();
    auto* plot = window<XafsView>(analyzer->view());
    plot->window()->resize(Plot);
    analyzer->view()->window()->resize(Plot);
    plot->findChild<QComboBox*>("Ordinate")->setCurrentIndex(MuT);
    plot->findChild<QCheckBox*>("Backgrounds")->setChecked(true);
    stage.settle();
    stage.save(plot, "spectrum");
    stage.save(analyzer, "analyzer");
    stage.save(analyzer->view(), "fit");
    stage.run({"select_disp_image 3"});
}

/// The spectrum of the last position, saved and fitted as a file.
void spectrumFile(Stage& stage) {
    const QString name = QStringLiteral("results/grain.dat");
    stage.run({"save_spectra " + name});
    auto* fit = window<SpectrumFitWindow>();
    fit->show();
    fit->fit(name);
    stage.settle();
    stage.save(fit, "spectrum-fit");
    fit->hide();
}

/// The shown map, and the same with a mask.
void mask(Stage& stage) {
    stage.run({"set_view_range fraction -0.2 1"});
    const QImage whole = imageAndBar(stage);
    stage.run({"set_mask 5"});
    stage.save(sideBySide({whole, imageAndBar(stage)}), "mask");
    stage.run({"set_mask off"});
}

/// The masked map in other colours, and three references in one picture.
void colours(Stage& stage) {
    stage.run({"set_mask 5", "set_view_range fraction robust"});
    const QImage atStart = imageAndBar(stage);
    stage.run({"set_colour_map fraction viridis"});
    stage.save(sideBySide({atStart, imageAndBar(stage)}), "colour-maps");
    stage.run({"set_colour_map fraction heat"});
    stage.body().findChild<QAction*>("actionComposite")->trigger();
    stage.settle();
    stage.save(imageAndBar(stage), "composite");
    window<CompositeDialog>()->close();
    stage.run({"analyzer_select_image 0", "select_disp_image 3"});
}

/// An ellipse, and what the masked map holds in it.
void statistics(Stage& stage) {
    stage.click("DrawEllipse");
    stage.select(QPoint(60, 40), QPoint(200, 150));
    stage.click("ShowStatistics");
    stage.takeApart();
    stage.settle();
    stage.takeApart();
    stage.save(sideBySide({imageAndBar(stage), stage.picture(window<AreaStatistics>())}),
               "statistics");
    stage.click("DrawRectangle");
    window<AreaStatistics>()->window()->hide();
    stage.run({"select_region 0 0 0 0", "analyzer_select_image 1", "select_disp_image 3"});
}

void absorption(Stage& stage) {
    stage.run({"select_disp_image 0"});
    stage.click("ViewAbsorption");
    stage.save(part(stage, {"dispA", "VCross", "HCross", "CBar", "frameStrip"}), "absorption");
    stage.click("ViewCounts");
}

/// The shown map as the program itself saves it for a paper.
void colorBar(Stage& stage) {
    stage.run({"set_mask 5"});
    stage.body().saveImageWithBar(stage.fileOf("with-bar"));
    stage.run({"set_mask off"});
}

void imageView(Stage& stage) {
    stage.run({"select_disp_image 0"});
    stage.select(QPoint(60, 40), QPoint(200, 150));
    stage.save(part(stage, {"dispA", "VCross", "HCross", "CBar", "AreaTools"}), "selection");
    stage.run({"select_disp_image 3", "select_region 0 0 0 0", "move_position 139 65"});
    stage.wheel(QPoint(139, 65), 5);
    stage.save(imageAndBar(stage), "zoom");
    stage.click("ResetScale");
    stage.run({"select_disp_image 0"});
    stage.run({"set_mask off"});
    const QImage whole = imageAndBar(stage);
    QWidget* bar = stage.control("CBar");
    stage.drag(bar, QPointF(15, 40), QPointF(15, 40 + 0.55 * bar->height()));
    stage.save(sideBySide({whole, imageAndBar(stage)}), "bar");
    qobject_cast<ColorBar*>(bar)->setAuto(true);
}

void calibration(Stage& stage) {
    stage.run({"calib_show_window", "load_I1_files_of_pattern NEW foil *.tif",
               "calib_load_std standard/fe-foil.dat", "select_disp_image 2"});
    stage.clickAndWait("ExecCalib");
    stage.save(sideBySide({stage.picture(window<CalibCtrl>()), imageAndBar(stage)}), "calibration");
}

/// The batch of the samples, seen while its analysis runs; ends with calibrated maps.
void batch(Stage& stage) {
    BatchCtrl* window = stage.body().batchCtrl();
    window->setBatchFile("calibrate-and-fit.bat");
    window->show();
    window->clearLog();
    stage.settle();
    const QImage commands = stage.picture(window);
    auto* tabs = window->findChild<QTabWidget*>("Tabs");
    tabs->setCurrentIndex(1);
    QImage log;
    const auto atWork = [&](double percent) {
        if (log.isNull() && percent > 40.0 &&
            window->findChild<QPlainTextEdit*>("BatchLogs")
                ->toPlainText()
                .contains("analyzer_exec_LCF")) {
            log = stage.picture(window);
        }
    };
    const auto watching =
        QObject::connect(&stage.body(), &Body::analysisProgress, &stage.body(), atWork);
    stage.run(window->editorLines(Qt::SkipEmptyParts));
    QObject::disconnect(watching);
    stage.save(sideBySide({commands, log}), "batch");
}

void deglitching(Stage& stage) {
    stage.run({"analyzer_set_fixed_scale 0", "select_region 60 54 195 135", "analyzer_exec_LCF",
               "analyzer_select_image_type 0", "analyzer_select_image 0", "select_disp_image 3",
               "move_position 128 95"});
    stage.wheel(QPoint(128, 95), 2);
    qobject_cast<QLineEdit*>(stage.control("DeGlitchFactor"))->setText("5");
    qobject_cast<QLineEdit*>(stage.control("DeGlitchRatio"))->setText("0.5");
    const QImage before = imageAndBar(stage);
    stage.clickAndWait("DeGlitch");
    stage.save(sideBySide({before, imageAndBar(stage)}), "deglitch");
    stage.click("ShowProcImg");
    stage.click("ResetScale");
    stage.run({"select_region 0 0 0 0"});
}

void residualAbsorption(Stage& stage) {
    stage.run({"analyzer_set_ra_energy 7112", "analyzer_exec_ra"});
    stage.click("ShowDMuT");
    const QImage dmut = imageAndBar(stage);
    stage.click("ShowRest");
    stage.save(sideBySide({dmut, imageAndBar(stage)}), "residual-absorption");
}

void saving(Stage& stage) {
    stage.run({"saveDataCfg_show_window", "saveDataCfg_save_as_text"});
    stage.save(window<SaveDataCfg>(), "save-data");
}

}  // namespace

void makeGuidePictures(Stage& stage, bool all) {
    stage.takeApart();
    stage.body().resize(MainWindow);
    if (all) {
        folder(stage);
    }
    firstMap(stage);
    spectrumFile(stage);
    if (all) {
        colorBar(stage);
        mask(stage);
        colours(stage);
        statistics(stage);
        imageView(stage);
        absorption(stage);
    }
    calibration(stage);
    saving(stage);
    if (all) {
        batch(stage);
        deglitching(stage);
        residualAbsorption(stage);
    }
}
