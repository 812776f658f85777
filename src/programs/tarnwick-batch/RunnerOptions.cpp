#include "tarnwick-batch/RunnerOptions.h"

#include <QCommandLineParser>

namespace {
constexpr int MostThreads = 1024;
}

RunnerOptions RunnerOptions::parse(const QStringList& args) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Runs a Tarnwick batch file to its end, without a display.\n"
        "File names in the batch are taken relative to the current directory.\n"
        "\n"
        "Exit code: 0 every line did its work, 1 a line failed (with --check: has an error),\n"
        "2 wrong usage or unreadable batch file, 130 after Ctrl-C."));
    const QCommandLineOption check(QStringLiteral("check"),
                                   QStringLiteral("Check the batch without running it."));
    const QCommandLineOption threads(
        QStringLiteral("threads"),
        QStringLiteral("Threads for analyses: 1 to 1024 (one for each core). The results are the "
                       "same for any number."),
        QStringLiteral("N"));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this text."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version."));
    parser.addOptions({check, threads, help, version});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The batch file."),
                                 QStringLiteral("FILE"));

    RunnerOptions options;
    if (!parser.parse(args)) {
        options.text = parser.errorText();
        return options;
    }
    if (parser.isSet(help)) {
        options.action = Action::Help;
        options.text = parser.helpText();
        return options;
    }
    if (parser.isSet(version)) {
        options.action = Action::Version;
        return options;
    }
    if (parser.isSet(threads)) {
        bool ok = false;
        options.threads = parser.value(threads).toInt(&ok);
        if (!ok || options.threads < 1 || options.threads > MostThreads) {
            options.text = QStringLiteral("--threads needs a number from 1 to 1024.");
            return options;
        }
    }
    const QStringList files = parser.positionalArguments();
    if (files.size() != 1) {
        options.text = files.isEmpty() ? QStringLiteral("No batch file given.")
                                       : QStringLiteral("More than one batch file given.");
        return options;
    }
    options.file = files.first();
    options.action = parser.isSet(check) ? Action::Check : Action::Run;
    return options;
}
