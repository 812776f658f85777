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
    void showCount();

    Measurement& m_measurement;
    Controls m_controls;
    double m_factor = UsualMask;  // that the next press sets
    struct Counted {
        double factor = -1.0;
        std::shared_ptr<const Run> run;
        bool isMasked = false;

        bool operator==(const Counted& o) const {
            return factor == o.factor && run == o.run && isMasked == o.isMasked;
        }
    };
    Counted m_counted;  // what the count is of: counting all bins of a large map takes a while
    QTimer m_pace;      // the slider may move faster than maps are masked
};
