// Commands of the energy calibration.

#include <cmath>

#include "batch/CommandRows.h"
#include "measurement/Saving.h"
#include "measurement/SettingWords.h"
#include "spectra/Units.h"

namespace {

void loadStandard(Action& a) {
    a.outcome += a.measurement.loadStandard(a.args.text(0));
    a.expect(a.measurement.inputs().standard);
}

void loadMap(Action& a) {
    a.outcome += a.measurement.loadMap(a.args.text(0));
    if (a.measurement.mapInput()) {
        a.expect(a.measurement.mapInput()->file);
    }
}

template <int Settings::*Background>
void setBackground(Action& a) {
    a.measurement.set(Background, backgroundOfWord(a.args.text(0)));
}

void setRanges(Action& a) {
    const BackgroundRanges ranges{inField(a.args.real(0)), inField(a.args.real(1)),
                                  inField(a.args.real(2)), inField(a.args.real(3))};
    if (!ranges.ascend()) {
        a.fail(
            Batch::tr("the ranges do not ascend: each must end above its beginning, the second "
                      "not begin below the end of the first"));
        return;
    }
    a.measurement.set(&Settings::ranges, ranges);
}

void setEdgeEnergy(Action& a) {
    const QString text = a.args.text(0);
    bool ok = true;
    if (!text.isEmpty() && !(std::isfinite(text.toDouble(&ok)) && ok)) {
        a.outcome.warnings << Batch::tr("'%1' is not a number").arg(text);
    }
    a.measurement.set(&Settings::edgeEnergy, text);
}

}  // namespace

void addCalibrationCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    const std::vector<CommandRow> mine{
        {31,
         "calib_show_window",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.measurement.askForWindow(Measurement::Window::Calibration); }},
        {32, "calib_load_std", {K::InFile}, 1, false, Work::None, loadStandard},
        {33, "calib_set_edge_eV", {K::Text}, 0, false, Work::None, setEdgeEnergy},
        {34,
         "calib_exec",
         {},
         0,
         false,
         Work::Calibrate,
         [](Action& a) { a.outcome += a.measurement.start(Work::Calibrate); }},
        {35, "calib_load_map", {K::InFile}, 1, false, Work::None, loadMap},
        {36,
         "calib_clear_map",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.measurement.clearMap(); }},
        {37,
         "calib_save_map",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveMap(a.measurement, a.args.text(0)); }},
        {54,
         "calib_set_target_background",
         {K::Background},
         1,
         false,
         Work::None,
         setBackground<&Settings::targetBackground>},
        {55,
         "calib_set_std_background",
         {K::Background},
         1,
         false,
         Work::None,
         setBackground<&Settings::standardBackground>},
        {56,
         "calib_set_crystal",
         {K::Crystal},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::crystal, crystalOfName(a.args.text(0))); }},
        {57,
         "calib_smooth_map",
         {},
         0,
         false,
         Work::Deglitch,
         [](Action& a) { a.outcome += a.measurement.smoothMap(); }},
        {72,
         "set_E0",
         {K::Edge},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::e0, *edgeOfWord(a.args.text(0))); }},
        {73,
         "set_background_ranges",
         {K::Real, K::Real, K::Real, K::Real},
         4,
         false,
         Work::None,
         setRanges},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
