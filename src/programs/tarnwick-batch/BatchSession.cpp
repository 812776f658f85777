#include "tarnwick-batch/BatchSession.h"

#include <QJsonArray>
#include <QJsonObject>
#include <utility>

#include "measurement/Share.h"
#include "tarnwick-batch/Console.h"
#include "tarnwick-batch/RunReport.h"

namespace {

double secondsOf(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed() / 1000) / 1e6;
}

}  // namespace

BatchSession::BatchSession(Console* console, BatchText text, const Options& options,
                           QObject* parent)
    : QObject(parent),
      m_console(console),
      m_text(std::move(text)),
      m_lineInWork([] { return -1; }),
      m_options(options) {
    m_sinceStart.start();
    m_sinceLine.start();
}

void BatchSession::log(const QString& text) {
    if (!m_finished) {
        m_console->log(text);
        changeLastWords();
    }
}

void BatchSession::unknown(const CmdLine& cmd) {
    log(QStringLiteral("Err: %1").arg(cmd.text));
}

void BatchSession::commandDone(const CmdLine& cmd, const Outcome& outcome) {
    if (m_finished) {
        return;
    }
    m_console->clearBar();
    const int line = m_text.lineNumber(cmd.line);
    m_lastLine = line;
    if (m_verdict.take(cmd, outcome, line)) {
        say(line, cmd, outcome);
        report(line, cmd, outcome);
        if (m_options.stopsOnError && m_stoppedAt == 0 && isFailure(outcome)) {
            m_stoppedAt = line;
            emit stopAsked();
        }
    }
    changeLastWords();
    m_sinceLine.start();
}

void BatchSession::say(int line, const CmdLine& cmd, const Outcome& outcome) {
    const QString folder =
        m_options.folder.isEmpty() ? QString() : m_options.folder + QStringLiteral(": ");
    const QString head =
        folder + QStringLiteral("line %1: %2: ").arg(QString::number(line), cmd.command);
    for (const QString& failure : outcome.failures) {
        m_console->note(head + failure);
    }
    for (const QString& warning : outcome.warnings) {
        m_console->note(head + QStringLiteral("warning: ") + warning);
    }
    // Names of saved files stand in the line itself.
    for (const QString& note : outcome.files.isEmpty() ? outcome.notes : QStringList()) {
        m_console->logLine(QStringLiteral("note: ") + note);
    }
}

void BatchSession::report(int line, const CmdLine& cmd, const Outcome& outcome) {
    if (m_options.report == nullptr) {
        return;
    }
    const char* const word = outcome.failed()             ? "failed"
                             : outcome.endsBatch          ? "part"
                             : outcome.warnings.isEmpty() ? "done"
                                                          : "warning";
    add({{"line", line},
         {"command", cmd.command},
         {"arguments", QJsonArray::fromStringList(cmd.args)},
         {"outcome", word},
         {"reasons", QJsonArray::fromStringList(outcome.texts())},
         {"seconds", secondsOf(m_sinceLine)},
         {"files", QJsonArray::fromStringList(outcome.files)},
         {"notes", QJsonArray::fromStringList(outcome.notes)}});
}

void BatchSession::add(QJsonObject entry) {
    if (!m_options.folder.isEmpty()) {
        entry.insert(QStringLiteral("folder"), m_options.folder);
    }
    m_options.report->add(entry);
}

bool BatchSession::isFailure(const Outcome& outcome) const {
    return outcome.failed() || (m_options.isStrict && !outcome.warnings.isEmpty());
}

void BatchSession::end() {
    const bool isGood = m_verdict.failed() == 0 && (m_verdict.warned() == 0 || !m_options.isStrict);
    if (m_options.share == nullptr) {
        finish(verdict(), isGood ? AllDone : SomeFailed);
        return;
    }
    const int code = m_options.share->end() == Share::End::Waits ? OthersFirst : AllDone;
    finish(shareText() + QStringLiteral("; ") + verdict(), isGood ? code : SomeFailed);
}

/// "part 3/5 of line 12: 13 parts made".
QString BatchSession::shareText() const {
    const Share& share = *m_options.share;
    const QString part = QStringLiteral("part %1/%2").arg(share.number()).arg(share.of());
    const QString where = QStringLiteral("%1 of line %2").arg(part).arg(m_lastLine);
    if (m_stoppedAt > 0) {
        return QStringLiteral("%1: ended at line %2").arg(part).arg(m_stoppedAt);
    }
    switch (share.end()) {
        case Share::End::NothingLeft:
            return QStringLiteral("%1: nothing left to do").arg(part);
        case Share::End::Failed:
            return QStringLiteral("%1: failed").arg(where);
        case Share::End::Waits:
            return QStringLiteral("%1: made before, other shares must come first").arg(where);
        case Share::End::Made:
            break;
    }
    return QStringLiteral("%1: %2 made")
        .arg(where, share.made() == 1 ? QStringLiteral("1 part")
                                      : QStringLiteral("%1 parts").arg(share.made()));
}

QString BatchSession::interrupted() const {
    const int line = m_text.lineNumber(m_lineInWork());
    return line > 0 ? QStringLiteral("Interrupted at line %1: ").arg(line)
                    : QStringLiteral("Interrupted: ");
}

void BatchSession::interrupt(int signalNumber) {
    finish(interrupted() + verdict(), SignalBase + signalNumber);
}

/// Without the lines that failed, which may be many.
void BatchSession::changeLastWords() {
    emit lastWordsChanged((interrupted() + counts() + QLatin1Char('\n')).toUtf8());
}

void BatchSession::finish(const QString& closing, int exitCode) {
    if (m_finished) {
        return;
    }
    m_finished = true;
    emit lastWordsChanged({});
    m_seconds = secondsOf(m_sinceStart);
    m_console->clearBar();
    if (m_options.report != nullptr) {
        add({{"totals", QJsonObject{{"done", m_verdict.done() - m_verdict.warned()},
                                    {"warning", m_verdict.warned()},
                                    {"failed", m_verdict.failed()},
                                    {"seconds", m_seconds},
                                    {"exit", exitCode}}}});
    }
    if (m_stoppedAt > 0 && m_options.share == nullptr) {
        m_console->logLine(
            QStringLiteral("note: ended at line %1; when it is mended, go on with --from %1")
                .arg(m_stoppedAt));
    }
    m_console->logLine(m_options.tellsTime
                           ? closing + QStringLiteral("; %1 s").arg(m_seconds, 0, 'f', 2)
                           : closing);
    emit finished(exitCode);
}

QString BatchSession::counts() const {
    return m_verdict.lines() == 0
               ? QStringLiteral("0 lines")
               : QStringLiteral("%1 done, %2 with a warning, %3 failed")
                     .arg(m_verdict.done() == 1 ? QStringLiteral("1 line")
                                                : QStringLiteral("%1 lines").arg(m_verdict.done()))
                     .arg(m_verdict.warned())
                     .arg(m_verdict.failed());
}

QString BatchSession::verdict() const {
    QStringList named;
    const auto& failures = m_verdict.failures();
    for (auto it = failures.begin(); it != failures.end(); ++it) {
        QString name = QStringLiteral("line %1 (").arg(it.key()) + it->command;
        if (it->times > 1) {
            name += QStringLiteral(", %1 times").arg(it->times);
        }
        named.append(name + QLatin1Char(')'));
    }
    return named.isEmpty() ? counts()
                           : counts() + QLatin1String(": ") + named.join(QLatin1String(", "));
}
