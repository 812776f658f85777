#pragma once

#include <QObject>

#include "measurement/Measurement.h"

namespace Ui {
class Body;
}
class AreaStatistics;
class SaveDialogs;
struct Panels;

/// What belongs to the selected area: the presses at the image that choose its shape, and what the
/// panel with its statistics asks for.
class AreaPane : public QObject {
    Q_OBJECT

  public:
    AreaPane(Measurement& measurement, Ui::Body& ui, const Panels& panels, SaveDialogs* dialogs,
             QObject* parent);

  signals:
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    void connectSaving(AreaStatistics* panel, SaveDialogs* dialogs);

    Measurement& m_measurement;
};
