#include "window/Answers.h"

#include <QCoreApplication>

#include "measurement/FolderLoad.h"
#include "measurement/Measurement.h"

namespace {
struct Answers {
    Q_DECLARE_TR_FUNCTIONS(Answers)
};
}  // namespace

Outcome inShort(const Measurement& measurement, Work work, const Outcome& outcome) {
    if (work != Work::LoadI1 && work != Work::LoadI0) {
        return outcome;
    }
    const Stack& stack = measurement.stack(work == Work::LoadI1 ? StackId::I1 : StackId::I0);
    const int n = stack.leftOut();
    return n > 1 && outcome.failures.size() >= n  // not a line that did not come to a load
               ? Outcome::failure(Answers::tr("%1: %2 files were not taken, see Messages")
                                      .arg(stack.name())
                                      .arg(n))
               : outcome;
}

Outcome withWhatWasMade(const Measurement& measurement, Work work, Outcome outcome) {
    QString text;
    if (work == Work::LoadI1 || work == Work::LoadI0) {
        text = loadedText(measurement.stack(work == Work::LoadI1 ? StackId::I1 : StackId::I0));
    } else if (work == Work::LoadDark && measurement.dark().loaded() > 0) {
        text = Answers::tr("loaded %n dark frame(s)", nullptr, measurement.dark().loaded());
    }
    if (!text.isEmpty()) {
        outcome.notes << text;
    }
    if (work == Work::LoadFolder) {
        outcome.notes = QStringList(outcome.notes.join(QStringLiteral("; ")));
    }
    return work == Work::Deglitch ? withReplaced(measurement, outcome) : outcome;
}

Outcome withReplaced(const Measurement& measurement, Outcome outcome) {
    if (!outcome.failed() && measurement.working() == Work::None) {
        outcome.notes << Answers::tr("Deglitched: %1 of %2 bins replaced")
                             .arg(measurement.replacedBins().replaced)
                             .arg(measurement.replacedBins().of);
    }
    return outcome;
}
