#include "tarnwick-batch/RunnerOptions.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace {

constexpr int MostThreads = 1024;

const char* const Description =
    "Runs a Tarnwick batch file to its end, without a display, or says how a saved\n"
    "result was made. File names in the batch are taken relative to the current\n"
    "directory, or to the folder of -C.\n"
    "\n"
    "Exit code: 0 nothing failed, 1 a line failed (with --strict: or had a warning; with\n"
    "--check: has an error; with --origin and --record: the file does not tell), 2 wrong\n"
    "usage or unreadable batch file, 130 after Ctrl-C.";

/// The switches and what they say in the help text.
struct Switches {
    QCommandLineOption check{"check", "Check the batch without running it."};
    QCommandLineOption threads{"threads",
                               "Threads for analyses: 1 to 1024 (one for each core). The results "
                               "are the same for any number.",
                               "N"};
    QCommandLineOption folder{
        "C", "Run the batch in this folder. FILE is taken from where the program is started.",
        "FOLDER"};
    QCommandLineOption strict{"strict", "A warning counts as a failure."};
    QCommandLineOption times{"times",
                             "Put the time of day before each text of the log, and the time that "
                             "all took behind the last."};
    QCommandLineOption report{"report",
                              "Write what became of each line to this file, as JSON. It is taken "
                              "from where the program is started.",
                              "JSON"};
    QCommandLineOption verbose{"verbose", "Print debug lines on standard error."};
    QCommandLineOption origin{
        "origin",
        "Print what the saved result FILE (TIFF, PNG, HDF5, table) says of how it was made."};
    QCommandLineOption record{"record", "Print the batch that makes the saved result FILE again."};
    QCommandLineOption help{{"h", "help"}, "Show this text."};
    QCommandLineOption version{{"v", "version"}, "Show the version."};

    QList<QCommandLineOption> all() const {
        return {check,   threads, folder, strict, times,  report,
                verbose, origin,  record, help,   version};
    }
};

/// What is done with FILE; BadUsage where more than one thing is asked for.
RunnerOptions::Action actionOf(const QCommandLineParser& parser, const Switches& switches) {
    using Action = RunnerOptions::Action;
    Action action = Action::Run;
    for (const auto& [option, asked] :
         {std::pair(switches.check, Action::Check), std::pair(switches.origin, Action::Origin),
          std::pair(switches.record, Action::Record)}) {
        if (parser.isSet(option)) {
            action = action == Action::Run ? asked : Action::BadUsage;
        }
    }
    return action;
}

/// What is wrong with the values, one line; empty: nothing.
QString takeValues(const QCommandLineParser& parser, const Switches& switches,
                   RunnerOptions* options) {
    if (parser.isSet(switches.threads)) {
        bool ok = false;
        options->threads = parser.value(switches.threads).toInt(&ok);
        if (!ok || options->threads < 1 || options->threads > MostThreads) {
            return QStringLiteral("--threads needs a number from 1 to 1024.");
        }
    }
    options->isStrict = parser.isSet(switches.strict);
    options->tellsTimes = parser.isSet(switches.times);
    options->isVerbose = parser.isSet(switches.verbose);
    if (parser.isSet(switches.report)) {
        options->report = QFileInfo(parser.value(switches.report)).absoluteFilePath();
        if (parser.value(switches.report).isEmpty()) {
            return QStringLiteral("--report needs a file.");
        }
    }
    options->folder = parser.value(switches.folder);
    if (parser.isSet(switches.folder) && options->folder.isEmpty()) {
        return QStringLiteral("-C needs a folder.");
    }
    const QStringList files = parser.positionalArguments();
    if (files.size() != 1) {
        return files.isEmpty() ? QStringLiteral("No file given.")
                               : QStringLiteral("More than one file given.");
    }
    options->file = files.first();
    if (!options->report.isEmpty() && QFileInfo(options->report) == QFileInfo(options->file)) {
        return QStringLiteral("The report would replace the batch file.");
    }
    return QString();
}

}  // namespace

RunnerOptions RunnerOptions::parse(const QStringList& args) {
    const Switches switches;
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(Description));
    parser.addOptions(switches.all());
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("The batch file, or the saved result."),
                                 QStringLiteral("FILE"));

    RunnerOptions options;
    if (!parser.parse(args)) {
        options.text = parser.errorText();
        return options;
    }
    if (parser.isSet(switches.help)) {
        options.action = Action::Help;
        options.text = parser.helpText();
        return options;
    }
    if (parser.isSet(switches.version)) {
        options.action = Action::Version;
        return options;
    }
    const Action action = actionOf(parser, switches);
    options.text = takeValues(parser, switches, &options);
    if (options.text.isEmpty() && action == Action::BadUsage) {
        options.text =
            QStringLiteral("Only one of --check, --origin and --record can be asked for.");
    }
    const bool runs = action == Action::Run || action == Action::Check;
    if (options.text.isEmpty() && !runs && !options.folder.isEmpty()) {
        options.text = QStringLiteral("-C goes with a batch only.");
    }
    const bool ofRuns =
        options.isStrict || options.tellsTimes || !options.report.isEmpty() || options.isVerbose;
    if (options.text.isEmpty() && action != Action::Run && ofRuns) {
        options.text =
            QStringLiteral("--strict, --times, --report and --verbose go with a run only.");
    }
    options.action = options.text.isEmpty() ? action : Action::BadUsage;
    return options;
}
