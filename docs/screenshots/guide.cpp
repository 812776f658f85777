// The scenes of the user guide, in the order of its chapters.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSlider>
#include <QTabWidget>

#include "Stage.h"
#include "base/Globals.h"
#include "display/ColorBar.h"
#include "display/XafsView.h"
#include "maps/Analyzed2DRes.h"
#include "panels/Analyzer.h"
#include "panels/BatchCtrl.h"
#include "panels/CalibCtrl.h"
#include "panels/LCFReference.h"
#include "panels/SaveDataCfg.h"
#include "window/SpectrumFitWindow.h"

namespace {

const QSize MainWindow(1120, 800);
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

/// The main window with numbers at its parts, as the first chapter lists them.
QImage numbered(Stage& stage) {
    constexpr int Margin = 34;
    constexpr double Radius = 13.0;
    const QList<const char*> parts = {"SelectI1Files", "SelectI0Files", "ShowData", "dispA",
                                      "HCross",        "CBar",          "Prev",     "positionBox",
                                      "binBox",        "windowBox",     "ToolBox"};
    const QImage window = stage.picture(&stage.body());
    QImage image(window.width() + 2 * Margin, window.height(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.drawImage(Margin, 0, window);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(14);
    painter.setFont(font);
    for (int i = 0; i < parts.size(); ++i) {
        const QWidget* control = stage.control(parts.at(i));
        const QRect at(control->mapTo(&stage.body(), QPoint(0, 0)), control->size());
        const bool atLeft = at.left() < Margin;
        const bool atRight = at.right() > window.width() - 2 * Margin;
        const double x = atLeft    ? Margin / 2.0
                         : atRight ? window.width() + Margin * 1.5
                                   : Margin + at.right() - Radius;
        const double y = atLeft || atRight   ? at.top() + std::min(at.height() / 2, 60)
                         : at.height() < 120 ? at.top() + Radius
                                             : at.bottom() - Radius;
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 90, 170));
        painter.drawEllipse(QPointF(x, y), Radius, Radius);
        painter.setPen(Qt::white);
        painter.drawText(QRectF(x - Radius, y - Radius, 2 * Radius, 2 * Radius), Qt::AlignCenter,
                         QString::number(i + 1));
    }
    return image;
}

QStringList sampleFrames() {
    return {"load_I0_files_of_pattern NEW i0 *.tif", "load_I1_files_of_pattern NEW i1 *.tif",
            "set_band_w 1", "set_band_h 1"};
}

/// First map: frames, spectrum, references and fit, map.
void firstMap(Stage& stage) {
    stage.run(sampleFrames());
    qobject_cast<QSlider*>(stage.control("SeekBar"))->setValue(FrameBehindEdge);
    stage.body().showData(FrameBehindEdge);
    stage.run({"move_position 123 100"});
    stage.save(numbered(stage), "main-window");

    stage.click("ShowXafsView");
    stage.run({"analyzer_show_window", "analyzer_set_LCF_std 0 1 0.0 references/metal.dat 0",
               "analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0",
               "analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0", "move_position 107 114"});
    auto* analyzer = window<Analyzer>();
    auto* plot = window<XafsView>(analyzer->view());
    plot->findChild<QComboBox*>("Ordinate")->setCurrentIndex(MuT);
    plot->findChild<QCheckBox*>("Backgrounds")->setChecked(true);
    stage.settle();
    stage.save(plot, "spectrum");
    stage.save(analyzer, "analyzer");
    stage.save(analyzer->view(), "fit");

    stage.run({"analyzer_set_dMut_scale_min 0", "analyzer_set_dMut_scale_max 1",
               "analyzer_set_ratio_scale_min 0", "analyzer_set_ratio_scale_max 1",
               "analyzer_set_fixed_scale 1", "analyzer_exec_LCF", "analyzer_select_image_type 1",
               "analyzer_select_image 1", "select_disp_image 3"});
    stage.save(stage.picture(&stage.body()), "map");
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
    stage.run({"analyzer_set_error_maps 1", "analyzer_exec_LCF"});
    const QImage whole = imageAndBar(stage);
    stage.run({"set_mask 5"});
    stage.save(sideBySide({whole, imageAndBar(stage)}), "mask");
    stage.run({"set_mask off"});
}

/// The shown map as the program itself saves it for a paper.
void colorBar(Stage& stage) {
    stage.body().saveImageWithBar(stage.fileOf("with-bar"));
}

void imageView(Stage& stage) {
    stage.run({"select_disp_image 0"});
    stage.select(QPoint(60, 40), QPoint(200, 150));
    stage.save(part(stage, {"dispA", "VCross", "HCross", "CBar"}), "selection");
    stage.run({"select_disp_image 3", "select_region 0 0 0 0", "move_position 139 65"});
    stage.wheel(QPoint(139, 65), 5);
    stage.save(imageAndBar(stage), "zoom");
    stage.click("ResetScale");
    stage.run({"select_disp_image 0"});
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

/// The picture of the README: the edge jump due to each species.
void result(Stage& stage) {
    const QStringList names = {"metal", "2+ oxide", "3+ oxide"};
    QList<QImage> maps;
    for (int i = 0; i < names.size(); ++i) {
        const QImage map = *window<Analyzer>()->references().at(i)->result(0)->img();
        const QImage large = map.convertToFormat(QImage::Format_RGB32).scaled(2 * map.size());
        QImage titled(large.width(), large.height() + 28, QImage::Format_RGB32);
        titled.fill(Qt::white);
        QPainter painter(&titled);
        painter.drawImage(0, 0, large);
        QFont font = painter.font();
        font.setPixelSize(18);
        painter.setFont(font);
        painter.drawText(QRect(0, large.height(), large.width(), 28), Qt::AlignCenter, names.at(i));
        maps.append(titled);
    }
    stage.save(sideBySide(maps), "result");
}

void deglitching(Stage& stage) {
    stage.run({"select_region 60 54 195 135", "analyzer_exec_LCF", "analyzer_select_image_type 0",
               "analyzer_select_image 0", "select_disp_image 3", "move_position 128 95"});
    stage.wheel(QPoint(128, 95), 2);
    qobject_cast<QLineEdit*>(stage.control("DeGlitchFactor"))->setText("5");
    qobject_cast<QLineEdit*>(stage.control("DeGlitchRatio"))->setText("0.5");
    const QImage before = imageAndBar(stage);
    stage.click("DeGlitch");
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
    stage.body().resize(MainWindow);
    firstMap(stage);
    spectrumFile(stage);
    if (all) {
        colorBar(stage);
        mask(stage);
        imageView(stage);
    }
    calibration(stage);
    saving(stage);
    if (all) {
        batch(stage);
        result(stage);
        deglitching(stage);
        residualAbsorption(stage);
    }
}
