#include "batch/Action.h"

#include <QDebug>
#include <QFileInfo>

#include "batch/BatchTexts.h"

int CommandArgs::integer(int i) const {
    bool ok = false;
    const int value = text(i).toInt(&ok);
    if (!ok && !text(i).isEmpty()) {
        qDebug().noquote() << "not an integer, read as 0:" << text(i);
    }
    return ok ? value : 0;
}

double CommandArgs::real(int i) const {
    bool ok = false;
    const double value = text(i).toDouble(&ok);
    if (!ok && !text(i).isEmpty()) {
        qDebug().noquote() << "not a number, read as 0:" << text(i);
    }
    return ok ? value : 0.0;
}

bool CommandArgs::isNew(int i) const {
    return text(i).toUpper() == QLatin1String("NEW");
}

void Action::expect(const FileInput& file) {
    const auto expected = digests.find(file.path);
    if (!file.path.isEmpty() && expected != digests.end() && *expected != file.sha256) {
        outcome.warnings
            << Batch::tr("%1 is not the file that was used").arg(QFileInfo(file.path).fileName());
    }
}
