#include "window/Startup.h"

#include <QApplication>
#include <QFontDatabase>
#include <QIcon>
#include <QTextStream>
#include <QTranslator>

#include "base/AddressSpace.h"
#include "base/CleanEnd.h"
#include "base/Globals.h"
#include "base/MemoryEnd.h"
#include "files/UnfinishedFile.h"
#include "panels/BatchCtrl.h"
#include "window/Body.h"
#include "window/CommandLine.h"
#include "window/GuideWindow.h"
#include "window/Layout.h"
#include "window/Remembered.h"
#include "window/Translation.h"
#include "window/WhatWasDone.h"

namespace {

/// Addresses that Qt takes for the window, with its fonts and its threads; without them its
/// libraries end the program in their own way.
constexpr quint64 WindowRoom = quint64(160) << 20;

/// Answers on standard output, without a display.
int tell(bool help, int argc, char** argv) {
    const QCoreApplication app(argc, argv);  // knows where the guide is
    QTextStream out(stdout);
    if (help) {
        out << CommandLineHelp << "User guide: " << GuideWindow::firstPage() << '\n';
    } else {
        out << "tarnwick " TARNWICK_VERSION "\n";
    }
    return 0;
}

}  // namespace

int runTarnwick(int argc, char** argv) {
    prepareForLimit();
    endInOrderWithoutMemory("tarnwick");
    beforeEndWithoutMemory(removeUnfinishedFiles);
    letWritesFail();
    initGlobals();
    const CommandLine asked = readCommandLine(argc, argv);
    if (asked.help || asked.version) {
        return tell(asked.help, argc, argv);
    }
    needAddressSpace(WindowRoom);
    WithoutMemoryEnds<QApplication> app(argc, argv);
    QIcon icon(QStringLiteral(":/tarnwick-48.png"));
    icon.addFile(QStringLiteral(":/tarnwick-128.png"));
    QApplication::setWindowIcon(icon);
    QGuiApplication::setDesktopFileName(QStringLiteral("tarnwick"));
    // Read after the application object has taken its own options out of argv.
    const CommandLine commandLine = readCommandLine(argc, argv);
    DebugFlag = commandLine.debug;

    QTranslator translator;
    if (commandLine.translate) {
        installJapanese(&translator);
        if (QFontDatabase().families(QFontDatabase::Japanese).isEmpty()) {
            qWarning(
                "No Japanese font is installed (Debian: fonts-ipafont-gothic); -e starts in "
                "English");
        }
    }

    if (!commandLine.execute) {
        Remembered::shared().keep();
    }
    CleanEnd cleanEnd(removeUnfinishedFiles);
    Body body;
    QObject::connect(&body, SIGNAL(finishing()), &app, SLOT(closeAllWindows()));
    // From here on an action that is refused memory fails; others end the program.
    app.refused = [&body] { body.tellLack(); };
    // Who ends the program from outside can not be asked.
    QObject::connect(&cleanEnd, &CleanEnd::requested, body.whatWasDone(),
                     &WhatWasDone::closeAtOnce);
    QObject::connect(&app, &QGuiApplication::commitDataRequest, body.whatWasDone(),
                     [&body] { body.whatWasDone()->setAsks(false); });
    body.whatWasDone()->setAsks(!commandLine.execute);
    if (!commandLine.execute) {  // a batch shows what it wants to
        body.layoutOfWindows()->restore();
    }
    body.show();

    if (!commandLine.batchFile.isEmpty()) {
        body.batchCtrl()->setBatchFile(commandLine.batchFile);
    }
    if (commandLine.execute) {
        body.batchCtrl()->dispatchLines(body.batchCtrl()->editorLines(Qt::SkipEmptyParts));
    }
    const int code = QApplication::exec();
    cleanEnd.expectEnd(code);
    return code;
}
