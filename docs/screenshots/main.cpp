// Makes pictures of the windows without a display:
//   tarnwick-screenshots windows MEASUREMENT OUT LANGUAGE FONT-PERCENT [dark]
//   tarnwick-screenshots outcomes MEASUREMENT OUT LANGUAGE FONT-PERCENT [dark]
//   tarnwick-screenshots sizes MEASUREMENT OUT LANGUAGE FONT-PERCENT [dark]
//   tarnwick-screenshots guide MEASUREMENT OUT LANGUAGE
// MEASUREMENT is a folder made by tarnwick-samples, LANGUAGE is en or ja. QT_SCALE_FACTOR counts as
// for any program.

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QTranslator>
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

#include "Stage.h"
#include "base/Globals.h"
#include "window/Translation.h"

namespace {

/// What most desktops set; the platform without a display has 12.
constexpr double UsualPointSize = 10.0;

struct Kind {
    const char* name;
    void (*make)(Stage& stage);  ///< null: of the guide
};

constexpr Kind Kinds[] = {{"windows", makeWindowPictures},
                          {"outcomes", makeOutcomePictures},
                          {"sizes", makeSizePictures},
                          {"guide", nullptr}};

const Kind* kindOf(const QString& name) {
    const auto* found = std::find_if(std::begin(Kinds), std::end(Kinds), [&](const Kind& kind) {
        return name == QLatin1String(kind.name);
    });
    return found != std::end(Kinds) ? found : nullptr;
}

/// A dark theme as desktops have them.
void turnDark() {
    QApplication::setStyle(QStringLiteral("Fusion"));
    QPalette dark;
    const QColor text(230, 230, 230);
    const QColor grey(128, 128, 128);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::ToolTipText, QPalette::BrightText}) {
        dark.setColor(role, text);
        dark.setColor(QPalette::Disabled, role, grey);
    }
    dark.setColor(QPalette::Window, QColor(49, 52, 56));
    dark.setColor(QPalette::Button, QColor(49, 52, 56));
    dark.setColor(QPalette::Base, QColor(30, 32, 35));
    dark.setColor(QPalette::AlternateBase, QColor(40, 42, 46));
    dark.setColor(QPalette::ToolTipBase, QColor(49, 52, 56));
    dark.setColor(QPalette::PlaceholderText, grey);
    dark.setColor(QPalette::Highlight, QColor(61, 174, 233));
    dark.setColor(QPalette::HighlightedText, QColor(20, 20, 20));
    dark.setColor(QPalette::Link, QColor(61, 174, 233));
    for (const auto& [role, level] :
         {std::pair{QPalette::Light, 80}, std::pair{QPalette::Midlight, 66},
          std::pair{QPalette::Mid, 38}, std::pair{QPalette::Dark, 26},
          std::pair{QPalette::Shadow, 10}}) {
        dark.setColor(role, QColor(level, level, level));
    }
    QApplication::setPalette(dark);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    initGlobals();
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const Kind* kind = kindOf(arguments.value(1));
    const bool isGuide = kind != nullptr && kind->make == nullptr;
    const int most = isGuide ? 5 : 7;
    if (kind == nullptr || arguments.size() > most || arguments.size() < (isGuide ? 5 : 6)) {
        std::fprintf(stderr,
                     "usage: tarnwick-screenshots windows|outcomes|sizes MEASUREMENT OUT en|ja "
                     "FONT-PERCENT [dark]\n"
                     "       tarnwick-screenshots guide MEASUREMENT OUT en|ja\n");
        return 2;
    }
    const QDir out(arguments.at(3));
    QDir().mkpath(out.path());
    const QString& language = arguments.at(4);
    const QString percent = arguments.value(5, QStringLiteral("100"));
    const bool isDark = arguments.value(6) == QLatin1String("dark");
    QFont font(QStringLiteral("Sans Serif"));
    font.setPointSizeF(UsualPointSize * percent.toInt() / 100);
    QApplication::setFont(font);
    if (isDark) {
        turnDark();
    }
    QTranslator translator;
    const bool japanese = language == QLatin1String("ja");
    if (japanese) {
        installJapanese(&translator);
    }
    QString prefix = out.absolutePath() + QLatin1Char('/');
    if (isGuide) {
        prefix += japanese ? QStringLiteral("ja-") : QString();
    } else {
        const bool isScaled = app.devicePixelRatio() > 1.0;
        prefix += language + QLatin1Char('-') + percent + QLatin1Char('-') +
                  (isDark ? QStringLiteral("dark-") : QString()) +
                  (isScaled ? QStringLiteral("2x-") : QString());
    }
    QDir::setCurrent(arguments.at(2));

    Stage stage(prefix);
    if (isGuide) {
        makeGuidePictures(stage, !japanese);
    } else {
        kind->make(stage);
    }
    return 0;
}
