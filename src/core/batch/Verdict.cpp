#include "batch/Verdict.h"

#include "batch/CommandTables.h"

/// Blank lines and remarks do not, unless there is something to be said of them.
bool Verdict::counts(const CmdLine& cmd, const Outcome& outcome) {
    const bool isSaid = !outcome.texts().isEmpty();
    const int control = controlId(cmd.command);
    if (control == RemStartControl || control == RemEndControl) {
        m_inRemark = control == RemStartControl;
        return isSaid;
    }
    return !m_inRemark && (isSaid || !cmd.text.trimmed().isEmpty());
}

bool Verdict::take(const CmdLine& cmd, const Outcome& outcome, int line) {
    if (!counts(cmd, outcome)) {
        return false;
    }
    if (!outcome.failed() && outcome.endsBatch) {
        return true;  // neither
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
