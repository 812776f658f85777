#include "tarnwick-batch/BatchSession.h"

#include <utility>

#include "base/Globals.h"
#include "batch/CommandTables.h"
#include "tarnwick-batch/Console.h"

BatchSession::BatchSession(Console* console, BatchText text, std::function<int()> lineInWork,
                           QObject* parent)
    : QObject(parent),
      m_console(console),
      m_text(std::move(text)),
      m_lineInWork(std::move(lineInWork)) {}

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
    const int control = controlId(cmd.command);
    if (control == RemStartControl || control == RemEndControl) {
        m_inRemark = control == RemStartControl;
        return;
    }
    if (m_inRemark) {
        return;
    }
    const int line = m_text.lineNumber(m_lineInWork());
    const auto say = [&](const QString& text) {
        m_console->note(
            QStringLiteral("line %1: %2: %3").arg(QString::number(line), cmd.command, text));
    };
    for (const QString& failure : outcome.failures) {
        say(failure);
    }
    for (const QString& warning : outcome.warnings) {
        say(QStringLiteral("warning: ") + warning);
    }
    if (!outcome.failed()) {
        ++m_done;
        m_warned += outcome.warnings.isEmpty() ? 0 : 1;
        return;
    }
    ++m_failed;
    Failure& failure = m_failures[line];
    failure.command = cmd.command;
    ++failure.times;
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
    finish(verdict(), m_failed == 0 ? AllDone : SomeFailed);
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
    m_console->logLine(closing);
    emit finished(exitCode);
}

QString BatchSession::verdict() const {
    if (m_done + m_failed == 0) {
        return QStringLiteral("0 lines");
    }
    QStringList named;
    for (auto it = m_failures.begin(); it != m_failures.end(); ++it) {
        QString name = QStringLiteral("line %1 (").arg(it.key()) + it->command;
        if (it->times > 1) {
            name += QStringLiteral(", %1 times").arg(it->times);
        }
        named.append(name + QLatin1Char(')'));
    }
    QString text =
        m_done == 1 ? QStringLiteral("1 line done") : QStringLiteral("%1 lines done").arg(m_done);
    if (m_warned > 0) {
        text += QStringLiteral(", %1 with a warning").arg(m_warned);
    }
    text += QStringLiteral(", %1 failed").arg(m_failed);
    return named.isEmpty() ? text : text + QLatin1String(": ") + named.join(QLatin1String(", "));
}
