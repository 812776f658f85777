#include "tarnwick-batch/BatchRuns.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>

#include "base/Memory.h"
#include "batch/BatchCheck.h"
#include "batch/BatchRunner.h"
#include "files/FileTarget.h"
#include "files/WholeDevice.h"
#include "files/WholeFile.h"
#include "frames/SpillFile.h"
#include "measurement/Share.h"
#include "measurement/Writing.h"
#include "tarnwick-batch/Console.h"

namespace {

bool writeText(const QString& fileName, const QString& text) {
    WholeDevice file(fileName);
    const QByteArray bytes = text.toUtf8();
    return file.open() && file.write(bytes) == bytes.size() && file.putInPlace() &&
           noteSaved(fileName);
}

int countOf(const QVector<SummaryRow>& rows, const char* outcome) {
    return static_cast<int>(std::count_if(
        rows.begin(), rows.end(),
        [outcome](const SummaryRow& row) { return row.outcome == QLatin1String(outcome); }));
}

}  // namespace

BatchRuns::BatchRuns(const AskedBatch& batch, const RunnerOptions& options, Console& console)
    : m_batch(batch),
      m_options(options),
      m_console(console),
      m_text(BatchText::fromLines(batch.lines)),
      m_folders(options.folders),
      m_progress(&console, options.progressSeconds),
      m_report(options.report),
      m_reportFile{QStringLiteral("--report"), options.report, {}},
      m_summaryFile{QStringLiteral("--summary"), options.summary, {}} {
    m_sinceStart.start();
    QObject::connect(&m_cleanEnd, &CleanEnd::requested, &m_progress, &Progress::end);
}

int BatchRuns::run() {
    if (!begin()) {
        return BatchSession::BadUsage;
    }
    if (m_options.tellsTimes) {
        m_console.tellTimes();
    }
    return close(m_folders.areSeveral() ? runAll() : runIn(0));
}

/// False: one of the files cannot be written, or the only folder not entered.
bool BatchRuns::begin() {
    if (!m_reportFile.name.isEmpty() && !m_report.open()) {
        m_console.note(QStringLiteral("tarnwick-batch: cannot write ") + m_reportFile.name);
        return false;
    }
    if (!m_summaryFile.name.isEmpty() && targetAt(m_summaryFile.name) != Target::Fine) {
        m_console.note(QStringLiteral("tarnwick-batch: cannot write ") + m_summaryFile.name);
        return false;
    }
    if (!m_folders.areSeveral() && !m_folders.enter(0)) {
        m_console.note(QStringLiteral("tarnwick-batch: cannot enter ") + m_folders.name(0));
        return false;
    }
    return true;
}

int BatchRuns::runAll() {
    bool isGood = true;
    for (int i = 0; i < m_folders.count(); ++i) {
        m_console.logLine(QStringLiteral("%1: %2").arg(m_folders.place(i), m_folders.name(i)));
        if (!m_folders.enter(i)) {
            cannotEnter(i);
            isGood = false;
            continue;
        }
        const int code = runIn(i);
        if (code >= BatchSession::SignalBase) {
            return code;  // somebody wants the program to end
        }
        isGood = isGood && code == BatchSession::AllDone;
        giveBackFreeMemory();  // the next begins with what the first one had
    }
    return isGood ? BatchSession::AllDone : BatchSession::SomeFailed;
}

void BatchRuns::cannotEnter(int folder) {
    const QString name = m_folders.name(folder);
    m_console.note(QStringLiteral("tarnwick-batch: cannot enter ") + name);
    m_rows.append({name, QStringLiteral("failed"), {}, {}, 0.0});
    if (!m_reportFile.name.isEmpty()) {
        m_report.add({{"folder", name},
                      {"outcome", "failed"},
                      {"reasons", QJsonArray{QStringLiteral("cannot be entered")}}});
    }
}

/// In the current folder.
int BatchRuns::runIn(int folder) {
    std::unique_ptr<Share> share;
    Measurement measurement;
    measurement.readCountsWhenNeeded();
    if (!m_options.work.isEmpty() && !openWorkFolder(&measurement)) {
        return BatchSession::BadUsage;
    }
    if (m_options.part > 0) {
        share =
            std::make_unique<Share>(m_options.part, m_options.parts,
                                    measurement.parts().folder()->path() + QLatin1String("/kept"),
                                    readBackOf(m_batch.lines, m_batch.file));
        measurement.parts().setShare(share.get());
    }
    prepare(&measurement);
    BatchSession session(&m_console, m_text,
                         {m_options.isStrict, m_options.tellsTimes,
                          m_reportFile.name.isEmpty() ? nullptr : &m_report,
                          m_folders.areSeveral() ? m_folders.name(folder) : QString(),
                          m_options.stopsOnError, share.get()});
    const int code = converse(&session, &measurement, folder);
    takeEnd(session, measurement, folder, code);
    return code;
}

bool BatchRuns::openWorkFolder(Measurement* measurement) {
    const auto folder = std::make_shared<WorkFolder>();
    const Outcome outcome = folder->open(m_options.work);
    for (const QString& failure : outcome.failures) {
        m_console.note(QStringLiteral("tarnwick-batch: --work: ") + failure);
    }
    measurement->parts().setFolder(folder);
    setSpillFolder(m_options.work);
    return !outcome.failed();
}

