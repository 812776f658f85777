#pragma once

#include <QObject>

#include "measurement/Measurement.h"

class QPushButton;

/// The presses that show another face of the map on display: its values, their errors, and the
/// goodness of the fit that both come from. They follow the measurement, whoever chooses.
class MapFaces : public QObject {
    Q_OBJECT

  public:
    struct Controls {
        QPushButton* value;
        QPushButton* error;
        QPushButton* r;
        QPushButton* chi2;
    };

    MapFaces(Measurement& measurement, const Controls& controls, QObject* parent);

    /// Shows what is on display and what can be shown now.
    void update();

  signals:
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    /// A map by its kind and the reference that it belongs to, -1 for none.
    struct Map {
        ResultId id;
        int reference;
    };

    void show(const Map& map);
    Map errorMap() const;
    QString whyNot(const Map& map) const;

    Measurement& m_measurement;
    Controls m_controls;
    Map m_value{ResultId::Ratio, 0};  // that Value leads back to
};
