// The main window on screens of several sizes.

#include <QAbstractButton>
#include <QWidget>

#include "Stage.h"
#include "panels/BatchCtrl.h"

namespace {

/// What a screen leaves of its height to a window: its title bar, and a bar of the desktop.
constexpr int TakenByDesktop = 60;

const QSize Screens[] = {{1366, 768}, {1920, 1080}, {2560, 1440}};

struct Tab {
    const char* button;
    const char* panel;
};

/// What opens behind other tabs, in its dock.
constexpr Tab Tabs[] = {{"OpenCalibCtrl", "calibctrl"},
                        {"BatchCtrlB", "batchctrl"},
                        {"ShowStatistics", "statistics"},
                        {"ShowMessages", "messages"}};

}  // namespace

void makeSizePictures(Stage& stage) {
    BatchCtrl* batch = stage.body().batchCtrl();
    batch->setBatchFile(QStringLiteral("calibrate-and-fit.bat"));
    stage.run(batch->editorLines(Qt::SkipEmptyParts));
    stage.run({QStringLiteral("move_position 123 100")});
    for (const QSize& screen : Screens) {
        stage.arrange(screen - QSize(0, TakenByDesktop));
        const QString size = QStringLiteral("%1x%2").arg(screen.width()).arg(screen.height());
        for (const char* view : {"ShowData", "ShowResAnalysis"}) {
            stage.click(view);
            stage.save(&stage.body(),
                       QStringLiteral("body-%1-%2").arg(size, QString::fromLatin1(view).toLower()));
        }
        for (const Tab& tab : Tabs) {
            stage.click(tab.button);
            stage.save(&stage.body(),
                       QStringLiteral("body-%1-%2").arg(size, QString::fromLatin1(tab.panel)));
        }
    }
}
