// tarnwick-syntax FOLDER: writes into FOLDER how editors show batches.

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

#include "Chains.h"

namespace {

bool write(const QString& fileName, const QString& text) {
    QSaveFile file(fileName);
    const QByteArray bytes = text.toUtf8();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        qWarning("usage: tarnwick-syntax FOLDER");
        return 2;
    }
    initCommandTables();
    const QDir dir(arguments.at(1));
    const bool ok = write(dir.filePath(QStringLiteral("tarnwick-batch.xml")), kateSyntax()) &&
                    write(dir.filePath(QStringLiteral("tarnwick.vim")), vimSyntax()) &&
                    write(dir.filePath(QStringLiteral("tarnwick-detect.vim")), vimDetection());
    if (!ok) {
        qWarning("tarnwick-syntax: cannot write into %s", qPrintable(dir.path()));
    }
    return ok ? 0 : 1;
}
