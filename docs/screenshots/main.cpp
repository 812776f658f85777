// Makes pictures of the windows without a display:
//   tarnwick-screenshots windows MEASUREMENT OUT LANGUAGE FONT-PERCENT
//   tarnwick-screenshots outcomes MEASUREMENT OUT LANGUAGE FONT-PERCENT
//   tarnwick-screenshots guide MEASUREMENT OUT LANGUAGE
// MEASUREMENT is a folder made by tarnwick-samples, LANGUAGE is en or ja.

#include <QApplication>
#include <QDir>
#include <QTranslator>
#include <cstdio>

#include "Stage.h"
#include "base/Globals.h"
#include "window/Translation.h"

namespace {
/// What most desktops set; the platform without a display has 12.
constexpr double UsualPointSize = 10.0;
}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    initGlobals();
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString what = arguments.value(1);
    const bool guide = what == QLatin1String("guide");
    const bool outcomes = what == QLatin1String("outcomes");
    if (arguments.size() != (guide ? 5 : 6) ||
        (!guide && !outcomes && what != QLatin1String("windows"))) {
        std::fprintf(stderr,
                     "usage: tarnwick-screenshots windows|outcomes MEASUREMENT OUT en|ja "
                     "FONT-PERCENT\n"
                     "       tarnwick-screenshots guide MEASUREMENT OUT en|ja\n");
        return 2;
    }
    const QDir out(arguments.at(3));
    QDir().mkpath(out.path());
    const QString& language = arguments.at(4);
    const QString percent = arguments.value(5, QStringLiteral("100"));
    QFont font(QStringLiteral("Sans Serif"));
    font.setPointSizeF(UsualPointSize * percent.toInt() / 100);
    QApplication::setFont(font);
    QTranslator translator;
    const bool japanese = language == QLatin1String("ja");
    if (japanese) {
        installJapanese(&translator);
    }
    const QString prefix = out.absolutePath() + QLatin1Char('/') +
                           (guide ? (japanese ? QStringLiteral("ja-") : QString())
                                  : language + QLatin1Char('-') + percent + QLatin1Char('-'));
    QDir::setCurrent(arguments.at(2));

    Stage stage(prefix);
    if (guide) {
        makeGuidePictures(stage, !japanese);
    } else if (outcomes) {
        makeOutcomePictures(stage);
    } else {
        makeWindowPictures(stage);
    }
    return 0;
}
