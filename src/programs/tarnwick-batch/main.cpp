// tarnwick-batch: a measurement without a window, driven by a batch file.

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>

#include "base/CleanEnd.h"
#include "base/Globals.h"
#include "base/Memory.h"
#include "batch/BatchCheck.h"
#include "batch/BatchRunner.h"
#include "batch/CommandTables.h"
#include "batch/LineCheck.h"
#include "measurement/Writing.h"
#include "tarnwick-batch/BatchSession.h"
#include "tarnwick-batch/Console.h"
#include "tarnwick-batch/RunReport.h"
#include "tarnwick-batch/RunnerOptions.h"
#include "tarnwick-batch/SavedOrigin.h"

namespace {

Console* debugConsole = nullptr;  // where debug lines go
bool isVerbose = false;           // otherwise only what ends the program

void writeMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    const bool isGrave = type == QtCriticalMsg || type == QtFatalMsg;
    if (!isVerbose && !isGrave) {
        return;
    }
    // What Qt says about a missing display or session is no news to an unattended program.
    const bool isNews = !message.startsWith(QLatin1String("This plugin does not support")) &&
                        !message.startsWith(QLatin1String("QStandardPaths: "));
    if (debugConsole && isNews) {
        debugConsole->note(message);
    }
}

void prepareEnvironment() {
    // Unattended programs are often started without a locale; file names need not be ASCII.
    const char* locale = std::setlocale(LC_CTYPE, "");
    if (!locale || std::strcmp(locale, "C") == 0 || std::strcmp(locale, "POSIX") == 0) {
        qputenv("LC_ALL", "C.UTF-8");
    }
    // A reader of the log that goes away does not end the batch.
    std::signal(SIGPIPE, SIG_IGN);
}