/// What the options say of a measurement.
void BatchRuns::prepare(Measurement* measurement) const {
    measurement->setBatchFile(m_batch.file);
    if (m_options.threads > 0) {
        measurement->setThreads(m_options.threads);
    }
}

int BatchRuns::converse(BatchSession* session, Measurement* measurement, int folder) {
    BatchRunner runner(*measurement);
    const BatchDispatcher* dispatcher = runner.dispatcher();
    const auto lineInWork = [dispatcher] { return dispatcher->lineInWork(); };
    session->setLineInWork(lineInWork);
    m_progress.begin({m_folders.place(folder), m_text, lineInWork,
                      [measurement] { return measurement->rowsDone(); }});
    QEventLoop loop;
    using R = BatchRunner;
    using S = BatchSession;
    QObject::connect(dispatcher, &BatchDispatcher::log, session, &S::log);
    QObject::connect(&runner, &R::unknownCommand, session, &S::unknown);
    QObject::connect(&runner, &R::commandDone, session, &S::commandDone);
    QObject::connect(&runner, &R::commandDone, &m_progress, &Progress::lineDone);
    QObject::connect(measurement, &Measurement::progressed, &m_progress, &Progress::work);
    // No line about the progress comes behind the verdict.
    QObject::connect(dispatcher, &BatchDispatcher::ended, &m_progress, &Progress::end);
    QObject::connect(dispatcher, &BatchDispatcher::ended, session, &S::end);
    QObject::connect(session, &S::stopAsked, &runner, &R::stop);
    QObject::connect(&m_cleanEnd, &CleanEnd::requested, session, &S::interrupt);
    QObject::connect(session, &S::lastWordsChanged, &m_cleanEnd, &CleanEnd::setLastWords);
    QObject::connect(session, &S::finished, &loop, &QEventLoop::exit, Qt::QueuedConnection);
    runner.leaveOutSavesBefore(m_batch.start);
    runner.start(m_text.lines);
    return loop.exec();
}

void BatchRuns::takeEnd(const BatchSession& session, const Measurement& measurement, int folder,
                        int code) {
    const QString name = m_folders.name(folder);
    SummaryRow row{name.isEmpty() ? QDir::current().dirName() : name,
                   code != BatchSession::AllDone ? QStringLiteral("failed")
                   : session.hasWarned()         ? QStringLiteral("warning")
                                                 : QStringLiteral("done"),
                   {},
                   {},
                   session.seconds()};
    if (m_folders.areSeveral() || !m_summaryFile.name.isEmpty()) {
        takeFit(measurement, &row);
    }
    m_rows.append(row);
    for (LateFile* file : {&m_reportFile, &m_summaryFile}) {
        if (!file->name.isEmpty() && !file->refused.failed()) {
            file->refused = judgeTarget(measurement, file->name);
        }
    }
}

/// Report and summary in their places, and the end of the log; the exit code.
int BatchRuns::close(int code) {
    const QString table = summaryTable(m_rows);
    bool isWritten = true;
    if (!m_summaryFile.name.isEmpty()) {
        const QString name = m_summaryFile.name;
        isWritten = write(m_summaryFile, [&] { return writeText(name, table); });
    }
    if (m_folders.areSeveral()) {
        if (m_summaryFile.name.isEmpty() || !isWritten) {
            m_console.log(table);
        }
        tellTotals(code);
    }
    if (!m_reportFile.name.isEmpty()) {
        isWritten = write(m_reportFile, [this] { return m_report.close(); }) && isWritten;
    }
    return code == BatchSession::AllDone && !isWritten ? BatchSession::SomeFailed : code;
}

/// Of several folders.
void BatchRuns::tellTotals(int code) {
    QStringList failed;
    for (const SummaryRow& row : qAsConst(m_rows)) {
        if (row.outcome == QLatin1String("failed")) {
            failed << row.scan;
        }
    }
    const double seconds = static_cast<double>(m_sinceStart.elapsed()) / 1000.0;
    const int warned = countOf(m_rows, "warning");
    const int done = countOf(m_rows, "done");
    if (!m_reportFile.name.isEmpty()) {
        m_report.add({{"totals", QJsonObject{{"folders", m_folders.count()},
                                             {"done", done},
                                             {"warning", warned},
                                             {"failed", failed.size()},
                                             {"seconds", seconds},
                                             {"exit", code}}}});
    }
    QString text = QStringLiteral("%1 of %2 folders done, %3 with a warning, %4 failed")
                       .arg(done + warned)
                       .arg(m_folders.count())
                       .arg(warned)
                       .arg(failed.size());
    if (!failed.isEmpty()) {
        text += QStringLiteral(": ") + failed.join(QStringLiteral(", "));
    }
    m_console.logLine(m_options.tellsTimes ? text + QStringLiteral("; %1 s").arg(seconds, 0, 'f', 2)
                                           : text);
}

/// It replaces no file that one of the measurements was read from.
bool BatchRuns::write(const LateFile& file, const std::function<bool()>& writer) {
    Outcome outcome = file.refused;
    if (!outcome.failed()) {
        Measurement none;
        none.setBatchFile(m_batch.file);
        outcome = writeFile(none, file.name, writer);
    }
    for (const QString& failure : outcome.failures) {
        m_console.note(QStringLiteral("tarnwick-batch: %1: %2").arg(file.option, failure));
    }
    return !outcome.failed();
}
