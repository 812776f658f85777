#include "measurement/RecordLines.h"

#include <QCoreApplication>

RecordLines RecordLines::none(const char* text, const QString& name) {
    const auto named = [&name](QString whyNot) {
        return whyNot.replace(QLatin1String("%1"), name);
    };
    return {
        {}, named(QString::fromLatin1(text)), named(QCoreApplication::translate("Record", text))};
}
