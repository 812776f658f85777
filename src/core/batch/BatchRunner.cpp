#include "batch/BatchRunner.h"

#include <new>
#include <utility>

#include "base/LargeMemory.h"
#include "batch/Action.h"
#include "batch/ArgumentCheck.h"
#include "batch/BatchTexts.h"
#include "batch/CommandTables.h"
#include "batch/LineItems.h"
#include "batch/Record.h"
#include "batch/UnknownWord.h"
#include "measurement/Room.h"

BatchRunner::BatchRunner(Measurement& measurement) : m_measurement(measurement) {
    m_dispatcher.readInBackground();
    connect(this, &BatchRunner::linesAsked, &m_dispatcher, &BatchDispatcher::doDispatchCmds);
    connect(this, &BatchRunner::stopAsked, &m_dispatcher, &BatchDispatcher::batchStop);
    connect(this, &BatchRunner::finishBatchExec, &m_dispatcher, &BatchDispatcher::finishBatchExec);
    connect(&m_dispatcher, &BatchDispatcher::execCmd, this, &BatchRunner::execCmd);
    connect(&m_dispatcher, &BatchDispatcher::started, this, [this] {
        m_pacing.batchStarted();
        m_window.setAside(m_measurement);
    });
    connect(&m_dispatcher, &BatchDispatcher::ended, this, [this] {
        m_pacing.batchEnded();
        m_window.giveBack(m_measurement);
    });
    connect(&measurement, &Measurement::ended, this, &BatchRunner::workEnded);
    measurement.setRecorder([](const Measurement& m, const Result* result, const QString& savedBy) {
        return result != nullptr ? recordOf(m, *result, savedBy) : recordOfResults(m);
    });
}

BatchRunner::~BatchRunner() {
    // The interpreter must be at rest before it goes.
    m_dispatcher.disconnect(this);
    disconnect(&m_dispatcher);
    m_measurement.disconnect(this);
}

void BatchRunner::start(const QStringList& lines) {
    // Noted before the request travels to the interpreter.
    m_pacing.batchRequested();
    m_digests = digestsInRecord(lines);
    m_aboutRecord = aboutNewerRecord(lines);
    emit linesAsked(lines);
}

void BatchRunner::execCmd(const CmdLine& cmd, bool inRem) {
    if (!m_pacing.acceptsLines()) {
        return;  // left over from a batch that has been started anew meanwhile
    }
    if (inRem) {
        answer(cmd, cmd.problems);
    } else {
        run(cmd);
    }
}

void BatchRunner::run(const CmdLine& cmd) {
    int place = 0;
    const CommandRow* row = commandRow(commandId(takeItemAt(cmd.command, &place)));
    if (row == nullptr) {
        Outcome outcome = cmd.problems;
        if (controlId(cmd.command) == NoControl) {
            emit unknownCommand(cmd);
            if (!cmd.text.trimmed().isEmpty()) {
                outcome += std::exchange(m_aboutRecord, {});
                outcome += Outcome::failure(unknownWord(cmd.command));
            }
        }
        answer(cmd, outcome);
        return;
    }
    if (row->saves() && cmd.line < m_start) {
        answer(cmd, Outcome::note(Batch::tr(
                        "left out: it saves, and the batch is taken up at a later line")));
        return;
    }
    Outcome outcome = std::exchange(m_aboutRecord, {});
    outcome += cmd.problems;
    outcome += judgeArguments(*row, cmd.args);
    if (outcome.failed()) {
        answer(cmd, outcome);
        return;
    }
    m_pacing.wait(cmd, row->work);
    Action action{m_measurement, CommandArgs(withTypedNames(*row, cmd.args)), m_digests, row->work,
                  outcome};
    m_endedWith.reset();
    m_running = true;
    action.outcome += judgeAddresses(0);
    if (!action.outcome.failed()) {
        runRow(*row, &action);
    }
    m_running = false;
    m_outcome = action.outcome;
    if (row->work != Work::None && !m_pacing.isWaitingFor(row->work)) {
        return;  // overtaken by another batch
    }
    if (m_endedWith) {
        m_outcome += *m_endedWith;
    } else if (m_measurement.isAtWork(action.awaited)) {
        m_pacing.wait(cmd, action.awaited);
        return;
    }
    m_pacing.take();
    forgetFailed(row->work, m_outcome);
    answer(cmd, m_outcome);
}

/// An array that it is refused is the end of the line, not of the program.
void BatchRunner::runRow(const CommandRow& row, Action* action) {
    try {
        row.run(*action);
    } catch (const std::bad_alloc&) {
        action->outcome += Outcome::failure(lackOfMemory());
    }
}

/// What an analysis that failed left, or found, must not pass for its result.
void BatchRunner::forgetFailed(Work work, const Outcome& outcome) {
    if (outcome.failed() && !outcome.stopped) {
        m_measurement.forget(work);
    }
}

void BatchRunner::answer(const CmdLine& cmd, const Outcome& outcome) {
    emit commandDone(cmd, outcome);
    if (outcome.endsBatch) {
        stop();
    }
    emit finishBatchExec();
}

void BatchRunner::workEnded(Work work, const Outcome& outcome) {
    if (m_pacing.isWaitingFor(work) && m_running) {
        m_endedWith = outcome;
    } else if (m_pacing.isWaitingFor(work)) {
        Outcome all = m_outcome;
        all += outcome;
        forgetFailed(work, all);
        answer(m_pacing.take(), all);
    } else {
        emit endedAlone(work, outcome);
        if (!m_pacing.isActive() && (work == Work::LoadI1 || work == Work::LoadI0 ||
                                     work == Work::LoadFolder || work == Work::Fit)) {
            emit finishBatchExec();  // a user's own
        }
    }
}
