// Commands that write files, and those for the form in which results are written.

#include "batch/CommandRows.h"
#include "batch/Record.h"
#include "measurement/PlotSaving.h"
#include "measurement/Saving.h"

namespace {

template <class T>
void setTable(Action& a, T TableOptions::*option, T value) {
    TableOptions table = a.measurement.settings().table;
    table.*option = value;
    a.measurement.set(&Settings::table, table);
}

template <class T>
void setTiff(Action& a, T TiffOptions::*option, T value) {
    TiffOptions tiff = a.measurement.settings().tiff;
    tiff.*option = value;
    a.measurement.set(&Settings::tiff, tiff);
}

template <DataForm Form>
void setForm(Action& a) {
    a.measurement.set(&Settings::dataForm, Form);
}

/// One choice for all forms.
void setAsAnalyzed(Action& a) {
    setTiff(a, &TiffOptions::asAnalyzed, a.args.flag(0));
    setTable(a, &TableOptions::asAnalyzed, a.args.flag(0));
}

}  // namespace

void addSaveCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    const std::vector<CommandRow> mine{
        {9,
         "save_image",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveImage(a.measurement, a.args.text(0)); }},
        {10,
         "save_all_images",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveAllImages(a.measurement, a.args.text(0)); }},
        {11,
         "save_data_as_tiff",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveData(a.measurement, a.args.text(0)); }},
        {14,
         "save_spectra",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveSpectra(a.measurement, a.args.text(0)); }},
        {62,
         "save_image_with_bar",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveImageWithBar(a.measurement, a.args.text(0)); },
         true},
        {63,
         "save_plot",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += savePlot(a.measurement, a.args.text(0)); },
         true},
        {64,
         "save_flat_dark",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveFlatDark(a.measurement); },
         false,
         true},
        {68,
         "save_record",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveRecord(a.measurement, a.args.text(0)); }},
        {84,
         "save_results",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveResults(a.measurement, a.args.text(0)); }},
        {85,
         "save_table",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveTable(a.measurement, a.args.text(0)); }},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}

void addSaveFormCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    using Separator = TableOptions::Separator;
    using Layout = TableOptions::Layout;
    const std::vector<CommandRow> mine{
        {38,
         "saveDataCfg_show_window",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.measurement.askForWindow(Measurement::Window::SaveForm); }},
        {39, "saveDataCfg_save_as_tiff", {}, 0, false, Work::None, setForm<DataForm::Tiff>},
        {40, "saveDataCfg_save_as_text", {}, 0, false, Work::None, setForm<DataForm::Text>},
        {83, "saveDataCfg_save_as_float", {}, 0, false, Work::None, setForm<DataForm::FloatTiff>},
        {41,
         "saveDataCfg_tiff_fix_scale",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) { setTiff(a, &TiffOptions::fixedScale, a.args.flag(0)); }},
        {42,
         "saveDataCfg_tiff_scale_min",
         {K::Real},
         1,
         false,
         Work::None,
         [](Action& a) { setTiff(a, &TiffOptions::scaleMin, inField(a.args.real(0))); }},
        {43,
         "saveDataCfg_tiff_scale_max",
         {K::Real},
         1,
         false,
         Work::None,
         [](Action& a) { setTiff(a, &TiffOptions::scaleMax, inField(a.args.real(0))); }},
        {44, "saveDataCfg_tiff_as_analyzed", {K::Flag}, 1, false, Work::None, setAsAnalyzed},
        {45,
         "saveDataCfg_text_as_csv",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { setTable(a, &TableOptions::separator, Separator::Comma); }},
        {46,
         "saveDataCfg_text_as_ssv",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { setTable(a, &TableOptions::separator, Separator::Blank); }},
        {47,
         "saveDataCfg_text_as_xyz",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { setTable(a, &TableOptions::layout, Layout::Points); }},
        {48,
         "saveDataCfg_text_as_vals",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { setTable(a, &TableOptions::layout, Layout::Rows); }},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
