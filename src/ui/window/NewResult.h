#pragma once

#include <QObject>
#include <optional>

#include "measurement/Measurement.h"

/// Puts what a run has made on display when the run ends: who presses a button to make a map wants
/// to see it. Not what a batch runs, nor a run that was stopped, and not when another image has
/// been chosen meanwhile.
class NewResult : public QObject {
    Q_OBJECT

  public:
    explicit NewResult(Measurement& measurement, QObject* parent = nullptr);

    /// A run has been started by hand.
    void started(Work work);

  signals:
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    void ended(Work work, const Outcome& outcome);
    void show(Work work);

    /// What says which image is chosen.
    struct Choice {
        Shown shown = Shown::I1;
        int selected = -1;
        std::optional<ResultId> namedKind;
    };
    Choice choice() const;
    bool isAsAtStart() const;

    Measurement& m_measurement;
    Choice m_atStart;
    Work m_work = Work::None;
};
