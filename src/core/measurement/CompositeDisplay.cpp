#include "measurement/CompositeDisplay.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <algorithm>

#include "files/PictureFile.h"
#include "measurement/Display.h"
#include "measurement/MapDisplay.h"
#include "measurement/Origin.h"
#include "measurement/PlotSaving.h"
#include "measurement/Room.h"
#include "measurement/Writing.h"

namespace {

class CompositeTexts {
    Q_DECLARE_TR_FUNCTIONS(Composite)
};

constexpr const char* ColorNames[] = {"red", "green", "blue"};

/// Of a composite that has been accepted.
const Result& firstOf(const Measurement& measurement, const Composite& composite) {
    const auto& all = composite.references;
    const auto first = std::find_if(all.begin(), all.end(), [](int n) { return n >= 0; });
    return *measurement.find(ResultId::Ratio, *first);
}

/// What somebody should know of the results.
Outcome judgement(const Measurement& measurement, const Result& result) {
    const QStringList marks = marksOf(measurement, result);
    result.run->saved = true;
    return marks.isEmpty()
               ? Outcome()
               : Outcome::warning(
                     CompositeTexts::tr("the result is %1").arg(stateText(measurement, result)));
}

CompositeParts partsOf(const Measurement& measurement, const Composite& composite) {
    const Result& first = firstOf(measurement, composite);
    const CompositeMaps maps = compositeOf(measurement, composite);
    CompositeParts parts;
    parts.picture = compositePicture(maps);
    parts.names = namesOf(measurement, composite);
    parts.title = QStringLiteral("Fractions of the references");
    for (const QString& mark : marksOf(measurement, first)) {
        parts.title += QStringLiteral(", ") + mark;
    }
    parts.range = QStringLiteral("black %1, full %2").arg(maps.low).arg(maps.high);
    return parts;
}

QString originText(const Measurement& measurement, const Composite& composite) {
    const Result& first = firstOf(measurement, composite);
    OriginEntries meaning;
    QStringList numbers;
    for (std::size_t i = 0; i < composite.references.size(); ++i) {
        const int n = composite.references[i];
        numbers << (n >= 0 ? QString::number(n) : QStringLiteral("none"));
        if (n >= 0) {
            const FileInput& file = first.run->inputs.references[static_cast<std::size_t>(n)].file;
            meaning.append(
                {QString::fromLatin1(ColorNames[i]),
                 QStringLiteral("reference %1 ").arg(n) + nameInHead(file, first.run->inputs)});
        }
    }
    const CompositeMaps maps = compositeOf(measurement, composite);
    meaning.append({OriginText::compositeKey(), numbers.join(QLatin1Char(' '))});
    meaning.append(
        {QStringLiteral("range"), QStringLiteral("%1 to %2").arg(maps.low).arg(maps.high)});
    return originOf(measurement, first, QStringLiteral("save_composite"), meaning).toText();
}

}  // namespace

Outcome judgeComposite(const Measurement& measurement, const Composite& composite) {
    if (!composite.isOn()) {
        return Outcome::failure(CompositeTexts::tr("no reference is chosen"));
    }
    for (const int n : composite.references) {
        const Result* result = n >= 0 ? measurement.find(ResultId::Ratio, n) : nullptr;
        if (n == -1) {
            continue;
        }
        if (result == nullptr) {
            return Outcome::failure(CompositeTexts::tr("no reference panel %1").arg(n));
        }
        if (std::count(composite.references.begin(), composite.references.end(), n) > 1) {
            return Outcome::failure(CompositeTexts::tr("reference %1 has two colours").arg(n));
        }
        if (!result->image.isValid() || !result->run || !result->tookPart()) {
            return Outcome::failure(
                CompositeTexts::tr("there is no map of the fraction of reference %1").arg(n));
        }
    }
    return {};
}

bool showsComposite(const Measurement& measurement) {
    const Settings& settings = measurement.settings();
    return settings.shown == Shown::Result && settings.composite.isOn() &&
           !judgeComposite(measurement, settings.composite).failed();
}

CompositeMaps compositeOf(const Measurement& measurement, const Composite& composite) {
    CompositeMaps maps;
    for (std::size_t i = 0; i < composite.references.size(); ++i) {
        if (composite.references[i] >= 0) {
            maps.maps[i] = valuesOf(*measurement.find(ResultId::Ratio, composite.references[i]));
        }
    }
    const Result& first = firstOf(measurement, composite);
    const bool isFixed = viewOf(measurement, first).range.kind == MapRange::Kind::Fixed ||
                         first.image.isFixedScale();
    const MapColoring coloring = coloringOf(measurement, first);
    if (isFixed && coloring.high > coloring.low) {
        maps.low = coloring.low;
        maps.high = coloring.high;
    }
    return maps;
}

CompositeNames namesOf(const Measurement& measurement, const Composite& composite) {
    CompositeNames names;
    for (std::size_t i = 0; i < composite.references.size(); ++i) {
        const Result* result = measurement.find(ResultId::Ratio, composite.references[i]);
        const ReferenceInput* input = result != nullptr ? result->referenceInput() : nullptr;
        names[i] = input != nullptr ? QFileInfo(input->file.name).completeBaseName() : QString();
    }
    return names;
}

Outcome saveComposite(const Measurement& measurement, const QString& fileName,
                      const Composite& composite) {
    Outcome outcome = judgeComposite(measurement, composite);
    outcome += outcome.failed() ? Outcome() : judgeLetters(measurement);
    outcome += outcome.failed() ? Outcome() : judgePictureName(fileName, isPictureName(fileName));
    constexpr quint64 Bytes = 20;  // of a pixel: three colours, the picture, that with the legend
    outcome += outcome.failed() ? Outcome() : judgeRoomForPixels(measurement, Bytes);
    if (outcome.failed()) {
        return outcome;
    }
    outcome += writeFile(measurement, fileName, [&] {
        return writePicture(fileName, withLegend(partsOf(measurement, composite)),
                            originText(measurement, composite));
    });
    if (!outcome.failed()) {
        outcome += judgement(measurement, firstOf(measurement, composite));
    }
    return outcome;
}
