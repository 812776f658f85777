// Commands for references, fits, residual absorption and their results.

#include "batch/CommandRows.h"
#include "measurement/SettingWords.h"
#include "measurement/SpectrumFit.h"
#include "spectra/Background.h"

namespace {

void setReference(Action& a) {
    Measurement& m = a.measurement;
    const int index = a.args.integer(0);
    // A batch cannot press "Add Ref": naming the reference after the last one adds it.
    if (index == m.referenceCount()) {
        a.outcome += m.addReference();
    }
    if (index < 0 || index >= m.referenceCount()) {
        a.fail(Batch::tr("no reference panel %1").arg(index));
        return;
    }
    m.change(index, [&a](Reference& reference) {
        reference.setBackground(background::fromBatchWord(a.args.text(4)));
        a.outcome += reference.read(a.args.text(3));
        reference.setUse(a.args.flag(1));
        reference.setDeltaE(a.args.real(2));
    });
    a.expect(m.references()[static_cast<std::size_t>(index)]->file());
}

void selectType(Action& a) {
    const int type = a.args.integer(0);
    if (type < 0 || type >= Reference::KindCount) {
        a.fail(Batch::tr("%1 is out of range %2 to %3")
                   .arg(type)
                   .arg(0)
                   .arg(Reference::KindCount - 1));
        return;
    }
    a.measurement.set(&Settings::namedKind, std::nullopt);
    a.measurement.set(&Settings::resultType, type);
}

void selectResult(Action& a) {
    const int id = a.args.integer(0);
    const int last = a.measurement.referenceCount() + ResidualCount - 1;
    if (id < 0 || id > last) {
        a.fail(Batch::tr("%1 is out of range %2 to %3").arg(id).arg(0).arg(last));
    }
    a.measurement.select(id);  // tells in any case
}

/// A number in a field.
template <double Settings::*Field>
void setNumber(Action& a) {
    a.measurement.set(Field, inField(a.args.real(0)));
}

/// The limit of the type on display.
template <double Settings::*OfDMut, double Settings::*OfRatio>
void setLimit(Action& a) {
    const bool isRatio = a.measurement.settings().resultType == Reference::Ratio;
    a.measurement.set(isRatio ? OfRatio : OfDMut, inField(a.args.real(0)));
}

void start(Action& a, Work work) {
    a.outcome += a.measurement.start(work);
}

}  // namespace

void addAnalyzerCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    using S = Settings;
    const std::vector<CommandRow> mine{
        {15,
         "analyzer_show_window",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.measurement.askForWindow(Measurement::Window::Analyzer); }},
        {16,
         "analyzer_set_LCF_std",
         {K::Integer, K::Flag, K::Real, K::InFile, K::VictreenWord},
         4,
         false,
         Work::None,
         setReference},
        {17,
         "analyzer_set_LCF_mode",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) {
             a.measurement.set(&S::method,
                               a.args.integer(0) == 1 ? LinearFit::Mlcf : LinearFit::Lcf);
         }},
        {18, "analyzer_exec_LCF", {}, 0, false, Work::Fit, [](Action& a) { start(a, Work::Fit); }},
        {19, "analyzer_select_image", {K::Integer}, 1, false, Work::None, selectResult},
        {20, "analyzer_select_image_type", {K::Integer}, 1, false, Work::None, selectType},
        {21, "analyzer_set_ra_energy", {K::Real}, 1, false, Work::None, setNumber<&S::raEnergy>},
        {22, "analyzer_set_ra_factor", {K::Real}, 1, false, Work::None, setNumber<&S::raFactor>},
        {23,
         "analyzer_exec_ra",
         {},
         0,
         false,
         Work::Residual,
         [](Action& a) { start(a, Work::Residual); }},
        {24,
         "analyzer_set_fixed_scale",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&S::fixedScale, a.args.flag(0)); }},
        {25,
         "analyzer_set_scale_max",
         {K::Real},
         1,
         false,
         Work::None,
         setLimit<&S::dMutMax, &S::ratioMax>},
        {26,
         "analyzer_set_scale_min",
         {K::Real},
         1,
         false,
         Work::None,
         setLimit<&S::dMutMin, &S::ratioMin>},
        {27,
         "analyzer_set_dMut_scale_max",
         {K::Real},
         1,
         false,
         Work::None,
         setNumber<&S::dMutMax>},
        {28,
         "analyzer_set_dMut_scale_min",
         {K::Real},
         1,
         false,
         Work::None,
         setNumber<&S::dMutMin>},
        {29,
         "analyzer_set_ratio_scale_max",
         {K::Real},
         1,
         false,
         Work::None,
         setNumber<&S::ratioMax>},
        {30,
         "analyzer_set_ratio_scale_min",
         {K::Real},
         1,
         false,
         Work::None,
         setNumber<&S::ratioMin>},
        {58,
         "deglitch",
         {K::Real, K::Real},
         2,
         false,
         Work::Deglitch,
         [](Action& a) { a.outcome += a.measurement.deglitch(a.args.real(0), a.args.real(1)); }},
        {69,
         "analyzer_add_ref",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.outcome += a.measurement.addReference(); }},
        {70,
         "analyzer_set_disp_on_time",
         {K::Flag},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&S::showsEachRow, a.args.flag(0)); }},
        {74,
         "analyzer_set_reference_scale",
         {K::Scale},
         1,
         false,
         Work::None,
         [](Action& a) { a.measurement.set(&S::referenceScale, *scaleOfWord(a.args.text(0))); }},
        {82,
         "fit_spectrum",
         {K::InFile, K::OutFile, K::OutFile},
         2,
         false,
         Work::None,
         [](Action& a) {
             a.outcome +=
                 fitSpectrumFile(a.measurement, a.args.text(0), a.args.text(1), a.args.text(2));
         },
         true},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
