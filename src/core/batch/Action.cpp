#include "batch/Action.h"

#include <QFileInfo>

#include "batch/BatchTexts.h"

bool CommandArgs::isNew(int i) const {
    return text(i).toUpper() == QLatin1String("NEW");
}

StackId CommandArgs::stack(int i) const {
    return text(i).toUpper() == QLatin1String("I1") ? StackId::I1 : StackId::I0;
}

void Action::expect(const FileInput& file) {
    const auto expected = digests.find(file.path);
    if (!file.path.isEmpty() && expected != digests.end() && *expected != file.sha256) {
        outcome.warnings
            << Batch::tr("%1 is not the file that was used").arg(QFileInfo(file.path).fileName());
    }
}
