#include "window/Translation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

// Resources of a static library are linked in only when they are asked for by name.
static void initTranslationResource() {
    Q_INIT_RESOURCE(translations);
}

void installJapanese(QTranslator* translator) {
    initTranslationResource();
    translator->load(QStringLiteral(":Tarnwick_ja_JP"), QCoreApplication::applicationDirPath());
    QCoreApplication::installTranslator(translator);
    // Qt's own texts, as in its file dialog, where they are installed.
    auto* qt = new QTranslator(translator);
    if (qt->load(QStringLiteral("qtbase_ja"),
                 QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(qt);
    }
}
