#include "app/Startup.h"

#include <QApplication>
#include <QTranslator>

#include "app/Body.h"
#include "app/CleanEnd.h"
#include "app/CommandLine.h"
#include "app/Globals.h"
#include "app/Translation.h"
#include "batch/BatchCtrl.h"

int runTarnwick(int argc, char** argv) {
    initGlobals();
    QApplication app(argc, argv);
    // Read after the application object has taken its own options out of argv.
    const CommandLine commandLine = readCommandLine(argc, argv);
    DebugFlag = commandLine.debug;

    QTranslator translator;
    if (commandLine.translate) {
        installJapanese(&translator);
    }

    Body body;
    QObject::connect(&body, SIGNAL(finishing()), &app, SLOT(closeAllWindows()));
    const CleanEnd cleanEnd;
    QObject::connect(&cleanEnd, &CleanEnd::requested, &body, &QWidget::close);
    body.show();

    if (!commandLine.batchFile.isEmpty()) {
        body.batchCtrl()->setBatchFile(commandLine.batchFile);
    }
    if (commandLine.execute) {
        body.batchCtrl()->dispatchLines(body.batchCtrl()->editorLines(Qt::SkipEmptyParts));
    }
    return QApplication::exec();
}
