#pragma once

#include <QPoint>
#include <Qt>

/// The last two mouse positions in screen pixels and the buttons as last reported.
class MouseC {
  public:
    const QPoint& previous() const { return m_previous; }
    const QPoint& current() const { return m_current; }
    Qt::MouseButtons buttons() const { return m_buttons; }

    void moveTo(const QPoint& position) {
        m_previous = m_current;
        m_current = position;
    }
    void setButtons(Qt::MouseButtons buttons) { m_buttons = buttons; }

  private:
    QPoint m_previous;
    QPoint m_current;
    Qt::MouseButtons m_buttons = Qt::NoButton;
};
