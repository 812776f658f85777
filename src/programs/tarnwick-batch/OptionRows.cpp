#include "tarnwick-batch/OptionRows.h"

#include <QFileInfo>
#include <algorithm>

#include "base/Limits.h"
#include "base/Memory.h"
#include "files/FileNames.h"

namespace {

using Action = RunnerOptions::Action;

QString takeThreads(const QString& value, RunnerOptions* options) {
    bool ok = false;
    options->threads = value.toInt(&ok);
    return ok && options->threads >= 1 && options->threads <= Limits::MostThreads
               ? QString()
               : QStringLiteral("it needs a number from 1 to 1024");
}

QString takeFolder(const QString& value, RunnerOptions* options) {
    options->folders << typedFileName(value);
    return value.isEmpty() ? QStringLiteral("it needs a folder") : QString();
}

/// A file that is written, whatever folder is entered before.
template <QString RunnerOptions::*File>
QString takeFile(const QString& value, RunnerOptions* options) {
    options->*File = value.isEmpty() ? value : QFileInfo(typedFileName(value)).absoluteFilePath();
    return value.isEmpty() ? QStringLiteral("it needs a file") : QString();
}

QString takeMemory(const QString& value, RunnerOptions* options) {
    const std::optional<quint64> size = sizeFromText(value);
    options->memory = size.value_or(0);
    return size ? QString() : QStringLiteral("it needs a size, such as 512M or 4G");
}

QString takePart(const QString& value, RunnerOptions* options) {
    const QStringList numbers = value.split(QLatin1Char('/'));
    bool isPart = false;
    bool isOf = false;
    options->part = numbers.value(0).toInt(&isPart);
    options->parts = numbers.value(1).toInt(&isOf);
    return isPart && isOf && numbers.size() == 2 && options->part >= 1 &&
                   options->part <= options->parts
               ? QString()
               : QStringLiteral("it needs two numbers I/N, I from 1 to N");
}

QString takeFolderOfParts(const QString& value, RunnerOptions* options) {
    options->work = QFileInfo(typedFileName(value)).absoluteFilePath();
    return value.isEmpty() ? QStringLiteral("it needs a folder") : QString();
}

QString takeFrom(const QString& value, RunnerOptions* options) {
    bool ok = false;
    options->from = value.toInt(&ok);
    return ok && options->from > 0 ? QString()
                                   : QStringLiteral("it needs the number of a line, from 1");
}

QString takeProgress(const QString& value, RunnerOptions* options) {
    bool ok = false;
    options->progressSeconds = value.toDouble(&ok);
    return ok && options->progressSeconds >= 0.0 && options->progressSeconds <= 1e6
               ? QString()
               : QStringLiteral("it needs a number of seconds, 0 for no such lines");
}

QString takeText(const QString& value, RunnerOptions* options) {
    NamedText text;
    QString problem = readNamedText(value, &text);
    const auto& texts = options->texts;
    if (problem.isEmpty() && std::any_of(texts.begin(), texts.end(), [&text](const NamedText& t) {
            return t.name == text.name;
        })) {
        problem = QStringLiteral("%1 is given twice").arg(text.name);
    }
    options->texts << text;
    return problem;
}

template <bool RunnerOptions::*Switch>
QString turnOn(const QString&, RunnerOptions* options) {
    options->*Switch = true;
    return {};
}

std::vector<OptionRow> makeRows() {
    using O = RunnerOptions;
    const std::vector<Action> run{Action::Run};
    const std::vector<Action> check{Action::Run, Action::Check};
    const std::vector<Action> batch{Action::Run, Action::Check, Action::Stages};
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
         "What is read at once fits into it; the results are the same for any size.",
         check, takeMemory},
        {"C", "FOLDER",
         "Run the batch in this folder, or in each of several: FILE -C scan_*, or a -C for each. "
         "FILE is taken from where the program is started.",
         batch, takeFolder},
        {"set", "NAME=TEXT",
         "Put TEXT in the place of %NAME% in the batch, before its lines are read. May be given "
         "several times.",
         batch, takeText},
        {"from", "LINE",
         "Take the batch up at this line of the file: lines before it that save are left out, all "
         "others are done again (analyses from --work, where it is given). In the body of a loop "
         "it begins at the outermost :for.",
         check, takeFrom},
        {"work", "DIR",
         "Keep finished parts of analyses in this folder, and take from it those that are there "
         "already: a run that was broken off goes on where it was. It is taken from where the "
         "program is started.",
         run, takeFolderOfParts},
        {"part", "I/N",
         "Make no more than share I of N of the first analysis whose parts are not all in the "
         "folder of --work, and write nothing outside of it. Exit code 75: other shares must come "
         "first.",
         run, takePart},
        {"stages",
         "",
         "Print how many analyses of the batch have to follow each other; a search for the mean "
         "E0 is one of its own.",
         {},
         nullptr,
         Action::Stages},
        {"strict", "", "A warning counts as a failure.", run, turnOn<&O::isStrict>},
        {"stop-on-error", "",
         "The first line that fails ends the batch. It can go on there with --from.", run,
         turnOn<&O::stopsOnError>},
        {"times", "",
         "Put the time of day before each text of the log, and the time that all took behind the "
         "last.",
         run, turnOn<&O::tellsTimes>},
        {"report", "JSON",
         "Write what became of each line to this file, as JSON. It is taken from where the program "
         "is started.",
         run, takeFile<&O::report>},
        {"summary", "CSV",
         "Write a table to this file, one row for each folder: its name, what became of the batch, "
         "bins and mean fractions of the last fit, seconds. Without it several folders have the "
         "table at the end of the log.",
         run, takeFile<&O::summary>},
        {"progress", "SECONDS",
         "Tell every so many seconds (60) how far the batch is, where there is no terminal for a "
         "bar; 0: do not.",
         run, takeProgress},
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
