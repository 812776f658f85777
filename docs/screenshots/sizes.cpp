// The main window on screens of several sizes.

#include <QAbstractButton>
#include <QWidget>

#include "Stage.h"
#include "panels/BatchCtrl.h"

namespace {

/// What a screen leaves of its height to a window: its title bar, and a bar of the desktop.
constexpr int TakenByDesktop = 60;

const QSize Screens[] = {{1366, 768}, {1920, 1080}, {2560, 1440}};

}  // namespace

void makeSizePictures(Stage& stage) {
    BatchCtrl* batch = stage.body().batchCtrl();
    batch->setBatchFile(QStringLiteral("calibrate-and-fit.bat"));
    stage.run(batch->editorLines(Qt::SkipEmptyParts));
    stage.run({QStringLiteral("analyzer_show_window"), QStringLiteral("calib_show_window"),
               QStringLiteral("move_position 123 100")});
    for (const QSize& screen : Screens) {
        stage.body().resize(screen - QSize(0, TakenByDesktop));
        stage.settle();
        const QString size = QStringLiteral("%1x%2").arg(screen.width()).arg(screen.height());
        for (const char* view : {"ShowData", "ShowResAnalysis"}) {
            stage.click(view);
            stage.save(&stage.body(),
                       QStringLiteral("body-%1-%2").arg(size, QString::fromLatin1(view).toLower()));
        }
        for (QWidget* panel : stage.windows()) {
            if (panel != &stage.body() && panel->window() == &stage.body()) {
                stage.save(panel, QStringLiteral("%1-%2").arg(panel->objectName().toLower(), size));
            }
        }
    }
}
