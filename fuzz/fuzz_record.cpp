#include <QDir>
#include <cstring>

#include "Fuzz.h"
#include "batch/BatchExecution.h"
#include "batch/BatchTargets.h"
#include "batch/Record.h"
#include "measurement/Origin.h"

// What was done, written down and done again: the record of the second measurement is that of the
// first, and so are its results to the last bit.

namespace {

/// The lines behind the remark, which tells of what is not done again.
QStringList withoutRemark(const QStringList& lines) {
    return lines.mid(lines.indexOf(QStringLiteral(":rem_end")) + 1);
}

bool isMadeAgain(const Measurement& measurement, const Result& result) {
    return result.id != ResultId::Shift && result.run &&
           result.run->state == Run::State::Complete &&
           measurement.differenceOf(result) == Difference::None;
}

void compare(const Measurement& first, const Measurement& second) {
    for (const Result* result : first.results()) {
        if (!isMadeAgain(first, *result)) {
            continue;
        }
        const Result* again = second.find(result->id, result->reference);
        require(again != nullptr, "a result is made again:", result->kind().title);
        const MapValues a = result->image.values();
        const MapValues b = again->image.values();
        const auto bytes = static_cast<std::size_t>(a.size()) * sizeof(double);
        require(a.size() == b.size() && std::memcmp(a.constData(), b.constData(), bytes) == 0,
                "its values are the same:", result->kind().title);
    }
}

void doAgain(const TinyFolder& folder, const Measurement& first, const QStringList& record) {
    const QString place = originFolder(first.inputs());
    if (!place.isEmpty()) {
        QDir::setCurrent(place);
    }
    Measurement second;
    second.readCountsWhenNeeded();
    BatchExecution again(folder);
    again.leaveOutLetters();
    again.run(second, record, 100 * MostRounds);
    for (const AnsweredLine& answer : again.answers()) {
        require(!answer.outcome.failed(), "a line of a record does its work:",
                answer.text + QStringLiteral(" | ") +
                    answer.outcome.failures.join(QStringLiteral("; ")));
    }
    const QStringList lines = recordOf(second).lines;
    const QString difference = withoutRemark(record).join(QLatin1Char('\n')) +
                               QStringLiteral("\n----\n") +
                               withoutRemark(lines).join(QLatin1Char('\n'));
    require(withoutRemark(record) == withoutRemark(lines),
            "a record comes back as it was:", difference);
    compare(first, second);
}

}  // namespace

void fuzz(const QByteArray& input) {
    TinyFolder& folder = tinyFolder();
    folder.enter();
    BatchExecution execution(folder);
    execution.leaveOutLetters();
    {
        Measurement measurement;
        measurement.readCountsWhenNeeded();
        execution.run(measurement, linesOf(input), MostRounds);
        const RecordLines record = recordOf(measurement);
        require(record.lines.isEmpty() != record.whyNotInWindow.isEmpty(),
                "there is a record or a reason");
        if (!record.lines.isEmpty() && !folder.isChanged()) {
            doAgain(folder, measurement, record.lines);
        }
    }
    folder.enter();
    folder.putBack(execution.written());
    folder.leave();
}
