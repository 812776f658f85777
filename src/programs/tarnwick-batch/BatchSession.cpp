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

void BatchSession::commandDone(const CmdLine& cmd, const QStringList& problems) {
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
    if (problems.isEmpty()) {
        ++m_done;
        return;
    }
    ++m_failed;
    const int line = m_text.lineNumber(m_lineInWork());
    Failure& failure = m_failures[line];
    failure.command = cmd.command;
    ++failure.times;
    for (const QString& problem : problems) {
        m_console->note(
            QStringLiteral("line %1: %2: %3").arg(QString::number(line), cmd.command, problem));
    }
}

void BatchSession::loadProgress(int stack, int done, int total) {
    if (!m_finished && total > 0) {
        m_console->showBar(stack == 0 ? QStringLiteral("I0") : QStringLiteral("I1"),
                           static_cast<double>(done) / total,
                           QStringLiteral("%1/%2").arg(done).arg(total));
    }
}

void BatchSession::analysisProgress(double percent) {
    if (!m_finished) {
        m_console->showBar(QStringLiteral("Analysis"), percent / 100.0,
                           QStringLiteral("%1 %").arg(toClampedInt(percent, 0, 100)));
    }
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
    text += QStringLiteral(", %1 failed").arg(m_failed);
    return named.isEmpty() ? text : text + QLatin1String(": ") + named.join(QLatin1String(", "));
}
