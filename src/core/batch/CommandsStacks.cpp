// Commands that load and clear frames.

#include <QFileInfo>
#include <QRegularExpression>

#include "batch/CommandRows.h"
#include "files/FileListing.h"
#include "measurement/FolderLoad.h"

namespace {

QString whyNoFile(const QString& folder, const QStringList& patterns) {
    if (!QFileInfo(folder).isDir()) {
        return Batch::tr("no such folder: %1").arg(folder);
    }
    return patterns.isEmpty()
               ? Batch::tr("there is no file in %1").arg(folder)
               : Batch::tr("no file matches %1 in %2").arg(patterns.join(QLatin1Char(' ')), folder);
}

void loadOfPattern(Action& a, StackId id) {
    const QStringList files = a.measurement.list(a.args.text(1), a.args.from(2));
    if (files.isEmpty()) {
        a.fail(whyNoFile(a.args.text(1), a.args.from(2)));
    }
    a.measurement.load(id, files, a.args.isNew(0));
}

void setEnergyPattern(Action& a) {
    const QString pattern = a.args.text(1);
    if (!QRegularExpression(pattern).isValid()) {
        a.fail(Batch::tr("not a regular expression: %1").arg(pattern));
        return;
    }
    const bool isKeV = a.args.text(2).toLower() == QLatin1String("kev");
    a.measurement.setNames(a.args.stack(0), {pattern, isKeV});
}

void loadNew(Action& a) {
    const StackId id = a.args.stack(0);
    a.awaited = id == StackId::I1 ? Work::LoadI1 : Work::LoadI0;
    a.outcome += a.measurement.loadNew(id);
}

void loadDarkOfPattern(Action& a) {
    const QStringList files = a.measurement.list(a.args.text(0), a.args.from(1));
    if (files.isEmpty()) {
        a.fail(whyNoFile(a.args.text(0), a.args.from(1)));
    }
    a.measurement.loadDark(files);  // in any case, lest those before pass for what was asked for
}

void openFolderOf(Action& a) {
    const FolderContents contents =
        contentsOf(a.measurement, listingOf(a.measurement, a.args.text(0)));
    // Of a folder without frames nothing else is worth a line.
    a.outcome += contents.outcome.failed()
                     ? Outcome::failure(contents.outcome.failures.join(QStringLiteral("; ")))
                     : openFolder(a.measurement, filesOf(contents), contents.outcome);
}

}  // namespace

void addStackCommands(std::vector<CommandRow>* rows) {
    using K = ArgKind;
    const std::vector<CommandRow> mine{
        {0,
         "clear_I1_files",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.measurement.clear(StackId::I1); }},
        {1,
         "clear_I0_files",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.measurement.clear(StackId::I0); }},
        {2,
         "load_I1_files",
         {K::Mode, K::InFile},
         2,
         true,
         Work::LoadI1,
         [](Action& a) { a.measurement.load(StackId::I1, a.args.from(1), a.args.isNew(0)); }},
        {3,
         "load_I0_files",
         {K::Mode, K::InFile},
         2,
         true,
         Work::LoadI0,
         [](Action& a) { a.measurement.load(StackId::I0, a.args.from(1), a.args.isNew(0)); }},
        {4,
         "load_I1_files_of_pattern",
         {K::Mode, K::Directory, K::Pattern},
         2,
         true,
         Work::LoadI1,
         [](Action& a) { loadOfPattern(a, StackId::I1); }},
        {5,
         "load_I0_files_of_pattern",
         {K::Mode, K::Directory, K::Pattern},
         2,
         true,
         Work::LoadI0,
         [](Action& a) { loadOfPattern(a, StackId::I0); }},
        {50,
         "load_dark_files",
         {K::InFile},
         1,
         true,
         Work::LoadDark,
         [](Action& a) { a.measurement.loadDark(a.args.from(0)); }},
        {51,
         "load_dark_files_of_pattern",
         {K::Directory, K::Pattern},
         1,
         true,
         Work::LoadDark,
         loadDarkOfPattern},
        {52,
         "clear_dark",
         {},
         0,
         false,
         Work::None,
         [](Action& a) { a.measurement.dark().clear(); }},
        {53,
         "set_energy_pattern",
         {K::Stack, K::Text, K::Unit},
         3,
         false,
         Work::None,
         setEnergyPattern},
        {65, "load_new", {K::Stack}, 1, false, Work::LoadI1, loadNew},
        {86, "open_folder", {K::Directory}, 1, false, Work::LoadFolder, openFolderOf},
    };
    rows->insert(rows->end(), mine.begin(), mine.end());
}
