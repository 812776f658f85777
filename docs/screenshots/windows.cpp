#include <QAction>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QWidget>

#include "Stage.h"
#include "panels/BatchCtrl.h"
#include "panels/FolderDialog.h"
#include "window/CompositeDialog.h"
#include "window/GuideWindow.h"
#include "window/SpectrumFitWindow.h"

namespace {

QString nameOf(const QWidget* window) {
    return window->objectName().toLower().remove(QStringLiteral("dock"));
}

/// Each menu of a window as it opens, with what can be done now.
void saveMenus(Stage& stage, const QWidget* window) {
    int number = 0;
    for (const QMenuBar* bar : window->findChildren<QMenuBar*>()) {
        const auto entries = bar->window() == window ? bar->actions() : QList<QAction*>();
        for (const QAction* entry : entries) {
            entry->menu()->popup(QPoint(0, 0));
            stage.settle();
            stage.save(entry->menu(),
                       QStringLiteral("%1-menu%2").arg(nameOf(window)).arg(++number));
            entry->menu()->close();
        }
    }
}

/// Runs lines and keeps a picture of a window at the first row of a kind of work.
void saveAtWork(Stage& stage, const QStringList& lines, Work work, QWidget* window,
                const QString& name) {
    QImage picture;
    const auto watching = QObject::connect(&stage.body().measurement(), &Measurement::progressed,
                                           window, [&](Work now) {
                                               if (now == work && picture.isNull()) {
                                                   picture = stage.picture(window);
                                               }
                                           });
    stage.run(lines);
    QObject::disconnect(watching);
    stage.save(picture, name);
}

void saveWindow(Stage& stage, QWidget* window) {
    stage.giveRoom(window);
    stage.save(window, nameOf(window));
    saveMenus(stage, window);
}

/// What the program asks when it is closed before the results are saved.
void saveQuestion(Stage& stage) {
    stage.body().close();
    stage.settle();
    auto* question = stage.body().findChild<QMessageBox*>();
    stage.save(question, QStringLiteral("question"));
    question->close();
}

/// The windows that open over the others for a while.
void saveDialogs(Stage& stage) {
    stage.body().findChild<QAction*>(QStringLiteral("actionComposite"))->trigger();
    stage.settle();
    auto* composite = stage.body().findChild<CompositeDialog*>();
    stage.save(composite, QStringLiteral("composite"));
    stage.save(&stage.body(), QStringLiteral("body-composite"));
    composite->close();

    FolderDialog folder(contentsOf(stage.body().measurement(),
                                   listingOf(stage.body().measurement(), QDir::currentPath())),
                        &stage.body());
    folder.show();
    stage.settle();
    stage.save(&folder, QStringLiteral("folder"));
    folder.hide();

    GuideWindow guide;
    guide.showPage(QStringLiteral("keyboard.md"));
    guide.show();
    stage.settle();
    stage.save(&guide, QStringLiteral("guide"));
    guide.hide();

    auto* fit = qobject_cast<SpectrumFitWindow*>(stage.control("SpectrumFit"));
    fit->show();
    fit->fit(QStringLiteral("results/calibrated-spectrum-rim.dat"));
    stage.settle();
}

}  // namespace

void makeWindowPictures(Stage& stage) {
    stage.takeApart();
    stage.run({QStringLiteral("analyzer_show_window"), QStringLiteral("calib_show_window"),
               QStringLiteral("saveDataCfg_show_window")});
    BatchCtrl* batch = stage.body().batchCtrl();
    batch->show();
    batch->setBatchFile(QStringLiteral("calibrate-and-fit.bat"));
    saveAtWork(stage, batch->editorLines(Qt::SkipEmptyParts), Work::Calibrate,
               stage.control("CalibCtrl"), QStringLiteral("calibctrl-at-work"));
    saveAtWork(stage, {QStringLiteral("analyzer_exec_ra")}, Work::Residual,
               stage.control("Analyzer"), QStringLiteral("analyzer-at-work"));
    stage.run(
        {QStringLiteral("select_region 40 30 200 160"), QStringLiteral("move_position 123 100")});
    stage.click("ShowXafsView");
    stage.run({QStringLiteral("calib_load_map missing.emp"), QStringLiteral("set_band_w 2"),
               QStringLiteral("analyzer_set_LCF_std 3 1 0.0 missing.dat 0")});
    stage.save(&stage.body(), QStringLiteral("body-counts"));
    stage.click("ShowMessages");
    stage.click("ShowStatistics");
    saveDialogs(stage);

    for (QWidget* window : stage.windows()) {
        saveWindow(stage, window);
    }
    saveQuestion(stage);
}
