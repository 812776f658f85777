#pragma once

#include <QTimer>

#include "measurement/Measurement.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;

/// The mask of the maps of a fit: a press that switches it, its factor as a field and a slider, and
/// how much it blanks. Moving the slider masks the map on display at once.
class MaskControl : public QObject {
    Q_OBJECT

  public:
    /// The factor that a press sets while no other has been chosen.
    static constexpr double UsualMask = 5.0;

    struct Controls {
        QPushButton* press;
        QLineEdit* field;
        QSlider* slider;
        QLabel* count;
    };

    MaskControl(Measurement& measurement, const Controls& controls, QObject* parent);

    /// Shows what there is now.
    void update();

  signals:
    void said(const Outcome& outcome, const QString& file = QString());

  private:
    void set(double factor);
    void takeField();
    void showCount(bool isOn);

    Measurement& m_measurement;
    Controls m_controls;
    double m_factor = UsualMask;  // that the next press sets
    QTimer m_pace;                // the slider may move faster than maps are masked
};
