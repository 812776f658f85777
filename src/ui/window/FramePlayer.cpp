#include "window/FramePlayer.h"

#include <QEvent>
#include <QWidget>

FramePlayer::FramePlayer(Measurement& measurement, QWidget* view, QObject* parent)
    : QObject(parent), m_measurement(measurement) {
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &FramePlayer::step);
    connect(&measurement, &Measurement::changed, this, &FramePlayer::changed);
    view->installEventFilter(this);
}

void FramePlayer::setPerSecond(int frames) {
    m_timer.setInterval(1000 / frames);
}

void FramePlayer::start() {
    const Shown shown = m_measurement.settings().shown;
    const bool hasFrames =
        (shown == Shown::I1 || shown == Shown::I0) && m_measurement.shownStack().size() > 1;
    if (hasFrames && !isPlaying()) {
        m_isPainted = true;
        m_timer.start();
        emit playing(true);
    }
}

void FramePlayer::stop() {
    if (isPlaying()) {
        m_timer.stop();
        emit playing(false);
    }
}

void FramePlayer::step() {
    if (!m_isPainted || m_measurement.frameImages().isBusy()) {
        return;
    }
    m_isPainted = false;
    const Stack& stack = m_measurement.shownStack();
    m_isStepping = true;
    m_measurement.setFrame(stack.id(), (m_measurement.frame() + 1) % stack.size());
    m_isStepping = false;
}

void FramePlayer::changed(Measurement::Changes what) {
    const bool isLoading =
        m_measurement.isAtWork(Work::LoadI1) || m_measurement.isAtWork(Work::LoadI0);
    const bool isOther = what & (Measurement::Frames | Measurement::Display);
    if (isLoading || (isOther && !m_isStepping)) {
        stop();
    }
}

bool FramePlayer::eventFilter(QObject* object, QEvent* event) {
    m_isPainted = m_isPainted || event->type() == QEvent::Paint;
    return QObject::eventFilter(object, event);
}
