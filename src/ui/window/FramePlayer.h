#pragma once

#include <QObject>
#include <QTimer>

#include "measurement/Measurement.h"

/// Shows the frames of the stack on display one after another and begins again after the last. A
/// frame follows when the one before has been painted: what is slow is shown less often, and
/// nothing piles up. Ends with any other change of what is on display, and when frames are loaded.
class FramePlayer : public QObject {
    Q_OBJECT

  public:
    /// Paint events of the view tell that a frame is seen.
    FramePlayer(Measurement& measurement, QWidget* view, QObject* parent);

    bool isPlaying() const { return m_timer.isActive(); }
    /// Nothing without two frames on display.
    void start();
    void stop();
    void setPerSecond(int frames);

  signals:
    void playing(bool on);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void step();
    void changed(Measurement::Changes what);

    Measurement& m_measurement;
    QTimer m_timer;
    bool m_isPainted = true;
    bool m_isStepping = false;
};
