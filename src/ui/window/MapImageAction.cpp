#include "window/MapImageAction.h"

#include <QAction>
#include <QCoreApplication>
#include <QMainWindow>

#include "calibration/EnergyMapTiff.h"
#include "measurement/Measurement.h"
#include "window/SaveDialogs.h"

namespace {

class MapImage {
    Q_DECLARE_TR_FUNCTIONS(MapImage)
};

QString withTiffSuffix(const QString& name) {
    return isTiffMapName(name) ? name : name + QStringLiteral(".tif");
}

}  // namespace

QAction* addMapImageAction(QMainWindow* window, const Measurement& measurement,
                           SaveDialogs* dialogs, const std::function<void(const QString&)>& save) {
    auto* action = new QAction(MapImage::tr("Save Ener&gy Map as Image..."), window);
    action->setObjectName(QStringLiteral("actionSaveMapImage"));
    window->addAction(action);
    QObject::connect(action, &QAction::triggered, window, [dialogs, save] {
        dialogs->askForTarget(
            MapImage::tr("Save Energy Map as Image"),
            {MapImage::tr("Tiff Files (*.tif *.tiff)"), MapImage::tr("Any Files (* *.*)")},
            QStringLiteral("tif"), [save](const QString& name) { save(withTiffSuffix(name)); });
    });
    const auto describe = [action, &measurement] {
        const bool hasMap = measurement.map().image.hasData();
        const QString own = MapImage::tr(
            "The energy shifts in eV as a TIFF file of 32-bit floats, for images of any shape");
        action->setEnabled(hasMap);
        action->setToolTip(hasMap ? own
                                  : own + QLatin1Char('\n') +
                                        MapImage::tr("There is no energy-shift map yet."));
    };
    QObject::connect(&measurement, &Measurement::changed, action, describe);
    describe();
    return action;
}
