#include "measurement/ResultParts.h"

#include <algorithm>
#include <limits>

#include "measurement/Origin.h"

namespace {

struct PartRow {
    const char* name;
    const char* title;
    std::vector<ResultFamily> families;
};

const std::vector<PartRow>& partRows() {
    static const std::vector<PartRow> rows{
        {"fit", "Fit with references", {ResultFamily::Reference, ResultFamily::Fit}},
        {"residual", "Residual absorption", {ResultFamily::Residual}},
        {"difference", "Difference of two energies", {ResultFamily::Difference}},
        {"calibration", "Energy calibration", {ResultFamily::Calibration}}};
    return rows;
}

bool isOf(const PartRow& row, const Result& result) {
    return std::find(row.families.begin(), row.families.end(), result.kind().family) !=
           row.families.end();
}

/// Fractions are what somebody looks at first.
bool comesFirst(const Result* result) {
    return result->id == ResultId::Ratio;
}

/// How many rows of bins hold values.
int rowsDone(const Result& result, const BinRaster& raster) {
    const bool isWhole = !result.run || result.run->state == Run::State::Complete;
    return isWhole ? raster.rows : result.run->rows;
}

bool isError(const Result& result) {
    return result.kind().value != result.id;
}

/// Null: not made.
const Result* find(const ResultPart& part, ResultId id, int reference) {
    const auto found = std::find_if(part.results.begin(), part.results.end(),
                                    [id, reference](const Result* result) {
                                        return result->id == id && result->reference == reference;
                                    });
    return found != part.results.end() ? *found : nullptr;
}

/// The error of a result; null: not made.
const Result* errorOf(const ResultPart& part, const Result& result) {
    const std::optional<ResultId> error = errorOf(result.id);
    return error ? find(part, *error, result.reference) : nullptr;
}

/// In words, with the file of the reference that it belongs to.
QString titleOf(const Result& result) {
    const ReferenceInput* reference = result.referenceInput();
    const QString title = QString::fromLatin1(result.kind().title);
    return reference == nullptr
               ? title
               : title + QStringLiteral(", ") + nameInHead(reference->file, result.run->inputs);
}

/// Units that files are read by; mu-t and shares have none.
QString unitOf(const Result& result) {
    const QString unit = QString::fromLatin1(result.kind().unit);
    return unit == QLatin1String("eV") ? unit : QString();
}

NexusMap mapOf(const ResultPart& part, const Result& result) {
    NexusMap map{nameInFiles(result), titleOf(result), unitOf(result),
                 valuesOf(result, part.blanksMasked)};
    if (const Result* error = errorOf(part, result)) {
        map.error = valuesOf(*error, part.blanksMasked);
    }
    if (const ReferenceInput* reference = result.referenceInput()) {
        map.attributes.append({"reference", nameInHead(reference->file, result.run->inputs)});
    }
    return map;
}

}  // namespace

BinRaster rasterOf(const Result& result) {
    const AnalysisGrid& grid = result.image.grid();
    return result.run ? grid.raster() : BinRaster{0, 1, grid.width, 0, 1, grid.height, 0, 0};
}

BinValue valuesOf(const Result& result, bool blanksMasked) {
    const BinRaster raster = rasterOf(result);
    const int rows = rowsDone(result, raster);
    return [&image = result.image, raster, rows, blanksMasked](int column, int row) {
        const int x = raster.x(column);
        const int y = raster.y(row);
        const bool isBlank =
            row >= rows || !raster.holds(column, row) || (blanksMasked && image.isMaskedAt(x, y));
        return isBlank ? std::numeric_limits<double>::quiet_NaN() : image.shownValueAt(x, y);
    };
}

QString nameInFiles(const Result& result) {
    const QString name = QString::fromLatin1(resultKind(result.kind().value).name);
    return name + (result.reference < 0 ? QString() : QStringLiteral("_%1").arg(result.reference)) +
           (isError(result) ? QStringLiteral("_errors") : QString());
}

std::vector<ResultPart> resultParts(const Measurement& measurement) {
    std::vector<ResultPart> parts;
    const std::vector<Result*> all = measurement.results();
    const bool blanksMasked = measurement.settings().savesMasked;
    for (const PartRow& row : partRows()) {
        ResultPart part{
            QString::fromLatin1(row.name), QString::fromLatin1(row.title), blanksMasked, {}};
        std::copy_if(
            all.begin(), all.end(), std::back_inserter(part.results),
            [&row](const Result* result) { return isOf(row, *result) && result->tookPart(); });
        std::stable_partition(part.results.begin(), part.results.end(), comesFirst);
        if (!part.results.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

NexusMaps mapsOf(const ResultPart& part) {
    const AnalysisGrid& grid = part.first().image.grid();
    NexusMaps maps{part.name, part.title, rasterOf(part.first()), {grid.width, grid.height}, {}};
    for (const Result* result : part.results) {
        if (!isError(*result)) {
            maps.maps.push_back(mapOf(part, *result));
        }
    }
    if (part.first().image.isMasked()) {
        maps.blank = [&image = part.first().image, raster = maps.raster](int column, int row) {
            return image.isMaskedAt(raster.x(column), raster.y(row)) ? 1.0 : 0.0;
        };
    }
    return maps;
}

BinTable fitTable(const std::vector<ResultPart>& parts) {
    BinTable table;
    if (parts.empty() || parts.front().name != QLatin1String(partRows().front().name)) {
        return table;
    }
    const ResultPart& fit = parts.front();
    table.raster = rasterOf(fit.first());
    const auto add = [&](ResultId id, int reference, const QString& name) {
        if (const Result* result = find(fit, id, reference)) {
            table.columns.push_back({name, valuesOf(*result, fit.blanksMasked)});
        }
    };
    const int references = static_cast<int>(fit.first().run->inputs.references.size());
    for (int i = 0; i < references; ++i) {
        for (const ResultId id :
             {ResultId::Ratio, ResultId::RatioError, ResultId::DMut, ResultId::DMutError}) {
            add(id, i, QLatin1String(resultKind(id).name) + QStringLiteral("_%1").arg(i + 1));
        }
    }
    add(ResultId::R, -1, QStringLiteral("R"));
    add(ResultId::Chi2Reduced, -1, QStringLiteral("chi2_reduced"));
    add(ResultId::Sum, -1, QStringLiteral("sum"));
    add(ResultId::TotalJump, -1, QStringLiteral("jump"));
    return table;
}
