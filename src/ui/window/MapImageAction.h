#pragma once

#include <QString>
#include <functional>

class Measurement;
class QAction;
class QMainWindow;
class SaveDialogs;

/// The action of a window that asks for a name and saves the energy-shift map under it as an image,
/// with the suffix .tif where the name has none of a TIFF file. Disabled, with the reason, while
/// there is no map.
QAction* addMapImageAction(QMainWindow* window, const Measurement& measurement,
                           SaveDialogs* dialogs, const std::function<void(const QString&)>& save);
