#include "batch/BatchExecution.h"

#include <QCoreApplication>
#include <QDir>
#include <algorithm>

#include "Fuzz.h"
#include "batch/BatchRunner.h"
#include "batch/CommandTables.h"

namespace {

constexpr int MostTurns = 100000;

bool isName(ArgKind kind) {
    return kind == ArgKind::InFile || kind == ArgKind::OutFile || kind == ArgKind::Directory ||
           kind == ArgKind::Pattern;
}

}  // namespace

/// Keeps the names of a line in the folder.
void BatchExecution::confine(CmdLine* cmd) {
    const CommandRow* row = commandRow(commandId(cmd->command));
    if (row == nullptr || row->args.empty()) {
        return;
    }
    if (m_leavesOutLetters && row->drawsLetters) {
        cmd->command = QStringLiteral(":rem_end");
        m_isWhole = false;
    }
    for (int i = 0; i < cmd->args.size(); ++i) {
        const auto kind = std::min(static_cast<std::size_t>(i), row->args.size() - 1);
        if (isName(row->args[kind])) {
            const QString inside = m_folder.confined(cmd->args.at(i));
            m_isWhole = m_isWhole && inside == cmd->args.at(i);
            cmd->args[i] = inside;
        }
    }
}

void BatchExecution::run(Measurement& measurement, const QStringList& lines, int rounds) {
    BatchRunner runner(measurement);
    BatchDispatcher* const dispatcher = runner.dispatcher();
    bool hasEnded = false;
    int open = -1;  // index of the line that is not answered yet
    QObject here;
    QObject::disconnect(dispatcher, &BatchDispatcher::execCmd, &runner, nullptr);
    QObject::connect(dispatcher, &BatchDispatcher::execCmd, &here, [&](CmdLine cmd, bool inRem) {
        require(open < 0, "one line at a time:", cmd.text);
        open = cmd.line;
        if (--rounds == 0) {
            dispatcher->leaveLoops();
            m_isWhole = false;
        }
        confine(&cmd);
        runner.execCmd(cmd, inRem);
    });
    QObject::connect(
        &runner, &BatchRunner::commandDone, &here, [&](const CmdLine& cmd, const Outcome& outcome) {
            require(cmd.line == open, "a line is answered once:", cmd.text);
            open = -1;
            m_answers.append({cmd.text, cmd.line, outcome});
            for (const QString& file : outcome.files) {
                m_written.insert(QDir::cleanPath(QDir::current().absoluteFilePath(file)));
            }
        });
    QObject::connect(dispatcher, &BatchDispatcher::ended, &here, [&] { hasEnded = true; });
    runner.start(lines);
    // In one thread nothing comes but what was posted.
    for (int turns = 0; !hasEnded; ++turns) {
        require(turns < MostTurns, "the batch comes to its end:", lines.value(open));
        QCoreApplication::sendPostedEvents();
    }
    require(open < 0, "every line is answered:", lines.value(open));
}
