#include "batch/BatchInterpreter.h"

#include <QDebug>
#include <utility>

#include "batch/BatchText.h"
#include "batch/BatchTexts.h"
#include "batch/CommandTables.h"
#include "batch/LineCheck.h"

void BatchInterpreter::start(const QStringList& lines) {
    m_running = true;
    m_open = true;
    if (lines != m_lines) {
        m_lines = lines;
    }
    m_problems = problemsOfForm(m_lines, m_inRem);
    m_current = 0;
    m_loops.clear();
    m_listener.started();
    next();
}

void BatchInterpreter::stop() {
    m_running = false;
    m_inRem = false;
}

void BatchInterpreter::next() {
    if (!m_running || m_current < 0 || m_current >= m_lines.size()) {
        // Once: an answer that comes without a batch, such as that to a user's own load, ends none.
        if (std::exchange(m_open, false)) {
            m_listener.ended();
        }
        return;
    }
    CmdLine cmd = CmdLine::parse(readLogicalLine(m_lines, &m_current));
    cmd.line = m_current;
    m_lineInWork = m_current;
    const int control = controlId(cmd.command);
    if (control == RemEndControl) {
        m_inRem = false;
    } else if (control == RemStartControl) {
        m_inRem = true;
    }
    if (!m_inRem || control == RemStartControl) {
        cmd.problems = m_problems.value(m_current);
    }
    if (!m_inRem) {
        interpret(&cmd, control);
    }
    // Before the line is handed out: a direct answer must find the next line.
    ++m_current;
    m_listener.execCmd(cmd, m_inRem);
}

void BatchInterpreter::interpret(CmdLine* cmd, int control) {
    switch (control) {
        case ForControl:
            doFor(*cmd);
            break;
        case NextControl:
            doNext(*cmd);
            break;
        case EchoControl:
            doEcho(*cmd);
            break;
        default:
            break;
    }
    if (commandId(cmd->command) != NoCommand) {
        if (!m_loops.substitute(&cmd->args)) {
            cmd->problems.warnings << Batch::tr("endless substitution of a loop variable");
        }
        m_listener.log(
            QStringLiteral("%1 : %2\n").arg(cmd->command, cmd->args.join(QLatin1Char(' '))));
    }
}

void BatchInterpreter::doFor(const CmdLine& cmd) {
    const ForLoop& loop = m_loops.begin(cmd.args, m_current);
    m_listener.log(
        QStringLiteral("for %1 : %2 = %3\n").arg(loop.name, loop.placeholder, loop.value));
}

void BatchInterpreter::doNext(const CmdLine& cmd) {
    const QString name = cmd.arg(0);
    ForLoop loop;
    if (m_followsLoops && m_loops.step(name)) {
        m_current = m_loops.find(name)->forLine;
    }
    if (const ForLoop* found = m_loops.find(name)) {
        loop = *found;
    }
    m_listener.log(
        QStringLiteral("next %1 : %2 = %3\n").arg(loop.name, loop.placeholder, loop.value));
}

void BatchInterpreter::doEcho(const CmdLine& cmd) {
    const QString text = QStringLiteral("echo %1").arg(cmd.arg(0));
    qDebug().noquote() << text;
    m_listener.log(text);
}
