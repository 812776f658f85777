#include "window/NewResult.h"

namespace {

bool isMadeBy(const Result& result, Work work) {
    return result.image.hasData() && result.tookPart() && result.run && result.run->work == work;
}

}  // namespace

NewResult::NewResult(Measurement& measurement, QObject* parent)
    : QObject(parent), m_measurement(measurement) {
    connect(&m_measurement, &Measurement::ended, this, &NewResult::ended);
}

void NewResult::started(Work work) {
    m_work = work;
    m_atStart = choice();
}

NewResult::Choice NewResult::choice() const {
    const Settings& now = m_measurement.settings();
    return {now.shown, now.selected, now.namedKind};
}

bool NewResult::isAsAtStart() const {
    const Choice now = choice();
    return now.shown == m_atStart.shown && now.selected == m_atStart.selected &&
           now.namedKind == m_atStart.namedKind;
}

void NewResult::ended(Work work, const Outcome& outcome) {
    if (m_work != work) {
        return;
    }
    m_work = Work::None;
    if (!outcome.failed() && isAsAtStart()) {
        show(work);
    }
}

/// The one that is selected, if it is of this run; else the one that the run is made for.
void NewResult::show(Work work) {
    const Result* selected = m_measurement.selectedResult();
    if (selected != nullptr && isMadeBy(*selected, work)) {
        m_measurement.set(&Settings::shown, Shown::Result);
        return;
    }
    const auto type = static_cast<ResultId>(m_measurement.settings().resultType);
    const ResultId wanted = work == Work::Residual     ? ResultId::RaRest
                            : work == Work::Difference ? ResultId::Difference
                                                       : type;
    for (const Result* result : m_measurement.results()) {
        if (result->id == wanted && isMadeBy(*result, work)) {
            emit said(m_measurement.choose(wanted, result->reference));
            return;
        }
    }
}
