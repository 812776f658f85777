#include "panels/RunAnswer.h"

#include <QLocale>
#include <algorithm>

RunAnswer::RunAnswer(const Measurement& measurement, QObject* parent)
    : QObject(parent), m_measurement(measurement) {
    connect(&measurement, &Measurement::changed, this, [this] {
        const Work working = m_measurement.working();
        if (working != m_working && working != Work::None) {
            m_time.start();
        }
        m_working = working;
    });
    connect(&measurement, &Measurement::ended, this, [this](Work work, const Outcome& outcome) {
        const QString text = outcome.failed() || outcome.stopped ? QString() : answer(work);
        if (!text.isEmpty()) {
            Outcome answered = outcome;
            answered.notes.prepend(text);
            emit ended(answered);
        }
    });
}

const Run* RunAnswer::runOf(Work work) const {
    if (work == Work::Residual) {
        return m_measurement.residual(0).run.get();
    }
    if (work == Work::Difference) {
        return m_measurement.find(ResultId::Difference)->run.get();
    }
    const auto& references = m_measurement.references();
    return work == Work::Fit && !references.empty()
               ? references.front()->result(Reference::DMut).run.get()
               : nullptr;
}

QString RunAnswer::answer(Work work) const {
    const Run* run = runOf(work);
    if (run == nullptr || run->state != Run::State::Complete || !m_time.isValid()) {
        return QString();
    }
    const QString bins = QLocale().toString(run->tally.bins);
    const double seconds = static_cast<double>(m_time.elapsed()) / 1000.0;
    const QString time = QString::number(seconds, seconds < 0.1 ? 'g' : 'f', 1);
    if (work != Work::Fit) {
        return tr("Analysed %1 bins in %2 s.").arg(bins, time);
    }
    const auto& used = run->inputs.references;
    const auto count = std::count_if(used.begin(), used.end(),
                                     [](const ReferenceInput& r) { return r.takesPart; });
    return (count == 1 ? tr("Fitted %1 bins with %2 reference in %3 s.")
                       : tr("Fitted %1 bins with %2 references in %3 s."))
        .arg(bins, QString::number(count), time);
}