/// As after "> log 2>&1".
bool isOneFile(int a, int b) {
    struct stat first {};
    struct stat second {};
    return fstat(a, &first) == 0 && fstat(b, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

QString counted(int n, const QString& what) {
    return QStringLiteral("%1 %2%3").arg(QString::number(n), what,
                                         n == 1 ? QString() : QStringLiteral("s"));
}

/// @param file as it is named in the findings
int check(const QStringList& lines, const QString& file, const QString& path, Console& console) {
    const char* const names[] = {"error", "warning", "note"};  // by kind
    int counts[] = {0, 0, 0};
    const QVector<Finding> findings = checkBatch(lines, path);
    for (const Finding& finding : findings) {
        const auto kind = static_cast<int>(finding.kind);
        ++counts[kind];
        console.logLine(QStringLiteral("%1:%2: %3: %4")
                            .arg(file, QString::number(finding.line),
                                 QString::fromLatin1(names[kind]), finding.text));
    }
    console.logLine(QStringLiteral("%1: %2, %3")
                        .arg(file, counted(counts[0], QStringLiteral("error")),
                             counted(counts[1], QStringLiteral("warning"))));
    return counts[0] == 0 ? BatchSession::AllDone : BatchSession::SomeFailed;
}

/// The report in its place. It replaces no file that the measurement was read from.
bool finishReport(RunReport* report, const Measurement& measurement, Console& console) {
    const Outcome outcome =
        writeFile(measurement, report->fileName(), [report] { return report->close(); });
    for (const QString& failure : outcome.failures) {
        console.note(QStringLiteral("tarnwick-batch: --report: ") + failure);
    }
    return !outcome.failed();
}

bool openWorkFolder(const QString& path, Measurement* measurement, Console& console) {
    if (path.isEmpty()) {
        return true;
    }
    const auto folder = std::make_shared<WorkFolder>();
    const Outcome outcome = folder->open(path);
    for (const QString& failure : outcome.failures) {
        console.note(QStringLiteral("tarnwick-batch: --work: ") + failure);
    }
    measurement->setWorkFolder(folder);
    return !outcome.failed();
}

int run(const BatchText& text, const QString& file, const RunnerOptions& options,
        Console& console) {
    std::unique_ptr<RunReport> report;
    if (!options.report.isEmpty()) {
        report = std::make_unique<RunReport>(options.report);
        if (!report->open()) {
            console.note(QStringLiteral("tarnwick-batch: cannot write ") + options.report);
            return BatchSession::BadUsage;
        }
    }
    if (options.tellsTimes) {
        console.tellTimes();
    }
    Measurement measurement;
    measurement.readCountsWhenNeeded();
    if (!openWorkFolder(options.work, &measurement, console)) {
        return BatchSession::BadUsage;
    }
    measurement.setBatchFile(file);
    if (options.threads > 0) {
        measurement.setThreads(options.threads);
    }
    BatchRunner runner(measurement);
    BatchDispatcher* dispatcher = runner.dispatcher();
    BatchSession session(&console, text, [dispatcher] { return dispatcher->lineInWork(); },
                         {options.isStrict, options.tellsTimes, report.get()});
    QObject::connect(dispatcher, &BatchDispatcher::log, &session, &BatchSession::log);
    QObject::connect(&runner, &BatchRunner::unknownCommand, &session, &BatchSession::unknown);
    QObject::connect(&runner, &BatchRunner::commandDone, &session, &BatchSession::commandDone);
    QObject::connect(&measurement, &Measurement::progressed, &session, &BatchSession::progress);
    QObject::connect(dispatcher, &BatchDispatcher::ended, &session, &BatchSession::end);
    const CleanEnd cleanEnd;
    QObject::connect(&cleanEnd, &CleanEnd::requested, &session, &BatchSession::interrupt);
    QObject::connect(&session, &BatchSession::finished, QCoreApplication::instance(),
                     &QCoreApplication::exit, Qt::QueuedConnection);
    runner.start(text.lines);
    const int code = QCoreApplication::exec();
    const bool isReported = !report || finishReport(report.get(), measurement, console);
    return code == BatchSession::AllDone && !isReported ? BatchSession::SomeFailed : code;
}

/// Whether a batch has a line that draws letters, for which Qt needs more than a bare program.
bool drawsLetters(const QString& fileName) {
    QStringList lines;
    if (!readBatchFile(fileName, &lines)) {
        return false;
    }
    const QVector<CheckedLine> logical = logicalLines(BatchText::fromLines(lines));
    return std::any_of(logical.begin(), logical.end(), [](const CheckedLine& line) {
        const CommandRow* row = commandRow(line.command);
        return row != nullptr && row->drawsLetters && !line.inRemark;
    });
}

std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    QStringList args;
    for (int i = 0; i < argc; ++i) {
        args << QString::fromLocal8Bit(argv[i]);
    }
    // Help knows the program's name, which there is not yet.
    const bool asksForHelp =
        args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"));
    const RunnerOptions options = asksForHelp ? RunnerOptions() : RunnerOptions::parse(args);
    if (!asksForHelp && options.action == RunnerOptions::Action::Run &&
        drawsLetters(options.file)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return std::make_unique<QGuiApplication>(argc, argv);
    }
    return std::make_unique<QCoreApplication>(argc, argv);
}

/// Prints what a saved file tells, or why it does not.
int tell(const RunnerOptions& options, Console& console) {
    QString problem;
    const auto text = options.action == RunnerOptions::Action::Record
                          ? recordedBatch(options.file, &problem)
                          : originLines(options.file, &problem);
    if (!text) {
        console.note(QStringLiteral("tarnwick-batch: %1: %2").arg(options.file, problem));
        return BatchSession::SomeFailed;
    }
    console.log(*text);
    return BatchSession::AllDone;
}

int perform(const RunnerOptions& options, Console& console) {
    switch (options.action) {
        case RunnerOptions::Action::Help:
            console.log(options.text);
            return BatchSession::AllDone;
        case RunnerOptions::Action::Version:
            console.logLine(QStringLiteral("tarnwick-batch ") +
                            QCoreApplication::applicationVersion());
            return BatchSession::AllDone;
        case RunnerOptions::Action::BadUsage:
            console.note(
                QStringLiteral("tarnwick-batch: %1 See tarnwick-batch --help.").arg(options.text));
            return BatchSession::BadUsage;
        case RunnerOptions::Action::Origin:
        case RunnerOptions::Action::Record:
            return tell(options, console);
        case RunnerOptions::Action::Check:
        case RunnerOptions::Action::Run:
            break;
    }
    QStringList lines;
    if (!readBatchFile(options.file, &lines)) {
        console.note(QStringLiteral("tarnwick-batch: cannot open ") + options.file);
        return BatchSession::BadUsage;
    }
    const QString file = QFileInfo(options.file).absoluteFilePath();
    for (const QString& folder : options.folders) {
        if (!QDir::setCurrent(folder)) {
            console.note(QStringLiteral("tarnwick-batch: cannot enter ") + folder);
            return BatchSession::BadUsage;
        }
    }
    return options.action == RunnerOptions::Action::Check
               ? check(lines, options.file, file, console)
               : run(BatchText::fromLines(lines), file, options, console);
}

}  // namespace

int main(int argc, char** argv) {
    prepareEnvironment();
    keepNoFreeMemory();
    initGlobals();
    QFile out;
    QFile err;
    out.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    err.open(STDERR_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    const bool plain = qgetenv("TERM") == "dumb";
    Console console(&out, &err, !plain && isatty(STDOUT_FILENO) == 1,
                    !plain && isatty(STDERR_FILENO) == 1);
    if (isOneFile(STDOUT_FILENO, STDERR_FILENO)) {
        console.shareLines();
    }
    debugConsole = &console;
    qInstallMessageHandler(writeMessage);

    const std::unique_ptr<QCoreApplication> app = makeApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tarnwick-batch"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TARNWICK_VERSION));
    const RunnerOptions options = RunnerOptions::parse(QCoreApplication::arguments());
    isVerbose = options.isVerbose;
    if (options.memory > 0) {
        setMemoryLimit(options.memory);
    }
    const int code = perform(options, console);
    qInstallMessageHandler(nullptr);
    return code;
}
