#include "batch/CommandTables.h"

#include <utility>

namespace {

struct Tables {
    std::vector<CommandRow> rows;
    std::vector<std::pair<int, QString>> controls;  // names in upper case
    std::vector<std::pair<int, QString>> commands;
};

std::vector<CommandRow> commandRows() {
    using K = ArgKind;
    constexpr Finish now = Finish::AtOnce;
    return {
        {ClearI1Files, "clear_I1_files", {}, 0, false, now},
        {ClearI0Files, "clear_I0_files", {}, 0, false, now},
        {LoadI1Files, "load_I1_files", {K::Mode, K::InFile}, 2, true, Finish::WhenLoaded},
        {LoadI0Files, "load_I0_files", {K::Mode, K::InFile}, 2, true, Finish::WhenLoaded},
        {LoadI1FilesOfPattern,
         "load_I1_files_of_pattern",
         {K::Mode, K::Directory, K::Pattern},
         2,
         true,
         Finish::WhenLoaded},
        {LoadI0FilesOfPattern,
         "load_I0_files_of_pattern",
         {K::Mode, K::Directory, K::Pattern},
         2,
         true,
         Finish::WhenLoaded},
        {SetBandW, "set_band_w", {K::Integer}, 1, false, now},
        {SetBandH, "set_band_h", {K::Integer}, 1, false, now},
        {SelectDispImage, "select_disp_image", {K::Integer}, 1, false, now},
        {SaveImage, "save_image", {K::OutFile}, 1, false, now},
        {SaveAllImages, "save_all_images", {K::OutFile}, 1, false, now},
        {SaveDataAsTiff, "save_data_as_tiff", {K::OutFile}, 1, false, now},
        {MovePosition, "move_position", {K::Integer, K::Integer}, 2, false, now},
        {SelectRegion,
         "select_region",
         {K::Integer, K::Integer, K::Integer, K::Integer},
         4,
         false,
         now},
        {SaveSpectra, "save_spectra", {K::OutFile}, 1, false, now},
        {AnalyzerShowWindow, "analyzer_show_window", {}, 0, false, now},
        {AnalyzerSetLcfStd,
         "analyzer_set_LCF_std",
         {K::Integer, K::Flag, K::Real, K::InFile, K::VictreenWord},
         4,
         false,
         now},
        {AnalyzerSetLcfMode, "analyzer_set_LCF_mode", {K::Flag}, 1, false, now},
        {AnalyzerExecLcf, "analyzer_exec_LCF", {}, 0, false, Finish::WhenAnalysed},
        {AnalyzerSelectImage, "analyzer_select_image", {K::Integer}, 1, false, now},
        {AnalyzerSelectImageType, "analyzer_select_image_type", {K::Integer}, 1, false, now},
        {AnalyzerSetRaEnergy, "analyzer_set_ra_energy", {K::Real}, 1, false, now},
        {AnalyzerSetRaFactor, "analyzer_set_ra_factor", {K::Real}, 1, false, now},
        {AnalyzerExecRa, "analyzer_exec_ra", {}, 0, false, now},
        {AnalyzerSetFixedScale, "analyzer_set_fixed_scale", {K::Flag}, 1, false, now},
        {AnalyzerSetScaleMax, "analyzer_set_scale_max", {K::Real}, 1, false, now},
        {AnalyzerSetScaleMin, "analyzer_set_scale_min", {K::Real}, 1, false, now},
        {AnalyzerSetDMutScaleMax, "analyzer_set_dMut_scale_max", {K::Real}, 1, false, now},
        {AnalyzerSetDMutScaleMin, "analyzer_set_dMut_scale_min", {K::Real}, 1, false, now},
        {AnalyzerSetRatioScaleMax, "analyzer_set_ratio_scale_max", {K::Real}, 1, false, now},
        {AnalyzerSetRatioScaleMin, "analyzer_set_ratio_scale_min", {K::Real}, 1, false, now},
        {CalibShowWindow, "calib_show_window", {}, 0, false, now},
        {CalibLoadStd, "calib_load_std", {K::InFile}, 1, false, now},
        {CalibSetEdgeEv, "calib_set_edge_eV", {K::Text}, 1, false, now},
        {CalibExec, "calib_exec", {}, 0, false, now},
        {CalibLoadMap, "calib_load_map", {K::InFile}, 1, false, now},
        {CalibClearMap, "calib_clear_map", {}, 0, false, now},
        {CalibSaveMap, "calib_save_map", {K::OutFile}, 1, false, now},
        {SaveDataCfgShowWindow, "saveDataCfg_show_window", {}, 0, false, now},
        {SaveDataCfgSaveAsTiff, "saveDataCfg_save_as_tiff", {}, 0, false, now},
        {SaveDataCfgSaveAsText, "saveDataCfg_save_as_text", {}, 0, false, now},
        {SaveDataCfgTiffFixScale, "saveDataCfg_tiff_fix_scale", {K::Flag}, 1, false, now},
        {SaveDataCfgTiffScaleMin, "saveDataCfg_tiff_scale_min", {K::Real}, 1, false, now},
        {SaveDataCfgTiffScaleMax, "saveDataCfg_tiff_scale_max", {K::Real}, 1, false, now},
        {SaveDataCfgTiffAsAnalyzed, "saveDataCfg_tiff_as_analyzed", {K::Flag}, 1, false, now},
        {SaveDataCfgTextAsCsv, "saveDataCfg_text_as_csv", {}, 0, false, now},
        {SaveDataCfgTextAsSsv, "saveDataCfg_text_as_ssv", {}, 0, false, now},
        {SaveDataCfgTextAsXyz, "saveDataCfg_text_as_xyz", {}, 0, false, now},
        {SaveDataCfgTextAsVals, "saveDataCfg_text_as_vals", {}, 0, false, now},
    };
}

Tables buildTables() {
    Tables tables;
    tables.rows = commandRows();
    for (const CommandRow& row : tables.rows) {
        tables.commands.emplace_back(row.id, QString::fromLatin1(row.name).toUpper());
    }
    tables.controls = {{ForControl, QStringLiteral(":FOR")},
                       {NextControl, QStringLiteral(":NEXT")},
                       {EchoControl, QStringLiteral(":ECHO")},
                       {RemStartControl, QStringLiteral(":REM_START")},
                       {RemEndControl, QStringLiteral(":REM_END")}};
    return tables;
}

const Tables& tables() {
    static const Tables built = buildTables();
    return built;
}

int idOf(const std::vector<std::pair<int, QString>>& table, const QString& name, int none) {
    const QString upper = name.toUpper();
    for (const auto& entry : table) {
        if (entry.second == upper) {
            return entry.first;
        }
    }
    return none;
}

}  // namespace

