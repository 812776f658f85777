#include "batch/RecordWriter.h"

#include <QLocale>
#include <cmath>

#include "base/Limits.h"
#include "batch/BatchLine.h"
#include "files/FileNames.h"
#include "frames/EnergyFromName.h"
#include "measurement/SettingWords.h"
#include "spectra/Background.h"
#include "spectra/Units.h"

namespace {

constexpr int AnySize = 1 << 30;

QString number(int n) {
    return QString::number(n);
}

QString flag(bool on) {
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

QString exact(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString joined(const QString& command, const QStringList& args) {
    return command + QLatin1Char('\n') + args.join(QLatin1Char('\n'));
}

QStringList rangesArgs(const BackgroundRanges& r) {
    return {fieldText(r.preStart), fieldText(r.preEnd), fieldText(r.postStart),
            fieldText(r.postEnd)};
}

QStringList namesArgs(const QString& stack, const NamePattern& names) {
    // A batch takes no pattern that is none; it finds nothing, and so does this one.
    const bool isValid = expressionOf(names.pattern).isValid();
    return {stack, isValid ? names.pattern : QStringLiteral("(?!)"), names.unit()};
}

/// What is in force before the first line, by its keys.
QHash<QString, QString> startOfBatch() {
    QHash<QString, QString> state;
    const auto atStart = [&state](const char* key, const char* command, const QStringList& args) {
        state[QString::fromLatin1(key)] = joined(QString::fromLatin1(command), args);
    };
    const Settings s;
    atStart("pattern I1", "set_energy_pattern", namesArgs(QStringLiteral("I1"), s.names[1]));
    atStart("pattern I0", "set_energy_pattern", namesArgs(QStringLiteral("I0"), s.names[0]));
    atStart("width", "set_band_w", {number(s.halfWidth)});
    atStart("height", "set_band_h", {number(s.halfHeight)});
    atStart("area", "select_region", {"0", "0", "0", "0"});
    atStart("target background", "calib_set_target_background", {backgroundWord(0)});
    atStart("standard background", "calib_set_std_background", {backgroundWord(0)});
    atStart("crystal", "calib_set_crystal", {QString::fromLatin1(CrystalTable[0].name)});
    atStart("edge", "calib_set_edge_eV", {});
    atStart("e0", "set_E0", {edgeWord(s.e0)});
    atStart("ranges", "set_background_ranges", rangesArgs(s.ranges));
    atStart("scale", "analyzer_set_reference_scale", {scaleWord(s.referenceScale)});
    atStart("method", "analyzer_set_LCF_mode", {"0"});
    atStart("ra energy", "analyzer_set_ra_energy", {fieldText(s.raEnergy)});
    atStart("ra factor", "analyzer_set_ra_factor", {fieldText(s.raFactor)});
    atStart("constraints", "analyzer_set_LCF_constraints", {"none"});
    atStart("error maps", "analyzer_set_error_maps", {"0"});
    atStart("mask", "set_mask", {"off"});
    atStart("masked", "saveDataCfg_masked", {"0"});
    atStart("fixed scale", "analyzer_set_fixed_scale", {"0"});
    atStart("dmut min", "analyzer_set_dMut_scale_min", {fieldText(s.dMutMin)});
    atStart("dmut max", "analyzer_set_dMut_scale_max", {fieldText(s.dMutMax)});
    atStart("ratio min", "analyzer_set_ratio_scale_min", {fieldText(s.ratioMin)});
    atStart("ratio max", "analyzer_set_ratio_scale_max", {fieldText(s.ratioMax)});
    atStart("form", dataForm(s.dataForm).command, {});
    atStart("tiff fixed", "saveDataCfg_tiff_fix_scale", {flag(s.tiff.fixedScale)});
    atStart("tiff min", "saveDataCfg_tiff_scale_min", {fieldText(s.tiff.scaleMin)});
    atStart("tiff max", "saveDataCfg_tiff_scale_max", {fieldText(s.tiff.scaleMax)});
    atStart("as analyzed", "saveDataCfg_tiff_as_analyzed", {flag(s.tiff.asAnalyzed)});
    atStart("separator", "saveDataCfg_text_as_csv", {});
    atStart("layout", "saveDataCfg_text_as_xyz", {});
    atStart("corrected", "set_spectra_corrected", {"1"});
    atStart("each row", "analyzer_set_disp_on_time", {"0"});
    atStart("display", "select_disp_image", {"0"});
    atStart("type", "analyzer_select_image_type", {"0"});
    atStart("axes", "set_plot_axes", {"2", "eV"});
    atStart("view range", "set_view_range", {});
    atStart("frame view", "set_frame_view", {"counts"});
    for (const ResultKind& kind : ResultKinds) {
        const QString name = QString::fromLatin1(kind.name);
        state[QStringLiteral("range ") + name] = rangeWord(MapRange().kind);
        state[QStringLiteral("colours ") + name] = colorWords(ViewColors()).join(QLatin1Char(' '));
    }
    atStart("frame colours", "set_colour_map", {"frames", "stated"});
    return state;
}

const QHash<QString, QString>& stateAtStart() {
    static const QHash<QString, QString> state = startOfBatch();
    return state;
}

}  // namespace

QStringList edgeEnergyArgs(const QString& text) {
    bool ok = false;
    const double energy = text.toDouble(&ok);
    return ok && std::isfinite(energy) ? QStringList{text} : QStringList();
}

RecordWriter::RecordWriter(const QString& folder) : m_folder(folder), m_atStart(stateAtStart()) {}

void RecordWriter::put(const QString& key, const QString& command, const QStringList& args) {
    const QString wanted = joined(command, args);
    if (!isInForce(key, wanted)) {
        assume(key, wanted);
        line(command, args);
    }
}

void RecordWriter::line(const QString& command, const QStringList& args) {
    QString refused;
    const auto physical = batchLine(command, args, &refused);
    if (physical) {
        m_lines += *physical;
    } else if (!m_failure) {
        m_failure = RecordLines::none(
            QT_TRANSLATE_NOOP("Record", "a batch cannot carry the name %1"), refused);
    }
}

QString RecordWriter::fileName(const QString& path) const {
    return relativeTo(m_folder, path);
}

void RecordWriter::digest(const FileInput& file) {
    const QPair<QString, QByteArray> entry{fileName(file.path), file.sha256};
    if (!file.sha256.isEmpty() && !m_digests.contains(entry)) {
        m_digests.append(entry);
    }
}

bool RecordWriter::energyIsKept(const Stack::File& file, const QString& relative,
                                int before) const {
    const double found =
        numberFromName(relative, expressionOf(file.names.pattern)).value_or(before - 1);
    return found * file.names.factor() == file.energy;
}

void RecordWriter::loadGroup(const char* name, bool first, const QVector<Stack::File>& files) {
    const QString stack = QString::fromLatin1(name);
    put(QStringLiteral("pattern ") + stack, QStringLiteral("set_energy_pattern"),
        namesArgs(stack, files.first().names));
    QStringList args{first ? QStringLiteral("NEW") : QStringLiteral("ADD")};
    for (const Stack::File& file : files) {
        args << fileName(file.path);
    }
    line(QStringLiteral("load_%1_files").arg(stack), args);
}

void RecordWriter::stack(const char* name, const StackInputs& stack) {
    const QString key = QStringLiteral("stack ") + QString::fromLatin1(name);
    const QString value = stack.files.isEmpty() ? QString() : QString::number(stack.revision);
    if (isInForce(key, value)) {
        return;
    }
    assume(key, value);
    if (stack.files.isEmpty()) {
        line(QStringLiteral("clear_%1_files").arg(QString::fromLatin1(name)));
        return;
    }
    QVector<Stack::File> group;
    bool first = true;
    for (int i = 0; i < stack.files.size(); ++i) {
        const Stack::File& file = stack.files.at(i);
        if (!m_failure && !energyIsKept(file, fileName(file.path), i)) {
            m_failure = RecordLines::none(
                QT_TRANSLATE_NOOP("Record", "the energy of %1 stands in the name of its folder"),
                fileName(file.path));
        }
        // Of what is loaded together either all have an energy in their name or none has.
        const auto hasEnergy = [this](const Stack::File& each) {
            return numberFromName(fileName(each.path), expressionOf(each.names.pattern))
                .has_value();
        };
        const bool isAnother = !group.isEmpty() && (!(group.last().names == file.names) ||
                                                    hasEnergy(group.last()) != hasEnergy(file));
        if (isAnother) {
            loadGroup(name, first, group);
            first = false;
            group.clear();
        }
        group.append(file);
    }
    loadGroup(name, first, group);
}

void RecordWriter::frames(const Inputs& in) {
    stack("I1", in.i1);
    stack("I0", in.i0);
    const QString dark = in.dark.join(QLatin1Char('\n'));
    if (!isInForce(QStringLiteral("dark"), dark)) {
        assume(QStringLiteral("dark"), dark);
        QStringList names;
        for (const QString& file : in.dark) {
            names << fileName(file);
        }
        line(names.isEmpty() ? QStringLiteral("clear_dark") : QStringLiteral("load_dark_files"),
             names);
    }
}

void RecordWriter::standard(const FileInput& file, int background) {
    put(QStringLiteral("standard background"), QStringLiteral("calib_set_std_background"),
        {backgroundWord(background)});
    const QString value = file.name.isEmpty() ? QString() : QString::number(file.revision);
    if (!isInForce(QStringLiteral("standard"), value) && !value.isEmpty()) {
        assume(QStringLiteral("standard"), value);
        assume(QStringLiteral("edge"), QStringLiteral("that of the standard"));
        digest(file);
        line(QStringLiteral("calib_load_std"), {fileName(file.path)});
    }
}

void RecordWriter::map(const std::shared_ptr<const MapInput>& map) {
    const QString key = QStringLiteral("map");
    if (!map) {
        if (!isInForce(key, QString())) {
            assume(key, QString());
            line(QStringLiteral("calib_clear_map"));
        }
        return;
    }
    if (isInForce(key, QString::number(map->revision))) {
        return;
    }
    assume(key, QString::number(map->revision));
    if (map->calibration) {
        inputs(*map->calibration, Work::Calibrate);
        line(QStringLiteral("calib_exec"));
    } else {
        // A map is held against the images that are loaded, if any are.
        stack("I1", {});
        put(QStringLiteral("edge"), QStringLiteral("calib_set_edge_eV"),
            edgeEnergyArgs(map->edgeEnergy));
        digest(map->file);
        line(QStringLiteral("calib_load_map"), {fileName(map->file.path)});
    }
    for (int i = 0; i < map->smoothed; ++i) {
        line(QStringLiteral("calib_smooth_map"));
    }
}

void RecordWriter::references(const std::vector<ReferenceInput>& references) {
    int index = 0;
    for (const ReferenceInput& reference : references) {
        const QString key = QStringLiteral("reference %1").arg(index);
        if (reference.file.name.isEmpty()) {
            if (index >= m_references) {
                line(QStringLiteral("analyzer_add_ref"));
            }
        } else {
            digest(reference.file);
            put(key, QStringLiteral("analyzer_set_LCF_std"),
                {number(index), flag(reference.used), exact(reference.deltaE),
                 fileName(reference.file.path), background::batchWordOf(reference.background)});
        }
        ++index;
    }
    m_references = std::max(m_references, index);
}

void RecordWriter::area(const Inputs& in) {
    const bool isWhole = in.area.within(AnySize, AnySize).isEmpty();  // or of no image
    const Area area = isWhole ? Area() : in.area.clipped(in.size);
    if (area.vertices.size() > Limits::MostWrittenVertices && !m_failure) {
        m_failure = RecordLines::none(
            QT_TRANSLATE_NOOP("Record", "the area has too many vertices for a batch: %1"),
            number(area.vertices.size()));
    }
    put(QStringLiteral("area"), QStringLiteral("select_") + shapeWord(area.shape),
        areaNumbers(area));
}

void RecordWriter::inputs(const Inputs& in, Work work) {
    if (work == Work::Fit || work == Work::Difference || hasCommonE0(in, work)) {
        map(in.map);
    }
    frames(in);
    put(QStringLiteral("width"), QStringLiteral("set_band_w"), {number(in.halfWidth)});
    put(QStringLiteral("height"), QStringLiteral("set_band_h"), {number(in.halfHeight)});
    area(in);
    if (work == Work::Calibrate) {
        standard(in.standard, in.standardBackground);
        return;
    }
    put(QStringLiteral("target background"), QStringLiteral("calib_set_target_background"),
        {backgroundWord(in.background)});
    put(QStringLiteral("ranges"), QStringLiteral("set_background_ranges"), rangesArgs(in.ranges));
    if (work == Work::Residual || in.method == LinearFit::Lcf) {
        put(QStringLiteral("e0"), QStringLiteral("set_E0"), {edgeWord(in.e0)});
    }
    if (work == Work::Fit) {
        put(QStringLiteral("scale"), QStringLiteral("analyzer_set_reference_scale"),
            {scaleWord(in.referenceScale)});
        references(in.references);
        put(QStringLiteral("method"), QStringLiteral("analyzer_set_LCF_mode"),
            {flag(in.method == LinearFit::Mlcf)});
        put(QStringLiteral("constraints"), QStringLiteral("analyzer_set_LCF_constraints"),
            {constraintsWord(in.constraints)});
        put(QStringLiteral("error maps"), QStringLiteral("analyzer_set_error_maps"),
            {flag(in.errorMaps)});
    } else if (work == Work::Residual) {
        put(QStringLiteral("ra energy"), QStringLiteral("analyzer_set_ra_energy"),
            {fieldText(in.raEnergy)});
        put(QStringLiteral("ra factor"), QStringLiteral("analyzer_set_ra_factor"),
            {fieldText(in.raFactor)});
    }
}

void RecordWriter::show(const Result& result) {
    const bool isShift = result.id == ResultId::Shift;
    if (result.id > ResultId::Shift) {
        assume(QStringLiteral("selected"), QString());
        line(QStringLiteral("analyzer_select_map"),
             {QString::fromLatin1(result.kind().name), number(std::max(0, result.reference))});
        assume(QStringLiteral("display"), joined(QStringLiteral("select_disp_image"),
                                                 {number(static_cast<int>(Shown::Result))}));
    } else if (!isShift) {
        const int ofResidual =
            static_cast<int>(result.id) - static_cast<int>(ResultId::RaDmut) + m_references;
        put(QStringLiteral("selected"), QStringLiteral("analyzer_select_image"),
            {number(result.reference >= 0 ? result.reference : ofResidual)});
        if (result.reference >= 0) {
            put(QStringLiteral("type"), QStringLiteral("analyzer_select_image_type"),
                {number(static_cast<int>(result.id))});
        }
    }
    if (result.id <= ResultId::Shift) {
        put(QStringLiteral("display"), QStringLiteral("select_disp_image"),
            {number(static_cast<int>(isShift ? Shown::Map : Shown::Result))});
    }
    if (result.image.showsProc() && result.deglitched) {
        line(QStringLiteral("deglitch"),
             {fieldText(result.deglitched->factor), fieldText(result.deglitched->ratio)});
    } else if (result.image.showsProc()) {
        line(QStringLiteral("show_processed"), {QStringLiteral("1")});
    }
}

void RecordWriter::scaleOf(const ResultKind& kind, const Settings& s) {
    if (kind.scale == ResultScale::Own) {
        return;
    }
    put(QStringLiteral("fixed scale"), QStringLiteral("analyzer_set_fixed_scale"),
        {flag(s.fixedScale)});
    if (!s.fixedScale) {
        return;
    }
    if (kind.scale == ResultScale::DMut) {
        put(QStringLiteral("dmut min"), QStringLiteral("analyzer_set_dMut_scale_min"),
            {fieldText(s.dMutMin)});
        put(QStringLiteral("dmut max"), QStringLiteral("analyzer_set_dMut_scale_max"),
            {fieldText(s.dMutMax)});
    } else {
        put(QStringLiteral("ratio min"), QStringLiteral("analyzer_set_ratio_scale_min"),
            {fieldText(s.ratioMin)});
        put(QStringLiteral("ratio max"), QStringLiteral("analyzer_set_ratio_scale_max"),
            {fieldText(s.ratioMax)});
    }
}

void RecordWriter::mask(const Settings& s) {
    put(QStringLiteral("mask"), QStringLiteral("set_mask"),
        {s.mask > 0.0 ? fieldText(s.mask) : QStringLiteral("off")});
}

void RecordWriter::saveForm(const Settings& s, DataForm form) {
    put(QStringLiteral("form"), QString::fromLatin1(dataForm(s.dataForm).command));
    put(QStringLiteral("masked"), QStringLiteral("saveDataCfg_masked"), {flag(s.savesMasked)});
    put(QStringLiteral("as analyzed"), QStringLiteral("saveDataCfg_tiff_as_analyzed"),
        {flag(s.tiff.asAnalyzed)});
    if (form == DataForm::FloatTiff) {
        return;
    }
    if (form == DataForm::Tiff) {
        put(QStringLiteral("tiff fixed"), QStringLiteral("saveDataCfg_tiff_fix_scale"),
            {flag(s.tiff.fixedScale)});
        if (s.tiff.fixedScale) {
            put(QStringLiteral("tiff min"), QStringLiteral("saveDataCfg_tiff_scale_min"),
                {fieldText(s.tiff.scaleMin)});
            put(QStringLiteral("tiff max"), QStringLiteral("saveDataCfg_tiff_scale_max"),
                {fieldText(s.tiff.scaleMax)});
        }
        return;
    }
    put(QStringLiteral("separator"), s.table.separator == TableOptions::Separator::Comma
                                         ? QStringLiteral("saveDataCfg_text_as_csv")
                                         : QStringLiteral("saveDataCfg_text_as_ssv"));
    put(QStringLiteral("layout"), s.table.layout == TableOptions::Layout::Points
                                      ? QStringLiteral("saveDataCfg_text_as_xyz")
                                      : QStringLiteral("saveDataCfg_text_as_vals"));
}
