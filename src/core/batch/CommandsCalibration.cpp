// Commands of the energy calibration.

#include <algorithm>

#include "batch/CommandRows.h"
#include "measurement/Saving.h"
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
    const int background = backgroundOfWord(a.args.text(0));
    if (background < 0) {
        a.fail(Batch::tr("no such background: %1").arg(a.args.text(0)));
        return;
    }
    a.measurement.set(Background, background);
}

void setCrystal(Action& a) {
    const QString name = a.args.text(0);
    const auto found =
        std::find_if(CrystalTable.begin(), CrystalTable.end(), [&name](const Crystal& crystal) {
            return name.compare(QLatin1String(crystal.name), Qt::CaseInsensitive) == 0;
        });
    if (found == CrystalTable.end()) {
        a.fail(Batch::tr("no such crystal: %1").arg(name));
        return;
    }
    a.measurement.set(&Settings::crystal, static_cast<int>(found - CrystalTable.begin()));
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
        {32,
         "calib_load_std",
         {K::InFile},
         1,
         false,
         Work::None,
         loadStandard,
         [](CommandCheck& c, const CmdLine& cmd) { c.noteStandard(cmd); }},
        {33,
         "calib_set_edge_eV",
         {K::Text},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::edgeEnergy, a.args.text(0)); }},
        {34,
         "calib_exec",
         {},
         0,
         false,
         Work::Calibrate,
         [](Action& a) { a.outcome += a.measurement.start(Work::Calibrate); },
         [](CommandCheck& c, const CmdLine&) { c.checkAnalysis(Work::Calibrate); }},
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
         setBackground<&Settings::targetBackground>,
         [](CommandCheck& c, const CmdLine& cmd) { c.noteTargetBackground(cmd); }},
        {55,
         "calib_set_std_background",
         {K::Background},
         1,
         false,
         Work::None,
         setBackground<&Settings::standardBackground>},
        {56, "calib_set_crystal", {K::Crystal}, 1, false, Work::None, setCrystal},
        {57,
         "calib_smooth_map",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.outcome += a.measurement.smoothMap(); }},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
