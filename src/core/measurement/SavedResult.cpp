#include "measurement/SavedResult.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "files/FileNames.h"
#include "measurement/Display.h"
#include "measurement/Origin.h"

namespace {

class Saving {
    Q_DECLARE_TR_FUNCTIONS(Saving)
};

}  // namespace

Outcome judgeSaved(const Measurement& measurement, const Result& result, const QString& name) {
    const auto named = [&name](const QString& text) {
        return name.isEmpty() ? text : QStringLiteral("%1: %2").arg(name, text);
    };
    Outcome outcome;
    if (result.run) {
        result.run->saved = true;
    }
    if (result.run && result.run->state == Run::State::Stopped) {
        outcome.warnings << named(Saving::tr("the result was %1").arg(stoppedText(*result.run)));
    }
    const Difference difference = differenceWhenSaved(measurement, result);
    if (difference != Difference::None) {
        const QString text = QCoreApplication::translate("Difference", differenceText(difference));
        outcome.warnings << named(Saving::tr("the result is %1").arg(text));
    }
    return outcome;
}

Outcome mapWithoutValues() {
    return Outcome::failure(
        Saving::tr("the reference took no part in the fit: its map holds no values"));
}

QString asGiven(const QString& name, const QString& asked) {
    const bool isOther = QFileInfo(asked).isRelative() && QFileInfo(name).isAbsolute();
    return isOther ? typedFileName(QDir().relativeFilePath(name)) : name;
}
