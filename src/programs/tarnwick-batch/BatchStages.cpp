#include "tarnwick-batch/BatchStages.h"

#include "batch/BatchCheck.h"
#include "tarnwick-batch/AskedBatch.h"
#include "tarnwick-batch/BatchSession.h"
#include "tarnwick-batch/Console.h"
#include "tarnwick-batch/Folders.h"

int printStages(const AskedBatch& batch, const RunnerOptions& options, Console& console) {
    const Folders folders(options.folders);
    if (!folders.enter(0)) {
        console.note(QStringLiteral("tarnwick-batch: cannot enter ") + folders.name(0));
        return BatchSession::BadUsage;
    }
    const BatchPlan plan = planOf(batch.lines, batch.file);
    for (const Finding& error : plan.errors) {
        console.note(QStringLiteral("%1:%2: error: %3")
                         .arg(options.file, QString::number(error.line), error.text));
    }
    if (!plan.errors.isEmpty()) {
        console.note(QStringLiteral("tarnwick-batch: %1 has errors: its stages cannot be counted")
                         .arg(options.file));
        return BatchSession::SomeFailed;
    }
    console.logLine(QString::number(plan.passes));
    return BatchSession::AllDone;
}