void initCommandTables() {
    tables();
}

const std::vector<CommandRow>& commandTable() {
    return tables().rows;
}

int controlId(const QString& name) {
    return idOf(tables().controls, name, NoControl);
}

int commandId(const QString& name) {
    return idOf(tables().commands, name, NoCommand);
}

QString argKindName(ArgKind kind) {
    switch (kind) {
        case ArgKind::Integer:
            return QStringLiteral("n");
        case ArgKind::Flag:
            return QStringLiteral("flag");
        case ArgKind::Real:
            return QStringLiteral("x");
        case ArgKind::Text:
            return QStringLiteral("text");
        case ArgKind::Mode:
            return QStringLiteral("mode");
        case ArgKind::InFile:
        case ArgKind::OutFile:
            return QStringLiteral("file");
        case ArgKind::Directory:
            return QStringLiteral("dir");
        case ArgKind::Pattern:
            return QStringLiteral("pattern");
        case ArgKind::VictreenWord:
            return QStringLiteral("word");
    }
    return QString();
}

QString commandSyntax(const CommandRow& row) {
    QString syntax = QString::fromLatin1(row.name);
    const int count = static_cast<int>(row.args.size());
    for (int i = 0; i < count; ++i) {
        QString arg = argKindName(row.args[static_cast<std::size_t>(i)]);
        if (row.repeats && i + 1 == count) {
            arg += QStringLiteral(" ...");
        }
        syntax += i < row.required ? QLatin1Char(' ') + arg : QStringLiteral(" [%1]").arg(arg);
    }
    return syntax;
}

QString finishName(Finish finish) {
    switch (finish) {
        case Finish::AtOnce:
            return QStringLiteral("at once");
        case Finish::WhenLoaded:
            return QStringLiteral("when loaded");
        case Finish::WhenAnalysed:
            return QStringLiteral("when analysed");
    }
    return QString();
}
