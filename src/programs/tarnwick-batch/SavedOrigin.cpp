#include "tarnwick-batch/SavedOrigin.h"

#include "batch/BatchLine.h"
#include "output/ReadOrigin.h"

std::optional<QString> originLines(const QString& fileName, QString* whyNot) {
    const std::optional<OriginText> origin = readOrigin(fileName, whyNot);
    if (!origin) {
        return std::nullopt;
    }
    QString text;
    for (const auto& entry : origin->entries) {
        text += entry.first + QStringLiteral(" = ") + entry.second + QLatin1Char('\n');
    }
    return text;
}

std::optional<QString> recordedBatch(const QString& fileName, QString* whyNot) {
    const std::optional<OriginText> origin = readOrigin(fileName, whyNot);
    if (!origin) {
        return std::nullopt;
    }
    if (origin->record.isEmpty()) {
        const QString reason = origin->value(OriginText::recordKey());
        *whyNot = QStringLiteral("no record in it");
        *whyNot += reason.isEmpty() ? QString() : QStringLiteral(": ") + reason;
        return std::nullopt;
    }
    const QString command = origin->value(OriginText::savedByKey());
    const QStringList further =
        origin->value(OriginText::compositeKey()).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const std::optional<QStringList> lines = batchLine(command, QStringList{fileName} + further);
    if (!lines) {
        *whyNot = command.isEmpty() ? QStringLiteral("its origin does not say what saved it")
                                    : QStringLiteral("its name cannot stand in a batch line");
        return std::nullopt;
    }
    return (origin->record + *lines).join(QLatin1Char('\n')) + QLatin1Char('\n');
}
