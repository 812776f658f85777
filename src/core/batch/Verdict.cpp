#include "batch/Verdict.h"

#include "batch/CommandTables.h"

bool Verdict::take(const CmdLine& cmd, const Outcome& outcome, int line) {
    const int control = controlId(cmd.command);
    if (control == RemStartControl || control == RemEndControl) {
        m_inRemark = control == RemStartControl;
        return false;
    }
    if (m_inRemark || cmd.command.isEmpty()) {
        return false;
    }
    if (!outcome.failed()) {
        ++m_done;
        m_warned += outcome.warnings.isEmpty() ? 0 : 1;
        return true;
    }
    ++m_failed;
    Failure& failure = m_failures[line];
    failure.command = cmd.command;
    ++failure.times;
    return true;
}
