// Commands for the maps of an analysis beside edge jumps and ratios: errors, goodness of fit, mask,
// difference of two energies.

#include <algorithm>

#include "batch/CommandRows.h"
#include "measurement/CompositeDisplay.h"
#include "measurement/Saving.h"
#include "measurement/SettingWords.h"

namespace {

void chooseMap(Action& a) {
    const bool hasIndex = a.args.count() > 1;
    const int reference = hasIndex ? a.args.integer(1) : 0;
    a.outcome += a.measurement.choose(*resultOfName(a.args.text(0)), reference);
}

void setMask(Action& a) {
    a.outcome += a.measurement.setMask(*maskOfWord(a.args.text(0)));
}

void saveCompositePicture(Action& a) {
    Composite composite;
    for (int i = 1; i < std::min(a.args.count(), 4); ++i) {
        bool isNumber = false;
        const int n = a.args.text(i).toInt(&isNumber);
        if (isNumber && n < 0) {
            a.fail(Batch::tr("no reference panel %1").arg(n));
            return;
        }
        composite.references[static_cast<std::size_t>(i - 1)] = isNumber ? n : -1;
    }
    a.outcome += saveComposite(a.measurement, a.args.text(0), composite);
}

void execDifference(Action& a) {
    a.measurement.set(&Settings::differenceFrom, a.args.real(0));
    a.measurement.set(&Settings::differenceTo, a.args.real(1));
    a.outcome += a.measurement.start(Work::Difference);
}

}  // namespace

void addMapCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    const std::vector<CommandRow> mine{
        {75,
         "analyzer_set_error_maps",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::errorMaps, a.args.flag(0)); }},
        {76, "analyzer_select_map", {K::MapName, K::Integer}, 1, false, Work::None, chooseMap},
        {77,
         "save_all_maps",
         {K::OutFile},
         1,
         false,
         Work::None,
         [](Action& a) { a.outcome += saveAllMaps(a.measurement, a.args.text(0)); }},
        {78, "set_mask", {K::MaskLimit}, 1, false, Work::None, setMask},
        {79,
         "saveDataCfg_masked",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&Settings::savesMasked, a.args.flag(0)); }},
        {80,
         "analyzer_set_LCF_constraints",
         {K::Constraints},
         1,
         false,
         Work::None,
         [](Action& a) {
             a.measurement.set(&Settings::constraints, *constraintsOfWord(a.args.text(0)));
         }},
        {81,
         "analyzer_exec_difference",
         {K::Real, K::Real},
         2,
         false,
         Work::Difference,
         execDifference},
        {88,
         "save_composite",
         {K::OutFile, K::Channel, K::Channel, K::Channel},
         2,
         false,
         Work::None,
         saveCompositePicture,
         true},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
