#include "tarnwick-batch/BatchSession.h"

#include <QJsonArray>
#include <QJsonObject>
#include <utility>

#include "base/Globals.h"
#include "tarnwick-batch/Console.h"
#include "tarnwick-batch/RunReport.h"

namespace {

double secondsOf(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed() / 1000) / 1e6;
}

}  // namespace

BatchSession::BatchSession(Console* console, BatchText text, std::function<int()> lineInWork,
                           const Options& options, QObject* parent)
    : QObject(parent),
      m_console(console),
      m_text(std::move(text)),
      m_lineInWork(std::move(lineInWork)),
      m_options(options) {
    m_sinceStart.start();
    m_sinceLine.start();
}

void BatchSession::log(const QString& text) {
    if (!m_finished) {
        m_console->log(text);
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
    if (m_verdict.take(cmd, outcome, line)) {
        say(line, cmd, outcome);
        report(line, cmd, outcome);
    }
    m_sinceLine.start();
}

void BatchSession::say(int line, const CmdLine& cmd, const Outcome& outcome) {
    const QString head = QStringLiteral("line %1: %2: ").arg(QString::number(line), cmd.command);
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
                             : outcome.warnings.isEmpty() ? "done"
                                                          : "warning";
    m_options.report->add({{"line", line},
                           {"command", cmd.command},
                           {"arguments", QJsonArray::fromStringList(cmd.args)},
                           {"outcome", word},
                           {"reasons", QJsonArray::fromStringList(outcome.texts())},
                           {"seconds", secondsOf(m_sinceLine)},
                           {"files", QJsonArray::fromStringList(outcome.files)},
                           {"notes", QJsonArray::fromStringList(outcome.notes)}});
}

void BatchSession::progress(Work work, double done, double of) {
    if (m_finished || !(of > 0.0)) {
        return;
    }
    const bool isLoad = work == Work::LoadI1 || work == Work::LoadI0;
    const int part = toClampedInt(done, 0, isLoad ? 1 << 30 : 100);
    const QString what = work == Work::LoadI1   ? QStringLiteral("I1")
                         : work == Work::LoadI0 ? QStringLiteral("I0")
                                                : QStringLiteral("Analysis");
    m_console->showBar(what, done / of,
                       isLoad ? QStringLiteral("%1/%2").arg(part).arg(toClampedInt(of, 0, 1 << 30))
                              : QStringLiteral("%1 %").arg(part));
}

void BatchSession::end() {
    const bool isGood = m_verdict.failed() == 0 && (m_verdict.warned() == 0 || !m_options.isStrict);
    finish(verdict(), isGood ? AllDone : SomeFailed);
}

void BatchSession::interrupt(int signalNumber) {
    const int line = m_text.lineNumber(m_lineInWork());
    const QString where = line > 0 ? QStringLiteral("Interrupted at line %1: ").arg(line)
                                   : QStringLiteral("Interrupted: ");
    finish(where + verdict(), SignalBase + signalNumber);
}

void BatchSession::finish(const QString& closing, int exitCode) {
    if (m_finished) {
        return;
    }
    m_finished = true;
    m_console->clearBar();
    if (m_options.report != nullptr) {
        m_options.report->add(
            {{"totals", QJsonObject{{"done", m_verdict.done() - m_verdict.warned()},
                                    {"warning", m_verdict.warned()},
                                    {"failed", m_verdict.failed()},
                                    {"seconds", secondsOf(m_sinceStart)},
                                    {"exit", exitCode}}}});
    }
    m_console->logLine(m_options.tellsTime ? closing + QStringLiteral("; %1 s").arg(
                                                           secondsOf(m_sinceStart), 0, 'f', 2)
                                           : closing);
    emit finished(exitCode);
}

QString BatchSession::verdict() const {
    if (m_verdict.lines() == 0) {
        return QStringLiteral("0 lines");
    }
    QStringList named;
    const auto& failures = m_verdict.failures();
    for (auto it = failures.begin(); it != failures.end(); ++it) {
        QString name = QStringLiteral("line %1 (").arg(it.key()) + it->command;
        if (it->times > 1) {
            name += QStringLiteral(", %1 times").arg(it->times);
        }
        named.append(name + QLatin1Char(')'));
    }
    const QString text =
        QStringLiteral("%1 done, %2 with a warning, %3 failed")
            .arg(m_verdict.done() == 1 ? QStringLiteral("1 line")
                                       : QStringLiteral("%1 lines").arg(m_verdict.done()))
            .arg(m_verdict.warned())
            .arg(m_verdict.failed());
    return named.isEmpty() ? text : text + QLatin1String(": ") + named.join(QLatin1String(", "));
}
