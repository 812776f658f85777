// The main window's side of a batch: one line is carried out and answered at a time.

#include "ui_Body.h"
#include "window/Body.h"
#include "window/CommandHandlers.h"

namespace {
constexpr int NoticeMs = 8000;
}

void Body::execCmd(CmdLine cmd, bool inRem) {
    if (!m_pacing.acceptsLines()) {
        return;  // left over from a batch that has been started anew meanwhile
    }
    m_problems.clear();
    if (inRem) {
        answer(cmd, {});
        return;
    }
    m_executing = true;
    const CommandHandlers::Answer when = m_handlers->run(cmd);
    m_executing = false;
    if (when == CommandHandlers::Answer::AtOnce) {
        answer(cmd, m_problems);
    }
}

void Body::note(const QString& problem) {
    // What a user does while a line of the batch waits is not that line's fault.
    if (m_executing) {
        m_problems << problem;
    }
    m_ui->statusbar->showMessage(problem, NoticeMs);
}

void Body::answer(const CmdLine& cmd, const QStringList& problems) {
    emit commandDone(cmd, problems);
    emit finishBatchExec();
}

void Body::answerWaiting(BatchPacing::Work work, const QStringList& problems) {
    if (m_pacing.isWaitingFor(work)) {
        answer(m_pacing.take(), m_problems + problems);
        m_problems.clear();
    } else if (!m_pacing.isActive()) {
        emit finishBatchExec();
    }
}
