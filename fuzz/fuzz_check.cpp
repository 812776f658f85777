#include <algorithm>

#include "Fuzz.h"
#include "batch/BatchCheck.h"
#include "batch/BatchExecution.h"
#include "batch/BatchTargets.h"
#include "batch/BatchText.h"

// The check of a batch beside its run: the same lines fail, nothing is written, and the list that
// tarnwick-batch prints has an error for each line that fails.

namespace {

/// What only the counts tell, see docs/batch.md.
bool isOfCounts(const QString& failure) {
    static const char* const texts[] = {"no program could load the map",
                                        "the percentiles",
                                        "no value",
                                        "no finite",
                                        "the range",
                                        "memory",
                                        "there is nothing to",
                                        "no bin of the"};
    return std::any_of(std::begin(texts), std::end(texts),
                       [&](const char* text) { return failure.contains(QLatin1String(text)); });
}

/// In order, up to the line where only the counts have told the run what to say.
void compare(const QVector<AnsweredLine>& checked, const QVector<AnsweredLine>& run) {
    for (int i = 0; i < std::min(checked.size(), run.size()); ++i) {
        const Outcome& expected = checked.at(i).outcome;
        const Outcome& came = run.at(i).outcome;
        const auto isSaid = [&](const QString& failure) {
            return expected.failures.contains(failure);
        };
        require(checked.at(i).line == run.at(i).line, "the same lines are run:", run.at(i).text);
        if (std::any_of(came.failures.begin(), came.failures.end(), [&](const QString& failure) {
                return !isSaid(failure) && isOfCounts(failure);
            })) {
            return;
        }
        // In other words where a line has written over what another reads.
        require(expected.failed() == came.failed(), "a line fails as the check says:",
                run.at(i).text + QStringLiteral(" | ") +
                    expected.failures.join(QStringLiteral("; ")) + QStringLiteral(" | ") +
                    came.failures.join(QStringLiteral("; ")));
    }
    require(checked.size() == run.size(), "as many lines are run as are checked");
}

/// Of the lines that were carried out, by their numbers.
void compareWithList(const QVector<AnsweredLine>& checked, const BatchText& text) {
    QSet<int> failed;
    for (const AnsweredLine& each : checked) {
        if (each.outcome.failed()) {
            failed.insert(text.lineNumber(each.line));
        }
    }
    QSet<int> listed;
    for (const Finding& finding : checkBatch(text.lines, {}, DefaultCheckEffort, 0, true)) {
        if (finding.kind == Finding::Kind::Error) {
            listed.insert(finding.line);
        }
    }
    require(failed == listed, "the check lists the lines that fail");
}

}  // namespace

void fuzz(const QByteArray& input) {
    TinyFolder& folder = tinyFolder();
    folder.enter();
    const QStringList lines = linesOf(input);
    BatchExecution check(folder);
    check.leaveOutLetters();
    {
        Measurement measurement;
        measurement.readCountsWhenNeeded();
        measurement.rehearse();
        check.run(measurement, lines, MostRounds);
        checkSettings(measurement.settings());
    }
    if (check.isWhole()) {
        compareWithList(check.answers(), BatchText::fromLines(lines));
    }
    folder.putBack({});
    BatchExecution run(folder);
    run.leaveOutLetters();
    {
        Measurement measurement;
        measurement.readCountsWhenNeeded();
        run.run(measurement, lines, MostRounds);
    }
    compare(check.answers(), run.answers());
    folder.putBack(run.written());
    folder.leave();
}
