// tarnwick-batch: a measurement without a window, driven by a batch file.

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QGuiApplication>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/AddressSpace.h"
#include "base/CleanEnd.h"
#include "base/Globals.h"
#include "base/Memory.h"
#include "base/MemoryEnd.h"
#include "base/Worker.h"
#include "batch/BatchCheck.h"
#include "files/UnfinishedFile.h"
#include "tarnwick-batch/AskedBatch.h"
#include "tarnwick-batch/BatchRuns.h"
#include "tarnwick-batch/BatchStages.h"
#include "tarnwick-batch/Console.h"
#include "tarnwick-batch/RunnerOptions.h"
#include "tarnwick-batch/SavedOrigin.h"

namespace {

/// Addresses that Qt takes for a picture with letters, from the first font on; without them its
/// libraries end the program in their own way.
constexpr quint64 LettersRoom = quint64(48) << 20;

/// Addresses for the threads that read and interpret, whatever the batch, and what they begin with.
constexpr quint64 RunRoom = quint64(20) << 20;

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
    // Nor does a reader of the log that goes away end the batch.
    letWritesFail();
}

/// As after "> log 2>&1".
bool isOneFile(int a, int b) {
    struct stat first {};
    struct stat second {};
    return fstat(a, &first) == 0 && fstat(b, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

/// Of the terminal that the bar is drawn on.
int terminalColumns() {
    struct winsize size {};
    const int fd = isatty(STDERR_FILENO) == 1 ? STDERR_FILENO : STDOUT_FILENO;
    return ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

QString counted(int n, const QString& what) {
    return QStringLiteral("%1 %2%3").arg(QString::number(n), what,
                                         n == 1 ? QString() : QStringLiteral("s"));
}

/// In the current folder.
int check(const AskedBatch& batch, const RunnerOptions& options, Console& console) {
    const char* const names[] = {"error", "warning", "note"};  // by kind
    int counts[] = {0, 0, 0};
    const QVector<Finding> findings =
        checkBatch(batch.lines, batch.file, DefaultCheckEffort, batch.start, true);
    for (const Finding& finding : findings) {
        const auto kind = static_cast<int>(finding.kind);
        ++counts[kind];
        console.logLine(QStringLiteral("%1:%2: %3: %4")
                            .arg(options.file, QString::number(finding.line),
                                 QString::fromLatin1(names[kind]), finding.text));
    }
    console.logLine(QStringLiteral("%1: %2, %3")
                        .arg(options.file, counted(counts[0], QStringLiteral("error")),
                             counted(counts[1], QStringLiteral("warning"))));
    return counts[0] == 0 ? BatchSession::AllDone : BatchSession::SomeFailed;
}

int checkAll(const AskedBatch& batch, const RunnerOptions& options, Console& console) {
    const Folders folders(options.folders);
    int worst = BatchSession::AllDone;
    for (int i = 0; i < folders.count(); ++i) {
        if (folders.areSeveral()) {
            console.logLine(folders.place(i) + QStringLiteral(": ") + folders.name(i));
        }
        if (folders.enter(i)) {
            worst = std::max(worst, check(batch, options, console));
            continue;
        }
        console.note(QStringLiteral("tarnwick-batch: cannot enter ") + folders.name(i));
        worst = folders.areSeveral() ? BatchSession::SomeFailed : BatchSession::BadUsage;
    }
    return worst;
}

/// Read once: a pipe has it only once.
const AskedBatch& askedBatch(const RunnerOptions& options) {
    static const AskedBatch batch = AskedBatch::read(options);
    return batch;
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
        askedBatch(options).drawsLetters()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        needAddressSpace(LettersRoom);
        return std::make_unique<WithoutMemoryEnds<QGuiApplication>>(argc, argv);
    }
    return std::make_unique<WithoutMemoryEnds<QCoreApplication>>(argc, argv);
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
        case RunnerOptions::Action::Stages:
        case RunnerOptions::Action::Run:
            break;
    }
    needAddressSpace(RunRoom);
    const AskedBatch& batch = askedBatch(options);
    if (!batch.problem.isEmpty()) {
        console.note(QStringLiteral("tarnwick-batch: ") + batch.problem);
        return BatchSession::BadUsage;
    }
    if (options.action == RunnerOptions::Action::Stages) {
        return printStages(batch, options, console);
    }
    return options.action == RunnerOptions::Action::Check
               ? checkAll(batch, options, console)
               : BatchRuns(batch, options, console).run();
}

}  // namespace

int main(int argc, char** argv) {
    prepareForLimit();
    keepNoFreeMemory();
    endInOrderWithoutMemory("tarnwick-batch");
    beforeEndWithoutMemory(removeUnfinishedFiles);
    prepareEnvironment();
    initGlobals();
    QFile out;
    QFile err;
    out.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    err.open(STDERR_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    const bool plain = qgetenv("TERM") == "dumb";
    Console console(&out, &err, !plain && isatty(STDOUT_FILENO) == 1,
                    !plain && isatty(STDERR_FILENO) == 1);
    console.setColumns(terminalColumns);
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
    if (Worker::isAnyLeft()) {
        std::_Exit(code);  // all is written; the reader may use what is destroyed from here on
    }
    return code;
}
