#include "tarnwick-batch/OptionRows.h"

#include <QFileInfo>
#include <algorithm>

#include "base/Memory.h"

namespace {

using Action = RunnerOptions::Action;

constexpr int MostThreads = 1024;

QString takeThreads(const QString& value, RunnerOptions* options) {
    bool ok = false;
    options->threads = value.toInt(&ok);
    return ok && options->threads >= 1 && options->threads <= MostThreads
               ? QString()
               : QStringLiteral("--threads needs a number from 1 to 1024.");
}

QString takeFolder(const QString& value, RunnerOptions* options) {
    options->folders << value;
    return value.isEmpty() ? QStringLiteral("-C needs a folder.") : QString();
}

QString takeReport(const QString& value, RunnerOptions* options) {
    options->report = QFileInfo(value).absoluteFilePath();
    return value.isEmpty() ? QStringLiteral("--report needs a file.") : QString();
}

QString takeWork(const QString& value, RunnerOptions* options) {
    options->work = QFileInfo(value).absoluteFilePath();
    return value.isEmpty() ? QStringLiteral("--work needs a folder.") : QString();
}

QString takeMemory(const QString& value, RunnerOptions* options) {
    const std::optional<quint64> size = sizeFromText(value);
    options->memory = size.value_or(0);
    return size ? QString() : QStringLiteral("--memory needs a size, such as 512M or 4G.");
}

template <bool RunnerOptions::*Switch>
QString turnOn(const QString&, RunnerOptions* options) {
    options->*Switch = true;
    return {};
}

std::vector<OptionRow> makeRows() {
    using O = RunnerOptions;
    const std::vector<Action> run{Action::Run};
    const std::vector<Action> batch{Action::Run, Action::Check};
    return {
        {"check", "", "Check the batch without running it.", {}, nullptr, Action::Check},
        {"threads",
         "N",
         "Threads for analyses: 1 to 1024 (one for each core). The results are the same for any "
         "number.",
         {},
         takeThreads},
        {"memory", "SIZE",
         "Memory that the program may take, such as 512M or 4G (half of what the machine has). "
         "What "
         "is read at once fits into it; the results are the same for any size.",
         batch, takeMemory},
        {"C", "FOLDER",
         "Run the batch in this folder. FILE is taken from where the program is started.", batch,
         takeFolder},
        {"strict", "", "A warning counts as a failure.", run, turnOn<&O::isStrict>},
        {"times", "",
         "Put the time of day before each text of the log, and the time that all took behind the "
         "last.",
         run, turnOn<&O::tellsTimes>},
        {"report", "JSON",
         "Write what became of each line to this file, as JSON. It is taken from where the program "
         "is started.",
         run, takeReport},
        {"work", "DIR",
         "Keep finished parts of analyses in this folder, and take from it those that are there "
         "already: a run that was broken off goes on where it was. It is taken from where the "
         "program is started.",
         run, takeWork},
        {"verbose", "", "Print debug lines on standard error.", run, turnOn<&O::isVerbose>},
        {"origin",
         "",
         "Print what the saved result FILE (TIFF, PNG, HDF5, table) says of how it was made.",
         {},
         nullptr,
         Action::Origin},
        {"record",
         "",
         "Print the batch that makes the saved result FILE again.",
         {},
         nullptr,
         Action::Record},
    };
}

}  // namespace

QString OptionRow::typed() const {
    const QString text = QString::fromLatin1(name);
    return QLatin1String(text.size() == 1 ? "-" : "--") + text;
}

bool OptionRow::fits(Action action) const {
    return goesWith.empty() ||
           std::find(goesWith.begin(), goesWith.end(), action) != goesWith.end();
}

const std::vector<OptionRow>& optionRows() {
    static const std::vector<OptionRow> rows = makeRows();
    return rows;
}
