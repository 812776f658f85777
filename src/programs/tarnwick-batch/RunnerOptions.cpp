#include "tarnwick-batch/RunnerOptions.h"

#include <QCommandLineParser>
#include <algorithm>

#include "files/FileNames.h"
#include "files/FilePlaces.h"
#include "tarnwick-batch/OptionRows.h"

namespace {

const char* const Description =
    "Runs a Tarnwick batch file to its end, without a display, or says how a saved\n"
    "result was made. File names in the batch are taken relative to the current\n"
    "directory, or to each folder of -C.\n"
    "\n"
    "Exit code: 0 nothing failed, 1 a line failed, or one of several folders (with\n"
    "--strict: or had a warning; with --check and --stages: has an error; with --origin\n"
    "and --record: the file does not tell), 2 wrong usage or unreadable batch file, 75\n"
    "with --part: other shares must come first, 130 after Ctrl-C.";

const QCommandLineOption& helpOption() {
    static const QCommandLineOption option({"h", "help"}, "Show this text.");
    return option;
}

const QCommandLineOption& versionOption() {
    static const QCommandLineOption option({"v", "version"}, "Show the version.");
    return option;
}

void fill(QCommandLineParser* parser) {
    parser->setApplicationDescription(QString::fromLatin1(Description));
    for (const OptionRow& row : optionRows()) {
        parser->addOption({QString::fromLatin1(row.name), QString::fromLatin1(row.help),
                           QString::fromLatin1(row.value)});
    }
    parser->addOption(helpOption());
    parser->addOption(versionOption());
    parser->addPositionalArgument(
        QStringLiteral("FILE"),
        QStringLiteral("The batch file (- is standard input), or the saved result."),
        QStringLiteral("FILE"));
}

/// The rows whose options are given.
std::vector<const OptionRow*> rowsGiven(const QCommandLineParser& parser) {
    std::vector<const OptionRow*> given;
    for (const OptionRow& row : optionRows()) {
        if (parser.isSet(QString::fromLatin1(row.name))) {
            given.push_back(&row);
        }
    }
    return given;
}

/// Takes what is done, and the values.
QString takeGiven(const QCommandLineParser& parser, const std::vector<const OptionRow*>& given,
                  RunnerOptions* options) {
    QStringList asked;
    for (const OptionRow* row : given) {
        if (row->asks) {
            options->action = *row->asks;
            asked << row->typed();
            continue;
        }
        const bool isSwitch = *row->value == '\0';
        for (const QString& value :
             isSwitch ? QStringList(QString()) : parser.values(QString::fromLatin1(row->name))) {
            const QString problem = row->take(value, options);
            if (!problem.isEmpty()) {
                return QStringLiteral("%1: %2.").arg(row->typed(), problem);
            }
        }
    }
    return asked.size() > 1 ? QStringLiteral("Only one of %1 can be asked for.")
                                  .arg(asked.join(QStringLiteral(" and ")))
                            : QString();
}

/// Each name that follows the folder of a -C is the folder of another one, as it must be for
/// "-C scan_*".
QStringList eachWithItsOption(const QStringList& args) {
    const QString option = QStringLiteral("-C");
    QStringList made;
    for (int i = 0; i < args.size(); ++i) {
        made << args.at(i);
        if (args.at(i) == QLatin1String("--")) {
            return made + args.mid(i + 1);
        }
        if (args.at(i) != option || i + 1 == args.size()) {
            continue;
        }
        made << args.at(++i);  // whatever it looks like
        while (i + 1 < args.size() && !args.at(i + 1).startsWith(QLatin1Char('-'))) {
            made << option << args.at(++i);
        }
    }
    return made;
}

/// The file that all is about.
QString takeNames(QStringList files, RunnerOptions* options) {
    if (files.isEmpty() && options->folders.size() > 1) {
        files << options->folders.takeLast();  // "-C FOLDER FILE"
    }
    if (files.size() != 1) {
        return files.isEmpty() ? QStringLiteral("No file given.")
                               : QStringLiteral("More than one file given.");
    }
    options->file = typedFileName(files.first());
    const QString file = identityOf(options->file);
    if (!options->report.isEmpty() && identityOf(options->report) == file) {
        return QStringLiteral("The report would replace the batch file.");
    }
    if (!options->summary.isEmpty() && identityOf(options->summary) == file) {
        return QStringLiteral("The summary would replace the batch file.");
    }
    return !options->report.isEmpty() && identityOf(options->report) == identityOf(options->summary)
               ? QStringLiteral("Report and summary cannot be one file.")
               : QString();
}

/// What does not go with stages or a share of them.
QString aboutShare(const RunnerOptions& options) {
    const bool isShare = options.part > 0;
    if (isShare && options.work.isEmpty()) {
        return QStringLiteral("--part needs --work.");
    }
    if (isShare && (options.from > 0 || !options.summary.isEmpty())) {
        return QStringLiteral("--part goes neither with --from nor with --summary.");
    }
    return (isShare || options.action == RunnerOptions::Action::Stages) &&
                   options.folders.size() > 1
               ? QStringLiteral("%1 goes with one folder only.")
                     .arg(QLatin1String(isShare ? "--part" : "--stages"))
               : QString();
}

/// What is wrong with the command line, one line; empty: nothing.
QString takeAll(const QCommandLineParser& parser, RunnerOptions* options) {
    const std::vector<const OptionRow*> given = rowsGiven(parser);
    const QString problem = takeGiven(parser, given, options);
    if (!problem.isEmpty()) {
        return problem;
    }
    const auto stranger = std::find_if(given.begin(), given.end(), [options](const OptionRow* row) {
        return !row->fits(options->action);
    });
    if (stranger != given.end()) {
        const auto asks = std::find_if(given.begin(), given.end(),
                                       [](const OptionRow* row) { return row->asks.has_value(); });
        return QStringLiteral("%1 does not go with %2.")
            .arg((*stranger)->typed(),
                 asks == given.end() ? QStringLiteral("a run") : (*asks)->typed());
    }
    const QString names = takeNames(parser.positionalArguments(), options);
    return names.isEmpty() ? aboutShare(*options) : names;
}

}  // namespace

RunnerOptions RunnerOptions::parse(const QStringList& args) {
    QCommandLineParser parser;
    fill(&parser);
    RunnerOptions options;
    if (!parser.parse(eachWithItsOption(args))) {
        options.action = Action::BadUsage;
        options.text = parser.errorText();
        return options;
    }
    if (parser.isSet(helpOption())) {
        options.action = Action::Help;
        options.text = parser.helpText();
        return options;
    }
    if (parser.isSet(versionOption())) {
        options.action = Action::Version;
        return options;
    }
    options.text = takeAll(parser, &options);
    options.action = options.text.isEmpty() ? options.action : Action::BadUsage;
    return options;
}
