#pragma once

#include <QElapsedTimer>

#include "measurement/Measurement.h"

/// Says what an analysis of the area has done when it has ended well: how many bins, with what, and
/// how long it took.
class RunAnswer : public QObject {
    Q_OBJECT

  public:
    RunAnswer(const Measurement& measurement, QObject* parent);

  signals:
    /// The outcome of a fit, residual absorption or difference, with the answer before its notes.
    void ended(const Outcome& outcome);

  private:
    QString answer(Work work) const;
    const Run* runOf(Work work) const;

    const Measurement& m_measurement;
    Work m_working = Work::None;
    QElapsedTimer m_time;
};
