#include "measurement/Origin.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include "base/Limits.h"
#include "files/FileNames.h"
#include "measurement/Display.h"
#include "measurement/MapDisplay.h"
#include "measurement/SettingWords.h"
#include "spectra/Units.h"

namespace {

QString exact(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString timesText(int times) {
    return times == 0   ? QStringLiteral("no")
           : times == 1 ? QStringLiteral("yes")
                        : QStringLiteral("%1 times").arg(times);
}

/// What is selected in the area; of a shape with very many vertices, their digest.
QString shapeText(const Area& area) {
    const QString numbers = areaNumbers(area).join(QLatin1Char(' '));
    if (area.vertices.size() <= Limits::MostWrittenVertices) {
        return shapeWord(area.shape) + QLatin1Char(' ') + numbers;
    }
    const QByteArray digest =
        QCryptographicHash::hash(numbers.toLatin1(), QCryptographicHash::Sha256).toHex();
    return QStringLiteral("polygon of %1 vertices, sha256 %2")
        .arg(area.vertices.size())
        .arg(QString::fromLatin1(digest));
}

/// The bins' part of the image.
Area binsOf(const Inputs& in) {
    if (in.area.shape == AreaShape::Rectangle) {
        return in.area;
    }
    const QRect box = in.area.within(in.size.width(), in.size.height()).toRect();
    return {box.left(), box.top(), box.left() + box.width(), box.top() + box.height()};
}

/// Writes entries with a prefix before each key.
class Writer {
  public:
    Writer(OriginEntries* entries, QString folder, QString prefix = {})
        : m_entries(entries), m_folder(std::move(folder)), m_prefix(std::move(prefix)) {}

    void add(const char* key, const QString& value) {
        m_entries->append({m_prefix + QString::fromLatin1(key), value});
    }
    void addFile(const QString& key, const FileInput& file) {
        add(qPrintable(key), relativeTo(m_folder, file.path));
        add(qPrintable(key + QStringLiteral(" sha256")), QString::fromLatin1(file.sha256));
    }
    void frames(const char* key, const StackInputs& stack) {
        for (const Stack::File& file : stack.files) {
            add(key, exact(file.energy) + QStringLiteral(" eV ") + relativeTo(m_folder, file.path));
        }
    }
    void area(const Inputs& in);
    void edge(const Inputs& in, Work work);
    void references(const Inputs& in);
    void map(const std::shared_ptr<const MapInput>& map);
    void inputs(const Inputs& in, Work work);
    Writer below(const char* prefix) {
        return Writer(m_entries, m_folder, m_prefix + QString::fromLatin1(prefix));
    }

  private:
    OriginEntries* m_entries;
    QString m_folder;
    QString m_prefix;
};

void Writer::area(const Inputs& in) {
    add("bins",
        QStringLiteral("half width %1, half height %2").arg(in.halfWidth).arg(in.halfHeight));
    const Area a = binsOf(in);
    add("area", a.isWhole()
                    ? QStringLiteral("whole")
                    : QStringLiteral("%1 %2 %3 %4").arg(a.x0).arg(a.y0).arg(a.x1).arg(a.y1));
    if (in.area.shape != AreaShape::Rectangle) {
        add("area shape", shapeText(in.area));
    }
}

void Writer::edge(const Inputs& in, Work work) {
    if (work == Work::Residual || in.method == LinearFit::Lcf) {
        const bool isEnergy = in.e0.kind == EdgeChoice::Kind::Energy;
        add("E0", isEnergy ? edgeWord(in.e0) + " eV" : edgeWord(in.e0));
    }
    const BackgroundRanges& r = in.ranges;
    add("background ranges", QStringLiteral("%1 %2 %3 %4 eV")
                                 .arg(fieldText(r.preStart), fieldText(r.preEnd),
                                      fieldText(r.postStart), fieldText(r.postEnd)));
}

void Writer::references(const Inputs& in) {
    int number = 0;
    for (const ReferenceInput& reference : in.references) {
        const QString key = QStringLiteral("reference %1").arg(number++);
        if (!reference.takesPart) {
            continue;
        }
        addFile(key, reference.file);
        add(qPrintable(key + QStringLiteral(" shift")), exact(reference.deltaE) + " eV");
        add(qPrintable(key + QStringLiteral(" background")), backgroundWord(reference.background));
    }
}

void Writer::map(const std::shared_ptr<const MapInput>& map) {
    if (!map) {
        add("energy map", QStringLiteral("none"));
        return;
    }
    if (map->calibration) {
        add("energy map", QStringLiteral("calibration"));
        below("energy map ").inputs(*map->calibration, Work::Calibrate);
    } else {
        add("energy map", QStringLiteral("file"));
        addFile(QStringLiteral("energy map file"), map->file);
        add("energy map edge energy", map->edgeEnergy);
    }
    add("energy map smoothed", timesText(map->smoothed));
}

void Writer::inputs(const Inputs& in, Work work) {
    add("size", QStringLiteral("%1 x %2").arg(in.size.width()).arg(in.size.height()));
    frames("I1", in.i1);
    frames("I0", in.i0);
    for (const QString& file : in.dark) {
        add("dark", relativeTo(m_folder, file));
    }
    area(in);
    if (work == Work::Calibrate) {
        addFile(QStringLiteral("standard"), in.standard);
        add("standard background", backgroundWord(in.standardBackground));
        return;
    }
    if (work == Work::Difference) {
        add("method", QStringLiteral("difference of two energies"));
        add("from", exact(in.differenceFrom) + QStringLiteral(" eV"));
        add("to", exact(in.differenceTo) + QStringLiteral(" eV"));
        map(in.map);
        return;
    }
    add("background", backgroundWord(in.background));
    edge(in, work);
    if (work == Work::Residual) {
        add("method", QStringLiteral("residual absorption"));
        add("energy", fieldText(in.raEnergy) + " eV");
        add("factor", fieldText(in.raFactor));
        if (hasCommonE0(in, work)) {
            map(in.map);
        }
        return;
    }
    add("method", in.method == LinearFit::Mlcf ? QStringLiteral("MLCF") : QStringLiteral("LCF"));
    add("reference scale", scaleWord(in.referenceScale));
    if (in.constraints != FitRule::Constraints::None) {
        add("constraints", constraintsWord(in.constraints));
    }
    references(in);
    map(in.map);
}

/// Whether the processed values are those that are saved; an energy map keeps its own.
bool savesProcessed(const Result& result, const QString& savedBy) {
    return result.image.showsProc() && savedBy != QLatin1String("calib_save_map");
}

/// The bins of a map that no run at hand has made, so that a reader finds them where a run's are.
void gridOf(Writer* writer, const AnalysisGrid& grid) {
    Inputs bins;
    bins.halfWidth = grid.halfW;
    bins.halfHeight = grid.halfH;
    const Area area{grid.x0, grid.y0, grid.x1, grid.y1};
    bins.area = area == Area{0, 0, grid.width, grid.height} ? Area() : area;
    writer->area(bins);
}

/// What the result of no run came from: an energy map that was loaded.
Inputs loadedMap(const Measurement& measurement) {
    Inputs in;
    in.map = measurement.mapInput();
    return in;
}

/// How the values that are shown were processed; "no" for those of the analysis.
QString processingOf(const Result& result) {
    if (!result.image.showsProc()) {
        return QStringLiteral("no");
    }
    return result.deglitched
               ? QStringLiteral("deglitched %1 %2")
                     .arg(fieldText(result.deglitched->factor), fieldText(result.deglitched->ratio))
               : QStringLiteral("yes");
}

void addState(Writer& writer, const Measurement& measurement, const Result& result) {
    if (result.run) {
        writer.add("state", stateOf(result));
    }
    const Difference difference = differenceWhenSaved(measurement, result);
    if (difference != Difference::None) {
        writer.add("remark", QString::fromLatin1(differenceText(difference)));
    }
}

void addMask(Writer& writer, const Measurement& measurement) {
    writer.add("mask", QStringLiteral("total jump below %1 times its error")
                           .arg(fieldText(measurement.settings().mask)));
}

/// How a picture shows it, where it is not as stated.
void addView(Writer& writer, const Measurement& measurement, const Result& result) {
    const MapView& view = viewOf(measurement, result);
    const MapColoring coloring = coloringOf(measurement, result);
    writer.add("colours", colorWords(view.colors).join(QLatin1Char(' ')));
    writer.add("range",
               QStringLiteral("%1 %2 to %3")
                   .arg(rangeWord(view.range.kind), exact(coloring.low), exact(coloring.high)));
}

void addInputs(Writer& writer, const Measurement& measurement, const Result& result) {
    if (!result.run) {
        writer.map(measurement.mapInput());
        return;
    }
    writer.inputs(result.run->inputs, result.run->work);
    if (result.run->mean) {
        writer.add("E0 of the mean spectrum", exact(result.run->mean->e0()) + " eV");
    }
    if (result.id == ResultId::Shift && measurement.mapInput()) {
        writer.add("smoothed", timesText(measurement.mapInput()->smoothed));
    }
}

Inputs inputsOf(const Measurement& measurement, const Result& result) {
    return result.run ? result.run->inputs : loadedMap(measurement);
}

/// How it was saved, and the record or why there is none.
void addEnd(OriginText* origin, Writer& writer, const QString& savedBy, const RecordLines& record) {
    writer.add(qPrintable(OriginText::savedByKey()), savedBy);
    origin->record = record.lines;
    if (record.lines.isEmpty()) {
        writer.add(qPrintable(OriginText::recordKey()), record.whyNot);
    }
}

}  // namespace

QString programName() {
    return QStringLiteral("Tarnwick " TARNWICK_VERSION);
}

QString originFolder(const Inputs& inputs) {
    QStringList files;
    for (const StackInputs* stack : {&inputs.i1, &inputs.i0}) {
        for (const Stack::File& file : stack->files) {
            files << file.path;
        }
    }
    if (files.isEmpty() && inputs.map && !inputs.map->calibration) {
        files << inputs.map->file.path;
    }
    return deepestFolder(files);
}

QString stateOf(const Result& result) {
    if (!result.run) {
        return QString();
    }
    return result.run->state == Run::State::Complete
               ? QStringLiteral("complete")
               : QStringLiteral("stopped at %1 %").arg(static_cast<int>(result.run->percent));
}

QString nameInHead(const FileInput& file, const Inputs& inputs) {
    return QDir::isAbsolutePath(file.name) ? relativeTo(originFolder(inputs), file.path)
                                           : file.name;
}

OriginEntries meaningOfCounts(const Result& result, const TiffOptions& form) {
    const TiffRange range = rangeInTiff(result.image, form);
    const auto text = [&](double value) {
        return exact(value) + QLatin1Char(' ') + QString::fromLatin1(result.kind().unit);
    };
    const bool hasRange = form.fixedScale || range.low <= range.high;
    OriginEntries meaning{
        {QStringLiteral("counts 0"), hasRange ? text(range.low) : QStringLiteral("nan")},
        {QStringLiteral("counts 65535"), hasRange ? text(range.high) : QStringLiteral("nan")},
        {QStringLiteral("blank"), QStringLiteral("0")}};
    if (form.fixedScale) {
        meaning.append({QStringLiteral("outside"), form.asAnalyzed
                                                       ? QStringLiteral("cut")
                                                       : QStringLiteral("wrapped around")});
    }
    return meaning;
}

OriginEntries meaningOfFloats() {
    return {{QStringLiteral("values"), QStringLiteral("32-bit float")},
            {QStringLiteral("blank"), QStringLiteral("nan")}};
}

OriginText originOf(const Measurement& measurement, const Result& result, const QString& savedBy,
                    const OriginEntries& meaning) {
    OriginText origin;
    const QString folder = originFolder(inputsOf(measurement, result));
    Writer writer(&origin.entries, folder);
    writer.add("program", programName());
    writer.add("result", QString::fromLatin1(result.kind().source));
    writer.add("title", QString::fromLatin1(result.kind().title));
    writer.add("unit", QString::fromLatin1(result.kind().unit));
    origin.entries += meaning;
    if (const ReferenceInput* reference = result.referenceInput()) {
        writer.add("of reference", relativeTo(folder, reference->file.path));
    }
    addState(writer, measurement, result);
    writer.add("processed",
               savesProcessed(result, savedBy) ? processingOf(result) : QStringLiteral("no"));
    const bool isPicture = savedBy.startsWith(QLatin1String("save_image"));
    const bool isComposite = savedBy == QLatin1String("save_composite");
    if (result.image.isMasked() &&
        (isPicture || isComposite || measurement.settings().savesMasked)) {
        addMask(writer, measurement);
    }
    if (isPicture && !viewOf(measurement, result).isStated()) {
        addView(writer, measurement, result);
    }
    addInputs(writer, measurement, result);
    if (!result.run && savedBy == QLatin1String("calib_save_map")) {
        gridOf(&writer, result.image.grid());
    }
    addEnd(&origin, writer, savedBy, measurement.recordOf(result, savedBy));
    return origin;
}

OriginText originOf(const Measurement& measurement, const std::vector<ResultPart>& parts,
                    const QString& savedBy) {
    OriginText origin;
    Writer writer(&origin.entries, QString());
    writer.add("program", programName());
    for (const ResultPart& part : parts) {
        const Result& first = part.first();
        const QString folder = originFolder(inputsOf(measurement, first));
        Writer ofPart(&origin.entries, folder, part.name + QLatin1Char(' '));
        for (const Result* result : part.results) {
            ofPart.add("map", nameInFiles(*result));
            if (result->image.showsProc()) {
                ofPart.add("processed",
                           nameInFiles(*result) + QLatin1Char(' ') + processingOf(*result));
            }
        }
        addState(ofPart, measurement, first);
        if (first.image.isMasked()) {
            addMask(ofPart, measurement);
        }
        addInputs(ofPart, measurement, first);
    }
    addEnd(&origin, writer, savedBy, measurement.recordOfResults(savedBy));
    return origin;
}
