#include <QApplication>
#include <QScrollArea>
#include <QWidget>
#include <algorithm>

#include "Stage.h"
#include "panels/BatchCtrl.h"

void makeWindowPictures(Stage& stage) {
    stage.run({QStringLiteral("analyzer_show_window"), QStringLiteral("calib_show_window"),
               QStringLiteral("saveDataCfg_show_window")});
    BatchCtrl* batch = stage.body().batchCtrl();
    batch->show();
    batch->setBatchFile(QStringLiteral("calibrate-and-fit.bat"));
    stage.run(batch->editorLines(Qt::SkipEmptyParts));
    stage.run(
        {QStringLiteral("select_region 40 30 200 160"), QStringLiteral("move_position 123 100")});
    stage.click("ShowXafsView");

    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (!window->isVisible() || window->windowTitle().isEmpty()) {
            continue;
        }
        // The screen without a display is small: no room for all rows at a large font.
        if (const auto* rows = window->findChild<QScrollArea*>(QStringLiteral("refScroll"))) {
            const int hidden = rows->widget()->height() - rows->viewport()->height();
            window->resize(window->width(), window->height() + std::max(0, hidden));
            stage.settle();
        }
        stage.save(window, window->objectName().toLower());
    }
}
