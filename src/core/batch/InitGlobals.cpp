#include <QMetaType>

#include "base/Globals.h"
#include "batch/CmdLine.h"
#include "batch/CommandTables.h"
#include "frames/TiffData.h"
#include "frames/TiffFile.h"
#include "spectra/XafsSpectrum.h"

void initGlobals() {
    DataDir = QStringLiteral("/home/labuser/Data");
    buildColourTables();
    initCommandTables();
    DebugFlag = false;

    // Signals between threads drop values of types that are not registered, without a word.
    qRegisterMetaType<CmdLine>("CmdLine");
    qRegisterMetaType<TiffData*>("TiffData*");
    qRegisterMetaType<XafsSpectrum>("XafsSpectrum");
    qRegisterMetaType<XafsSpectrum*>("XafsSpectrum*");
    silenceTiffMessages();
}
