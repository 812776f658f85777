// Makes the pictures of the windows for the documentation, without a display:
//   tarnwick-screenshots MEASUREMENT OUT [LANGUAGE [FONT-PERCENT]]
// MEASUREMENT is a folder made by tarnwick-samples, LANGUAGE is en or ja.

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QTranslator>
#include <cstdio>

#include "analysis/Analyzer.h"
#include "app/Body.h"
#include "app/Globals.h"
#include "app/Translation.h"
#include "batch/BatchCtrl.h"
#include "batch/BatchDispatcher.h"
#include "batch/BatchText.h"
#include "calibration/CalibCtrl.h"

namespace {

void run(Body& body, const QStringList& lines) {
    QEventLoop loop;
    QObject::connect(body.dispatcher(), &BatchDispatcher::ended, &loop, &QEventLoop::quit);
    body.batchCtrl()->dispatchLines(lines);
    loop.exec();
    QCoreApplication::processEvents();
}

void grabWindows(const QString& prefix) {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (!window->isVisible() || window->windowTitle().isEmpty()) {
            continue;
        }
        QString name = QString::fromLatin1(window->metaObject()->className()).toLower();
        if (name == QLatin1String("xafsview")) {
            static int views = 0;
            name += QString::number(++views);
        }
        const QString file = prefix + name + QStringLiteral(".png");
        if (!window->grab().save(file)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    initGlobals();
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3) {
        std::fprintf(stderr,
                     "usage: tarnwick-screenshots MEASUREMENT OUT [en|ja [FONT-PERCENT]]\n");
        return 2;
    }
    const QString language = arguments.value(3, QStringLiteral("en"));
    const QDir out(arguments.at(2));
    QDir().mkpath(out.path());
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * arguments.value(4, QStringLiteral("100")).toInt() / 100);
    QApplication::setFont(font);
    QTranslator translator;
    if (language == QLatin1String("ja")) {
        installJapanese(&translator);
    }
    const QString prefix = out.absoluteFilePath(
        language + QLatin1Char('-') + arguments.value(4, QStringLiteral("100")) + QLatin1Char('-'));
    QDir::setCurrent(arguments.at(1));

    Body body;
    body.show();
    run(body, {QStringLiteral("analyzer_show_window"), QStringLiteral("calib_show_window"),
               QStringLiteral("saveDataCfg_show_window")});
    body.batchCtrl()->show();
    body.batchCtrl()->setBatchFile(QStringLiteral("calibrate-and-fit.bat"));
    run(body, body.batchCtrl()->editorLines(Qt::SkipEmptyParts));
    run(body,
        {QStringLiteral("select_region 40 30 200 160"), QStringLiteral("move_position 123 100")});
    body.findChild<QAbstractButton*>(QStringLiteral("ShowXafsView"))->click();
    QCoreApplication::processEvents(QEventLoop::AllEvents, 200);
    grabWindows(prefix);
    return 0;
}
