#include "app/Translation.h"

#include <QCoreApplication>
#include <QTranslator>

// Resources of a static library are linked in only when they are asked for by name.
static void initTranslationResource() {
    Q_INIT_RESOURCE(translations);
}

void installJapanese(QTranslator* translator) {
    initTranslationResource();
    translator->load(QStringLiteral(":Tarnwick_ja_JP"), QCoreApplication::applicationDirPath());
    QCoreApplication::installTranslator(translator);
}
